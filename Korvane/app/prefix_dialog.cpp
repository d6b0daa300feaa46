#include "Korvane/app/prefix_dialog.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/app/command_ids.h"

namespace korvane
{

std::optional<layout> prefix_dialog::onFill(failure& why)
{
    const bool is_whole =
        m_wanted_name.create(handle(), "Paths that &begin with:") &&
        m_wanted_field.create(handle(), control_prefix_wanted, edit_box::access::editable) &&
        m_replacement_name.create(handle(), "&Put there instead:") &&
        m_replacement_field.create(handle(), control_prefix_replacement, edit_box::access::editable) &&
        m_summary.create(handle(), control_prefix_summary) &&
        m_list.create(handle(), control_prefix_changes, m_changes) &&
        m_replace.create(handle(), control_prefix_replace, "&Replace") &&
        m_cancel.create(handle(), control_dialog_close, "Cancel");
    if (!is_whole)
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    m_wanted_field.setText(m_wanted);
    m_replacement = m_wanted; // most replacements are a part of it
    m_replacement_field.setText(m_replacement);
    m_wanted_field.onChange = m_replacement_field.onChange = [this] { showPreview(); };
    m_replace.onClick = [this] { end(replaced); };
    m_cancel.onClick = [this] { end(cancelled); };
    setDefault(m_replace);
    setFirstFocus(m_replacement_field);
    showPreview();
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across).add(m_wanted_name, aligned(1)).add(m_wanted_field, share(1, 200)));
    rows.add(layout(way::across).add(m_replacement_name, aligned(1)).add(m_replacement_field, share(1, 200)));
    rows.add(m_summary);
    rows.add(m_list, share(1, 120));
    rows.add(layout(way::across).add(share()).add(m_replace, aligned(2)).add(m_cancel, aligned(2)));
    return rows;
}

void prefix_dialog::showPreview()
{
    m_wanted = m_wanted_field.text();
    m_replacement = m_replacement_field.text();
    std::vector<field_change> changes;
    if (!m_wanted.empty())
        changes = m_model.previewPathPrefix(m_wanted, m_replacement);
    const std::size_t count = changes.size();
    m_changes = change_list(std::move(changes));
    m_list.refresh();
    m_replace.setEnabled(count > 0);
    m_summary.setText(count > 0          ? counted(count, "path") + " would change:"
                      : m_wanted.empty() ? "Type the beginning of the paths that are to change."
                      : m_wanted == m_replacement
                          ? "Nothing would change: both are the same."
                          : "Nothing would change: no path of the model begins with that, or all are so already.");
}

} // namespace korvane
