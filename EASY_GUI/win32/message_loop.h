#pragma once

// The program's message loop. Keys of the main window, and of windows that belong to it (takesShortcutsOf), are looked
// up in its table of shortcuts and become its commands, unless the focused field wants them for its text; never those
// of a dialog, nor while one holds the main window. A key that became a command is dispatched as a key as well: that is
// deliberate. Tab, arrow keys and mnemonics move between the controls of the main window.

#include "EASY_GUI/win32/window.h"

#include <functional>
#include <utility>

namespace korvane
{

class message_loop
{
public:
    message_loop(window& main, HACCEL accelerators) : m_main(main), m_accelerators(accelerators) {}

    // Until WM_QUIT; returns its exit code. In continuous mode the loop never waits: with idle work it does that
    // whenever no message is there, and a key that became a command is not dispatched as a key as well.
    int run();
    void setIdleWork(std::function<void()> work) { m_idle_work = std::move(work); }
    void dispatch(MSG& message) const; // one message, as run() treats it

private:
    bool isShortcut(const MSG& message) const;
    void dispatchAsKey(MSG& message, BYTE (&pressed_with)[256]) const; // the state of all keys at that time
    void dispatchPlain(MSG& message) const;

    window& m_main;
    HACCEL m_accelerators;             // null: no shortcuts
    std::function<void()> m_idle_work; // set: continuous mode
};

} // namespace korvane
