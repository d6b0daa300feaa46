#include "Korvane/app/fbx_page.h"

#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/app/tool_commands.h"

#include <utility>

namespace korvane
{

namespace
{

enum fbx_row_command : int
{
    copy_fbx_row = 1,
    copy_fbx_report
};

} // namespace

fbx_page::fbx_page(page_host& host) : rows_page(host, {&m_summary, &m_tree, &m_convert})
{
    m_layout.add(m_summary);
    m_layout.add(m_tree, share(1, 80));
    m_layout.add(layout(layout::direction::across).add(share()).add(m_convert));
}

bool fbx_page::createControls(failure&)
{
    if (!m_summary.create(handle(), control_fbx_summary) || !m_tree.create(handle(), control_fbx_tree, m_report) ||
        !m_convert.create(handle(), control_fbx_convert, "&Convert to .ANIM..."))
        return false;
    m_tree.onContextMenu = [this](tree_model::node, POINT on_screen) { showMenu(on_screen); };
    m_convert.onClick = [this] { convertAnimation(host(), m_report.path()); };
    return true;
}

void fbx_page::show(fbx_report report)
{
    m_report = std::move(report);
    m_is_shown = false;
    showDocument();
}

void fbx_page::showDocument()
{
    if (!hasControls())
        return;
    m_convert.setEnabled(host().isEnabled(document_command::convert_animation));
    if (std::exchange(m_is_shown, true))
        return;
    m_summary.setText(m_report.hasFile() ? m_report.summary() : "Open an FBX file to see here what is in it.");
    m_tree.restart();
    if (m_report.childCount(tree_model::root) > 0)
        m_tree.select(m_report.child(tree_model::root, 0));
    layOut();
}

std::string fbx_page::copiedText() const
{
    return m_report.text(m_tree.selected().value_or(tree_model::root));
}

void fbx_page::showMenu(POINT on_screen)
{
    const std::vector<menu_row> rows = {{copy_fbx_row, "&Copy\tCtrl+C", !copiedText().empty()},
                                        {copy_fbx_report, "Copy &All", m_report.hasFile()}};
    switch (chooseFromMenu(handle(), on_screen, rows))
    {
    case copy_fbx_row:
        return copyText(host(), copiedText());
    case copy_fbx_report:
        return copyText(host(), m_report.copyText());
    default:
        return;
    }
}

} // namespace korvane
