#pragma once

// How the window thread keeps the render thread from drawing while it replaces what is drawn. The window thread closes
// the gate and waits until the render thread has seen it; then nothing is drawn until it is opened again. Requests are
// numbered: a plain "idle" flag would still be set from the last time after closing, opening and closing again.
// Portable; runs under the thread sanitizer in the native tests.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

namespace korvane
{

class render_gate
{
public:
    // Window thread. Calls wake(), which makes a sleeping render thread come round. True once the render thread has
    // seen the closed gate and draws nothing. False when it did not come within the patience: the gate is closed all
    // the same, but a frame may still be on its way.
    template <class waker>
    [[nodiscard]] bool close(std::chrono::milliseconds patience, waker&& wake)
    {
        const std::uint32_t wanted = m_wanted.fetch_add(1) + 1; // odd: closed
        wake();
        return hasSeen(wanted, patience);
    }
    // Once more for a gate that is closed already.
    [[nodiscard]] bool waitClosed(std::chrono::milliseconds patience) { return hasSeen(m_wanted.load(), patience); }
    void open() { m_wanted.fetch_add(1); } // even: open

    // Render thread, at the top of each frame: true when the frame may be drawn.
    [[nodiscard]] bool enterFrame()
    {
        const std::uint32_t wanted = m_wanted.load();
        m_seen.store(wanted);
        return wanted % 2 == 0;
    }

private:
    bool hasSeen(std::uint32_t wanted, std::chrono::milliseconds patience) const
    {
        const auto until = std::chrono::steady_clock::now() + patience;
        while (m_seen.load() != wanted)
        {
            if (std::chrono::steady_clock::now() > until)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // atomic::wait hangs under Wine
        }
        return true;
    }

    std::atomic<std::uint32_t> m_wanted{1}; // written by the window thread only
    std::atomic<std::uint32_t> m_seen{1};   // written by the render thread only
};

} // namespace korvane
