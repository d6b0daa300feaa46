#pragma once

// A handle on a line: one of a row of positions.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class track_bar : public control
{
public:
    std::function<void(int position)> onMove; // by the person, each step; setPosition() calls nothing

    [[nodiscard]] bool create(HWND parent, int id);

    void setRange(int first, int last);
    void setPosition(int position);
    int position() const;

protected:
    bool onScrolled(int request) override;
};

} // namespace korvane
