#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/cli/picture_output.h"
#include "Korvane/jobs/dds_job.h"

#include <charconv>
#include <memory>

namespace korvane
{

namespace
{

struct dds_options
{
    std::vector<std::string> operands;
    dds_job_options job;
    std::string format, mips, normals;
    bool is_srgb = false, is_linear = false, is_best = false;
};

std::optional<std::uint32_t> mipCount(const std::string& text)
{
    if (text == "all" || text == "none")
        return text == "all" ? 0 : 1;
    std::uint32_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size() || count == 0)
        return std::nullopt;
    return count;
}

std::string isMipCount(const std::string& text)
{
    return mipCount(text) ? "" : "expected all, none or a number from 1 on, not " + text;
}

void report(cli_context& context, const dds_job_result& result, const failure& only)
{
    json files = json::array();
    for (const made_dds& each : result.files)
        files.push_back({{"input", displayText(each.input)},
                         {"path", displayText(each.path)},
                         {"width", each.width},
                         {"height", each.height},
                         {"format", nameOfDdsFormat(each.format)},
                         {"srgb", isSrgb(each.format)},
                         {"mips", each.mip_count},
                         {"normal", !each.normals                        ? json()
                                    : *each.normals == normal_form::blue ? json("blue")
                                                                         : json("orange")},
                         {"outcome", outcomeName(each.outcome)}});
    json unchanged = json::array();
    for (const std::string& input : result.unchanged)
        unchanged.push_back(displayText(input));
    if (!result.unchanged.empty())
        context.note(counted(result.unchanged.size(), "picture is", "pictures are") + " as the game has " +
                     (result.unchanged.size() == 1 ? "it" : "them") + ", and left out");
    reportPictures(context, {{"files", std::move(files)}, {"unchanged", std::move(unchanged)}}, result.files.size(),
                   "DDS file written", "DDS files written", result.left, only);
}

void runDds(cli_context& context, const dds_options& options)
{
    dds_job_options job = options.job;
    if (!takePictures(context, options.operands, {".dds"}, job.batch))
        return;
    if (!options.format.empty())
        job.format = ddsFormatNamed(options.format);
    if (options.is_srgb || options.is_linear)
        job.is_srgb = options.is_srgb;
    if (!options.mips.empty())
        job.mip_count = mipCount(options.mips);
    if (!options.normals.empty())
        job.normals = options.normals == "blue" ? normal_form::blue : normal_form::orange;
    job.effort = options.is_best ? encoding_effort::best : encoding_effort::usual;
    dds_job_result result;
    failure why;
    const bool is_done = makeDdsFiles(context.game(), job, context.workPort(), result, why);
    report(context, result, is_done ? failure() : why);
}

void addEncodingOptions(CLI::App& command, const std::shared_ptr<dds_options>& options)
{
    const auto names = ddsFormatNames();
    command.add_option("--format", options->format, "bc1, bc3, bc4, bc5, bc7 (default), rgba8 or bgra8")
        ->type_name("FORMAT")
        ->check(CLI::IsMember(std::vector<std::string>(names.begin(), names.end())));
    CLI::Option* const srgb = command.add_flag("--srgb", options->is_srgb, "Colours (default, unless --normal)");
    command.add_flag("--linear", options->is_linear, "Numbers: masks, gloss, normal maps")->excludes(srgb);
    command.add_option("--mips", options->mips, "Levels with the largest: a number, all (default) or none")
        ->type_name("N|all|none")
        ->check(isMipCount);
    command
        .add_option(
            "--like", options->job.like,
            "Take what is not given from this DDS file; on disk, or pack: and an internal path; pack: alone: for "
            "each picture the game's texture of its path")
        ->type_name("DDS")
        ->check(notEmpty());
    command.add_option("--normal", options->normals, "Convert normal maps: orange, the games' form, or blue")
        ->type_name("FORM")
        ->check(CLI::IsMember({"orange", "blue"}));
    command.add_flag("--force", options->job.is_forced, "With --normal: also what does not look like a normal map");
    command.add_flag("--keep-coverage", options->job.keeps_coverage,
                     "Mip maps keep the part of the pixels that passes an alpha test");
    command.add_flag("--best", options->is_best, "bc1 and bc3: better and slower");
}

} // namespace

void addDdsCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<dds_options>();
    CLI::App* command = app.add_subcommand("dds", "Make DDS textures of PNG, Targa or DDS pictures");
    command->add_option("IN", options->operands, picture_operands_help)->required();
    command
        ->add_option("-o,--output", options->job.batch.output,
                     "The .dds file to write; with several pictures, or if it is one, a folder")
        ->required()
        ->type_name("OUT.dds|DIR")
        ->check(notEmpty());
    addEncodingOptions(*command, options);
    addOverwriteOption(*command, options->job.batch.overwrites);
    context.addJsonOption(*command);
    command->callback([&context, options] { runDds(context, *options); });
}

} // namespace korvane
