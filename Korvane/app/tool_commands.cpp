#include "Korvane/app/tool_commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/modal_work.h"
#include "Korvane/app/bone_table_dialog.h"
#include "Korvane/app/cache_dialog.h"
#include "Korvane/app/fbx_to_anim_dialog.h"
#include "Korvane/app/prefix_dialog.h"
#include "Korvane/app/text_dialogs.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/anim_text_job.h"
#include "Korvane/jobs/self_check.h"
#include "Korvane/presenters/normal_map_command.h"

namespace korvane
{

namespace
{

struct normal_map_outcome
{
    normal_map_job_result result;
    bool is_done = false; // false: the only picture failed
    failure why;
    bool went_on = false; // false: stopped
};

normal_map_outcome runNormalMaps(page_host& host, const normal_map_job_options& options)
{
    normal_map_outcome outcome;
    outcome.went_on = host.work("Converting normal maps", [&](const work_port& work) {
        loaded_game game(host.document().game());
        outcome.is_done = convertNormalMaps(game, options, work, outcome.result, outcome.why);
    });
    return outcome;
}

// Where the pictures go; nothing when the person changed their mind.
std::optional<std::string> pickNormalMapOutput(page_host& host, normal_form target,
                                               const std::vector<std::string>& inputs)
{
    const normal_map_pickers pickers = normalMapPickers(target);
    const std::string title(pickers.output_title);
    return asksForFolder(inputs) ? host.prompt().pickFolder("Choose the folder for the converted normal maps")
                                 : host.prompt().pickSavePath(title, pickers.filters, "tga", {});
}

// In front of which the beginning of a path is to be replaced most likely.
std::string firstTextureFolder(const open_model& model)
{
    const group_data* const group = model.selectedGroup();
    return group == nullptr || group->textures.empty() ? "" : textureRows(*group)[0].directory;
}

} // namespace

void showLegal(page_host& host)
{
    help_dialog legal("Legal Info About FBX SDK", {440, 280}, legalTexts());
    runDialog(host, legal);
}

void testModel(page_host& host)
{
    const self_check_request request = selfCheckOf(*host.document().model().file(), host.document().game());
    self_check_report report;
    report.is_stopped = !host.work("Testing " + displayText(fileName(request.model.path)), [&](const work_port& work) {
        report = runSelfCheck(request, work);
    }) || report.is_stopped;
    host.setStatus(report.summary());
    if (report.steps.empty()) // stopped before there was anything to tell
        return;
    report_dialog shown(host, "Test", report.text());
    runDialog(host, shown);
}

void replacePathPrefix(page_host& host)
{
    prefix_dialog asked(host.document().model(), firstTextureFolder(host.document().model()));
    if (runDialog(host, asked) == prefix_dialog::replaced)
        host.took(host.commands().replacePathPrefix(asked.wanted(), asked.replacement()));
}

void convertAnimation(page_host& host, const std::string& fbx)
{
    fbx_to_anim_dialog shown(host, fbx);
    runDialog(host, shown);
}

void generateBoneTable(page_host& host)
{
    bone_table_dialog shown(host);
    runDialog(host, shown);
}

void showIndexCache(page_host& host)
{
    cache_dialog shown(host);
    runDialog(host, shown);
}

void dumpAnimation(page_host& host, const std::string& anim)
{
    const game_path path(anim);
    const std::string folder = path.isInternal() ? std::string() : toUtf8(toPath(anim).parent_path());
    const std::string name = displayText(fileName(path.internalPath()));
    const auto output = host.prompt().pickSavePath("Save ANIM Data Dump", {{"Text Files (*.txt)", "*.txt"}}, "txt",
                                                   {folder, name.substr(0, name.rfind('.')) + ".txt"});
    if (!output || output->empty())
        return;
    failure why;
    bool is_done = false;
    const HWND above = dialog_box::innermost();
    modal_work work{above != nullptr ? above : host.frame(), "Writing the dump", false};
    static_cast<void>(work.run([&](const work_port&) {
        loaded_game game(host.document().game());
        is_done = dumpAnim(game, path, *output, why);
    }));
    if (is_done)
        return host.setStatus("Written: " + *output);
    host.logLine("dumpAnimation(). " + displayText(describe(why)));
    host.prompt().show("Error!", "The dump was not written.\r\n\r\n" + displayText(describe(why)), prompt_icon::error);
}

std::string failedText(const std::vector<failed_picture>& failed)
{
    constexpr std::size_t most_named = 5;
    std::string text = counted(failed.size(), "picture") + " could not be converted:";
    for (std::size_t i = 0; i < std::min(failed.size(), most_named); ++i)
        text += "\r\n\r\n" + displayText(fileName(failed[i].input)) + ": " + displayText(failed[i].why.what);
    return failed.size() > most_named ? text + "\r\n\r\nThe others are named in log.txt." : text;
}

void convertNormalMaps(page_host& host, normal_form target)
{
    const normal_map_pickers pickers = normalMapPickers(target);
    std::vector<std::string> inputs = host.prompt().pickOpenPaths(std::string(pickers.input_title), pickers.filters);
    if (inputs.empty())
        return;
    const std::optional<std::string> output = pickNormalMapOutput(host, target, inputs);
    if (!output || output->empty())
        return;
    normal_map_job_options options = normalMapJob(target, inputs, *output);
    normal_map_outcome outcome = runNormalMaps(host, options);
    const std::optional<std::string> question = forceQuestion(outcome.result);
    if (question && host.prompt().confirm("Normal Maps", *question, prompt_answer::no))
    {
        options = normalMapJob(target, inputs, *output, true);
        outcome = runNormalMaps(host, options);
    }
    const std::vector<failed_picture>& all_failed = outcome.result.left.failed;
    for (const failed_picture& failed : all_failed)
        host.logLine("convertNormalMaps(). " + displayText(failed.input) + ": " + displayText(describe(failed.why)));
    host.setStatus(normalMapStatus(target, outcome.result, !outcome.went_on));
    if (inputs.size() > 1 && !all_failed.empty())
        return host.prompt().show("Normal Maps", failedText(all_failed), prompt_icon::warning);
    if (!outcome.is_done && outcome.went_on && !question)
        host.prompt().show("Error!", "The normal map was not converted.\r\n\r\n" + displayText(describe(outcome.why)),
                           prompt_icon::error);
}

} // namespace korvane
