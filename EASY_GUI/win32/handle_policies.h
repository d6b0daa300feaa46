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

using unique_font = unique_handle<simple_handle_policy<HFONT, &DeleteObject>>;
using unique_brush = unique_handle<simple_handle_policy<HBRUSH, &DeleteObject>>;
using unique_accelerators = unique_handle<simple_handle_policy<HACCEL, &DestroyAcceleratorTable>>;
using unique_module = unique_handle<simple_handle_policy<HMODULE, &FreeLibrary>>;

} // namespace korvane
