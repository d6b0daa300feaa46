// The box of animations, with the main window and a view that records.

#include "tests/support/anim_builder.h"
#include "tests/windows/app/main_window_fixture.h"

#include <commctrl.h>

namespace korvane::test
{
namespace
{

class playback_box_test : public main_window_test
{
protected:
    HWND box() const { return m_window->playbackBox().handle(); }
    HWND at(int id) const { return GetDlgItem(box(), id); }
    std::string textAt(int id) const
    {
        wchar_t text[300] = {};
        SendMessageW(at(id), WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
        return fromWide(text);
    }
    LRESULT rows() const { return SendMessageW(at(control_playback_list), LVM_GETITEMCOUNT, 0, 0); }
    void type(int id, const wchar_t* text)
    {
        SetFocus(at(id));
        SendMessageW(at(id), EM_SETSEL, 0, -1);
        SendMessageW(at(id), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
        pump();
    }
    bool waitForWork()
    {
        return pumpUntil([this] { return !m_window->playbackBox().isWorking(); });
    }
    void openModelWithAnimations()
    {
        test_anim walk;
        writeArchive({{"animations\\skeletons\\humanoid01.anim", walk.bytes()},
                      {"animations\\man\\walk\\fast.anim", walk.bytes()},
                      {"animations\\man\\walk\\slow.anim", walk.bytes()},
                      {"animations\\man\\run.anim", walk.bytes()},
                      {"animations\\man\\damaged.anim", walk.bytes().substr(0, 60)}});
        openWindow();
        ASSERT_TRUE(openFile(write("man.rigid_model_v2", soldier()))); // whose skeleton that is
        choose(document_command::play_animation);
        ASSERT_NE(box(), nullptr);
        ASSERT_TRUE(waitForWork());
    }
};

TEST_F(playback_box_test, isTypedWalkedPlayedAndLeftByKeys)
{
    openModelWithAnimations();
    EXPECT_EQ(rows(), 6);
    EXPECT_EQ(textAt(control_playback_status), "5 animations");
    EXPECT_EQ(GetFocus(), at(control_playback_filter));
    EXPECT_FALSE(IsWindowEnabled(at(control_playback_play)));
    type(control_playback_filter, L"walk man");
    EXPECT_EQ(rows(), 3) << "and the bind pose";
    press(VK_DOWN);
    press(VK_DOWN);
    EXPECT_TRUE(pumpUntil([this] { return m_view.animations == 1; })) << "it plays a moment later";
    EXPECT_EQ(GetFocus(), at(control_playback_filter)) << "one can type on";
    EXPECT_EQ(textAt(control_playback_message), "Shown: slow.anim");
    EXPECT_EQ(textAt(control_playback_play), "||");
    SendMessageW(at(control_playback_next), BM_CLICK, 0, 0);
    EXPECT_EQ(textAt(control_playback_play), "|>") << "a step is looked at";
    SendMessageW(at(control_playback_play), BM_CLICK, 0, 0);
    EXPECT_EQ(textAt(control_playback_play), "||");
    type(control_playback_frame, L"1");
    EXPECT_EQ(textAt(control_playback_play), "|>");
    press(VK_ESCAPE);
    EXPECT_EQ(box(), nullptr);
    EXPECT_EQ(m_view.animations, 1u) << "it goes on";
    choose(document_command::play_animation);
    ASSERT_TRUE(waitForWork());
    EXPECT_EQ(textAt(control_playback_message), "Shown: slow.anim");
    SendMessageW(at(control_playback_list), WM_KEYDOWN, VK_HOME, 0); // the bind pose
    EXPECT_TRUE(pumpUntil([this] { return m_view.animations == 0; }));
}

TEST_F(playback_box_test, whatCannotBeReadLeavesThePoseAndSaysSo)
{
    openModelWithAnimations();
    type(control_playback_filter, L"damaged");
    press(VK_RETURN);
    ASSERT_TRUE(waitForWork());
    EXPECT_EQ(m_view.animations, 0u);
    EXPECT_EQ(textAt(control_playback_message).find("\"damaged.anim\" is not played: "), 0u);
    ASSERT_FALSE(m_prompt.shown.empty()) << "Enter asked for it";
    EXPECT_EQ(m_prompt.shown.back().first, "Fatal Error!");
    test_model stone = soldier();
    stone.skeleton_id = "";
    ASSERT_TRUE(openFile(write("stone.rigid_model_v2", stone)));
    EXPECT_TRUE(
        pumpUntil([this] { return textAt(control_playback_message).find("names no skeleton") != std::string::npos; }));
}

} // namespace
} // namespace korvane::test
