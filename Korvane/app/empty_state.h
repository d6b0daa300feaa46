#pragma once

// What a page shows while it has nothing to show: what is missing, and buttons that do what comes next. It covers the
// page; the page creates, places, shows and hides it.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/font.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/window.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace korvane
{

struct empty_content
{
    struct choice
    {
        std::string text; // of the button, with its mnemonic
        std::function<void()> act;
    };
    std::string heading;
    std::vector<std::string> lines; // at most most_lines
    std::vector<choice> choices;    // at most most_choices; the first one is the likeliest
};

class empty_state : public window
{
public:
    static constexpr std::size_t most_lines = 4;
    static constexpr std::size_t most_choices = 3;

    ~empty_state() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why); // hidden
    void setContent(empty_content content);
    void setFont(const font& used); // outlives this or the next call
    void showOver(bool is_wanted);  // in the whole of the parent
    HWND firstControl() const { return m_choices[0].handle(); }

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;

private:
    void layOut();

    empty_content m_content;
    const font* m_po_font = nullptr;
    font m_heading_font;
    label m_heading;
    std::array<label, most_lines> m_lines;
    std::array<button, most_choices> m_choices;
};

} // namespace korvane
