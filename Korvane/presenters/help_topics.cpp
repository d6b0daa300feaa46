#include "Korvane/presenters/help_topics.h"

#include "EASY_GUI/services/file_system.h"

#include <string_view>

namespace korvane
{

namespace
{

constexpr std::string_view guide_name = "guide.html";
constexpr std::string_view way_name = "guide_place.html";

std::string_view anchorOf(help_topic topic)
{
    switch (topic)
    {
    case help_topic::first_start:
        return "#first-start";
    case help_topic::unit:
        return "#unit";
    case help_topic::figure:
        return "#unit-what-it-is-made-of";
    case help_topic::playing:
        return "#unit-play-an-animation";
    case help_topic::repaint:
        return "#repaint";
    case help_topic::path_prefix:
        return "#repaint-change-many-paths-at-once";
    case help_topic::alpha:
        return "#alpha";
    case help_topic::archives:
        return "#archives";
    case help_topic::archive_order:
        return "#archives-the-order-of-all-archives";
    case help_topic::taking_out:
        return "#archives-take-files-out";
    case help_topic::own_files:
        return "#archives-put-files-into-the-mod-folder";
    case help_topic::cache:
        return "#first-start-a-quicker-start";
    case help_topic::blender:
        return "#blender";
    case help_topic::animation_back:
        return "#blender-make-a-game-animation-of-it";
    case help_topic::bone_tables:
        return "#blender-bone-tables";
    case help_topic::pictures:
        return "#pictures";
    case help_topic::checks:
        return "#wrong";
    case help_topic::none:
    case help_topic::start:
        break;
    }
    return "";
}

} // namespace

std::optional<std::string> wayIntoGuide(const std::string& program_folder, help_topic topic, failure& why)
{
    const std::string guide = program_folder + std::string(guide_name);
    if (std::error_code error; !std::filesystem::is_regular_file(toPath(guide), error))
    {
        fail(why, failure_kind::not_found, "the guide is not there; it comes with the program and belongs beside it",
             guide);
        return std::nullopt;
    }
    if (anchorOf(topic).empty())
        return guide;
    const std::string url = std::string(guide_name) + std::string(anchorOf(topic));
    const std::string page = "<!DOCTYPE html><meta charset=\"utf-8\"><title>Korvane</title>"
                             "<meta http-equiv=\"refresh\" content=\"0; url=" +
                             url + "\"><p><a href=\"" + url + "\">Guide</a></p>\n";
    const std::string way = program_folder + std::string(way_name);
    failure unused;
    return writeWholeFile(way, page, unused) ? way : guide;
}

} // namespace korvane
