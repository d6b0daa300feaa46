#include "EASY_GUI/win32/modal_work.h"

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/progress_window.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace korvane
{

namespace
{

// Disables the window, and gives it back with the focus where it was.
class disabled_owner
{
public:
    explicit disabled_owner(HWND owner)
        : m_owner(owner != nullptr && IsWindowEnabled(owner) != 0 ? owner : nullptr)
        , m_focus(GetFocus())
    {
        if (m_owner != nullptr)
            EnableWindow(m_owner, FALSE);
    }
    disabled_owner(const disabled_owner&) = delete;
    disabled_owner& operator=(const disabled_owner&) = delete;
    ~disabled_owner() { release(); }

    // Before the window over it goes: the system would activate another program's.
    void release()
    {
        const HWND owner = std::exchange(m_owner, nullptr);
        if (owner == nullptr || IsWindow(owner) == 0)
            return;
        EnableWindow(owner, TRUE);
        if (GetActiveWindow() == owner && m_focus != nullptr && IsChild(owner, m_focus) != 0)
            SetFocus(m_focus);
    }

private:
    HWND m_owner;
    HWND m_focus;
};

struct work_state
{
    bool is_done = false;
    bool is_stopped = false;
    std::exception_ptr thrown;
};

// The end of the work, before the window's thread is told through its messages.
class end_signal
{
public:
    void set()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_is_set = true;
        }
        m_changed.notify_one();
    }
    bool waitFor(std::chrono::milliseconds patience)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, patience, [this] { return m_is_set; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_is_set = false;
};

// Shorter work holds the window's thread, so that nobody sees or presses anything in between.
constexpr std::chrono::milliseconds unnoticed{80};

// Keys that were meant for the window that waits: it still has the focus.
bool isKeyFor(const MSG& message, HWND owner)
{
    return owner != nullptr && message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST &&
           (message.hwnd == owner || IsChild(owner, message.hwnd) != 0);
}

// Until the work is done; the exit code of a WM_QUIT that came meanwhile. The window appears behind the patience.
std::optional<int> pump(const work_state& state, HWND owner, progress_window& shown, std::chrono::milliseconds patience,
                        background_task& task)
{
    std::optional<int> quit;
    UINT_PTR timer = SetTimer(nullptr, 0, static_cast<UINT>(patience.count()), nullptr);
    MSG message{};
    while (!state.is_done)
    {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
        {
            quit = static_cast<int>(message.wParam);
            task.requestStop();
        }
        else if (message.hwnd == nullptr && message.message == WM_TIMER && message.wParam == timer)
        {
            KillTimer(nullptr, std::exchange(timer, 0));
            failure why; // without the window the work is done all the same
            static_cast<void>(shown.showBeside(IsWindowVisible(owner) != 0 ? owner : nullptr, why));
        }
        else if (!isKeyFor(message, owner) && !dialog_box::takeKey(message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    if (timer != 0)
        KillTimer(nullptr, timer);
    return quit;
}

} // namespace

bool modal_work::run(const std::function<void(const work_port&)>& work) const
{
    ui_thread thread;
    failure why;
    if (!thread.open(why)) // then the person waits without a word
        return work({{}, {}, log}), true;

    work_state state;
    end_signal end;
    progress_window window(title, can_stop);
    background_task task(thread, {[&window](const work_progress& now) { window.setProgress(now); }, log, {}});
    window.onStop = [&] { task.requestStop(); };
    task.start([&](const work_port& port) -> background_task::answer {
        std::exception_ptr thrown;
        try
        {
            work(port);
        }
        catch (...)
        {
            thrown = std::current_exception();
        }
        end.set();
        return [&state, thrown, is_stopped = port.isStopped()] { state = {true, is_stopped, thrown}; };
    });
    std::optional<int> quit;
    if (end.waitFor(unnoticed))
        thread.runUntil([&state] { return state.is_done; });
    else
    {
        disabled_owner disabled(owner);
        quit = pump(state, owner, window, patience, task);
        disabled.release();
        window.destroy();
    }
    if (quit)
        PostQuitMessage(*quit);
    if (state.thrown)
        std::rethrow_exception(state.thrown);
    return !state.is_stopped;
}

} // namespace korvane
