#include "Korvane/app/page.h"

#include <utility>

namespace korvane
{

bool page::createIn(HWND parent, failure& why)
{
    return createChild(parent, WS_CLIPCHILDREN | extraStyle(), WS_EX_CONTROLPARENT, why);
}

void page::needControls()
{
    if (std::exchange(m_was_asked, true))
        return;
    failure why;
    m_has_controls = createControls(why);
    if (!m_has_controls)
    {
        host().logLine("page::needControls(). " + describe(why));
        host().prompt().show("Error!", "This page could not be shown.\r\n\r\n" + describe(why), prompt_icon::error);
        return;
    }
    if (m_po_font != nullptr)
        applyFont(*m_po_font);
    fillControls();
}

void page::setFont(const font& used)
{
    m_po_font = &used;
    applyFont(used);
}

void page::place(const RECT& where)
{
    SetWindowPos(handle(), nullptr, where.left, where.top, where.right - where.left, where.bottom - where.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace korvane
