#pragma once

// The menu bar of the main window and its shortcuts, made from the command table; the submenu of the recent files.

#include "EASY_GUI/win32/menu.h"
#include "Korvane/document/command_table.h"

#include <functional>
#include <string>
#include <vector>
#include <windows.h>

namespace korvane
{

class main_menu
{
public:
    void createFor(HWND window); // which owns the menus from then on
    HACCEL accelerators() const { return m_accelerators.get(); }

    void setRecentFiles(std::vector<std::string> paths);
    const std::vector<std::string>& recentFiles() const { return m_recent_files; }

    // Before a menu is seen: greys what makes no sense now.
    void enable(const std::function<bool(document_command)>& is_enabled) const;

private:
    HMENU m_bar = nullptr;
    menu m_recent{nullptr};
    std::vector<std::string> m_recent_files;
    unique_accelerators m_accelerators;
};

} // namespace korvane
