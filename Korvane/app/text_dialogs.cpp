#include "Korvane/app/text_dialogs.h"

#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"

#include <utility>

namespace korvane
{

namespace
{

std::optional<layout> missingControl(failure& why)
{
    fail(why, failure_kind::refused, "a control could not be created (error " + std::to_string(GetLastError()) + ")");
    return std::nullopt;
}

} // namespace

std::optional<layout> help_dialog::onFill(failure& why)
{
    if (!m_text.create(handle(), control_dialog_text) || !m_close.create(handle(), control_dialog_close, "Close"))
        return missingControl(why);
    m_close.onClick = [this] { end(cancelled); };
    setDefault(m_close);
    layout rows(layout::direction::down);
    rows.setMargins(10);
    rows.add(m_text, share(1, 120));
    rows.add(layout(layout::direction::across).add(share()).add(m_close));
    return rows;
}

// Only now the text has the dialog's font.
void help_dialog::onShown()
{
    std::vector<rich_run> runs;
    for (const help_paragraph& each : m_shown)
    {
        runs.push_back({each.heading + "\n", rich_run::style::heading});
        runs.push_back({each.text + (&each == &m_shown.back() ? "" : "\n")});
    }
    m_text.setRuns(runs);
}

std::optional<layout> report_dialog::onFill(failure& why)
{
    if (!m_text.createLines(handle(), control_dialog_text, edit_box::access::read_only) ||
        !m_copy.create(handle(), control_dialog_copy, "&Copy") ||
        !m_close.create(handle(), control_dialog_close, "Close"))
        return missingControl(why);
    m_text.setText(m_report);
    m_copy.onClick = [this] { copyText(m_host, m_report); };
    m_close.onClick = [this] { end(cancelled); };
    setDefault(m_close);
    setFirstFocus(m_close);
    layout rows(layout::direction::down);
    rows.setMargins(10);
    rows.add(m_text, share(1, 120));
    rows.add(layout(layout::direction::across).add(share()).add(m_copy, aligned(1)).add(m_close, aligned(1)));
    return rows;
}

int runDialog(page_host& host, dialog_box& shown)
{
    failure why;
    const HWND above = dialog_box::innermost();
    const int result = shown.run(above != nullptr ? above : host.frame(), why);
    if (why)
    {
        host.logLine("runDialog(). " + describe(why));
        host.prompt().show("Error!", "The dialog could not be opened.\r\n\r\n" + describe(why), prompt_icon::error);
    }
    return result;
}

} // namespace korvane
