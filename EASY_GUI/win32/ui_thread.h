#pragma once

// Hands functions to the thread of a window. Whoever has long work done keeps a ui_thread as a member; workers get its
// mailbox, a value that may be copied to any thread and outlive the window. The functions run in the order in which
// they were posted, from whatever message loop the window's thread is in, also that of a box or a menu. Those that wait
// when the ui_thread goes are dropped, and later ones are not taken.

#include "EASY_GUI/win32/window.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace korvane
{

class ui_thread : private window
{
    struct post_box;

public:
    class mailbox
    {
    public:
        // Any thread. False: the window is gone, the function was dropped.
        bool post(std::function<void()> function) const;

    private:
        friend class ui_thread;
        explicit mailbox(std::shared_ptr<post_box> box) : m_po_box(std::move(box)) {}
        std::shared_ptr<post_box> m_po_box;
    };

    ui_thread() : m_po_box(std::make_shared<post_box>()) {}
    ~ui_thread() override { destroy(); }

    // On the thread that is to run the functions.
    [[nodiscard]] bool open(failure& why);
    mailbox box() const { return mailbox(m_po_box); }
    // Runs nothing but posted functions until it is so. For work that is about to end.
    void runUntil(const std::function<bool()>& is_so);

protected:
    void onDestroyed() override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    struct post_box
    {
        std::mutex mutex; // guards the others
        HWND window = nullptr;
        std::deque<std::function<void()>> waiting;
    };

    std::shared_ptr<post_box> m_po_box;
};

} // namespace korvane
