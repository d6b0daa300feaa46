#pragma once

// The lower edge of a window: parts with texts one beside the other, and a progress bar in the last part while there is
// progress. A text that does not fit ends in an ellipsis, and is a tooltip as a whole. The owner places it.

#include "EASY_GUI/win32/progress_bar.h"

#include <span>
#include <string>
#include <vector>

namespace korvane
{

class status_bar : public control
{
public:
    // One width for each part, at 96 dots per inch; the parts of width 0 share what the others leave.
    [[nodiscard]] bool create(HWND parent, int id, std::span<const int> widths);

    void setPart(std::size_t part, std::string_view text);
    std::string part(std::size_t part) const { return m_texts.at(part); } // whole, also when it is shown cut off
    int preferredHeight() const;                                          // pixels, for the font
    void place(int x, int y, int width, int height) override;

    // In the last part, over its text.
    progress_bar& progress() { return m_progress; }
    void showProgress(bool is_shown);

protected:
    std::string tipAt(POINT at) const override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    std::size_t partAt(POINT at) const;
    std::wstring wholeText() const;
    void layOut();
    void showText(std::size_t part);
    RECT partRectangle(std::size_t part) const;

    std::vector<int> m_widths;
    std::vector<std::string> m_texts;
    std::size_t m_pointed_at = 0; // part
    progress_bar m_progress;
};

} // namespace korvane
