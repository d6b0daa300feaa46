#pragma once

// The system's message font for one density, with a bold variant and one of fixed width, and what a layout needs to
// know about it.

#include "EASY_GUI/win32/handle_policies.h"

#include <string_view>

namespace korvane
{

class font
{
public:
    enum class weight
    {
        regular,
        bold,
        fixed_width // regular, and all characters are as wide: for columns
    };

    font() = default; // no font: controls keep the system's fixed one
    font(unsigned dpi, weight wanted);

    HFONT handle() const { return m_handle.get(); }
    int height() const { return m_height; }   // pixels from line to line
    int widthOf(std::string_view text) const; // pixels of one line of UTF-8 text

private:
    unique_font m_handle;
    int m_height = 16;
};

} // namespace korvane
