#pragma once

// The commands of the main window: one row each, in the order of the menus, which are built from the rows as the
// shortcuts are. When a command is enabled is said by model_commands; the window knows what it runs.

#include "Korvane/document/model_commands.h"

#include <optional>
#include <span>
#include <string_view>

namespace korvane
{

struct command_row
{
    document_command command;
    std::string_view menu; // of the bar; '&' stands before the mnemonic
    std::string_view text; // of the item, with its shortcut behind tab characters
    bool starts_section = false;
};
[[nodiscard]] std::span<const command_row> commandTable();

// A key with Ctrl.
struct key_shortcut
{
    char key; // capital letter or digit
    bool with_shift = false;

    friend bool operator==(const key_shortcut&, const key_shortcut&) = default;
};
// The shortcut in the text of a menu item: "Ctrl+Shift+C", "Ctrl + 1". Nothing for texts without one, and for "Alt+F4",
// which is the system's own and closes whichever window is in front.
[[nodiscard]] std::optional<key_shortcut> shortcutOf(std::string_view text);

} // namespace korvane
