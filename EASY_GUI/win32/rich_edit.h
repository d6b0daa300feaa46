#pragma once

// A text that is only read, with headings and bold words: it can be scrolled, selected and copied from.

#include "EASY_GUI/win32/control.h"

#include <span>
#include <string>
#include <vector>

namespace korvane
{

struct rich_run
{
    enum class style
    {
        plain,
        bold,
        heading // larger and bold
    };
    std::string text; // UTF-8; "\n" ends a line
    style look = style::plain;
};

class rich_edit : public control
{
public:
    // False also where the system's library for it is missing.
    [[nodiscard]] bool create(HWND parent, int id);

    void setRuns(std::span<const rich_run> runs); // one behind the other, and shows the first line
    bool fillsHeight() const override { return true; }

protected:
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    void append(const rich_run& run, const LOGFONTW& base);
    void showRuns();

    std::vector<rich_run> m_runs;
};

} // namespace korvane
