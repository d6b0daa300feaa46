#pragma once

// The commands of the main window: one row each, in the order of the menus, which are built from the rows as the
// shortcuts and the list for users (docs/commands.md) are. When a command is enabled is said by model_commands; the
// window knows what it runs.

#include "Korvane/document/document_command.h"

#include <optional>
#include <span>
#include <string_view>

namespace korvane
{

struct command_row
{
    document_command command;
    std::string_view menu;         // of the bar; '&' stands before the mnemonic; empty: in no menu, a button of a page
    std::string_view text;         // of the item or button; an item's shortcut stands behind tab characters
    std::string_view help;         // what it does, in one sentence
    std::string_view name = {};    // by which others find the item; empty: none
    std::string_view submenu = {}; // of the menu, in which the item stands; rows of one submenu follow each other
    bool starts_section = false;
    bool needs_archives = false; // run only where model_commands::mayUseArchives says so
};
[[nodiscard]] std::span<const command_row> commandTable();
[[nodiscard]] const command_row& rowOf(document_command command);

// A key that gives a command.
struct key_shortcut
{
    char key = 0; // capital letter or digit, with Ctrl; 0: a function key, alone
    bool with_shift = false;
    int function_key = 0; // 1 is F1

    friend bool operator==(const key_shortcut&, const key_shortcut&) = default;
};
// The shortcut in the text of a menu item: "Ctrl+Shift+C", "Ctrl + 1", "F1". Nothing for texts without one, and for
// "Alt+F4", which is the system's own and closes whichever window is in front.
[[nodiscard]] std::optional<key_shortcut> shortcutOf(std::string_view text);

} // namespace korvane
