#pragma once

// How each kind of Windows handle is closed (unique_handle.h).

#include "EASY_GUI/services/unique_handle.h"

#include <windows.h>

namespace korvane
{

template <typename Handle, auto ppfnClose>
struct simple_handle_policy
{
    using handle_type = Handle;
    static bool isValid(Handle handle) { return handle != nullptr; }
    static void close(Handle handle) { ppfnClose(handle); }
};

struct gdi_font_policy
{
    using handle_type = HFONT;
    static bool isValid(HFONT handle) { return handle != nullptr; }
    static void close(HFONT handle) { DeleteObject(handle); }
};

struct gdi_brush_policy
{
    using handle_type = HBRUSH;
    static bool isValid(HBRUSH handle) { return handle != nullptr; }
    static void close(HBRUSH handle) { DeleteObject(handle); }
};

using unique_font = unique_handle<gdi_font_policy>;
using unique_brush = unique_handle<gdi_brush_policy>;
using unique_menu = unique_handle<simple_handle_policy<HMENU, &DestroyMenu>>;
using unique_accelerators = unique_handle<simple_handle_policy<HACCEL, &DestroyAcceleratorTable>>;
using unique_module = unique_handle<simple_handle_policy<HMODULE, &FreeLibrary>>;

} // namespace korvane
