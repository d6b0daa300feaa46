#pragma once

// The last steps of a program that cannot go on: unsaved edits are kept, the log gets the reason, and the person sees
// both in a box. Whoever meets the end reports it, on any thread. The edits are written and logged there and then, from
// what the keeper holds, so that no thread has to wait for another. The box is the window thread's, over the main
// window and while nobody can work in it; a window thread that does not answer, since it waits for the one that reports
// or hangs, leaves the box to that one. Lives on the window thread, and longer than all that may report.

#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/document/edit_keeper.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

namespace korvane
{

struct fatal_ports
{
    edit_keeper& keeper;
    log_port log; // any thread
    std::function<void(const std::string& text, HWND owner)>
        show;                  // any thread; a null owner: on another one than it has
    std::function<void()> end; // ends the process
};

class fatal_end : private window
{
public:
    explicit fatal_end(fatal_ports ports) : m_ports(std::move(ports)) {}
    ~fatal_end() override { destroy(); }

    [[nodiscard]] bool
    open(failure& why); // on the window thread; before that and without it, all is done where it is met
    void setOwner(HWND main_window) { m_owner = main_window; }

    // Ends the process, except for a second report while the first one's box is open on the same thread.
    void report(const std::string& reason);

    static constexpr std::chrono::seconds patience{2}; // with the window thread

protected:
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    enum class showing
    {
        nobody,
        window_thread,
        reporter
    };

    std::string lastWords(const std::string& reason);
    bool handOver();

    fatal_ports m_ports;
    std::atomic<HWND> m_owner{nullptr};
    std::atomic<bool> m_is_reported{false};
    DWORD m_window_thread = 0; // 0: not open
    HWND m_mailbox = nullptr;
    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    showing m_showing = showing::nobody;
    bool m_is_over = false; // the window thread has ended the process, or a test's instead of it
    std::string m_text;
};

} // namespace korvane
