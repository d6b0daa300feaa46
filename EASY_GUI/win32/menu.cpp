#include "EASY_GUI/win32/menu.h"

#include "EASY_GUI/win32/wide_text.h"

#include <vector>

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
