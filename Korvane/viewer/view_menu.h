#pragma once

// The menu of the view: what the keys do, for the mouse, and what has no key. Rows over a view_state, without a window;
// the window shows them and gives the chosen number back. Portable.

#include "Korvane/viewer/posed_scene.h"
#include "Korvane/viewer/view_state.h"

#include <optional>
#include <string>
#include <vector>

namespace korvane
{

// What the window does itself.
enum class view_command : int
{
    none,
    start_view,
    play_or_pause,
    choose_animation,
    enlarge,
    save_picture,
    show_all_groups
};

// A row: a command of the window, a change of the view, a submenu (it has rows), or a line between others (no text).
struct view_menu_row
{
    std::string text = {};
    int number = 0; // of the choice, from 1 on; 0: a submenu or a line
    bool is_enabled = true;
    bool is_checked = false;
    std::vector<view_menu_row> rows = {};
};

struct view_menu_subject
{
    const view_state& view;
    const posed_scene* pose = nullptr;      // null: nothing is shown
    std::optional<shown_group> under_mouse; // the group that was clicked on
    std::optional<std::size_t> joint_there; // the joint nearest to the click, as the pose counts them
    bool is_enlarged = false;
};

[[nodiscard]] std::vector<view_menu_row> viewMenu(const view_menu_subject& subject);

// Does what a row with that number says to the view; what remains for the window.
[[nodiscard]] view_command applyViewMenu(int number, const view_menu_subject& subject, view_state& view);

} // namespace korvane
