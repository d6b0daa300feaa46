#include "EASY_GUI/win32/layout.h"

#include "EASY_GUI/win32/window.h"

#include <algorithm>
#include <utility>

namespace korvane
{

layout& layout::add(control& shown, extent along)
{
    m_cells.push_back({&shown, nullptr, nullptr, along});
    return *this;
}

layout& layout::add(window& shown, extent along)
{
    m_cells.push_back({nullptr, &shown, nullptr, along});
    return *this;
}

layout& layout::add(layout nested, extent along)
{
    m_cells.push_back({nullptr, nullptr, std::make_shared<const layout>(std::move(nested)), along});
    return *this;
}

layout& layout::add(extent empty)
{
    m_cells.push_back({nullptr, nullptr, nullptr, empty});
    return *this;
}

layout& layout::setMargins(int left, int top, int right, int bottom)
{
    m_margins = {left, top, right, bottom};
    return *this;
}

void layout::measureGroups(measures& known) const
{
    for (const cell& each : m_cells)
    {
        if (each.nested != nullptr)
            each.nested->measureGroups(known);
        if (each.along.what != extent::kind::aligned)
            continue;
        const SIZE needed = naturalOf(each, known);
        int& largest = known.groups[each.along.value];
        largest = std::max(largest, static_cast<int>(isAcross() ? needed.cx : needed.cy));
    }
}

SIZE layout::naturalOf(const cell& of, const measures& known) const
{
    return of.nested != nullptr       ? of.nested->smallest(known)
           : of.po_control != nullptr ? of.po_control->naturalSize()
                                      : SIZE{};
}

int layout::alongOf(const cell& of, const measures& known) const
{
    switch (of.along.what)
    {
    case extent::kind::fixed:
        return known.scaled(of.along.value);
    case extent::kind::lines:
        return of.along.value * known.used.height() + known.scaled(4);
    case extent::kind::aligned:
        return known.groups.at(of.along.value);
    case extent::kind::share:
        // A layout's share is never smaller than what it holds.
        if (of.nested == nullptr)
            return known.scaled(of.along.smallest);
        [[fallthrough]];
    default:
    {
        const SIZE needed = naturalOf(of, known);
        return std::max(static_cast<int>(isAcross() ? needed.cx : needed.cy), known.scaled(of.along.smallest));
    }
    }
}

SIZE layout::smallest(const measures& known) const
{
    LONG along = 0;
    LONG crosswise = 0;
    for (const cell& each : m_cells)
    {
        along += alongOf(each, known) + (&each != m_cells.data() ? known.scaled(m_gap) : 0);
        const SIZE needed = naturalOf(each, known);
        // What takes a share of the width needs none of its own; lists and the like need no height.
        const bool is_flexible = each.po_control != nullptr && each.po_control->fillsHeight();
        crosswise = std::max(crosswise, isAcross() ? (is_flexible ? 0 : needed.cy) : needed.cx);
    }
    const SIZE inner = isAcross() ? SIZE{along, crosswise} : SIZE{crosswise, along};
    return {inner.cx + known.scaled(m_margins.left + m_margins.right),
            inner.cy + known.scaled(m_margins.top + m_margins.bottom)};
}

SIZE layout::smallest(const font& used, unsigned dpi) const
{
    measures known{used, dpi, {}};
    measureGroups(known);
    return smallest(known);
}

void layout::place(const RECT& area, const font& used, unsigned dpi) const
{
    measures known{used, dpi, {}};
    measureGroups(known);
    place(area, known);
}

void layout::place(RECT area, const measures& known) const
{
    area = {area.left + known.scaled(m_margins.left), area.top + known.scaled(m_margins.top),
            area.right - known.scaled(m_margins.right), area.bottom - known.scaled(m_margins.bottom)};
    const int gap = known.scaled(m_gap);
    int rest = static_cast<int>(isAcross() ? area.right - area.left : area.bottom - area.top);
    rest -= gap * (static_cast<int>(m_cells.size()) - 1);
    int weights = 0;
    for (const cell& each : m_cells)
        if (each.along.what == extent::kind::share)
            weights += each.along.value;
        else
            rest -= alongOf(each, known);
    int position = static_cast<int>(isAcross() ? area.left : area.top);
    for (const cell& each : m_cells)
    {
        int size = 0;
        if (each.along.what == extent::kind::share)
        {
            // One after the other, so that no pixel is lost, and each at least as large as it has to be.
            size = std::max({rest * each.along.value / std::max(weights, 1), alongOf(each, known), 0});
            rest -= size;
            weights -= each.along.value;
        }
        else
            size = alongOf(each, known);
        RECT place = area;
        (isAcross() ? place.left : place.top) = position;
        (isAcross() ? place.right : place.bottom) = position + size;
        placeCell(each, place, known);
        position += size + gap;
    }
}

void layout::placeCell(const cell& placed, const RECT& area, const measures& known) const
{
    const int width = static_cast<int>(std::max(area.right - area.left, 0L));
    int height = static_cast<int>(std::max(area.bottom - area.top, 0L));
    int top = static_cast<int>(area.top);
    if (placed.nested != nullptr)
        placed.nested->place(area, known);
    else if (placed.po_window != nullptr)
        SetWindowPos(placed.po_window->handle(), nullptr, area.left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    else if (placed.po_control != nullptr)
    {
        if (isAcross() && !placed.po_control->fillsHeight())
        {
            const int needed = std::min(static_cast<int>(placed.po_control->naturalSize().cy), height);
            top += (height - needed) / 2;
            height = needed;
        }
        placed.po_control->place(area.left, top, width, height);
    }
}

} // namespace korvane
