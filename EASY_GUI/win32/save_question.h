#pragma once

// The box that asks what becomes of unsaved changes: save them, go on without them, or stay. Enter saves, Escape stays.
// Window thread.

#include "EASY_GUI/services/user_prompt.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/label.h"

#include <string>

namespace korvane
{

class save_question : public dialog_box
{
public:
    save_question(const std::string& title, std::string text) : dialog_box({title, {}, false}), m_text(std::move(text))
    {
    }
    ~save_question() override { destroy(); }

    [[nodiscard]] save_answer ask(HWND owner, failure& why); // cancel, with the reason, when there is no box

    enum control_id : int // for tests
    {
        control_save = 1,
        control_discard,
        control_stay
    };

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    int textLines(int width) const; // when the text is broken at that width, in pixels

    std::string m_text; // lines end in "\r\n"
    text_block m_shown;
    button m_save, m_discard, m_stay;
};

} // namespace korvane
