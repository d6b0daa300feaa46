#include "Korvane/viewer/view_menu.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace korvane
{

namespace
{

struct channel_row
{
    view_channel channel;
    const char* text;
};
constexpr channel_row channels[] = {
    {view_channel::lit, "&Lit"},
    {view_channel::base, "Plain &Colour\tO"},
    {view_channel::normals, "&Normals\tF"},
    {view_channel::specular, "&Specular"},
    {view_channel::gloss, "&Gloss"},
    {view_channel::mask, "&Mask"},
    {view_channel::alpha, "&Alpha"},
    {view_channel::uv, "&UV Checker"},
};
static_assert(std::size(channels) + 1 == view_channel_count); // weights have a row for each bone

struct flag_row
{
    const char* text;
    bool view_state::*flag;
    bool ends_section;
};
constexpr flag_row flags[] = {
    {"&Skeleton\tS", &view_state::shows_skeleton, false},
    {"&Names of Bones\tN", &view_state::shows_bone_names, false},
    {"A&ttachment Points\tY", &view_state::shows_attachments, true},
    {"&Edges over the Surface\tM", &view_state::shows_wire_over, false},
    {"&Grid\tW", &view_state::shows_floor, false},
    {"&Bounds\tX", &view_state::shows_bounds, false},
    {"C&ounts\tU", &view_state::shows_counts, false},
    {"&Darker Background\tB", &view_state::is_background_dark, true},
    {"&Reflections\tT", &view_state::show_reflections, false},
    {"Occ&lusion of the Mask", &view_state::uses_occlusion, false},
    {"Turn by &Itself\tG", &view_state::is_turntable, false},
    {"&Full Detail While Moving", &view_state::is_whole_while_moving, true},
};

constexpr std::pair<shadow_choice, const char*> shadow_rows[] = {
    {shadow_choice::automatic, "&Automatic"}, {shadow_choice::on, "O&n"}, {shadow_choice::off, "O&ff"}};

// The numbers of the choices: each kind has a range of its own.
constexpr int first_command = 1, first_channel = 100, first_flag = 200, first_shadow = 300, wire_frame = 400,
              hide_group = 401, help = 402, first_bone = 1000;

view_menu_row command(view_command which, std::string text, bool is_enabled = true)
{
    return {std::move(text), first_command + static_cast<int>(which), is_enabled};
}

view_menu_row bonesOf(const view_menu_subject& subject)
{
    constexpr std::size_t in_group = 32;
    view_menu_row weights{"&Weights of a Bone"};
    const std::size_t count = subject.pose != nullptr ? subject.pose->jointCount() : 0;
    weights.is_enabled = count > 0;
    const bool is_shown = subject.view.shownChannel() == view_channel::weights;
    const auto row = [&](std::size_t joint) {
        const posed_place at = subject.pose->joint(joint);
        return view_menu_row{menuText(at.name), first_bone + static_cast<int>(joint), true,
                             is_shown && at.bone == static_cast<int>(subject.view.heat_bone) &&
                                 (subject.view.heat_rig < 0 || at.rig == subject.view.heat_rig)};
    };
    if (subject.joint_there && *subject.joint_there < count)
    {
        weights.rows.push_back(row(*subject.joint_there));
        weights.rows.back().text += "\tat the mouse";
        weights.rows.push_back({});
    }
    for (std::size_t begin = 0; begin < count; begin += in_group)
    {
        const std::size_t end = std::min(begin + in_group, count);
        view_menu_row group{menuText(subject.pose->joint(begin).name) + " ... " +
                            menuText(subject.pose->joint(end - 1).name)};
        for (std::size_t joint = begin; joint < end; ++joint)
            group.rows.push_back(row(joint));
        weights.rows.push_back(std::move(group));
    }
    return weights;
}

} // namespace

std::vector<view_menu_row> viewMenu(const view_menu_subject& subject)
{
    const view_state& view = subject.view;
    const bool has_model = subject.pose != nullptr && !subject.pose->scene().parts.empty();
    std::vector<view_menu_row> rows;
    view_menu_row shown{"S&how"};
    for (const auto& [channel, text] : channels)
        shown.rows.push_back({text, first_channel + static_cast<int>(channel), true, view.shownChannel() == channel});
    shown.rows.push_back(bonesOf(subject));
    rows.push_back(std::move(shown));
    rows.push_back({"Wire Fra&me\tC", wire_frame, true, view.is_wireframe});
    rows.push_back({});
    for (std::size_t i = 0; i < std::size(flags); ++i)
    {
        rows.push_back({flags[i].text, first_flag + static_cast<int>(i), true, view.*flags[i].flag});
        if (flags[i].ends_section)
            rows.push_back({});
    }
    view_menu_row shadow{"Shado&w"};
    for (const auto& [choice, text] : shadow_rows)
        shadow.rows.push_back({text, first_shadow + static_cast<int>(choice), true, view.shadows == choice});
    rows.push_back(std::move(shadow));
    rows.push_back({});
    rows.push_back({"Hide this Grou&p", hide_group, subject.under_mouse.has_value()});
    rows.push_back(command(view_command::show_all_groups, "Show &All Groups", view.hidden && !view.hidden->empty()));
    rows.push_back({});
    rows.push_back(command(view_command::choose_animation, "&Choose Animation...", has_model));
    rows.push_back(command(view_command::play_or_pause, "Pla&y or Pause\tK", has_model));
    rows.push_back({});
    rows.push_back(command(view_command::start_view, "&View as at the Start\tV"));
    rows.push_back(command(view_command::enlarge, subject.is_enlarged ? "Leave F&ull Screen\tEsc" : "F&ull Screen"));
    rows.push_back(command(view_command::save_picture, "Save Pi&cture...\tI", has_model));
    rows.push_back({"&Keys\tH", help, true, view.shows_help});
    return rows;
}

view_command applyViewMenu(int number, const view_menu_subject& subject, view_state& view)
{
    if (number >= first_bone)
    {
        const auto joint = static_cast<std::size_t>(number - first_bone);
        if (subject.pose == nullptr || joint >= subject.pose->jointCount())
            return view_command::none;
        view.heat_bone = static_cast<std::uint32_t>(std::max(subject.pose->joint(joint).bone, 0));
        view.heat_rig = subject.pose->joint(joint).rig;
        view.showChannel(view_channel::weights);
        return view_command::none;
    }
    if (number == wire_frame)
        static_cast<void>(view.onKey('C'));
    else if (number == help)
        view.shows_help = !view.shows_help;
    else if (number == hide_group && subject.under_mouse)
        view.setHidden(*subject.under_mouse, true);
    else if (number >= first_shadow && number < wire_frame)
        view.shadows = static_cast<shadow_choice>(number - first_shadow);
    else if (number >= first_flag && number < first_shadow)
        view.*flags[number - first_flag].flag = !(view.*flags[number - first_flag].flag);
    else if (number >= first_channel && number < first_flag)
        view.showChannel(static_cast<view_channel>(number - first_channel));
    else if (number >= first_command && number < first_channel)
        return static_cast<view_command>(number - first_command);
    return view_command::none;
}

} // namespace korvane
