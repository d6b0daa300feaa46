#pragma once

// When the render thread draws. The window thread posts requests (a changed view, a new size, an end); the render
// thread sleeps until there is one, or until the next frame of something that moves. Presenting waits for the vertical
// blank, and that alone paces where it does: the limit here is a little shorter than a screen's interval and only
// matters where presenting does not wait (a virtual screen, a driver set so). Portable.

#include "Korvane/viewer/view_state.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace korvane
{

// What the window thread has asked for since the last frame.
struct frame_request
{
    view_state view;
    std::uint32_t width = 0; // client size in pixels; 0: nothing can be drawn
    std::uint32_t height = 0;
    bool is_visible = false; // neither hidden nor minimised
    bool is_moving = false;  // the picture changes by itself
    bool must_stop = false;  // nothing is to be drawn any more
    // Of next(): one of many that follow each other, of an animation, a turned camera or turned light. When they end,
    // one more frame is due that is not.
    bool is_quick = false;
};

class frame_pacer
{
public:
    using clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds settled{150}; // so long after the last change the picture stands

    frame_pacer() { postRefreshRate(0); }

    // Window thread.
    void post(const view_state& view);
    void postSize(std::uint32_t width, std::uint32_t height);
    void postVisible(bool is_visible);
    // While it moves one frame follows the other, at most view_state::frame_limit a second.
    void postMoving(bool is_moving);
    void postRefreshRate(unsigned hertz); // of the screen; 0 and 1: not known
    void redraw();
    void stop();

    // Render thread. Waits until a frame is due and returns the whole request.
    [[nodiscard]] frame_request next();
    // The frame that was due could not be shown: it is due again after a pause.
    void retryAfter(std::chrono::milliseconds pause);

private:
    template <class change>
    void request(change&& make);
    std::optional<clock::time_point> due() const; // nothing: only when something is posted

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    frame_request m_request;
    bool m_follows = false;              // the last turn came soon after the one before
    bool m_owes_whole = false;           // the last frame was a quick one
    clock::time_point m_last_turn{};     // of camera or light
    bool m_is_dirty = false;             // something has changed since the last frame
    clock::duration m_shortest_interval; // from one frame's begin to the next
    clock::time_point m_last_frame{};    // its begin
    clock::time_point m_earliest{};      // of the next frame
};

} // namespace korvane
