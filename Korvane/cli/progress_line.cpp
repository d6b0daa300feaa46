#include "Korvane/cli/progress_line.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/console.h"

#include <cstdio>
#include <system_error>

namespace korvane
{

namespace
{
constexpr const char* clear_line = "\r\x1b[K";
}

progress_line::~progress_line()
{
    {
        const std::lock_guard lock(m_guard);
        m_is_over = true;
    }
    m_ending.notify_all();
    if (m_helper.joinable())
        m_helper.join();
    clear();
}

void progress_line::show(const std::string& text)
{
    const std::lock_guard lock(m_guard);
    m_text = text;
    if (std::chrono::steady_clock::now() >= m_due)
        return draw();
    if (m_helper.joinable())
        return;
    try
    {
        m_helper = std::thread([this] { showWhenDue(); });
    }
    catch (const std::system_error&) // no more threads: the next call shows it
    {
    }
}

void progress_line::clear()
{
    const std::lock_guard lock(m_guard);
    m_text.clear();
    if (m_is_drawn)
        console::error(clear_line);
    m_is_drawn = false;
}

void progress_line::draw()
{
    std::fflush(stdout); // results stand before it
    // What does not fit into one line could not be taken away again.
    console::error(clear_line + m_text.substr(0, utf8Cut(m_text, console::columns(stderr) - 1)));
    m_is_drawn = true;
}

void progress_line::showWhenDue()
{
    std::unique_lock lock(m_guard);
    const bool is_over = m_ending.wait_until(lock, m_due, [this] { return m_is_over; });
    if (!is_over && !m_text.empty())
        draw();
}

} // namespace korvane
