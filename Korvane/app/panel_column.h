#pragma once

// Panels one below the other over the whole width of a window, which are scrolled when they do not fit. The window owns
// the panels and hands its messages on.

#include "EASY_GUI/win32/font.h"
#include "EASY_GUI/win32/window.h"

#include <utility>
#include <vector>

namespace korvane
{

class column_part
{
public:
    virtual ~column_part() = default;
    virtual void setFont(const font& used) = 0; // of all its controls; outlives the part or the next call
    virtual int preferredHeight() const = 0;    // pixels
    virtual void place(int x, int y, int width, int height) = 0; // in the window
};

class panel_column
{
public:
    // All of them outlive this. The window has the style WS_VSCROLL.
    panel_column(window& owner, std::vector<column_part*> parts) : m_owner(owner), m_parts(std::move(parts)) {}

    void setFont(const font& used);
    void layOut();
    int contentHeight() const;
    void scroll(int request); // SB_LINEUP, SB_THUMBTRACK, ...
    void scrollByWheel(int delta);
    void scrollInto(HWND control); // so that it is seen

private:
    void scrollTo(int position);

    window& m_owner;
    std::vector<column_part*> m_parts;
};

} // namespace korvane
