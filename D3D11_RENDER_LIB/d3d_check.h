#pragma once

// The renderer's answers to a Direct3D call that did not succeed. A lost device (a driver update, a time-out, a card
// that was pulled) is an ordinary state: whoever drew gives its objects up and they are made again (render_worker.h).
// What no input and no loss can cause stops the program with the assertion's text. A texture that the device refuses is
// a failure (dds_texture.h).

#include "EASY_GUI/services/log_port.h"

#include <windows.h>

#include <string>

namespace korvane
{

// True for the results that say that the device is gone, with everything that was made on it.
[[nodiscard]] bool isDeviceLost(HRESULT hr);
// "887A0005"
[[nodiscard]] std::string resultText(HRESULT hr);

// Stops the program unless the result is a success: "Assertion failed: SUCCEEDED(hr), file SOURCE ..." goes to the
// port, or to the standard error output without one. From any thread; while one thread is being told about, others that
// fail wait for the end.
void requireSuccess(HRESULT hr, const char* source);

// Told the text before the program stops: called once at most, by the thread on which the call failed, the render
// thread among them, which may hold no lock of the program then. When it returns the program ends. Set once at
// start-up, before there is a second thread.
void setAssertionPort(log_port port);

} // namespace korvane
