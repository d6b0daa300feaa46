#pragma once

// The program's message loop. Shortcuts become commands of the main window first; the key press is then dispatched as a
// key as well (a consumed shortcut is deliberately not swallowed). Tab, arrow keys and mnemonics move between the
// controls of the main window.

#include "EASY_GUI/win32/window.h"

namespace korvane
{

class message_loop
{
public:
    message_loop(window& main, HACCEL accelerators) : m_main(main), m_accelerators(accelerators) {}

    int run();                         // until WM_QUIT; returns its exit code
    void dispatch(MSG& message) const; // one message, as run() treats it

private:
    window& m_main;
    HACCEL m_accelerators; // null: no shortcuts
};

} // namespace korvane
