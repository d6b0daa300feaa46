#include "Korvane/viewer/frame_pacer.h"

namespace korvane
{

void frame_pacer::post(const view_state& view)
{
    const std::lock_guard lock(m_mutex);
    m_request.view = view;
    m_request.is_dirty = true;
    m_changed.notify_one();
}

void frame_pacer::postSize(std::uint32_t width, std::uint32_t height)
{
    const std::lock_guard lock(m_mutex);
    m_request.width = width;
    m_request.height = height;
    m_request.is_dirty = true;
    m_changed.notify_one();
}

void frame_pacer::postVisible(bool is_visible)
{
    const std::lock_guard lock(m_mutex);
    m_request.is_visible = is_visible;
    m_request.is_dirty = true;
    m_changed.notify_one();
}

void frame_pacer::wake()
{
    const std::lock_guard lock(m_mutex);
    m_request.is_dirty = true;
    m_is_woken = true;
    m_changed.notify_one();
}

void frame_pacer::stop()
{
    const std::lock_guard lock(m_mutex);
    m_request.must_stop = true;
    m_changed.notify_one();
}

void frame_pacer::retryAfter(std::chrono::milliseconds pause)
{
    const std::lock_guard lock(m_mutex);
    m_request.is_dirty = true;
    m_next_frame = clock::now() + pause;
}

frame_request frame_pacer::next()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return isDue(); });
    // The limit holds between frames that are drawn: a stop or a waiting window thread is answered at once.
    while (!m_request.must_stop && !m_is_woken && clock::now() < m_next_frame)
        m_changed.wait_until(lock, m_next_frame);
    m_is_woken = false;

    frame_request taken = m_request;
    taken.is_dirty = m_request.is_dirty && canBeSeen();
    if (taken.is_dirty)
    {
        m_request.is_dirty = false;
        m_next_frame = clock::now() + shortest_interval;
    }
    return taken;
}

} // namespace korvane
