#include "Korvane/viewer/frame_pacer.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr unsigned usual_refresh_rate = 60;
constexpr std::uint32_t fewest_quick = 10; // frames a second: fewer are whole

bool isTurned(const view_state& view, const view_state& former)
{
    return view.eye != former.eye || view.light_yaw != former.light_yaw || view.light_pitch != former.light_pitch;
}

frame_pacer::clock::duration seconds(double value)
{
    return std::chrono::duration_cast<frame_pacer::clock::duration>(std::chrono::duration<double>(value));
}

} // namespace

template <class change>
void frame_pacer::request(change&& make)
{
    const std::lock_guard lock(m_mutex);
    make(m_request);
    m_is_dirty = true;
    m_changed.notify_one();
}

void frame_pacer::post(const view_state& view)
{
    request([&](frame_request& wanted) {
        if (isTurned(view, wanted.view))
        {
            const clock::time_point now = clock::now();
            m_follows = now - m_last_turn < settled;
            m_last_turn = now;
        }
        wanted.view = view;
    });
}

void frame_pacer::postSize(std::uint32_t width, std::uint32_t height)
{
    request([&](frame_request& wanted) {
        wanted.width = width;
        wanted.height = height;
    });
}

void frame_pacer::postVisible(bool is_visible)
{
    request([&](frame_request& wanted) { wanted.is_visible = is_visible; });
}

void frame_pacer::postMoving(bool is_moving)
{
    request([&](frame_request& wanted) { wanted.is_moving = is_moving; });
}

void frame_pacer::redraw()
{
    request([](frame_request&) {});
}

void frame_pacer::stop()
{
    request([](frame_request& wanted) { wanted.must_stop = true; });
}

// Three quarters of the interval: whoever waited for the vertical blank is past it.
void frame_pacer::postRefreshRate(unsigned hertz)
{
    const std::lock_guard lock(m_mutex);
    m_shortest_interval = seconds(0.75 / (hertz > 1 ? hertz : usual_refresh_rate));
}

void frame_pacer::retryAfter(std::chrono::milliseconds pause)
{
    const std::lock_guard lock(m_mutex);
    m_is_dirty = true;
    m_earliest = clock::now() + pause;
}

std::optional<frame_pacer::clock::time_point> frame_pacer::due() const
{
    if (m_request.must_stop)
        return clock::time_point::min();
    if (!m_request.is_visible || m_request.width == 0 || m_request.height == 0)
        return std::nullopt;
    if (m_is_dirty)
        return m_earliest;
    if (m_request.is_moving)
        return std::max(m_earliest, m_last_frame + seconds(1.0 / std::max(m_request.view.frame_limit, 1u)));
    if (m_owes_whole)
        return std::max(m_earliest, m_last_turn + settled);
    return std::nullopt;
}

frame_request frame_pacer::next()
{
    std::unique_lock lock(m_mutex);
    for (std::optional<clock::time_point> when = due(); !when || *when > clock::now(); when = due())
    {
        if (when)
            m_changed.wait_until(lock, *when);
        else
            m_changed.wait(lock);
    }
    m_is_dirty = false;
    m_last_frame = clock::now();
    m_earliest = m_last_frame + m_shortest_interval;
    const bool is_turning = m_follows && m_last_frame - m_last_turn < settled;
    m_request.is_quick = is_turning || (m_request.is_moving && m_request.view.frame_limit >= fewest_quick);
    m_owes_whole = m_request.is_quick;
    return m_request;
}

} // namespace korvane
