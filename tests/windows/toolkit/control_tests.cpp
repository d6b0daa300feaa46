// What a person does with the controls of a real window, and what their handlers get.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/status_bar.h"
#include "EASY_GUI/win32/tab_view.h"
#include "tests/windows/toolkit/toolkit_fixture.h"

#include <memory>

namespace korvane::test
{
namespace
{

TEST_F(control_test, whatThePersonDoesComesBackToTheControlAndElseToTheWindow)
{
    button pressed, without_handler;
    check_box box;
    combo_box list;
    edit_box edit;
    ASSERT_TRUE(pressed.create(handle(), 1, "&Press") && without_handler.create(handle(), 2, "Other") &&
                box.create(handle(), 3, "Box") && list.create(handle(), 4) &&
                edit.create(handle(), 5, edit_box::access::editable));
    pressed.place(0, 0, 50, 20);
    without_handler.place(0, 20, 50, 20);
    pressed.onClick = [&] { m_heard += "pressed "; };
    box.onClick = [&](bool is_checked) { m_heard += is_checked ? "checked " : "unchecked "; };
    list.onSelect = [&](int position) { m_heard += "chosen" + std::to_string(position) + " "; };
    edit.onChange = [&] { m_heard += "changed=" + edit.text() + " "; };
    for (const char* const entry : {"a", "b", "c"})
        list.add(entry);

    list.select(0);
    edit.setText("x");
    box.check(false);
    EXPECT_EQ(m_heard, "") << "what the program does calls nothing";
    SendMessageW(pressed.handle(), BM_CLICK, 0, 0);
    SendMessageW(without_handler.handle(), BM_CLICK, 0, 0);
    key(box, VK_SPACE);
    key(box, VK_SPACE);
    key(list, VK_DOWN);
    SendMessageW(edit.handle(), EM_SETSEL, 1, 1);
    SendMessageW(edit.handle(), WM_CHAR, 'y', 1);
    EXPECT_NE(m_heard.find("pressed window:2 "), std::string::npos) << m_heard;
    EXPECT_NE(m_heard.find("checked unchecked "), std::string::npos) << m_heard;
    EXPECT_NE(m_heard.find("chosen1 "), std::string::npos) << m_heard;
    EXPECT_NE(m_heard.find("changed=xy "), std::string::npos) << m_heard;
}

TEST_F(control_test, aHandlerMayDestroyItsControlAndItsWindow)
{
    auto pressed = std::make_unique<button>();
    ASSERT_TRUE(pressed->create(handle(), 1, "Press"));
    pressed->place(0, 0, 50, 20);
    pressed->onClick = [&, text = std::string(100, 'x')] {
        pressed.reset();
        destroy();
        m_heard = text;
    };
    SendMessageW(pressed->handle(), BM_CLICK, 0, 0);
    EXPECT_EQ(pressed, nullptr);
    EXPECT_EQ(m_heard, std::string(100, 'x')) << "what the handler holds lives as long as it runs";
    EXPECT_FALSE(isOpen());
}

TEST_F(control_test, tabsAreChosenByKeyAndSayWhereTheirPagesAre)
{
    tab_view tabs;
    ASSERT_TRUE(tabs.create(handle(), 1));
    for (const char* const caption : {"Model", "Definition", "Problems"})
        tabs.add(caption);
    tabs.place(10, 20, 300, 200);
    std::string chosen;
    tabs.onSelect = [&](int page) { chosen += std::to_string(page); };
    tabs.select(0);
    SetFocus(tabs.handle());
    key(tabs, VK_RIGHT);
    tabs.selectNext(false);
    tabs.selectNext(false);
    tabs.selectNext(true);
    EXPECT_EQ(chosen, "1202");
    tabs.setCaption(2, "Problems (3)");
    EXPECT_EQ(tabs.caption(2), "Problems (3)");
    const RECT page = tabs.displayRectangle();
    EXPECT_TRUE(page.left >= 10 && page.top > 35 && page.right <= 310 && page.bottom <= 220) << page.top;
}

TEST_F(control_test, theStatusBarCutsWhatIsTooLongAndGivesItBackWhole)
{
    status_bar bar;
    const int widths[] = {0, 60, 100};
    ASSERT_TRUE(bar.create(handle(), 1, widths));
    const auto shown = [&](WPARAM part) {
        wchar_t text[300]{};
        SendMessageW(bar.handle(), SB_GETTEXTW, part, reinterpret_cast<LPARAM>(text));
        return std::wstring(text);
    };
    const std::string text = "saved C:\\a folder with a long name\\another one\\soldier.rigid_model_v2";
    bar.place(0, 370, 300, bar.preferredHeight());
    bar.setPart(0, text);
    EXPECT_TRUE(shown(0).ends_with(L"...")) << "the shares of a narrow bar";
    EXPECT_EQ(bar.part(0), text);
    bar.place(0, 370, 1200, bar.preferredHeight());
    EXPECT_EQ(shown(0), std::wstring(text.begin(), text.end()));
    bar.showProgress(true);
    bar.progress().setPosition(40);
    EXPECT_EQ(bar.progress().position(), 40);
    bar.progress().setUnknown(true);
    bar.progress().setPosition(50);
    EXPECT_EQ(bar.progress().position(), 50);
}

} // namespace
} // namespace korvane::test
