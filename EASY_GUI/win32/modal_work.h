#pragma once

// Long work that the person waits for. It runs on a worker thread; meanwhile the window that started it is disabled but
// goes on painting and answering, and behind half a second a small window over it says how far the work is and has a
// Stop button (also Escape and its closing). The caller gets the result where it started the work, as from a function.
// Work touches nothing that the window's thread may touch meanwhile: what handlers of timers and of activation use they
// leave alone while their window is disabled.

#include "EASY_GUI/services/work_port.h"

#include <chrono>
#include <functional>
#include <string>
#include <windows.h>

namespace korvane
{

struct modal_work
{
    HWND owner = nullptr; // of the thread that calls; null or hidden: the small window stands for itself
    std::string title;    // "Reading the archives"
    bool can_stop = true;
    std::chrono::milliseconds patience{500}; // before the small window appears
    log_port log = {};                       // on the caller's thread

    // False when it was stopped. What the work throws is thrown on. When the program is told to end meanwhile the work
    // is stopped, and the program's own loop is told again.
    bool run(const std::function<void(const work_port&)>& work) const;
};

} // namespace korvane
