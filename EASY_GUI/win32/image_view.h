#pragma once

// A child window that shows a picture as large as fits, with its proportions, before a checkerboard where it is
// transparent; without a picture a text. Window thread only.

#include "EASY_GUI/win32/window.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

class image_view : public window
{
public:
    ~image_view() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    // width * height pixels from the upper left one, of four bytes each: red, green, blue, alpha; copied. Does nothing
    // with a span of another size.
    void setPicture(int width, int height, std::span<const std::byte> rgba);
    void setEmpty(std::string_view text); // no picture; the text, in the middle

protected:
    bool onPaint() override;
    void onSize(int width, int height, size_change change) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    void compose(int width, int height);
    std::uint32_t pixelOf(int x, int y, SIZE shown) const;
    void paintOn(HDC context, const RECT& client);

    std::vector<std::byte> m_picture;
    SIZE m_size{};
    std::string m_text;
    HFONT m_font = nullptr;                // the owner's
    std::vector<std::uint32_t> m_composed; // for the size that the window has: 0x00rrggbb
    SIZE m_composed_size{};
};

} // namespace korvane
