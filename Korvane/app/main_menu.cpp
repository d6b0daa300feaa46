#include "Korvane/app/main_menu.h"

#include "Korvane/app/command_ids.h"
#include "Korvane/document/recent_files.h"

#include <utility>

namespace korvane
{

namespace
{

shortcut acceleratorOf(const key_shortcut& keys, int command)
{
    if (keys.function_key > 0)
        return {0, static_cast<WORD>(VK_F1 + keys.function_key - 1), static_cast<WORD>(command)};
    return {static_cast<BYTE>(FCONTROL | (keys.with_shift ? FSHIFT : 0)), static_cast<WORD>(keys.key),
            static_cast<WORD>(command)};
}

} // namespace

void main_menu::createFor(HWND window)
{
    menu bar = menu::makeBar();
    menu open_menu(nullptr);
    menu open_submenu(nullptr);
    std::string_view open_name;
    std::string_view open_submenu_name;
    std::vector<shortcut> shortcuts;
    for (const command_row& row : commandTable())
    {
        if (row.menu.empty())
            continue;
        if (row.menu != open_name)
        {
            open_menu = menu::makePopup();
            open_name = row.menu;
            bar.addSubmenu(open_menu, row.menu);
        }
        if (row.starts_section)
            open_menu.addSeparator();
        if (row.command == document_command::open_recent)
        {
            m_recent = menu::makePopup();
            open_menu.addSubmenu(m_recent, row.text);
            continue;
        }
        if (row.submenu != open_submenu_name && !row.submenu.empty())
        {
            open_submenu = menu::makePopup();
            open_menu.addSubmenu(open_submenu, row.submenu);
        }
        open_submenu_name = row.submenu;
        (row.submenu.empty() ? open_menu : open_submenu).addItem(numberOf(row.command), row.text);
        if (const auto keys = shortcutOf(row.text))
            shortcuts.push_back(acceleratorOf(*keys, numberOf(row.command)));
    }
    for (std::size_t i = 0; i < max_recent_files; ++i)
        if (const auto keys = shortcutOf(recentFileLabel(i, "")))
            shortcuts.push_back(acceleratorOf(*keys, recent_file_first + static_cast<int>(i)));
    shortcuts.push_back({FCONTROL, VK_TAB, static_cast<WORD>(next_page_command)});
    shortcuts.push_back({FCONTROL | FSHIFT, VK_TAB, static_cast<WORD>(former_page_command)});
    shortcuts.push_back({0, VK_F3, static_cast<WORD>(find_command)});
    shortcuts.push_back({FALT, VK_LEFT, static_cast<WORD>(back_command)});
    shortcuts.push_back({FALT, VK_RIGHT, static_cast<WORD>(forward_command)});
    m_accelerators = makeAccelerators(shortcuts);
    m_bar = bar.handle();
    SetMenu(window, m_bar);
}

void main_menu::setRecentFiles(std::vector<std::string> paths)
{
    m_recent_files = std::move(paths);
    m_recent.clear();
    for (std::size_t i = 0; i < m_recent_files.size(); ++i)
        m_recent.addItem(recent_file_first + static_cast<int>(i), recentFileLabel(i, m_recent_files[i]));
    if (m_recent_files.empty())
    {
        m_recent.addItem(recent_file_first, "(none yet)");
        EnableMenuItem(m_recent.handle(), 0, MF_BYPOSITION | MF_GRAYED);
    }
}

void main_menu::enable(const std::function<bool(document_command)>& is_enabled) const
{
    for (const command_row& row : commandTable())
        if (!row.menu.empty() && row.command != document_command::open_recent)
            EnableMenuItem(m_bar, static_cast<UINT>(numberOf(row.command)),
                           static_cast<UINT>(MF_BYCOMMAND | (is_enabled(row.command) ? MF_ENABLED : MF_GRAYED)));
}

} // namespace korvane
