#pragma once

// The renderer's answer to a Direct3D call that must succeed and did not: the program stops with the assertion's text.
// Only for what no input can cause; a texture that the device refuses is a failure (dds_texture.h).

#include <windows.h>

#include <functional>
#include <string>

namespace korvane
{

// Stops the program unless the result is a success: "Assertion failed: SUCCEEDED(hr), file SOURCE ..." goes to the
// port, or to the standard error output without one.
void requireSuccess(HRESULT hr, const char* source);

// Told the text before the program stops; set once at start-up, by the program's main thread.
void setAssertionPort(std::function<void(const std::string&)> port);

} // namespace korvane
