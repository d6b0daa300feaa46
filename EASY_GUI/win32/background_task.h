#pragma once

// Work beside the window: a worker thread runs it, and what comes of it returns to the window's thread. Work that is
// started while other work runs asks that to stop, is done after it, and takes its place: only the newest answers. For
// previews, checks and scenes; what the person has to wait for is modal_work.
//
// Destroying the task asks the work to stop and waits for it, so work looks at its port's stop often. The task belongs
// to the window's thread.

#include "EASY_GUI/services/work_port.h"
#include "EASY_GUI/win32/ui_thread.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

namespace korvane
{

class background_task
{
public:
    // What is to be done on the window's thread; empty: nothing.
    using answer = std::function<void()>;
    using task = std::function<answer(const work_port&)>;

    // Called on the window's thread, and only for the newest work. Each may be empty.
    struct listeners
    {
        std::function<void(const work_progress&)> progress = {}; // the latest, when the window has time for it
        log_port log = {};                                       // each line, also of work that was replaced
        std::function<void(const std::string& what)> threw = {}; // work that ended with an exception
    };

    background_task(const ui_thread& thread, listeners told);
    background_task(const background_task&) = delete;
    background_task& operator=(const background_task&) = delete;
    ~background_task();

    void start(task work);
    // Asks the work to stop; its answer, if it still gives one, is dropped. Does not wait.
    void stop();
    void requestStop();                             // the same, but it answers
    bool isRunning() const { return m_is_running; } // started, and neither answered nor stopped

private:
    struct desk // what both threads know
    {
        std::mutex mutex; // guards all below
        std::condition_variable changed;
        std::optional<task> waiting;
        std::stop_source stop; // of what runs or waits
        bool is_over = false;
        std::size_t number = 0;                // of the newest work
        std::optional<work_progress> progress; // that was not handed over yet
    };

    void run();
    work_port portFor(std::size_t number, std::stop_token stop);
    void finish(std::size_t number, const answer& done);

    ui_thread::mailbox m_box;
    listeners m_told;
    std::shared_ptr<background_task*> m_po_self; // null pointer inside: gone
    desk m_desk;
    bool m_is_running = false;
    std::thread m_worker; // begun by the first start
};

} // namespace korvane
