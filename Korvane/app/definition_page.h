#pragma once

// The page "Definition": what the open definition is made of, as a tree, and the attributes of the chosen element. A
// model is opened from here on the Model page, a reference as a definition of its own.

#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/tree_view.h"
#include "Korvane/app/rows_page.h"
#include "Korvane/document/definition_tree.h"

#include <memory>
#include <string>

namespace korvane
{

class definition_page : public rows_page
{
public:
    explicit definition_page(page_host& host);
    ~definition_page() override { destroy(); }

    void showDocument() override;
    HWND firstControl() const override;
    help_topic helpTopic() const override { return help_topic::figure; }
    std::string copiedText() const override; // the path of the chosen element, else its text
    bool keep(config_file& config) const override;

protected:
    bool createControls(failure& why) override;

private:
    bool hasDefinition() const { return host().document().definition().hasDefinition(); }
    bool isEmpty() const override { return !hasDefinition(); }
    void showTree();
    void showElement(tree_model::node shown);
    game_path pathOf(tree_model::node of) const; // to be opened; empty: it names none
    tree_model::node chosen() const { return m_tree.selected().value_or(tree_model::root); }
    void openElement(tree_model::node opened);
    void showAlternative(tree_model::node wanted); // in the figure
    void showMenu(POINT on_screen);
    empty_content emptyContent() const;

    std::shared_ptr<const variant_mesh_def> m_po_shown; // what the tree was made of
    std::shared_ptr<const game_data> m_po_game;
    figure_choice m_shown_choice;
    definition_tree m_content;
    attribute_list m_attributes;

    label m_counts;
    tree_view m_tree;
    list_view m_attribute_view;
    button m_open;
};

} // namespace korvane
