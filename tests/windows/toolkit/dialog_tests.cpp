// Dialogs over a real window: how they are driven, how they end, where they stand.

#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_box.h"
#include "tests/windows/toolkit/toolkit_fixture.h"

#include <functional>

namespace korvane::test
{
namespace
{

class sample_dialog : public dialog_box
{
public:
    explicit sample_dialog(dialog_settings settings = {"Sample", {300, 200}, true}) : dialog_box(settings) {}
    ~sample_dialog() override { destroy(); }

    std::function<void()> while_shown;
    bool is_refused = false;
    field_name name;
    edit_box field, lines;
    list_box list;
    button other, ok, cancel;

protected:
    std::optional<layout> onFill(failure& why) override
    {
        if (is_refused || !name.create(handle(), "&Name:") || !field.create(handle(), 1, edit_box::access::editable) ||
            !lines.createLines(handle(), 2, edit_box::access::read_only) || !list.create(handle(), 3) ||
            !other.create(handle(), 4, "&Other") || !ok.create(handle(), 5, "OK") ||
            !cancel.create(handle(), 6, "Cancel"))
        {
            fail(why, failure_kind::refused, "a control is missing");
            return std::nullopt;
        }
        list.add("a");
        list.select(0);
        ok.onClick = [this] { end(1); };
        other.onClick = [this] { end(2); };
        cancel.onClick = [this] { end(cancelled); };
        setDefault(ok);
        setFirstFocus(field);
        using way = layout::direction;
        layout rows(way::down);
        rows.setMargins(10);
        rows.add(layout(way::across).add(name, aligned(1)).add(field, share(1, 100)));
        rows.add(lines, share(1, 40)).add(list, share(2, 40));
        rows.add(layout(way::across).add(other).add(share()).add(ok, aligned(2)).add(cancel, aligned(2)));
        return rows;
    }
    void onShown() override
    {
        if (while_shown)
            while_shown();
    }
};

class dialog_test : public control_test
{
protected:
    int run(sample_dialog& dialog)
    {
        failure why;
        const int result = dialog.run(handle(), why);
        EXPECT_FALSE(why) << describe(why);
        EXPECT_TRUE(IsWindowEnabled(handle()));
        EXPECT_EQ(dialog_box::innermost(), nullptr);
        return result;
    }
    static void post(const control& to, WPARAM key)
    {
        SetFocus(to.handle());
        PostMessageW(to.handle(), WM_KEYDOWN, key, 1);
    }
};

TEST_F(dialog_test, enterAndEscapeEndItWhereverTheFocusIs)
{
    sample_dialog dialog;
    const struct
    {
        const control& focused;
        WPARAM key;
        int result;
    } rows[] = {{dialog.field, VK_RETURN, 1}, {dialog.list, VK_RETURN, 1},   {dialog.lines, VK_RETURN, 1},
                {dialog.other, VK_RETURN, 2}, {dialog.cancel, VK_RETURN, 0}, {dialog.field, VK_ESCAPE, 0},
                {dialog.lines, VK_ESCAPE, 0}, {dialog.list, VK_ESCAPE, 0},   {dialog.ok, VK_ESCAPE, 0}};
    for (const auto& row : rows)
    {
        dialog.while_shown = [&] {
            EXPECT_EQ(GetFocus(), dialog.field.handle());
            EXPECT_FALSE(IsWindowEnabled(handle()));
            EXPECT_EQ(dialog_box::innermost(), dialog.handle());
            post(row.focused, row.key);
        };
        EXPECT_EQ(run(dialog), row.result) << &row - rows;
    }
    // A list with something of its own to do takes Enter, and only that.
    std::string heard;
    dialog.while_shown = [&] {
        dialog.list.onActivate = [&](int row) {
            heard += std::to_string(row);
            post(dialog.lines, VK_TAB);
            PostMessageW(dialog.list.handle(), WM_KEYDOWN, VK_ESCAPE, 1);
        };
        post(dialog.list, VK_RETURN);
    };
    EXPECT_EQ(run(dialog), dialog_box::cancelled);
    EXPECT_EQ(heard, "0");
}

TEST_F(dialog_test, theButtonThatEnterPressesLooksLikeIt)
{
    sample_dialog dialog;
    const auto isDefault = [](const button& asked) {
        return (GetWindowLongPtrW(asked.handle(), GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    };
    dialog.while_shown = [&] {
        EXPECT_TRUE(isDefault(dialog.ok) && !isDefault(dialog.other));
        SetFocus(dialog.other.handle());
        EXPECT_TRUE(!isDefault(dialog.ok) && isDefault(dialog.other));
        SetFocus(dialog.list.handle());
        EXPECT_TRUE(isDefault(dialog.ok) && !isDefault(dialog.other));
        dialog.end(7);
    };
    EXPECT_EQ(run(dialog), 7);
}

TEST_F(dialog_test, itEndsWithItsOwnerWithTheProgramAndWhenItCannotBeFilled)
{
    sample_dialog dialog;
    failure why;
    dialog.is_refused = true;
    EXPECT_EQ(dialog.run(handle(), why), dialog_box::cancelled);
    EXPECT_EQ(why.what, "a control is missing");
    EXPECT_TRUE(IsWindowEnabled(handle()));

    dialog.is_refused = false;
    dialog.while_shown = [] { PostQuitMessage(5); };
    EXPECT_EQ(run(dialog), dialog_box::cancelled);
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) && message.wParam == 5);

    dialog.while_shown = [&] { destroy(); };
    why = {};
    EXPECT_EQ(dialog.run(handle(), why), dialog_box::cancelled);
    EXPECT_FALSE(dialog.isOpen() || why);
    EXPECT_EQ(dialog_box::innermost(), nullptr);
}

TEST_F(dialog_test, itIsAsLargeAsItsContentNeedsAtEachDensity)
{
    sample_dialog dialog({"Small", {10, 10}, true});
    dialog.while_shown = [&] {
        RECT place{}, owner{};
        GetWindowRect(dialog.handle(), &place);
        GetWindowRect(handle(), &owner);
        EXPECT_NEAR(place.left + place.right, owner.left + owner.right, 2);
        const auto inside = [&](const control& shown) {
            RECT area{};
            GetWindowRect(shown.handle(), &area);
            MapWindowPoints(nullptr, dialog.handle(), reinterpret_cast<POINT*>(&area), 2);
            return area;
        };
        const auto check = [&](const char* when) {
            const RECT client = dialog.clientRectangle();
            const int margin = dialog.scaled(10);
            EXPECT_EQ(inside(dialog.cancel).right, client.right - margin) << when;
            EXPECT_EQ(inside(dialog.cancel).bottom, client.bottom - margin) << when;
            EXPECT_EQ(inside(dialog.ok).right - inside(dialog.ok).left,
                      inside(dialog.cancel).right - inside(dialog.cancel).left);
            EXPECT_GE(inside(dialog.lines).bottom - inside(dialog.lines).top, dialog.scaled(40)) << when;
            EXPECT_GE(inside(dialog.ok).left, inside(dialog.other).right) << when;
        };
        check("at first");
        const LONG height = inside(dialog.ok).bottom - inside(dialog.ok).top;
        const unsigned dpi = dialog.dpi() * 2;
        RECT suggested{place.left, place.top, place.left + 700, place.top + 500};
        SendMessageW(dialog.handle(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
        check("at twice the density");
        EXPECT_NEAR(inside(dialog.ok).bottom - inside(dialog.ok).top, 2 * height, 6);
        SetWindowPos(dialog.handle(), nullptr, 0, 0, 20, 20, SWP_NOMOVE | SWP_NOZORDER);
        check("as small as it gets");
        dialog.end(1);
    };
    EXPECT_EQ(run(dialog), 1);
}

} // namespace
} // namespace korvane::test
