#pragma once

// How far something has come: a share of a whole, or that it goes on while nobody knows how far.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class progress_bar : public control
{
public:
    [[nodiscard]] bool create(HWND parent, int id);

    void setRange(int whole); // from 0; 100 at first
    void setPosition(int position);
    void setUnknown(bool is_unknown); // true: a mark that wanders until there is a position again
    int position() const;

private:
    bool m_is_unknown = false;
};

} // namespace korvane
