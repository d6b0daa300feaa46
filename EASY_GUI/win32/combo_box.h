#pragma once

// A drop-down list of fixed entries, each with a number of its own; if wanted, something else can be typed instead.

#include "EASY_GUI/win32/control.h"

#include <cstdint>

namespace korvane
{

class combo_box : public control
{
public:
    std::function<void(int position)> onSelect; // by the person; select() calls nothing

    std::function<void()> onType; // the text, by the person; setText() calls nothing

    enum class entries
    {
        fixed,
        typed // too
    };
    [[nodiscard]] bool create(HWND parent, int id, entries wanted = entries::fixed);

    void place(int x, int y, int width, int height) override; // of the closed list

    void clear();
    void add(std::string_view text, std::uint32_t value = 0); // the value is the entry's CB_GETITEMDATA
    void select(int position);                                // -1: none
    int selected() const;                                     // -1: none

protected:
    bool onNotified(int code) override
    {
        return code == CBN_SELCHANGE ? tell(onSelect, selected()) : code == CBN_EDITCHANGE && tell(onType);
    }
    bool isTextClipped() const override
    {
        return widthOf(text()) > clientWidth() - GetSystemMetrics(SM_CXVSCROLL) - scaled(8);
    }
};

} // namespace korvane
