// What a person does with the controls of a real window, and what their handlers get.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/clipboard.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/image_view.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/menu.h"
#include "EASY_GUI/win32/rich_edit.h"
#include "EASY_GUI/win32/status_bar.h"
#include "EASY_GUI/win32/tab_view.h"
#include "tests/windows/toolkit/toolkit_fixture.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <richedit.h>
#include <thread>

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

TEST_F(control_test, textsThatAreCutOffAreTooltips)
{
    label text;
    edit_box edit;
    button pressed;
    ASSERT_TRUE(text.create(handle(), 1, "a text of some length") &&
                edit.create(handle(), 2, edit_box::access::read_only) && pressed.create(handle(), 3, "Replace &All"));
    edit.setText("C:\\a long path\\soldier.dds");
    edit.setTip("of the model");
    for (control* const each : {static_cast<control*>(&text), static_cast<control*>(&edit)})
        each->place(0, 0, 400, 20);
    EXPECT_EQ(tipOf(text, {5, 5}), "");
    EXPECT_EQ(tipOf(edit, {5, 5}), "of the model");
    for (control* const each : {static_cast<control*>(&text), static_cast<control*>(&edit)})
        each->place(0, 0, 40, 20);
    EXPECT_EQ(tipOf(text, {5, 5}), "a text of some length");
    EXPECT_EQ(tipOf(edit, {5, 5}), "C:\\a long path\\soldier.dds\r\nof the model");
    const SIZE natural = pressed.naturalSize();
    pressed.place(0, 0, natural.cx, natural.cy);
    EXPECT_EQ(tipOf(pressed, {5, 5}), "") << "a button fits into its natural size";
}

TEST_F(control_test, picturesKeepTheirProportionsAndShowWhereTheyAreTransparent)
{
    image_view view;
    failure why;
    ASSERT_TRUE(view.createIn(handle(), why)) << describe(why);
    SetWindowPos(view.handle(), nullptr, 0, 0, 100, 60, SWP_NOZORDER);
    // Two pixels: opaque red, and green that is not seen at all.
    const std::byte picture[] = {std::byte{255}, {}, {}, std::byte{255}, {}, std::byte{255}, {}, {}};
    view.setPicture(2, 1, picture);
    view.setPicture(3, 1, picture); // which the bytes are too few for
    RedrawWindow(view.handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const HDC context = GetDC(view.handle());
    EXPECT_EQ(GetPixel(context, 5, 30), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(context, 5, 2), GetSysColor(COLOR_BTNFACE)) << "above the picture";
    const COLORREF behind = GetPixel(context, 90, 30);
    EXPECT_TRUE(behind == RGB(255, 255, 255) || behind == RGB(204, 204, 204)) << behind;
    ReleaseDC(view.handle(), context);
}

TEST_F(control_test, picturesAreZoomedAndMovedByMouseAndKeys)
{
    image_view view;
    failure why;
    ASSERT_TRUE(view.createIn(handle(), why, image_view::use::zoom)) << describe(why);
    SetWindowPos(view.handle(), nullptr, 0, 0, 100, 100, SWP_NOZORDER);
    std::vector<std::byte> picture(std::size_t{200} * 200 * 4, std::byte{255});
    view.setPicture(200, 200, picture);
    EXPECT_DOUBLE_EQ(view.scale(), 0.5);
    int told = 0;
    std::optional<POINT> pixel;
    view.onZoomed = [&] { ++told; };
    view.onPointed = [&](const std::optional<POINT>& at) { pixel = at; };
    const auto press = [&](WPARAM key) { SendMessageW(view.handle(), WM_KEYDOWN, key, 0); };
    press('1');
    EXPECT_DOUBLE_EQ(view.scale(), 1);
    SendMessageW(view.handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 50));
    SendMessageW(view.handle(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(70, 80));
    SendMessageW(view.handle(), WM_LBUTTONUP, 0, MAKELPARAM(70, 80));
    ASSERT_TRUE(pixel);
    EXPECT_EQ(pixel->x, 100) << "what was taken hold of follows the mouse";
    EXPECT_EQ(pixel->y, 100);
    SendMessageW(view.handle(), WM_MOUSEMOVE, 0, MAKELPARAM(0, 0));
    EXPECT_EQ(pixel->x, 30);
    press(VK_OEM_PLUS);
    EXPECT_DOUBLE_EQ(view.scale(), 1.25);
    press('0');
    EXPECT_DOUBLE_EQ(view.scale(), 0.5);
    EXPECT_EQ(told, 4);
    view.setEmpty("nothing");
    press('1');
    EXPECT_EQ(told, 4) << "there is nothing to zoom";
}

TEST_F(control_test, textGoesOverTheClipboardUnlessItIsHeld)
{
    failure why;
    ASSERT_TRUE(setClipboardText(handle(), "path 李\r\nsecond", why)) << describe(why);
    EXPECT_EQ(clipboardText(handle(), why), "path 李\r\nsecond") << describe(why);
    std::mutex gate;
    gate.lock();
    std::atomic<bool> is_held{false};
    std::thread other([&] {
        is_held = OpenClipboard(nullptr) != FALSE;
        const std::lock_guard until_unlocked(gate);
        CloseClipboard();
    });
    while (!is_held)
        Sleep(1);
    EXPECT_FALSE(setClipboardText(handle(), "lost", why));
    EXPECT_NE(why.what.find("in use by another program"), std::string::npos) << why.what;
    gate.unlock();
    other.join();
    EXPECT_EQ(clipboardText(handle(), why), "path 李\r\nsecond");
}

TEST_F(control_test, formattedTextIsWhatItsRunsSay)
{
    rich_edit text;
    ASSERT_TRUE(text.create(handle(), 1));
    text.place(0, 0, 300, 200);
    const rich_run runs[] = {{"Heading\n", rich_run::style::heading}, {"plain ", {}}, {"李", rich_run::style::bold}};
    text.setRuns(runs);
    text.setFont(font(dpi(), font::weight::regular)); // all is made again
    EXPECT_EQ(text.text(), "Heading\r\nplain 李");
    const auto isBold = [&](LPARAM first) {
        CHARFORMATW format{};
        format.cbSize = sizeof format;
        SendMessageW(text.handle(), EM_SETSEL, static_cast<WPARAM>(first), first + 1);
        SendMessageW(text.handle(), EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
        return (format.dwEffects & CFE_BOLD) != 0;
    };
    EXPECT_TRUE(isBold(0) && !isBold(9) && isBold(14));
}

TEST_F(control_test, menusAreMadeFromRowsWithSubmenus)
{
    menu made = menu::makePopup();
    const menu_row rows[] = {
        {1, "&One"}, {}, {2, "Two", false, true}, {0, "More", true, false, {{3, "Three"}, {4, "Four"}}}};
    made.add(rows);
    EXPECT_EQ(GetMenuItemCount(made.handle()), 4);
    made.setEnabled(4, false);
    const auto stateOf = [&](UINT command) { return GetMenuState(made.handle(), command, MF_BYCOMMAND); };
    EXPECT_EQ(stateOf(1), UINT{0});
    EXPECT_EQ(stateOf(2), UINT{MF_GRAYED | MF_CHECKED});
    EXPECT_EQ(stateOf(3), UINT{0});
    EXPECT_EQ(stateOf(4), UINT{MF_GRAYED}) << "in a submenu";
    DestroyMenu(made.handle());
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
