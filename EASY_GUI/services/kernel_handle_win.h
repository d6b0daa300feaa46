#pragma once

// A Windows file, event, process or thread handle that closes itself.

#include "EASY_GUI/services/unique_handle.h"

#include <windows.h>

namespace korvane
{

struct kernel_handle_policy
{
    using handle_type = HANDLE;
    // Some functions say "none" with null, CreateFile with -1.
    static bool isValid(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }
    static void close(HANDLE handle) { CloseHandle(handle); }
};

using unique_kernel_handle = unique_handle<kernel_handle_policy>;

} // namespace korvane
