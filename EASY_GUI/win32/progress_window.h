#pragma once

// Says how far long work is: a line, a bar and a Stop button, over the window that waits for the work. Window thread.

#include "EASY_GUI/services/work_port.h"
#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "EASY_GUI/win32/window.h"

#include <chrono>
#include <functional>
#include <string>

namespace korvane
{

class progress_window : public window
{
public:
    progress_window(std::string title, bool can_stop) : m_title(std::move(title)), m_can_stop(can_stop) {}
    ~progress_window() override { destroy(); }

    std::function<void()> onStop; // the button, Escape or the closing of the window; once

    // Created hidden, and shown after a while. An owner that is null or hidden: in the middle of the screen.
    void openLater(HWND owner, std::chrono::milliseconds patience);
    void setProgress(const work_progress& now);

protected:
    bool onCreated() override;
    void onClose() override { stop(); }
    void onDpiChanged(unsigned dpi) override;
    bool onCommand(int id, int notification, HWND control) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    void layOut();
    void stop();

    std::string m_title;
    bool m_can_stop;
    bool m_is_stopping = false;
    font m_font;
    label m_line;
    progress_bar m_bar;
    button m_stop;
};

} // namespace korvane
