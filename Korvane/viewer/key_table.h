#pragma once

// The keys of the view: what each does, and what the help over the view says of it. One table for both. Portable.

#include "Korvane/viewer/view_state.h"

#include <span>

namespace korvane
{

// Virtual-key codes, as Windows numbers them.
namespace key_code
{
inline constexpr unsigned escape = 27, space = 32, page_up = 33, page_down = 34, end = 35, home = 36, left = 37,
                          up = 38, right = 39, down = 40, first = 27, last = 104, numpad1 = 97, numpad2 = 98,
                          numpad4 = 100, numpad6 = 102, numpad7 = 103, numpad8 = 104;
}

struct view_key
{
    unsigned code;
    const char* name; // of the key, or of several that belong together; null: said in the row above
    const char* help;
    void (*change)(view_state& view); // null: the window's own, for it is not about the view alone
};

// In the order of the help. Codes from key_code::first to key_code::last.
[[nodiscard]] std::span<const view_key> viewKeys();
[[nodiscard]] const view_key* findViewKey(unsigned virtual_key); // null: the key means nothing

} // namespace korvane
