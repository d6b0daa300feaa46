#include "Korvane/app/rows_page.h"

#include <utility>

namespace korvane
{

rows_page::rows_page(page_host& host, std::vector<control*> controls) : page(host), m_controls(std::move(controls))
{
    m_layout.setMargins(8, 2, 8, 8);
}

LRESULT rows_page::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_SHOWWINDOW && wparam != FALSE)
        needControls();
    return page::handleMessage(message, wparam, lparam);
}

void rows_page::applyFont(const font& used)
{
    if (!hasControls())
        return;
    for (control* const each : m_controls)
        each->setFont(used);
    if (m_empty.isOpen())
        m_empty.setFont(used);
    layOut();
}

void rows_page::onSize(int, int, size_change change)
{
    if (change != size_change::minimised)
        layOut();
}

void rows_page::layOut()
{
    if (usedFont() == nullptr || !hasControls())
        return;
    if (isEmpty())
        m_empty.showOver(true);
    else
        m_layout.place(clientRectangle(), *usedFont(), dpi());
}

void rows_page::setRowsVisible(bool is_visible)
{
    for (control* const each : m_controls)
        each->setVisible(is_visible);
}

} // namespace korvane
