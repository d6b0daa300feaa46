#include "Korvane/app/page.h"

namespace korvane
{

bool page::createIn(HWND parent, failure& why)
{
    window_settings settings;
    settings.style = WS_CHILD | WS_CLIPCHILDREN | extraStyle();
    settings.extended_style = WS_EX_CONTROLPARENT;
    settings.x = settings.y = settings.width = settings.height = 0;
    settings.parent = parent;
    m_start_failure = {};
    if (create(settings, why))
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
