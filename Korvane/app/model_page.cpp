#include "Korvane/app/model_page.h"

#include "Korvane/app/command_ids.h"
#include "Korvane/document/pasted_path.h"

#include <utility>

namespace korvane
{

namespace
{

std::vector<column_part*> partsWith(const information_panels& panels, column_part& last)
{
    std::vector<column_part*> parts = panels.all();
    parts.push_back(&last);
    return parts;
}

} // namespace

model_page::model_page(page_host& host, const texture_ports& ports)
    : page(host)
    , m_open_folder(ports.open_folder)
    , m_panels([this](int control) { actOn(control); })
    , m_textures(host, ports)
    , m_column(*this, partsWith(m_panels, m_textures))
{
}

bool model_page::onCreated()
{
    failure why;
    return m_empty.createIn(handle(), why);
}

bool model_page::createControls(failure& why)
{
    return m_panels.createIn(handle(), why) && m_textures.createIn(handle(), why);
}

void model_page::applyFont(const font& used)
{
    m_empty.setFont(used);
    if (!hasControls())
        return;
    m_column.setFont(used);
    if (host().document().model().hasModel()) // else it is laid out when there is something to see
        m_column.layOut();
}

int model_page::preferredHeight()
{
    needControls();
    return m_column.contentHeight();
}

void model_page::onSize(int, int, size_change change)
{
    if (change == size_change::minimised)
        return;
    if (host().document().model().hasModel() && hasControls())
        m_column.layOut();
    else if (m_empty.isOpen())
        m_empty.showOver(true);
}

void model_page::onVerticalScroll(int request)
{
    m_column.scroll(request);
}

bool model_page::onMouseWheel(int delta, const mouse_event&)
{
    m_column.scrollByWheel(delta);
    return true;
}

void model_page::onControlFocused(HWND control)
{
    m_column.scrollInto(control);
}

HWND model_page::firstControl() const
{
    return host().document().model().hasModel() && hasControls() ? m_panels.lodList() : m_empty.firstControl();
}

help_topic model_page::helpTopic() const
{
    if (!host().document().model().hasModel())
        return host().document().game()->hasArchives() ? help_topic::unit : help_topic::first_start;
    const HWND focus = GetFocus();
    if (m_textures.isOpen() && IsChild(m_textures.handle(), focus))
        return help_topic::repaint;
    return focus != nullptr && GetDlgCtrlID(focus) == control_tool_alpha_mode ? help_topic::alpha : help_topic::unit;
}

std::string model_page::copiedText() const
{
    const std::string path = m_textures.focusedPath();
    return path.empty() ? selectedGroupText(host().document().model()) : path;
}

bool model_page::paste(const std::string& text)
{
    return m_textures.paste(text);
}

empty_content model_page::emptyContent() const
{
    const auto run = [this](document_command command) { return [this, command] { host().runCommand(command); }; };
    empty_content content;
    content.heading = "No model is open";
    if (host().document().definition().hasDefinition())
        content.lines = {"A definition is open: choose one of its models on the page Definition to see it here."};
    else
        content.lines = {"Open a model (.rigid_model_v2) or a definition (.variantmeshdefinition),",
                         "or drop one on this window."};
    content.choices = {{"&Open...", run(document_command::open)}};
    if (!host().document().game()->hasArchives())
    {
        content.lines.emplace_back();
        content.lines.emplace_back("With the game's folders set up, its textures and units are found, too.");
        content.choices.push_back({"&Setup Game Folders...", run(document_command::game_folders)});
    }
    return content;
}

void model_page::showDocument()
{
    const bool is_empty = !host().document().model().hasModel();
    if (is_empty)
        m_empty.setContent(emptyContent());
    // What is to be seen comes first: the focus needs a place to go.
    if (is_empty)
        m_empty.showOver(true);
    if (!is_empty && !hasControls())
        return needControls(); // which shows the document then
    if (!hasControls())
        return;
    for (field_panel* const panel : m_panels.panels())
        ShowWindow(panel->handle(), is_empty ? SW_HIDE : SW_SHOWNA);
    ShowWindow(m_textures.handle(), is_empty ? SW_HIDE : SW_SHOWNA);
    if (is_empty)
        ShowScrollBar(handle(), SB_VERT, FALSE);
    else
        m_column.layOut();
    m_panels.showFile(host().document().model());
    m_panels.showSelection(host().document().model());
    m_textures.showDocument();
    if (!is_empty && IsChild(m_empty.handle(), GetFocus()))
        SetFocus(m_panels.lodList());
    if (!is_empty)
        m_empty.showOver(false);
}

void model_page::showSelection()
{
    if (!hasControls())
        return;
    m_panels.showSelection(host().document().model());
    m_textures.showSelection();
}

void model_page::actOn(int control)
{
    switch (control)
    {
    case control_open_folder:
        if (host().isEnabled(document_command::open_folder))
            m_open_folder(host().document().model().file()->path());
        return;
    case control_lod:
    case control_group:
        return host().select(m_panels.chosen());
    case control_fill_all_lods:
        return host().document().model().setFillsAllLods(m_panels.fillsAllLods());
    case control_tool_alpha_mode:
        return host().took(host().commands().chooseAlphaMode(m_panels.chosenAlphaMode()));
    default:
        return;
    }
}

} // namespace korvane
