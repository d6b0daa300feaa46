#pragma once

// Densities (dots per inch) of windows. The program declares per-monitor awareness, version 2: each top-level window
// has the density of its monitor and is told of a change with WM_DPICHANGED. The functions of Windows 10 1607 that this
// stands on are looked up at run time; older systems know one density for the whole session.

#include <windows.h>

namespace korvane
{

[[nodiscard]] unsigned dpiOf(HWND window); // null: the system's
// The outer rectangle around a client rectangle.
[[nodiscard]] RECT outerRectangle(RECT client, DWORD style, DWORD extended_style, bool has_menu, unsigned dpi);
// The font of message boxes, in the density's pixels.
[[nodiscard]] LOGFONTW messageFont(unsigned dpi);

} // namespace korvane
