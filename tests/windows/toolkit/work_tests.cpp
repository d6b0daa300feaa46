// Work beside the window and work that the window waits for, in a real message loop.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/modal_work.h"
#include "tests/windows/toolkit/toolkit_fixture.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace korvane::test
{
namespace
{

using namespace std::chrono_literals;

class work_test : public control_test
{
protected:
    void SetUp() override
    {
        control_test::SetUp();
        failure why;
        ASSERT_TRUE(m_thread.open(why)) << describe(why);
    }
    static void pumpUntil(const std::function<bool()>& is_so)
    {
        const auto end = std::chrono::steady_clock::now() + 60s;
        while (!is_so() && std::chrono::steady_clock::now() < end)
        {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
            pump();
        }
        EXPECT_TRUE(is_so());
    }
    static void waitForStop(const work_port& port)
    {
        const auto end = std::chrono::steady_clock::now() + 60s;
        while (!port.isStopped() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(1ms);
    }
    // Tries it from a timer until it succeeds, in whatever loop the thread is.
    void whileWorking(std::function<bool()> act)
    {
        m_act = std::move(act);
        SetTimer(handle(), 1, 10, nullptr);
    }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_TIMER && m_act && m_act())
        {
            m_act = nullptr;
            KillTimer(handle(), 1);
        }
        return control_test::handleMessage(message, wparam, lparam);
    }
    modal_work work(bool has_owner = true) const
    {
        modal_work modal;
        modal.owner = has_owner ? handle() : nullptr;
        modal.title = "Long work of the test";
        modal.patience = 20ms;
        return modal;
    }
    static HWND progressWindow()
    {
        const HWND found = FindWindowW(nullptr, L"Long work of the test");
        return found != nullptr && IsWindowVisible(found) ? found : nullptr;
    }

    ui_thread m_thread;
    std::function<bool()> m_act;
};

TEST_F(work_test, postedFunctionsRunInOrderAndAreDroppedWithTheWindow)
{
    std::string ran;
    const auto held = std::make_shared<int>(0);
    ui_thread::mailbox box = m_thread.box();
    {
        ui_thread other;
        failure why;
        ASSERT_TRUE(other.open(why));
        box = other.box();
        std::thread([&] {
            for (const char letter : {'a', 'b', 'c'})
                EXPECT_TRUE(box.post([&ran, letter] { ran += letter; }));
        }).join();
        EXPECT_EQ(ran, "") << "never on the thread that posts";
        pump();
        EXPECT_EQ(ran, "abc");
        EXPECT_TRUE(box.post([&ran, held] { ran += "late"; }));
    }
    pump();
    EXPECT_EQ(ran, "abc");
    EXPECT_EQ(held.use_count(), 1) << "what was dropped is destroyed";
    EXPECT_FALSE(box.post([] {}));
}

TEST_F(work_test, onlyTheNewestWorkAnswersAndAnExceptionIsTold)
{
    std::string answers, threw, log;
    {
        background_task task(
            m_thread,
            {{}, [&](const std::string& line) { log += line; }, [&](const std::string& what) { threw = what; }});
        for (int i = 0; i < 20; ++i)
            task.start([&answers, i](const work_port& port) -> background_task::answer {
                tell(port.log, i == 19 ? "last" : "");
                if (i < 19)
                    waitForStop(port);
                return [&answers, i] { answers += std::to_string(i) + ' '; };
            });
        EXPECT_TRUE(task.isRunning());
        pumpUntil([&] { return !task.isRunning(); });
        EXPECT_EQ(answers, "19 ");
        EXPECT_EQ(log, "last");

        task.start([](const work_port&) -> background_task::answer { throw std::runtime_error("no memory"); });
        pumpUntil([&] { return !task.isRunning(); });
        EXPECT_EQ(threw, "no memory");

        task.start([&answers](const work_port& port) -> background_task::answer {
            waitForStop(port);
            return [&answers] { answers += "after the end"; };
        });
    } // asks it to stop, and waits
    pump();
    EXPECT_EQ(answers, "19 ");
}

TEST_F(work_test, shortWorkShowsNothingAndLongWorkIsStoppedByItsButton)
{
    bool was_shown = false;
    EXPECT_TRUE(work().run([&](const work_port&) { was_shown = progressWindow() != nullptr; }));
    EXPECT_FALSE(was_shown);

    bool was_enabled = true;
    whileWorking([&] {
        const HWND shown = progressWindow();
        if (shown == nullptr)
            return false;
        was_enabled = IsWindowEnabled(handle()) != 0;
        PostMessageW(shown, WM_KEYDOWN, VK_ESCAPE, 1);
        return true;
    });
    bool was_stopped = false;
    EXPECT_FALSE(work().run([&](const work_port& port) {
        port.report(1, 2, "half");
        waitForStop(port);
        was_stopped = port.isStopped();
    }));
    EXPECT_TRUE(was_stopped);
    EXPECT_FALSE(was_enabled) << "whoever started the work waits for it";
    EXPECT_TRUE(IsWindowEnabled(handle()));
    EXPECT_EQ(progressWindow(), nullptr);
}

TEST_F(work_test, whatTheWorkThrowsArrivesWhereItWasStarted)
{
    for (const auto duration : {0ms, 150ms})
        EXPECT_THROW(static_cast<void>(work().run([duration](const work_port&) {
                         std::this_thread::sleep_for(duration);
                         throw std::runtime_error("no memory");
                     })),
                     std::runtime_error);
    EXPECT_TRUE(IsWindowEnabled(handle()));
}

TEST_F(work_test, theEndOfTheProgramStopsWorkAndReachesTheProgramsLoop)
{
    whileWorking([] { return PostQuitMessage(7), true; });
    EXPECT_FALSE(work().run([](const work_port& port) { waitForStop(port); }));
    MSG message{};
    bool is_told = false;
    while (!is_told && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        is_told = message.message == WM_QUIT && message.wParam == 7;
    EXPECT_TRUE(is_told);
}

} // namespace
} // namespace korvane::test
