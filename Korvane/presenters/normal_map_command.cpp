#include "Korvane/presenters/normal_map_command.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/game/data_folders.h"

namespace korvane
{

normal_map_pickers normalMapPickers(normal_form target)
{
    const std::vector<file_filter> filters = {{"Targa (*.tga)", "*.tga"}};
    if (target == normal_form::orange)
        return {"Convert BLUE Type Normal Map to Orange (CA) Type, pick INPUT file...",
                "Convert BLUE Type Normal Map to Orange (CA) Type, pick OUTPUT file...", filters};
    return {"Convert ORANGE (CA) type normal to BLUE type, pick INPUT file...",
            "Convertt ORANGE (CA) type normal to BLUE type, pick OUTPUT file...", filters};
}

normal_map_job_options normalMapJob(normal_form target, const std::vector<std::string>& inputs,
                                    const std::string& output, bool is_forced)
{
    normal_map_job_options options;
    options.form = target;
    options.is_forced = is_forced;
    options.batch.is_one_file = !asksForFolder(inputs);
    options.batch.output = options.batch.is_one_file ? output : withSeparator(output);
    for (const std::string& input : inputs)
        options.batch.inputs.push_back({input, std::string(fileName(input))});
    return options;
}

std::optional<std::string> forceQuestion(const normal_map_job_result& result)
{
    if (result.doubtful.empty())
        return std::nullopt;
    std::string reason;
    for (const failed_picture& picture : result.left.failed)
        if (reason.empty() && picture.input == result.doubtful.front())
            reason = picture.why.what;
    const std::size_t others = result.doubtful.size() - 1;
    return displayText(fileName(result.doubtful.front())) + ": " + displayText(reason) + "." +
           (others == 0 ? ""
                        : " " + counted(others, "other picture was", "other pictures were") + " left alone, too.") +
           "\r\n\r\nConvert " + (others == 0 ? "it" : "them") + " all the same?";
}

std::string normalMapStatus(normal_form target, const normal_map_job_result& result, bool is_stopped)
{
    const char* const form = target == normal_form::orange ? "ORANGE" : "BLUE";
    std::string text = counted(result.files.size(), "picture") + " converted to " + form;
    if (result.files.size() == 1)
        text += ": " + displayText(result.files[0].path);
    text += ".";
    if (const std::size_t kept = result.left.kept.size(); kept > 0)
        text += " " + counted(kept, "file that differs was", "files that differ were") + " left alone.";
    if (const std::vector<failed_picture>& failed = result.left.failed; !failed.empty())
        text += " " + grouped(failed.size()) + " failed; " + displayText(fileName(failed[0].input)) + ": " +
                displayText(failed[0].why.what) + ".";
    return text + (is_stopped ? " Stopped." : "");
}

} // namespace korvane
