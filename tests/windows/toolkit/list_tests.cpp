// Lists and trees over models, in a real window.

#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/mark_colour.h"
#include "EASY_GUI/win32/tree_view.h"
#include "tests/windows/toolkit/toolkit_fixture.h"

#include <map>
#include <vector>

namespace korvane::test
{
namespace
{

class name_list : public list_model
{
public:
    std::span<const list_column> columns() const override
    {
        static constexpr list_column all[] = {{"Name", 80}, {"What", 0}};
        return all;
    }
    std::size_t rowCount() const override { return names.size(); }
    std::string text(std::size_t row, std::size_t column) const override
    {
        ++asked;
        return column == 0 ? names.at(row) : "of " + names.at(row);
    }
    row_mark mark(std::size_t row) const override { return row == 1 ? row_mark::error : row_mark::plain; }
    std::string tip(std::size_t row) const override { return row == 1 ? "is missing" : ""; }

    std::vector<std::string> names{"apple", "a name that is too long for its column", "cherry"};
    mutable int asked = 0;
};

TEST_F(control_test, aListTellsWhatIsChosenAndAsksOnlyForWhatIsSeen)
{
    name_list model;
    list_view list;
    ASSERT_TRUE(list.create(handle(), 1, model));
    list.place(0, 0, 300, 150);
    list.onSelect = [&](int row) { m_heard += "row" + std::to_string(row) + " "; };
    list.onActivate = [&](int row) { m_heard += "do" + std::to_string(row) + " "; };
    list.select(0);
    key(list, VK_DOWN);
    key(list, VK_RETURN);
    click(list, {10, 120}); // below the rows
    SendMessageW(list.handle(), WM_CHAR, 'c', 1);
    pump();
    EXPECT_EQ(m_heard, "row1 do1 row-1 row2 ");
    EXPECT_EQ(list.selected(), 2);

    model.names.assign(1000000, "row");
    model.names[999999] = "zebra";
    model.asked = 0;
    list.refresh();
    UpdateWindow(list.handle());
    EXPECT_EQ(list.selected(), 2) << "a refreshed list keeps what was selected";
    EXPECT_LT(model.asked, 200);
    model.names.resize(1);
    list.refresh();
    EXPECT_EQ(list.selected(), -1) << "the row is gone";
}

TEST_F(control_test, manyRowsAreChosenAtOnceAndToldOnce)
{
    name_list model;
    list_view list;
    ASSERT_TRUE(list.create(handle(), 1, model, {true, true}));
    list.place(0, 0, 300, 150);
    list.onSelect = [&](int) { m_heard += std::to_string(list.selectedRows().size()) + " "; };
    list.select(0);
    list.selectAll();
    pump();
    EXPECT_EQ(m_heard, "3 ");
}

TEST_F(control_test, columnsFillTheListAndCutTextsAreTooltips)
{
    name_list model;
    list_view list;
    ASSERT_TRUE(list.create(handle(), 1, model));
    list.place(0, 0, 300, 150);
    const int scale = static_cast<int>(dpi());
    EXPECT_EQ(list.columnWidths()[0], 80);
    list.setColumnWidths(std::vector{100});
    RECT client{};
    GetClientRect(list.handle(), &client);
    EXPECT_EQ(SendMessageW(list.handle(), LVM_GETCOLUMNWIDTH, 1, 0), client.right - 100 * scale / 96);
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    SendMessageW(list.handle(), LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&row));
    EXPECT_EQ(tipOf(list, {20, row.top + 4}), "a name that is too long for its column\r\nis missing");
    EXPECT_EQ(tipOf(list, {20, row.top - 4}), "") << "apple fits and has no tip";
}

class numbered_tree : public tree_model // the children of n are 10n + 1, 10n + 2, ...
{
public:
    std::size_t childCount(node parent) const override
    {
        const auto found = counts.find(parent);
        return found == counts.end() ? 0 : found->second;
    }
    node child(node parent, std::size_t position) const override { return parent * 10 + position + 1; }
    std::string text(node of) const override
    {
        asked.push_back(of);
        return "node " + std::to_string(of);
    }
    bool isOpenAtFirst(node of) const override { return of == 1; }

    std::map<node, std::size_t> counts{{root, 2}, {1, 2}, {2, 3}, {23, 1}};
    mutable std::vector<node> asked;
};

TEST_F(control_test, aTreeMakesWhatIsOpenedAndStaysAsItWasOverARefresh)
{
    numbered_tree model;
    tree_view tree;
    ASSERT_TRUE(tree.create(handle(), 1, model));
    tree.place(0, 0, 300, 300);
    tree.onSelect = [&](tree_view::node of) { m_heard += "node" + std::to_string(of) + " "; };
    tree.onActivate = [&](tree_view::node of) { m_heard += "do" + std::to_string(of) + " "; };
    const auto count = [&] { return SendMessageW(tree.handle(), TVM_GETCOUNT, 0, 0); };
    EXPECT_EQ(count(), 4) << "1 is open at first, 2 is not";
    tree.select(11);
    EXPECT_EQ(m_heard, "");
    key(tree, VK_DOWN);
    key(tree, VK_DOWN);
    key(tree, VK_RETURN);
    EXPECT_EQ(m_heard, "node12 node2 do2 ");
    tree.select(231);
    EXPECT_EQ(tree.selected(), 231u) << "what is above it was made and opened";
    EXPECT_TRUE(tree.isOpen(2) && tree.isOpen(23));
    tree.open(1, false);

    model.counts[tree_model::root] = 3;
    m_heard.clear();
    tree.refresh();
    EXPECT_EQ(m_heard, "");
    EXPECT_EQ(tree.selected(), 231u);
    EXPECT_TRUE(tree.isOpen(23));
    EXPECT_FALSE(tree.isOpen(1)) << "it was closed by hand";
    model.counts = {{tree_model::root, 1}};
    tree.refresh();
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(tree.selected(), std::nullopt);
}

} // namespace
} // namespace korvane::test
