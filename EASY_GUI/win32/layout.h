#pragma once

// Rows and columns of controls: a value that says how what a window shows is laid out, for any font and density. A
// layout puts its cells one behind the other, downwards or across; a cell is a control, a child window, empty, or a
// layout of its own. Along that direction a cell is as large as its extent says, across it as large as the layout;
// controls of one line stand in the middle of a higher row. Controls and windows outlive the layout.
//
//     layout rows(layout::direction::down);
//     rows.add(layout(layout::direction::across).add(m_name, aligned(1)).add(m_field, share()));
//     rows.add(m_list, share());
//     rows.add(layout(layout::direction::across).add(share()).add(m_ok).add(m_cancel));

#include "EASY_GUI/win32/control.h"

#include <map>
#include <memory>
#include <vector>

namespace korvane
{

class window;

struct extent
{
    enum class kind
    {
        natural, // as large as the control or layout needs
        aligned, // the same, and all cells of one group are as large as the largest
        fixed,
        lines, // of text
        share  // of what the others leave
    };
    kind what = kind::natural;
    int value = 0;    // group, pixels, lines, weight
    int smallest = 0; // of a share
};
constexpr extent natural()
{
    return {};
}
constexpr extent aligned(int group)
{
    return {extent::kind::aligned, group, 0};
}
constexpr extent fixed(int pixels_at_96)
{
    return {extent::kind::fixed, pixels_at_96, 0};
}
constexpr extent lines(int count)
{
    return {extent::kind::lines, count, 0};
}
constexpr extent share(int weight = 1, int smallest_at_96 = 0)
{
    return {extent::kind::share, weight, smallest_at_96};
}

class layout
{
public:
    enum class direction
    {
        down,
        across
    };

    explicit layout(direction wanted, int gap_at_96 = 6) : m_direction(wanted), m_gap(gap_at_96) {}

    layout& add(control& shown, extent along = natural());
    layout& add(window& shown, extent along = share()); // a child window
    layout& add(layout nested, extent along = natural());
    layout& add(extent empty);
    layout& setMargins(int left, int top, int right, int bottom); // at 96 dots per inch
    layout& setMargins(int all) { return setMargins(all, all, all, all); }

    // The controls have their font by then. Pixels.
    SIZE smallest(const font& used, unsigned dpi) const;
    void place(const RECT& area, const font& used, unsigned dpi) const; // client pixels of their parent

private:
    struct cell
    {
        control* po_control = nullptr;
        window* po_window = nullptr;
        std::shared_ptr<const layout> nested;
        extent along;
    };
    struct measures
    {
        const font& used;
        unsigned dpi;
        std::map<int, int> groups; // pixels
        int scaled(int pixels_at_96) const { return MulDiv(pixels_at_96, static_cast<int>(dpi), 96); }
    };

    bool isAcross() const { return m_direction == direction::across; }
    void measureGroups(measures& known) const;
    SIZE smallest(const measures& known) const;
    SIZE naturalOf(const cell& of, const measures& known) const;
    int alongOf(const cell& of, const measures& known) const; // of a share its smallest
    void place(RECT area, const measures& known) const;
    void placeCell(const cell& placed, const RECT& area, const measures& known) const;

    direction m_direction;
    int m_gap;
    RECT m_margins{};
    std::vector<cell> m_cells;
};

} // namespace korvane
