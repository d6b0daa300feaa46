#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/cli/game_files.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/textures/normal_map.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <filesystem>
#include <memory>

namespace korvane
{

namespace
{

struct normal_map_options
{
    std::vector<std::string> inputs;
    std::string output;
};

bool isSameFile(const std::string& left, const std::string& right)
{
    std::error_code error;
    return std::filesystem::equivalent(toPath(left), toPath(right), error) && !error;
}

// In a folder a picture keeps its name, and its kind when that can be written.
std::string nameInFolder(const std::string& input)
{
    std::string name(fileName(internalPathOf(input)));
    if (!pictureKind(name))
        name = name.substr(0, name.rfind('.')) + std::string(extensionOf(picture_kind::targa));
    return name;
}

class normal_map_run
{
public:
    normal_map_run(cli_context& context, const normal_map_options& options, normal_form form)
        : m_context(context)
        , m_options(options)
        , m_form(form)
        , m_folder(options.output, extraction_layout::flat)
    {
    }

    void run();

private:
    bool convert(const std::string& input, failure& why);
    bool read(const std::string& input, picture& image, failure& why);
    bool outputPath(const std::string& input, std::string& path, failure& why);

    cli_context& m_context;
    const normal_map_options& m_options;
    normal_form m_form;
    extraction_folder m_folder;
    json m_files = json::array();
};

// A conversion cannot be undone: no input is ever written over.
bool normal_map_run::outputPath(const std::string& input, std::string& path, failure& why)
{
    if (!isFolder(m_options.output))
        path = m_options.output;
    else if (!m_folder.place(nameInFolder(input), path, why))
        return false;
    const bool is_input = std::any_of(m_options.inputs.begin(), m_options.inputs.end(),
                                      [&path](const std::string& other) { return isSameFile(path, other); });
    return !is_input || fail(why, failure_kind::refused, "this would replace a file that is read", path);
}

bool normal_map_run::read(const std::string& input, picture& image, failure& why)
{
    if (!isPackPath(input))
        return readPictureFile(input, image, why);
    memory_file bytes;
    if (readOperand(m_context, input, bytes, why) && readPicture(bytes.bytes(), image, why))
        return true;
    if (why.path.empty())
        why.path = input;
    return false;
}

bool normal_map_run::convert(const std::string& input, failure& why)
{
    std::string path;
    picture image;
    if (!outputPath(input, path, why) || !read(input, image, why))
        return false;
    convertNormals(image.pixels(), m_form);
    if (!writePictureFile(path, pictureKind(path).value_or(picture_kind::targa), image, why))
        return false;
    m_files.push_back(
        {{"input", displayText(input)}, {"path", path}, {"width", image.width()}, {"height", image.height()}});
    return true;
}

void normal_map_run::run()
{
    json failed = json::array();
    const std::size_t total = m_options.inputs.size();
    for (std::size_t i = 0; i < total; ++i)
    {
        m_context.progress("converting " + std::to_string(i + 1) + " of " + std::to_string(total));
        failure why;
        if (convert(m_options.inputs[i], why))
            continue;
        if (total == 1)
            return m_context.fail(why);
        m_context.note(terminalText(describe(why)));
        failed.push_back({{"input", displayText(m_options.inputs[i])}, {"reason", displayText(describe(why))}});
    }
    const std::size_t failures = failed.size();
    if (m_context.is_json)
        m_context.printJson({{"files", std::move(m_files)}, {"failed", std::move(failed)}});
    else if (failures < total)
        m_context.print(std::to_string(total - failures) + (total - failures == 1 ? " picture" : " pictures") +
                        " converted\n");
    if (failures > 0)
        m_context.fail({failure_kind::refused,
                        std::to_string(failures) + " of " + std::to_string(total) + " pictures could not be converted",
                        m_options.output, 0, ""});
}

void addDirection(CLI::App& command, cli_context& context, const std::string& name, const std::string& description,
                  normal_form form)
{
    const auto options = std::make_shared<normal_map_options>();
    CLI::App* direction = command.add_subcommand(name, description);
    direction->add_option("IN", options->inputs, "Pictures: Targa, PNG, or DDS; on disk, or pack: and an internal path")
        ->required();
    direction
        ->add_option("-o", options->output,
                     "The file to write, .tga or .png; with several pictures, or if it is one, a folder")
        ->required()
        ->check(notEmpty());
    context.addJsonOption(*direction);
    direction->callback([&context, options, form] {
        const bool is_picture = pictureKind(options->output) && !isFolder(options->output);
        if (options->inputs.size() > 1 && is_picture)
            throw CLI::ValidationError("-o", "several pictures need a folder, one file is written for each");
        if (options->inputs.size() > 1 && !isFolder(options->output))
            options->output += '/';
        if (!is_picture && !isFolder(options->output))
            throw CLI::ValidationError("-o",
                                       "the name must end in .tga or .png, or be that of a folder: " + options->output);
        normal_map_run(context, *options, form).run();
    });
}

} // namespace

void addNormalMapCommand(CLI::App& app, cli_context& context)
{
    CLI::App* command =
        app.add_subcommand("normal-map", "Convert normal maps between the games' form and the usual one");
    command->require_subcommand(1);
    addDirection(*command, context, "to-orange",
                 "From X, Y, Z in red, green, blue to the games' Y in green, X in alpha", normal_form::orange);
    addDirection(*command, context, "to-blue", "From the games' Y in green, X in alpha to X, Y, Z in red, green, blue",
                 normal_form::blue);
}

} // namespace korvane
