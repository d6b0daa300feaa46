#include "Korvane/app/page.h"

namespace korvane
{

bool page::createIn(HWND parent, failure& why)
{
    m_start_failure = {};
    if (createChild(parent, WS_CLIPCHILDREN | extraStyle(), WS_EX_CONTROLPARENT, why))
        return true;
    if (m_start_failure)
        why = m_start_failure;
    return false;
}

void page::place(const RECT& where)
{
    SetWindowPos(handle(), nullptr, where.left, where.top, where.right - where.left, where.bottom - where.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace korvane
