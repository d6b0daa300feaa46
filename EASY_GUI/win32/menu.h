#pragma once

// A menu bar with its submenus and shortcuts. Items are commands: numbers that arrive at the window's onCommand with
// notification 0 (1 when a shortcut sent them). Shortcut labels are part of an item's text, after tab characters.

#include "EASY_GUI/win32/handle_policies.h"

#include <span>
#include <string_view>

namespace korvane
{

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
    void clear();

private:
    HMENU m_handle; // a view: the window owns its menu bar, and a menu its submenus
};

struct shortcut
{
    BYTE modifiers; // FCONTROL, FSHIFT, FALT
    WORD key;       // a virtual key code; letters and digits are their capital character
    WORD command;
};
[[nodiscard]] unique_accelerators makeAccelerators(std::span<const shortcut> shortcuts);

} // namespace korvane
