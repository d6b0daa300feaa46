#include "EASY_GUI/win32/progress_bar.h"

#include <commctrl.h>

namespace korvane
{

bool progress_bar::create(HWND parent, int id)
{
    m_is_unknown = false;
    return createControl(PROGRESS_CLASSW, parent, id, {}, 0);
}

void progress_bar::setRange(int whole)
{
    send(PBM_SETRANGE32, 0, whole);
}

void progress_bar::setPosition(int position)
{
    setUnknown(false);
    send(PBM_SETPOS, static_cast<WPARAM>(position));
}

void progress_bar::setUnknown(bool is_unknown)
{
    if (is_unknown == m_is_unknown)
        return;
    m_is_unknown = is_unknown;
    constexpr int pause = 30; // milliseconds between two steps of the mark
    const LONG_PTR style = GetWindowLongPtrW(handle(), GWL_STYLE);
    SetWindowLongPtrW(handle(), GWL_STYLE, is_unknown ? style | PBS_MARQUEE : style & ~LONG_PTR{PBS_MARQUEE});
    send(PBM_SETMARQUEE, is_unknown, pause);
    InvalidateRect(handle(), nullptr, TRUE);
}

int progress_bar::position() const
{
    return static_cast<int>(send(PBM_GETPOS));
}

} // namespace korvane
