#pragma once

// Says how far long work is: a line, a bar and a Stop button, over the window that waits for the work. Window thread.

#include "EASY_GUI/services/work_port.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/progress_bar.h"

#include <functional>
#include <string>

namespace korvane
{

class progress_window : public dialog_box
{
public:
    progress_window(std::string title, bool can_stop)
        : dialog_box({std::move(title), {progress_width, 0}, false})
        , m_can_stop(can_stop)
    {
    }
    ~progress_window() override { destroy(); }

    std::function<void()> onStop; // the button, Escape or the closing of the window; once

    void setProgress(const work_progress& now);

protected:
    std::optional<layout> onFill(failure& why) override;
    void onCancel() override;

private:
    static constexpr int progress_width = 420; // at 96 dots per inch

    bool m_can_stop;
    bool m_is_stopping = false;
    label m_line;
    progress_bar m_bar;
    button m_stop;
};

} // namespace korvane
