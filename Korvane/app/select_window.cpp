#include "Korvane/app/select_window.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

namespace
{

void fill(combo_box& list, const std::vector<std::string>& entries, int selected)
{
    list.clear();
    for (const std::string& entry : entries)
        list.add(entry);
    list.select(selected);
    list.setEnabled(!entries.empty());
}

} // namespace

bool select_window::createFields()
{
    return m_lod_name.create(handle(), 0, "LOD:") && m_lod.create(handle(), control_lod) &&
           m_group_name.create(handle(), 0, "Group:") && m_group.create(handle(), control_group);
}

void select_window::placeFields()
{
    placeRow(0, {{&m_lod_name, nameColumn()}, {&m_lod}, {&m_group_name, 50}, {&m_group}});
}

void select_window::show(const std::vector<std::string>& lods, const std::vector<std::string>& groups,
                         model_selection selection)
{
    fill(m_lod, lods, selection.lod);
    fill(m_group, groups, selection.group);
}

bool select_window::onCommand(int id, int notification, HWND)
{
    if ((id != control_lod && id != control_group) || notification != CBN_SELCHANGE)
        return false;
    m_chosen(selection());
    return true;
}

} // namespace korvane
