#include "EASY_GUI/win32/progress_window.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>

namespace korvane
{

namespace
{
constexpr int bar_steps = 1000;
}

std::optional<layout> progress_window::onFill(failure& why)
{
    if (!m_line.create(handle(), 0) || !m_bar.create(handle(), 0) || !m_stop.create(handle(), IDCANCEL, "Stop"))
    {
        fail(why, failure_kind::refused, "the window could not be filled");
        return std::nullopt;
    }
    m_stop.setEnabled(m_can_stop);
    m_stop.onClick = [this] { onCancel(); };
    m_bar.setRange(bar_steps);
    m_bar.setUnknown(true);
    layout rows(layout::direction::down);
    rows.setMargins(12).add(m_line).add(m_bar, fixed(16));
    rows.add(layout(layout::direction::across).add(share()).add(m_stop));
    return rows;
}

void progress_window::setProgress(const work_progress& now)
{
    if (!isOpen() || m_is_stopping)
        return;
    if (now.total == 0)
        m_bar.setUnknown(true);
    else
        m_bar.setPosition(static_cast<int>(static_cast<double>(std::min(now.done, now.total)) * bar_steps /
                                           static_cast<double>(now.total)));
    std::string line = now.total != 0 ? grouped(now.done) + " of " + grouped(now.total) : std::string();
    if (!now.what.empty())
        line += (line.empty() ? "" : ": ") + displayText(now.what);
    m_line.setText(line);
}

void progress_window::onCancel()
{
    if (!m_can_stop || m_is_stopping)
        return;
    m_is_stopping = true;
    m_stop.setEnabled(false);
    m_line.setText("Stopping...");
    if (onStop)
        onStop();
}

} // namespace korvane
