#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/cli/game_files.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/textures/texture_extraction.h"

#include <algorithm>
#include <memory>

namespace korvane
{

namespace
{

struct textures_options
{
    std::vector<std::string> models;
    std::string form;
    std::string normals;
    texture_extraction_options extraction;
};

class textures_run
{
public:
    textures_run(cli_context& context, const textures_options& options) : m_context(context), m_options(options) {}

    void run();

private:
    void add(const std::string& operand);
    void addModel(const std::string& operand);
    void report(const texture_extraction_result& result);
    std::shared_ptr<const path_tree> archives(failure& why);

    cli_context& m_context;
    const textures_options& m_options;
    std::vector<wanted_texture> m_wanted;
    std::vector<failure> m_failures;
};

void textures_run::addModel(const std::string& operand)
{
    rmv2_file model;
    failure why;
    if (openModel(m_context, operand, model, why))
        return addWantedTextures(model.data(), m_wanted, isPackPath(operand) ? std::string() : operand);
    if (why.path.empty())
        why.path = operand;
    m_failures.push_back(std::move(why));
}

// A model, or a definition with all its models.
void textures_run::add(const std::string& operand)
{
    if (!isDefinitionPath(operand))
        return addModel(operand);
    variant_mesh_def definition;
    failure why;
    const bool is_open = isPackPath(operand)
                             ? definition.openFromInternalPath(std::string(internalPathOf(operand)), why)
                             : definition.open(operand, why);
    if (!is_open)
        return m_failures.push_back(std::move(why));
    for (const std::string& problem : definition.problems())
        m_context.note(terminalText(problem));
    for (const std::string& model : definition.models())
        addModel("pack:" + model);
}

void textures_run::report(const texture_extraction_result& result)
{
    for (const std::string& path : result.missing)
        m_context.note(terminalText(path) + ": in no archive, and not on the disk around the models");
    for (const std::string& path : result.empty)
        m_context.note(terminalText(path) + ": empty in the archive that counts");
    for (const failure& why : result.failures)
        m_failures.push_back(why);
    if (m_failures.size() > 1) // a single one is what the program ends with
        for (const failure& why : m_failures)
            m_context.note(terminalText(describe(why)));
    if (!m_context.is_json)
        return m_context.print(extractedText(result.files.size()) + "\n");
    const auto texts = [](const std::vector<std::string>& paths) {
        json list = json::array();
        for (const std::string& path : paths)
            list.push_back(displayText(path));
        return list;
    };
    json files = json::array();
    for (const extracted_texture& file : result.files)
        files.push_back({{"internal_path", displayText(file.internal_path)},
                         {"archive", file.archive.empty() ? json() : json(displayText(file.archive))},
                         {"source", file.source.empty() ? json() : json(displayText(file.source))},
                         {"path", displayText(file.path)},
                         {"normal_map", file.is_normal_map}});
    json failed = json::array();
    for (const failure& why : m_failures)
        failed.push_back({{"path", displayText(why.path)}, {"reason", displayText(describe(why))}});
    m_context.printJson({{"count", result.files.size()},
                         {"files", std::move(files)},
                         {"missing", texts(result.missing)},
                         {"empty", texts(result.empty)},
                         {"failed", std::move(failed)}});
}

// Without data folders there is still the disk around the models.
std::shared_ptr<const path_tree> textures_run::archives(failure& why)
{
    const bool needs_archives =
        std::any_of(m_options.models.begin(), m_options.models.end(),
                    [](const std::string& model) { return isPackPath(model) || isDefinitionPath(model); });
    return needs_archives || hasDataFolders(m_context) ? loadArchives(m_context, why)
                                                       : std::make_shared<const path_tree>();
}

void textures_run::run()
{
    failure why;
    const std::shared_ptr<const path_tree> tree = archives(why);
    if (!tree)
        return m_context.fail(why);
    for (std::size_t i = 0; i < m_options.models.size(); ++i)
    {
        m_context.progress("reading model " + std::to_string(i + 1) + " of " + std::to_string(m_options.models.size()));
        add(m_options.models[i]);
    }
    const auto progress = [this](std::size_t done, std::size_t total) {
        m_context.progress("texture " + std::to_string(done) + " of " + std::to_string(total));
    };
    const texture_extraction_result result = extractTextures(*tree, m_wanted, m_options.extraction, progress);
    report(result);
    if (m_failures.size() == 1)
        m_context.fail(m_failures.front());
    else if (!m_failures.empty())
        m_context.fail({failure_kind::refused, std::to_string(m_failures.size()) + " models or textures failed",
                        m_options.extraction.folder, 0, ""});
}

} // namespace

void addTexturesCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<textures_options>();
    CLI::App* command = app.add_subcommand(
        "textures", "Extract the textures that models name out of the archives, or from the disk around them");
    command
        ->add_option("MODEL", options->models,
                     "Models, or variant mesh definitions with all theirs: on disk, or pack: and an internal path")
        ->required();
    command->add_option("-o", options->extraction.folder, "The folder below which they come to lie")
        ->required()
        ->type_name("DIR")
        ->check(notEmpty());
    command->add_flag("--flat", options->extraction.is_flat, "All in this folder, without those of the internal paths");
    command->add_option("--as", options->form, "Write pictures instead of DDS files: png or tga")
        ->type_name("KIND")
        ->check(CLI::IsMember({"png", "tga"}));
    command->add_option("--normal", options->normals, "blue: turn the games' normal maps into ordinary ones")
        ->type_name("FORM")
        ->check(CLI::IsMember({"blue"}));
    context.addJsonOption(*command);
    command->callback([&context, options] {
        if (!options->form.empty())
            options->extraction.form = pictureKind("." + options->form);
        options->extraction.makes_normals_blue = !options->normals.empty();
        textures_run(context, *options).run();
    });
}

} // namespace korvane
