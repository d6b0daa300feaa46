#include "Korvane/document/change_list.h"

#include "Korvane/document/panel_contents.h"
#include "Korvane/document/texture_path_fault.h"

namespace korvane
{

namespace
{

constexpr list_column change_columns[] = {{"Place", 170}, {"Before", 260}, {"After", 0}};

texture_path_fault faultOf(const field_change& change)
{
    return change.texture ? texturePathFault(change.after) : texture_path_fault();
}

} // namespace

std::span<const list_column> change_list::columns() const
{
    return change_columns;
}

std::string change_list::text(std::size_t row, std::size_t column) const
{
    const field_change& change = m_changes[row];
    if (column == 0)
        return placeOf(change.lod, change.group, change.texture, first_number) + (change.texture ? "" : ", alpha mode");
    return column == 1 ? change.before : change.after;
}

row_mark change_list::mark(std::size_t row) const
{
    return faultOf(m_changes[row]).text.empty() ? row_mark::plain : row_mark::warning;
}

std::string change_list::tip(std::size_t row) const
{
    return faultOf(m_changes[row]).text;
}

} // namespace korvane
