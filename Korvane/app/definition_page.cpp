#include "Korvane/app/definition_page.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/document/window_place.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view attribute_columns_name = "attributes";

enum element_command : int
{
    open_element = 1,
    show_alternative,
    copy_element_path,
    copy_element_text
};

} // namespace

definition_page::definition_page(page_host& host) : rows_page(host, {&m_counts, &m_tree, &m_attribute_view, &m_open})
{
    m_layout.add(m_counts);
    m_layout.add(m_tree, share(3, 80));
    m_layout.add(m_attribute_view, share(1, 60));
    m_layout.add(layout(layout::direction::across).add(share()).add(m_open));
}

bool definition_page::createControls(failure& why)
{
    const bool is_whole = m_counts.create(handle(), control_definition_counts) &&
                          m_tree.create(handle(), control_definition_tree, m_content, true) &&
                          m_attribute_view.create(handle(), control_definition_attributes, m_attributes) &&
                          m_open.create(handle(), control_definition_open, "Open on the &Model Page") &&
                          m_empty.createIn(handle(), why);
    if (!is_whole)
        return false;
    m_attribute_view.setColumnWidths(
        keptColumns(host().config().table(), attribute_columns_name, m_attributes.columns().size()));
    m_tree.onSelect = [this](tree_model::node shown) { showElement(shown); };
    m_tree.onActivate = [this](tree_model::node opened) { openElement(opened); };
    m_tree.onContextMenu = [this](tree_model::node, POINT on_screen) { showMenu(on_screen); };
    m_open.onClick = [this] { openElement(chosen()); };
    return true;
}

bool definition_page::keep(config_file& config) const
{
    return hasControls() && keepColumns(config, attribute_columns_name, m_attribute_view.columnWidths());
}

HWND definition_page::firstControl() const
{
    return hasDefinition() ? m_tree.handle() : m_empty.firstControl();
}

empty_content definition_page::emptyContent() const
{
    const auto run = [this](document_command command) { return [this, command] { host().runCommand(command); }; };
    empty_content content;
    content.heading = "No definition is open";
    content.lines = {"A definition (.variantmeshdefinition) says which models, heads and weapons a unit is made of.",
                     "Open one, or drop one on this window."};
    content.choices = {{"&Open Definition...", run(document_command::open_definition)}};
    if (!host().document().game()->hasArchives())
    {
        content.lines.emplace_back();
        content.lines.emplace_back("With the game's folders set up, the models that it names are found, too.");
        content.choices.push_back({"&Setup Game Folders...", run(document_command::game_folders)});
    }
    return content;
}

void definition_page::showDocument()
{
    if (!hasControls())
        return;
    const bool is_empty = !hasDefinition();
    if (is_empty)
    {
        m_empty.setContent(emptyContent());
        m_empty.showOver(true);
    }
    setRowsVisible(!is_empty);
    const std::shared_ptr<const variant_mesh_def>& content = host().document().definition().content();
    if (m_po_shown != content || m_po_game != host().document().game() ||
        m_shown_choice != host().document().definition().choice())
        showTree();
    if (is_empty)
        return;
    layOut();
    if (IsChild(m_empty.handle(), GetFocus()))
        m_tree.focus();
    m_empty.showOver(false);
}

// The element that a person had chosen stays so when only the archives were read again.
void definition_page::showTree()
{
    const open_definition& definition = host().document().definition();
    const bool is_same = m_po_shown == definition.content();
    m_po_shown = definition.content();
    m_po_game = host().document().game();
    m_shown_choice = definition.choice();
    const tree_model::node former = chosen();
    m_content = definition_tree(definition, *m_po_game);
    if (is_same)
        m_tree.refresh();
    else
        m_tree.restart();
    if (!is_same || former == tree_model::root)
        m_tree.select(m_content.findModel());
    m_counts.setText(m_content.countText());
    showElement(chosen());
}

void definition_page::showElement(tree_model::node shown)
{
    m_attributes = m_content.attributesOf(shown);
    m_attribute_view.refresh();
    m_open.setText(m_content.definitionOf(shown).empty() ? "Open on the &Model Page" : "Open This &Definition");
    m_open.setEnabled(!pathOf(shown).empty());
    layOut();
}

game_path definition_page::pathOf(tree_model::node of) const
{
    game_path path = m_content.modelOf(of);
    return path.empty() ? m_content.definitionOf(of) : path;
}

void definition_page::openElement(tree_model::node opened)
{
    if (const game_path path = pathOf(opened); !path.empty())
        host().openFile(path.text());
}

void definition_page::showAlternative(tree_model::node wanted)
{
    if (!host().document().chooseAlternatives(m_content.choiceThatShows(wanted)))
        return;
    showTree();
    host().showFigure();
}

void definition_page::showMenu(POINT on_screen)
{
    const tree_model::node of = chosen();
    const game_path path = pathOf(of);
    const std::vector<menu_row> rows = {
        {open_element, m_content.definitionOf(of).empty() ? "&Open Model\tEnter" : "&Open Definition\tEnter",
         !path.empty()},
        {show_alternative, "&Show in the Figure", !m_content.choiceThatShows(of).empty()},
        {},
        {copy_element_path, "&Copy Path\tCtrl+C", !path.empty()},
        {copy_element_text, "Copy &Text", of != tree_model::root},
    };
    switch (chooseFromMenu(handle(), on_screen, rows))
    {
    case open_element:
        return openElement(of);
    case show_alternative:
        return showAlternative(of);
    case copy_element_path:
        return copyText(host(), copiedText());
    case copy_element_text:
        return copyText(host(), m_content.text(of));
    default:
        return;
    }
}

std::string definition_page::copiedText() const
{
    const tree_model::node of = chosen();
    if (!hasDefinition() || of == tree_model::root)
        return {};
    const game_path path = pathOf(of);
    return path.empty() ? m_content.text(of) : displayText(path.internalPath());
}

} // namespace korvane
