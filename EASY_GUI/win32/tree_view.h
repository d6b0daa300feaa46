#pragma once

// A tree over a tree_model, which outlives it: nodes are made when the one above is opened. Marked nodes have a text
// colour that fits the system's and, if wanted, a picture; texts that are cut off, and the model's tips, are tooltips.
// Call refresh() whenever the model's nodes changed.

#include "EASY_GUI/services/tree_model.h"
#include "EASY_GUI/win32/control.h"
#include "EASY_GUI/win32/image_list.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace korvane
{

class tree_view : public control
{
public:
    using node = tree_model::node;

    // By the person.
    std::function<void(node)> onSelect;
    std::function<void(node)> onActivate;                     // Enter or a double click
    std::function<void(node)> onDrag;                         // it is dragged: the button is down
    std::function<void(node, POINT on_screen)> onContextMenu; // the node is selected by then

    [[nodiscard]] bool create(HWND parent, int id, const tree_model& model, bool has_pictures = false);

    // What was open, selected and seen stays so, where the same nodes exist. Calls nothing.
    void refresh();
    // As after create(): of another content, where the same number means another node.
    void restart();
    std::optional<node> selected() const;
    void select(node wanted); // and show it, opening what is above; calls nothing
    void open(node wanted, bool is_open);
    bool isOpen(node wanted) const;

    bool fillsHeight() const override { return true; }

protected:
    bool onNotify(NMHDR& message, LRESULT& result) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    std::string tipAt(POINT at) const override;

private:
    void fill();
    void addChildren(node parent, HTREEITEM under, std::size_t depth);
    void makeChildren(HTREEITEM item);
    std::vector<node> wayTo(node wanted) const; // from the top; empty: it is not there
    bool findWay(node wanted, node from, std::vector<node>& way) const;
    void createPictures();
    node nodeOf(HTREEITEM item) const;
    HTREEITEM itemAt(POINT at) const;
    HTREEITEM itemOf(node wanted) const; // null: not made
    RECT textRectangle(HTREEITEM item) const;
    void giveText(TVITEMW& item);
    LRESULT draw(NMTVCUSTOMDRAW& stage) const;
    void tellContextMenu(POINT on_screen);

    const tree_model* m_po_model = nullptr;
    bool m_has_pictures = false;
    image_list m_pictures;
    std::unordered_map<node, HTREEITEM> m_items;
    std::unordered_map<node, bool> m_is_open; // of each that was ever seen
    std::wstring m_text;                      // that the system reads
    bool m_is_set = false;                    // just now, by the program
    HTREEITEM m_pointed_at = nullptr;
    unsigned m_dpi = 96; // of the pictures
};

} // namespace korvane
