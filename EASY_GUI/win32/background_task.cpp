#include "EASY_GUI/win32/background_task.h"

#include <exception>
#include <utility>

namespace korvane
{

background_task::background_task(const ui_thread& thread, listeners told)
    : m_box(thread.box())
    , m_told(std::move(told))
    , m_po_self(std::make_shared<background_task*>(this))
{
}

background_task::~background_task()
{
    *m_po_self = nullptr; // posted functions run on this thread, later
    {
        const std::lock_guard lock(m_desk.mutex);
        m_desk.is_over = true;
        m_desk.waiting.reset();
        m_desk.stop.request_stop();
    }
    m_desk.changed.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

void background_task::start(task work)
{
    {
        const std::lock_guard lock(m_desk.mutex);
        m_desk.stop.request_stop();
        m_desk.stop = std::stop_source();
        m_desk.waiting = std::move(work);
        m_desk.progress.reset();
        ++m_desk.number;
    }
    m_is_running = true;
    m_desk.changed.notify_all();
    if (!m_worker.joinable())
        m_worker = std::thread([this] { run(); });
}

void background_task::stop()
{
    const std::lock_guard lock(m_desk.mutex);
    m_desk.stop.request_stop();
    m_desk.waiting.reset();
    ++m_desk.number;
    m_is_running = false;
}

void background_task::requestStop()
{
    const std::lock_guard lock(m_desk.mutex);
    m_desk.stop.request_stop();
}

void background_task::run()
{
    for (;;)
    {
        std::unique_lock lock(m_desk.mutex);
        m_desk.changed.wait(lock, [this] { return m_desk.is_over || m_desk.waiting; });
        if (m_desk.is_over)
            return;
        const task work = std::move(*m_desk.waiting);
        m_desk.waiting.reset();
        const std::size_t number = m_desk.number;
        const work_port port = portFor(number, m_desk.stop.get_token());
        lock.unlock();
        answer done;
        try
        {
            done = work(port);
        }
        catch (const std::exception& error)
        {
            done = [this, what = std::string(error.what())] {
                if (m_told.threw)
                    m_told.threw(what);
            };
        }
        m_box.post([self = m_po_self, number, done = std::move(done)] {
            if (*self != nullptr)
                (*self)->finish(number, done);
        });
    }
}

work_port background_task::portFor(std::size_t number, std::stop_token stop)
{
    work_port port;
    port.stop = std::move(stop);
    port.log = [this](const std::string& line) {
        m_box.post([self = m_po_self, line] {
            if (*self != nullptr)
                tell((*self)->m_told.log, line);
        });
    };
    port.progress = [this, number](const work_progress& now) {
        const std::lock_guard lock(m_desk.mutex);
        if (number != m_desk.number)
            return;
        const bool is_on_its_way = m_desk.progress.has_value();
        m_desk.progress = now;
        if (is_on_its_way)
            return;
        m_box.post([self = m_po_self, number] {
            background_task* const task = *self;
            if (task == nullptr)
                return;
            std::unique_lock taken(task->m_desk.mutex);
            if (number != task->m_desk.number)
                return;
            const std::optional<work_progress> latest = std::exchange(task->m_desk.progress, std::nullopt);
            taken.unlock();
            if (latest && task->m_told.progress)
                task->m_told.progress(*latest);
        });
    };
    return port;
}

void background_task::finish(std::size_t number, const answer& done)
{
    {
        const std::lock_guard lock(m_desk.mutex);
        if (number != m_desk.number)
            return;
    }
    m_is_running = false;
    if (done)
        done(); // may start other work, or destroy the task
}

} // namespace korvane
