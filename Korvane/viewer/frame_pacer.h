#pragma once

// When the render thread draws. The window thread posts requests (a changed view, a new size, an end); the render
// thread sleeps until there is one and never draws faster than the limit: vertical sync is not honoured everywhere.
// Portable.

#include "Korvane/viewer/view_state.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace korvane
{

// What the window thread has asked for since the last frame.
struct frame_request
{
    view_state view;
    std::uint32_t width = 0; // client size in pixels; 0: nothing can be drawn
    std::uint32_t height = 0;
    bool is_dirty = false;   // something has changed
    bool is_visible = false; // neither hidden nor minimised
    bool must_stop = false;
};

class frame_pacer
{
public:
    using clock = std::chrono::steady_clock;
    static constexpr std::chrono::microseconds shortest_interval{16667}; // 60 frames a second

    // Window thread.
    void post(const view_state& view);
    void postSize(std::uint32_t width, std::uint32_t height);
    void postVisible(bool is_visible);
    void wake(); // a frame is wanted, or the gate has changed
    void stop();

    // Render thread. Waits until a frame is due and returns the whole request, its dirty mark taken. While the window
    // cannot be seen it returns only to let the gate be looked at; is_dirty is then false and the mark is kept.
    [[nodiscard]] frame_request next();
    // The frame that was due could not be shown: it is due again after a pause.
    void retryAfter(std::chrono::milliseconds pause);

private:
    bool isDue() const { return m_request.must_stop || m_is_woken || (m_request.is_dirty && canBeSeen()); }
    bool canBeSeen() const { return m_request.is_visible && m_request.width > 0 && m_request.height > 0; }

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    frame_request m_request;
    bool m_is_woken = false;
    clock::time_point m_next_frame{}; // render thread only
};

} // namespace korvane
