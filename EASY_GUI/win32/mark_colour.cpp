#include "EASY_GUI/win32/mark_colour.h"

namespace korvane
{

bool isHighContrast()
{
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

std::optional<COLORREF> textColour(row_mark mark)
{
    if (mark == row_mark::dimmed)
        return GetSysColor(COLOR_GRAYTEXT);
    if (mark == row_mark::plain || isHighContrast())
        return std::nullopt;
    const COLORREF back = GetSysColor(COLOR_WINDOW);
    const bool is_light = 3 * GetRValue(back) + 6 * GetGValue(back) + GetBValue(back) > 10 * 128;
    switch (mark)
    {
    case row_mark::good:
        return is_light ? RGB(0, 104, 40) : RGB(112, 216, 136);
    case row_mark::note:
        return is_light ? RGB(0, 76, 153) : RGB(136, 192, 255);
    case row_mark::warning:
        return is_light ? RGB(138, 76, 0) : RGB(255, 200, 96);
    default:
        return is_light ? RGB(176, 0, 32) : RGB(255, 136, 136);
    }
}

HICON iconOf(row_mark mark, int size)
{
    const LPCWSTR name = mark == row_mark::error     ? IDI_ERROR
                         : mark == row_mark::warning ? IDI_WARNING
                         : mark == row_mark::note    ? IDI_INFORMATION
                                                     : nullptr;
    return name == nullptr ? nullptr : static_cast<HICON>(LoadImageW(nullptr, name, IMAGE_ICON, size, size, LR_SHARED));
}

} // namespace korvane
