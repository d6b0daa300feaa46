#include "Korvane/app/name_dialog.h"

#include "Korvane/app/command_ids.h"

#include <algorithm>

namespace korvane
{

std::optional<layout> name_dialog::onFill(failure& why)
{
    if (!m_name.create(handle(), "New &name:") ||
        !m_field.create(handle(), control_name_field, edit_box::access::editable) ||
        !m_note.create(handle(), control_name_note) || !m_ok.create(handle(), control_name_ok, "&Rename") ||
        !m_cancel.create(handle(), control_dialog_close, "Cancel"))
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    m_field.setText(m_former);
    m_field.onChange = [this] { m_note.setText({}); };
    m_ok.onClick = [this] {
        if (const std::string problem = m_take(m_field.text()); problem.empty())
            end(accepted);
        else
            m_note.setText(problem);
    };
    m_cancel.onClick = [this] { end(cancelled); };
    setDefault(m_ok);
    setFirstFocus(m_field);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across).add(m_name).add(m_field, share(1, 200)));
    rows.add(m_note, lines(2));
    rows.add(layout(way::across).add(share()).add(m_ok, aligned(1)).add(m_cancel, aligned(1)));
    return rows;
}

// The name without its ending, as in the file manager: that mostly stays.
void name_dialog::onShown()
{
    const auto stem = static_cast<LPARAM>(std::min(m_former.rfind('.'), m_former.size()));
    SendMessageW(m_field.handle(), EM_SETSEL, 0, stem);
}

} // namespace korvane
