#include "EASY_GUI/win32/combo_box.h"

#include "EASY_GUI/win32/wide_text.h"

namespace korvane
{

bool combo_box::create(HWND parent, int id, entries wanted)
{
    const DWORD kind = wanted == entries::typed ? CBS_DROPDOWN : CBS_DROPDOWNLIST;
    return createControl(L"COMBOBOX", parent, id, {}, kind | WS_VSCROLL | WS_TABSTOP);
}

void combo_box::place(int x, int y, int width, int height)
{
    // The system draws a frame of three pixels around the entry, and takes the rest of the height for the open list.
    constexpr int frame = 6;
    constexpr int open_entries = 12;
    send(CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height - frame);
    control::place(x, y, width, height * open_entries);
}

void combo_box::clear()
{
    send(CB_RESETCONTENT);
}

void combo_box::add(std::string_view text, std::uint32_t value)
{
    const std::wstring wide = toWide(text);
    const LRESULT position = send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide.c_str()));
    if (position >= 0)
        send(CB_SETITEMDATA, static_cast<WPARAM>(position), static_cast<LPARAM>(value));
}

void combo_box::select(int position)
{
    send(CB_SETCURSEL, static_cast<WPARAM>(position));
}

int combo_box::selected() const
{
    return static_cast<int>(send(CB_GETCURSEL));
}

} // namespace korvane
