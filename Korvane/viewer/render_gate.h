#pragma once

// How the window thread exchanges what the render thread shows. A scene is one value behind a pointer; only the
// exchange of the pointer is guarded, so that neither thread waits for the other's work: the window thread closes the
// gate (the "render enabled" flag goes down), waits until the render thread is not between enter() and leave() (the
// "idle" flag), exchanges, and opens it again. The flags cannot lie from the last time, for the render thread claims
// its place before it looks whether the gate is open. Portable; runs under the thread sanitizer in the native tests.

#include <atomic>
#include <memory>
#include <thread>

namespace korvane
{

class render_gate
{
public:
    // Window thread. Afterwards the render thread does not enter until the gate is opened. Waits only for a pointer to
    // be copied.
    void close()
    {
        m_is_open.store(false);
        while (m_is_inside.load())
            std::this_thread::yield(); // atomic::wait hangs under Wine
    }
    void open() { m_is_open.store(true); }

    // Render thread: true when it may look; leave() belongs to it then.
    [[nodiscard]] bool enter()
    {
        m_is_inside.store(true);
        if (m_is_open.load())
            return true;
        m_is_inside.store(false);
        return false;
    }
    void leave() { m_is_inside.store(false); }

private:
    std::atomic<bool> m_is_open{true};    // written by the window thread only
    std::atomic<bool> m_is_inside{false}; // written by the render thread only
};

// An immutable value behind the gate: published by the window thread, taken whole by the render thread.
template <class type>
class gated_value
{
public:
    // Window thread. The former value goes, where nobody else holds it, when the gate is open again.
    void publish(std::shared_ptr<const type> next)
    {
        m_gate.close();
        m_value.swap(next);
        m_gate.open();
    }
    // Render thread. False, and the target stays, while the value is being exchanged.
    [[nodiscard]] bool take(std::shared_ptr<const type>& target)
    {
        if (!m_gate.enter())
            return false;
        std::shared_ptr<const type> taken = m_value;
        m_gate.leave();
        target.swap(taken); // freeing the former value may take long
        return true;
    }

private:
    render_gate m_gate;
    std::shared_ptr<const type> m_value;
};

} // namespace korvane
