#include "Korvane/app/fatal_end.h"

namespace korvane
{

namespace
{
constexpr UINT message_show = WM_APP;
}

bool fatal_end::open(failure& why)
{
    window_settings settings;
    settings.style = 0;
    settings.parent = HWND_MESSAGE;
    if (!create(settings, why))
        return false;
    m_mailbox = handle();
    m_window_thread = GetCurrentThreadId();
    return true;
}

std::string fatal_end::lastWords(const std::string& reason)
{
    std::string text;
    try
    {
        text = "The program cannot go on and ends now.\r\n\r\n" + reason;
        std::string where;
        failure why;
        switch (m_ports.keeper.keep(where, why))
        {
        case edit_keeper::outcome::kept:
            text += "\r\n\r\nThe changes that were not saved are kept; the next start offers to open them:\r\n" + where;
            break;
        case edit_keeper::outcome::failed:
            text += "\r\n\r\nThe changes that were not saved could not be kept: " + describe(why);
            break;
        default:
            break;
        }
        m_ports.log(text);
    }
    catch (const std::exception&) // too little memory for words: what was done is done
    {
    }
    return text;
}

void fatal_end::report(const std::string& reason)
{
    const bool is_window_thread = m_window_thread == 0 || GetCurrentThreadId() == m_window_thread;
    if (m_is_reported.exchange(true))
    {
        while (!is_window_thread) // the first report ends the process
            Sleep(INFINITE);
        return;
    }
    m_text = lastWords(reason);
    if (is_window_thread)
    {
        m_ports.show(m_text, m_owner);
        m_ports.end();
        return;
    }
    if (handOver())
        return;
    m_ports.show(m_text, nullptr);
    m_ports.end();
}

// True when the window thread has shown the box and ended the process. The mutex brings it the text.
bool fatal_end::handOver()
{
    std::unique_lock lock(m_mutex);
    if (!PostMessageW(m_mailbox, message_show, 0, 0) ||
        !m_changed.wait_for(lock, patience, [this] { return m_showing == showing::window_thread; }))
    {
        m_showing = showing::reporter;
        return false;
    }
    m_changed.wait(lock, [this] { return m_is_over; });
    return true;
}

LRESULT fatal_end::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message != message_show)
        return window::handleMessage(message, wparam, lparam);
    {
        const std::lock_guard lock(m_mutex);
        if (m_showing != showing::nobody)
            return 0; // it came too late
        m_showing = showing::window_thread;
    }
    m_changed.notify_all();
    m_ports.show(m_text, m_owner);
    m_ports.end();
    const std::lock_guard lock(m_mutex);
    m_is_over = true;
    m_changed.notify_all();
    return 0;
}

} // namespace korvane
