// convert: an FBX file's first take as an .anim file.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/silent_prompt.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/bone_table.h"
#include "Korvane/cli/anim_commands.h"
#include "Korvane/cli/commands.h"
#include "Korvane/cli/game_files.h"
#include "Korvane/fbx/convert/fbx_to_anim.h"

#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

struct convert_options
{
    std::string fbx;
    std::string template_anim;
    std::string output;
    std::string bone_table;
    std::optional<std::uint32_t> version;
    std::optional<double> rate;
    std::optional<double> start_time;
    std::optional<double> end_time;
    std::optional<std::uint32_t> frames;
};

class convert_run
{
public:
    convert_run(cli_context& context, const convert_options& options) : m_context(context), m_options(options) {}

    void run();

private:
    std::string configPath() const;
    bool load(failure& why);
    bool loadTemplate(failure& why);
    bool loadBoneTable(failure& why);
    void remember();
    bool addToConfiguration(const std::string& path, std::string& reason) const;
    void report();

    cli_context& m_context;
    const convert_options& m_options;
    std::shared_ptr<const anim_data> m_template;
    memory_file m_fbx;
    anim_conversion m_request;
    anim_conversion_result m_result;
    json m_log = json::array();
};

std::string convert_run::configPath() const
{
    return m_context.config_path.empty() ? config_file::defaultPath() : m_context.config_path;
}

bool convert_run::loadTemplate(failure& why)
{
    m_template = loadAnim(m_context, m_options.template_anim, anim_depth::bones_only, why);
    if (!m_template)
        return false;
    failure ignored; // a template may end behind its bones
    if (auto whole = loadAnim(m_context, m_options.template_anim, anim_depth::animation, ignored))
        m_template = std::move(whole);
    return true;
}

bool convert_run::loadBoneTable(failure& why)
{
    if (m_options.bone_table.empty())
        return true;
    memory_file table;
    std::vector<std::string> names;
    if (!readOperand(m_context, m_options.bone_table, table, why))
        return false;
    if (!readBoneTable(table.text(), names, why))
    {
        why.path = m_options.bone_table;
        return false;
    }
    m_request.bone_selection = std::move(names);
    return true;
}

bool convert_run::load(failure& why)
{
    if (!isFreeToWrite({m_options.fbx, m_options.template_anim, m_options.bone_table, configPath()}, m_options.output,
                       why) ||
        !loadTemplate(why) || !loadBoneTable(why) || !readOperand(m_context, m_options.fbx, m_fbx, why))
        return false;
    m_request.fbx_path = m_options.fbx;
    m_request.fbx = m_fbx.bytes();
    m_request.template_data = m_template.get();
    m_request.version = m_options.version.value_or(m_template->version);
    m_request.frame_rate = m_options.rate;
    m_request.start_seconds = m_options.start_time;
    m_request.end_time = m_options.end_time;
    m_request.frame_count = m_options.frames;
    return true;
}

// A configuration that is not there is made; one that is not understood to its end stays as it is, for writing it would
// lose the rest.
bool convert_run::addToConfiguration(const std::string& path, std::string& reason) const
{
    const std::string config_path = configPath();
    std::error_code error;
    config_file config;
    const bool is_there =
        std::filesystem::symlink_status(toPath(config_path), error).type() != std::filesystem::file_type::not_found;
    if (is_there && !config.load(config_path))
        reason = config_path + " cannot be read";
    else if (is_there && config.errorText() != "DONE")
        reason = config_path + " cannot be understood to its end";
    else if (path.find('"') != std::string::npos)
        reason = "its path has a quotation mark";
    else if (!config.contains(converted_files_key, path) &&
             (!config.add(converted_files_key, {path}, false) || !config.save(config_path)))
        reason = config_path + " cannot be written";
    return reason.empty();
}

void convert_run::remember()
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(toPath(m_options.output), error);
    const std::string path = error ? m_options.output : toUtf8(absolute.lexically_normal());
    std::string reason;
    if (!addToConfiguration(path, reason))
        m_context.note("note: the file is not added to the list of converted files: " + displayText(reason));
}

void convert_run::report()
{
    const anim_output& anim = m_result.anim;
    const std::size_t matched = anim.bones.size() - m_result.unmatched.size();
    if (!m_context.is_json)
        return m_context.print(terminalText(m_options.output) + ": " + std::to_string(anim.frames.size()) +
                               " frames at " + floatText(anim.frame_rate) + " a second, " + std::to_string(matched) +
                               " of " + std::to_string(anim.bones.size()) + " bones matched\n");
    json unmatched = json::array();
    for (const std::string& name : m_result.unmatched)
        unmatched.push_back(displayText(name));
    m_context.printJson({{"path", displayText(m_options.output)},
                         {"version", m_request.version},
                         {"skeleton_name", displayText(anim.skeleton_name)},
                         {"frame_rate", jsonNumber(anim.frame_rate)},
                         {"end_time", jsonNumber(anim.end_time)},
                         {"frame_count", anim.frames.size()},
                         {"bone_count", anim.bones.size()},
                         {"unmatched", std::move(unmatched)},
                         {"log", std::move(m_log)}});
}

void convert_run::run()
{
    failure why;
    if (!load(why))
        return m_context.fail(why);
    anim_conversion_ports ports;
    ports.log = [this](const std::string& line) {
        m_log.push_back(displayText(line));
        m_context.note(terminalText(line));
    };
    ports.progress = [this](std::uint32_t frame, std::uint32_t of) {
        m_context.progress("frame " + std::to_string(frame) + " of " + std::to_string(of));
    };
    silent_prompt prompt;
    if (!convertToAnimFile(m_request, m_options.output, ports, prompt, m_result, why))
    {
        if (why.path.empty())
            why.path = m_options.template_anim;
        return m_context.fail(why);
    }
    remember();
    report();
}

// The library's own checks put their limits in as numbers of 300 digits.
CLI::Validator numberBetween(double low, double high, const std::string& meaning)
{
    return CLI::Validator(
        [low, high, meaning](const std::string& text) {
            std::string checked = text;
            const std::string wrong = finiteNumber()(checked);
            if (!wrong.empty())
                return wrong;
            const double value = std::strtod(text.c_str(), nullptr);
            return value >= low && value <= high ? std::string() : text + " is no " + meaning;
        },
        "");
}

void addTimeOptions(CLI::App& command, convert_options& options)
{
    command.add_option("--rate", options.rate, "Frames a second of the new file; the FBX file's without it")
        ->type_name("R")
        ->check(numberBetween(slowest_converted_rate, fastest_converted_rate, "rate of frames, 0.001 to 1000000"));
    CLI::Option* const end =
        command.add_option("--end-time", options.end_time, "Length in seconds; up to the take's last key without it")
            ->type_name("T")
            ->check(numberBetween(0, 1e12, "length in seconds"));
    command.add_option("--frames", options.frames, "Number of frames, in the place of an end time")
        ->type_name("N")
        ->check(numberBetween(1, std::numeric_limits<std::uint32_t>::max(), "number of frames"))
        ->excludes(end);
    command
        .add_option("--start-time", options.start_time,
                    "Where in the take to begin, in seconds; at its first key without it")
        ->type_name("S")
        ->check(numberBetween(-1e12, 1e12, "time in seconds"));
}

} // namespace

void addConvertCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<convert_options>();
    CLI::App* command = app.add_subcommand("convert", "Turn an FBX file's first take into an .anim file");
    command->add_option("FBX", options->fbx, "The FBX file, binary or text")->required()->check(notEmpty());
    command
        ->add_option("--template", options->template_anim,
                     "The skeleton's .anim file, or an animation whose bones and tracks the new one is to have")
        ->type_name("ANIM")
        ->required()
        ->check(notEmpty());
    command->add_option("-o", options->output, "The .anim file to write")
        ->type_name("FILE")
        ->required()
        ->check(notEmpty());
    addTimeOptions(*command, *options);
    command->add_option("--version", options->version, "Of the new file, 5 or 7; the template's without it")
        ->type_name("V")
        ->check(CLI::IsMember({5, 7}));
    command
        ->add_option("--bone-table", options->bone_table,
                     "A .bone_table file: only its bones, in the order of its lines")
        ->type_name("FILE")
        ->check(notEmpty());
    context.addJsonOption(*command);
    command->callback([options, &context] { convert_run(context, *options).run(); });
}

} // namespace korvane
