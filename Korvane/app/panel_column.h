#pragma once

// The content of the main window: panels one below the other over its whole width, and at the lower edge a row with the
// status line and a button, which is always seen. Panels that do not fit above it are reached with the scroll bar. The
// window owns the controls and hands its messages on.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/label.h"
#include "Korvane/app/field_panel.h"

#include <vector>

namespace korvane
{

class panel_column
{
public:
    // All of them outlive this.
    panel_column(window& owner, std::vector<field_panel*> panels, label& status, button& last)
        : m_owner(owner)
        , m_panels(std::move(panels))
        , m_status(status)
        , m_last(last)
    {
    }

    // Gives all controls the font for the window's density and lays them out; they exist by then.
    void applyFont();
    // Makes the window lower when the content leaves room at its end.
    void fitHeight();
    void layOut();
    void scroll(int request); // SB_LINEUP, SB_THUMBTRACK, ...
    void scrollByWheel(int delta);
    void scrollInto(HWND control); // so that it is seen

private:
    int contentHeight() const;
    int barHeight() const; // of the last row
    int lowerEdge() const; // of what the panels may cover
    void scrollTo(int position);

    window& m_owner;
    std::vector<field_panel*> m_panels;
    label& m_status;
    button& m_last;
    font m_font;
};

} // namespace korvane
