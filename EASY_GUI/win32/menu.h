#pragma once

// A menu bar with its submenus and shortcuts, and menus that open at a point. Items are commands: numbers that arrive
// at the window's onCommand with notification 0 (1 when a shortcut sent them). Shortcut labels are part of an item's
// text, after tab characters.

#include "EASY_GUI/win32/handle_policies.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// A command, a submenu (it has rows) or, without a text, a line between others.
struct menu_row
{
    int command = 0;
    std::string text = {};
    bool is_enabled = true;
    bool is_checked = false;
    std::vector<menu_row> rows = {};
};

class menu
{
public:
    static menu makeBar() { return menu(CreateMenu()); }
    static menu makePopup() { return menu(CreatePopupMenu()); }
    explicit menu(HMENU handle) : m_handle(handle) {}

    HMENU handle() const { return m_handle; }
    void addItem(int command, std::string_view text);
    void addSeparator();
    // The submenu belongs to this menu from then on.
    void addSubmenu(const menu& submenu, std::string_view text);
    void add(std::span<const menu_row> rows); // with their submenus
    void clear();
    // Of a command, wherever it is in this menu.
    void setEnabled(int command, bool is_enabled);
    void setChecked(int command, bool is_checked);

private:
    HMENU m_handle; // a view: the window owns its menu bar, and a menu its submenus
};

// Opens a menu at a point of the screen and waits for the choice: its command; 0: none.
[[nodiscard]] int chooseFromMenu(HWND owner, POINT on_screen, std::span<const menu_row> rows);

struct shortcut
{
    BYTE modifiers; // FCONTROL, FSHIFT, FALT
    WORD key;       // a virtual key code; letters and digits are their capital character
    WORD command;
};
[[nodiscard]] unique_accelerators makeAccelerators(std::span<const shortcut> shortcuts);

} // namespace korvane
