#include "EASY_GUI/win32/track_bar.h"

#include <commctrl.h>

namespace korvane
{

bool track_bar::create(HWND parent, int id)
{
    return createControl(TRACKBAR_CLASSW, parent, id, {}, TBS_HORZ | TBS_NOTICKS | WS_TABSTOP);
}

void track_bar::setRange(int first, int last)
{
    send(TBM_SETRANGEMIN, FALSE, first);
    send(TBM_SETRANGEMAX, TRUE, last);
}

void track_bar::setPosition(int position)
{
    send(TBM_SETPOS, TRUE, position);
}

int track_bar::position() const
{
    return static_cast<int>(send(TBM_GETPOS));
}

bool track_bar::onScrolled(int request)
{
    return request != TB_ENDTRACK && tell(onMove, position());
}

} // namespace korvane
