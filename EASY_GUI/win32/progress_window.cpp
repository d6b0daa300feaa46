#include "EASY_GUI/win32/progress_window.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/dpi.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr UINT_PTR show_timer = 1;
constexpr int progress_width = 420; // client, at 96 dots per inch
constexpr int progress_margin = 12;
constexpr int bar_steps = 1000;
constexpr DWORD progress_style = WS_POPUP | WS_CAPTION | WS_SYSMENU;

} // namespace

void progress_window::openLater(HWND owner, std::chrono::milliseconds patience)
{
    const bool has_owner = owner != nullptr && IsWindowVisible(owner) != 0;
    window_settings settings;
    settings.title = m_title;
    settings.style = progress_style;
    settings.extended_style = WS_EX_CONTROLPARENT | (has_owner ? WS_EX_DLGMODALFRAME : WS_EX_APPWINDOW);
    settings.parent = has_owner ? owner : nullptr;
    settings.x = settings.y = settings.width = settings.height = 0;
    failure why;
    if (create(settings, why)) // without it the work is done all the same
        SetTimer(handle(), show_timer, static_cast<UINT>(patience.count()), nullptr);
}

bool progress_window::onCreated()
{
    if (!m_line.create(handle(), 0) || !m_bar.create(handle(), 0) || !m_stop.create(handle(), IDCANCEL, "Stop"))
        return false;
    m_stop.setEnabled(m_can_stop);
    m_stop.onClick = [this] { stop(); };
    m_bar.setRange(bar_steps);
    m_bar.setUnknown(true);
    layOut();
    return true;
}

void progress_window::layOut()
{
    m_font = font(dpi(), font::weight::regular);
    m_line.setFont(m_font);
    m_stop.setFont(m_font);
    const int margin = scaled(progress_margin);
    const int width = scaled(progress_width);
    const int line = m_font.height() + scaled(4);
    const int button_height = m_font.height() + scaled(11);
    const int button_width = scaled(88);
    const int bar_top = margin + line + scaled(4);
    const int stop_top = bar_top + scaled(16) + margin;
    m_line.place(margin, margin, width - 2 * margin, line);
    m_bar.place(margin, bar_top, width - 2 * margin, scaled(16));
    m_stop.place(width - margin - button_width, stop_top, button_width, button_height);

    const RECT outer = outerRectangle({0, 0, width, stop_top + button_height + margin}, progress_style,
                                      WS_EX_DLGMODALFRAME, false, dpi());
    const HWND owner = GetWindow(handle(), GW_OWNER);
    RECT around = workArea(owner);
    if (owner != nullptr)
        GetWindowRect(owner, &around);
    const int outer_width = outer.right - outer.left;
    const int outer_height = outer.bottom - outer.top;
    SetWindowPos(handle(), nullptr, (around.left + around.right - outer_width) / 2,
                 (around.top + around.bottom - outer_height) / 2, outer_width, outer_height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void progress_window::onDpiChanged(unsigned)
{
    layOut();
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

// Escape arrives here when the button is disabled.
bool progress_window::onCommand(int id, int, HWND)
{
    if (id == IDCANCEL)
        stop();
    return id == IDCANCEL;
}

void progress_window::stop()
{
    if (!m_can_stop || m_is_stopping)
        return;
    m_is_stopping = true;
    m_stop.setEnabled(false);
    m_line.setText("Stopping...");
    if (onStop)
        onStop();
}

LRESULT progress_window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message != WM_TIMER || wparam != show_timer)
        return window::handleMessage(message, wparam, lparam);
    KillTimer(handle(), show_timer);
    show();
    m_stop.isEnabled() ? SetFocus(m_stop.handle()) : SetFocus(handle());
    return 0;
}

} // namespace korvane
