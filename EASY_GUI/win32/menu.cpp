#include "EASY_GUI/win32/menu.h"

#include "EASY_GUI/win32/wide_text.h"

namespace korvane
{

void menu::addItem(int command, std::string_view text)
{
    AppendMenuW(m_handle, MF_STRING, static_cast<UINT_PTR>(command), toWide(text).c_str());
}

void menu::addSeparator()
{
    AppendMenuW(m_handle, MF_SEPARATOR, 0, nullptr);
}

void menu::addSubmenu(const menu& submenu, std::string_view text)
{
    AppendMenuW(m_handle, MF_POPUP, reinterpret_cast<UINT_PTR>(submenu.handle()), toWide(text).c_str());
}

void menu::add(std::span<const menu_row> rows)
{
    for (const menu_row& row : rows)
    {
        if (row.text.empty())
        {
            addSeparator();
            continue;
        }
        if (!row.rows.empty())
        {
            menu submenu = makePopup();
            submenu.add(row.rows);
            addSubmenu(submenu, row.text);
            continue;
        }
        addItem(row.command, row.text);
        setEnabled(row.command, row.is_enabled);
        setChecked(row.command, row.is_checked);
    }
}

void menu::setEnabled(int command, bool is_enabled)
{
    EnableMenuItem(m_handle, static_cast<UINT>(command), is_enabled ? UINT{MF_ENABLED} : UINT{MF_GRAYED});
}

void menu::setChecked(int command, bool is_checked)
{
    CheckMenuItem(m_handle, static_cast<UINT>(command), is_checked ? UINT{MF_CHECKED} : UINT{MF_UNCHECKED});
}

int chooseFromMenu(HWND owner, POINT on_screen, std::span<const menu_row> rows)
{
    menu opened = menu::makePopup();
    opened.add(rows);
    const UINT side = GetSystemMetrics(SM_MENUDROPALIGNMENT) != 0 ? TPM_RIGHTALIGN : TPM_LEFTALIGN;
    const BOOL command = TrackPopupMenuEx(opened.handle(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON | side,
                                          on_screen.x, on_screen.y, owner, nullptr);
    DestroyMenu(opened.handle());
    return command;
}

void menu::clear()
{
    while (DeleteMenu(m_handle, 0, MF_BYPOSITION))
    {
    }
}

unique_accelerators makeAccelerators(std::span<const shortcut> shortcuts)
{
    std::vector<ACCEL> table;
    for (const shortcut& entry : shortcuts)
    {
        ACCEL accelerator{};
        accelerator.fVirt = static_cast<BYTE>(entry.modifiers | FVIRTKEY);
        accelerator.key = entry.key;
        accelerator.cmd = entry.command;
        table.push_back(accelerator);
    }
    return unique_accelerators(CreateAcceleratorTableW(table.data(), static_cast<int>(table.size())));
}

} // namespace korvane
