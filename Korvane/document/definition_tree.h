#pragma once

// The open definition as a tree: slots, models, references with what they lead to, and the attributes of each. What is
// missing in the game is marked. A value of its own: it stays what it is when another definition is opened.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/services/tree_model.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/game/game_path.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// The attributes of an element: name, value.
class attribute_list : public list_model
{
public:
    using row = std::pair<std::string, std::string>;
    explicit attribute_list(std::vector<row> rows = {}) : m_rows(std::move(rows)) {}

    std::span<const list_column> columns() const override;
    std::size_t rowCount() const override { return m_rows.size(); }
    std::string text(std::size_t row, std::size_t column) const override
    {
        return column == 0 ? m_rows[row].first : m_rows[row].second;
    }

private:
    std::vector<row> m_rows;
};

class definition_tree : public tree_model
{
public:
    definition_tree() = default; // empty
    // What the definition names is looked for in the game.
    definition_tree(const open_definition& definition, const game_data& game);

    std::size_t childCount(node parent) const override;
    node child(node parent, std::size_t position) const override;
    std::string text(node of) const override;
    row_mark mark(node of) const override;
    std::string tip(node of) const override; // of what is missing: what, and where it was looked for
    bool isOpenAtFirst(node of) const override;

    // To open it: "pack:..." of a model or of a reference's definition; empty: the element names none.
    game_path modelOf(node of) const;
    game_path definitionOf(node of) const;
    // What is to be chosen so that the figure shows this element; empty: it shows it already, or the element is no part
    // of any alternative. An alternative that is not shown is dimmed, with all that stands in it.
    figure_choice choiceThatShows(node of) const;
    // Its attributes, its own place in a text, and what is wrong with it.
    attribute_list attributesOf(node of) const;

    // The first node of a model, with an empty path of any; root: there is none.
    node findModel(const game_path& path = {}) const;
    std::size_t missingCount() const { return m_missing; }
    std::string countText() const; // "guard: 3 slots, 5 models, 1 reference; 2 are missing or broken"

private:
    struct entry
    {
        const variant_tag* tag;
        node parent;
        std::string path = {}; // of what it names, in the form of the archives; empty: nothing
        row_mark mark = row_mark::plain;
        std::string fault = {}; // what is wrong with it
        bool is_hidden = false; // itself or what it stands in is an alternative that is not shown
        std::string slot = {};  // of a slot's alternative, where there are several
        std::size_t alternative = 0;
        std::vector<node> children = {};
    };
    class look_up; // in the game
    using slot_map = std::map<const variant_tag*, figure_slot>;
    void add(const variant_tag& tag, node parent, look_up& game, const slot_map& slots, const figure_choice& choice);
    std::size_t alternativesBeside(node of) const;
    const entry& at(node of) const { return m_entries[of]; }
    bool isElement(node of) const { return of != root && of < m_entries.size(); }

    std::shared_ptr<const variant_mesh_def> m_po_content; // to which the tags belong
    std::string m_path;                                   // of the definition itself
    std::vector<entry> m_entries;                         // by their numbers; the first is the root
    row_mark m_fault_mark = row_mark::error;
    std::size_t m_missing = 0;
};

} // namespace korvane
