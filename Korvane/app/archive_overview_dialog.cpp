#include "Korvane/app/archive_overview_dialog.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

archive_overview_dialog::archive_overview_dialog(const archive_overview& shown, std::size_t first)
    : dialog_box({"Archives", {760, 480}, true, helpContext(help_topic::archive_order)})
    , m_shown(shown)
    , m_chosen(first)
{
}

std::optional<layout> archive_overview_dialog::onFill(failure&)
{
    if (!m_list_name.create(handle(), "&Archives, the strongest first:") ||
        !m_list.create(handle(), control_overview_list, m_shown) ||
        !m_facts_name.create(handle(), "A&bout the chosen one:") ||
        !m_facts.createLines(handle(), control_overview_facts, edit_box::access::read_only,
                             edit_box::line_breaks::where_needed) ||
        !m_files.create(handle(), control_overview_show, "&Show Its Files") ||
        !m_close.create(handle(), control_dialog_close, "Close"))
        return std::nullopt;
    m_list.onSelect = [this](int row) { showFacts(row); };
    m_list.onActivate = [this](int) { m_files.press(); };
    m_files.onClick = [this] { end(show_files); };
    m_close.onClick = [this] { onCancel(); };
    setFirstFocus(m_list);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(m_list_name).add(m_list, share(1, 120)).add(m_facts_name).add(m_facts, share(1, 120));
    rows.add(layout(way::across).add(share()).add(m_files, aligned(1)).add(m_close, aligned(1)));
    return rows;
}

void archive_overview_dialog::onShown()
{
    m_list.select(static_cast<int>(m_shown.rowCount() - 1 - m_chosen));
    showFacts(m_list.selected());
}

void archive_overview_dialog::showFacts(int row)
{
    m_files.setEnabled(row >= 0);
    if (row < 0)
        return m_facts.setText("");
    m_chosen = m_shown.numberAt(static_cast<std::size_t>(row));
    m_facts.setText(m_shown.facts(static_cast<std::size_t>(row)));
}

} // namespace korvane
