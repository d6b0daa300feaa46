// convert: a take of an FBX file as an .anim file.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/cli/commands.h"
#include "Korvane/jobs/convert_job.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

namespace korvane
{

namespace
{

void report(cli_context& context, const convert_job_options& options, const convert_job_result& result, json log)
{
    const anim_output& anim = result.conversion.anim;
    const std::string& warning = result.conversion.warning;
    const std::size_t matched = anim.bones.size() - result.conversion.unmatched.size();
    if (!context.is_json)
        return context.print(terminalText(options.output) + ": " + counted(anim.frames.size(), "frame") + " at " +
                             floatText(anim.frame_rate) + " a second, " + std::to_string(matched) + " of " +
                             counted(anim.bones.size(), "bone") + " matched\n");
    json unmatched = json::array();
    for (const std::string& name : result.conversion.unmatched)
        unmatched.push_back(displayText(name));
    context.printJson({{"path", displayText(options.output)},
                       {"version", result.version},
                       {"skeleton_name", displayText(anim.skeleton_name)},
                       {"frame_rate", jsonNumber(anim.frame_rate)},
                       {"end_time", jsonNumber(anim.end_time)},
                       {"frame_count", anim.frames.size()},
                       {"bone_count", anim.bones.size()},
                       {"take", displayText(result.conversion.take)},
                       {"prefix", displayText(result.conversion.prefix)},
                       {"layout", options.layout == anim_layout::games ? "games" : "tools"},
                       {"moving_bones", result.conversion.moving_count},
                       {"moving_bones_matched", result.conversion.moving_matched},
                       {"warning", warning.empty() ? json() : json(displayText(warning))},
                       {"unmatched", std::move(unmatched)},
                       {"log", std::move(log)}});
}

void runConvert(cli_context& context, const convert_job_options& options)
{
    json log = json::array();
    work_port work;
    work.log = [&, note = context.notePort()](const std::string& line) {
        log.push_back(line);
        note(line);
    };
    work.progress = [&context](const work_progress& step) {
        context.progress("frame " + std::to_string(step.done) + " of " + std::to_string(step.total));
    };
    convert_job_result result;
    failure why;
    if (!convertFbx(context.game(), options, work, result, why))
        return context.fail(why);
    report(context, options, result, std::move(log));
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

void addTimeOptions(CLI::App& command, convert_job_options& options)
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

void addMatchingOptions(CLI::App& command, convert_job_options& options)
{
    command.add_option("--take", options.take, "Which take, by its name or counted from 0; the first without it")
        ->type_name("NAME|N")
        ->check(notEmpty());
    command
        .add_option_function<std::string>(
            "--prefix", [&options](const std::string& text) { options.prefix = text == "none" ? std::string() : text; },
            "What is taken off the names of the FBX file's bones, or none; without it what they have in common, when "
            "more bones match then")
        ->type_name("TEXT|none");
    command
        .add_option_function<std::string>(
            "--layout",
            [&options](const std::string& text) {
                options.layout = text == "games" ? anim_layout::games : anim_layout::tools;
            },
            "Order of the blocks in version 7: as the games' own files and this program's readers have it, or as the "
            "games' tools take it (tools, without it)")
        ->type_name("games|tools")
        ->check(CLI::IsMember({"games", "tools"}).description(""));
}

} // namespace

void addConvertCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<convert_job_options>();
    CLI::App* command = app.add_subcommand("convert", "Turn a take of an FBX file into an .anim file");
    command->add_option("FBX", options->fbx, "The FBX file, binary or text")->required()->check(notEmpty());
    command
        ->add_option("--template", options->template_anim,
                     "The skeleton's .anim file, or an animation whose bones and tracks the new one is to have")
        ->type_name("ANIM")
        ->required()
        ->check(notEmpty());
    command->add_option("-o,--output", options->output, "The .anim file to write")
        ->type_name("FILE")
        ->required()
        ->check(notEmpty())
        ->check(endingIn(".anim"));
    addTimeOptions(*command, *options);
    addMatchingOptions(*command, *options);
    command->add_option("--version", options->version, "Of the new file, 5 or 7; the template's without it")
        ->type_name("V")
        ->check(CLI::IsMember({5, 7}));
    command
        ->add_option("--bone-table", options->bone_table,
                     "A .bone_table file: only its bones, in the order of its lines")
        ->type_name("FILE")
        ->check(notEmpty());
    context.addJsonOption(*command);
    command->callback([options, &context] {
        options->config_path = context.config_path.empty() ? config_file::defaultPath() : context.config_path;
        runConvert(context, *options);
    });
}

} // namespace korvane
