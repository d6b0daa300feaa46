#pragma once

// The program's message loop. Keys of the main window, and of windows that belong to it (takesShortcutsOf), are looked
// up in its table of shortcuts and become its commands, unless the focused field wants them for its text; never those
// of a dialog, nor while one holds the main window. A key that became a command is dispatched as a key as well: that is
// deliberate. Tab, arrow keys and mnemonics move between the controls of the main window.

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
    bool isShortcut(const MSG& message) const;
    void dispatchAsKey(MSG& message, BYTE (&pressed_with)[256]) const; // the state of all keys at that time
    void dispatchPlain(MSG& message) const;

    window& m_main;
    HACCEL m_accelerators; // null: no shortcuts
};

} // namespace korvane
