#include "EASY_GUI/win32/ui_thread.h"

namespace korvane
{

namespace
{
constexpr UINT run_next = WM_APP + 1;
}

bool ui_thread::mailbox::post(std::function<void()> function) const
{
    const std::lock_guard lock(m_po_box->mutex);
    if (m_po_box->window == nullptr)
        return false;
    m_po_box->waiting.push_back(std::move(function));
    // One message at a time is on its way, so that the system's queue never gets full.
    if (m_po_box->waiting.size() == 1)
        PostMessageW(m_po_box->window, run_next, 0, 0);
    return true;
}

bool ui_thread::open(failure& why)
{
    window_settings settings;
    settings.parent = HWND_MESSAGE;
    settings.style = 0;
    if (!create(settings, why))
        return false;
    const std::lock_guard lock(m_po_box->mutex);
    m_po_box->window = handle();
    return true;
}

void ui_thread::runUntil(const std::function<bool()>& is_so)
{
    MSG message{};
    while (!is_so() && GetMessageW(&message, handle(), 0, 0) > 0)
        DispatchMessageW(&message);
}

void ui_thread::onDestroyed()
{
    std::deque<std::function<void()>> dropped; // destroyed without the lock: they may hold anything
    const std::lock_guard lock(m_po_box->mutex);
    m_po_box->window = nullptr;
    dropped.swap(m_po_box->waiting);
}

LRESULT ui_thread::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message != run_next)
        return window::handleMessage(message, wparam, lparam);
    std::function<void()> next;
    {
        const std::lock_guard lock(m_po_box->mutex);
        if (m_po_box->waiting.empty())
            return 0;
        next = std::move(m_po_box->waiting.front());
        m_po_box->waiting.pop_front();
        if (!m_po_box->waiting.empty()) // first, since the function may run a message loop of its own
            PostMessageW(handle(), run_next, 0, 0);
    }
    next();
    return 0;
}

} // namespace korvane
