#include "Korvane/document/definition_tree.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>

namespace korvane
{

namespace
{

constexpr list_column attribute_columns[] = {{"Name", 130}, {"Value", 0}};
constexpr std::size_t most_open_at_first = 500; // nodes; in a larger definition only slots and models

std::string shownName(std::string_view path)
{
    return displayText(fileName(path));
}

// "0.5" is " (50 %)"; what is no number stands there as it is.
std::string chanceText(std::string_view value)
{
    if (value.empty())
        return {};
    double chance = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), chance);
    if (error != std::errc() || end != value.data() + value.size() || !(chance >= 0 && chance <= 1))
        return " (" + displayText(value) + ")";
    return " (" + std::to_string(std::lround(chance * 100)) + " %)";
}

std::string slotText(const variant_tag& tag)
{
    std::string text = "Slot " + displayText(tag.attribute("name"));
    if (const std::string_view point = tag.attribute("attach_point"); !point.empty())
        text += " at " + displayText(point);
    return text + chanceText(tag.attribute("probability"));
}

std::string otherText(const variant_tag& tag)
{
    std::string text = displayText(tag.name);
    for (const auto& [name, value] : tag.attributes)
        text += " " + displayText(name) + "=" + displayText(value);
    constexpr std::size_t longest = 120;
    return text.size() <= longest ? text : text.substr(0, utf8Cut(text, longest)) + "...";
}

} // namespace

std::span<const list_column> attribute_list::columns() const
{
    return attribute_columns;
}

// What is wrong with what elements name. Asks the game once for each path.
class definition_tree::look_up
{
public:
    look_up(const std::vector<variant_problem>& problems, const game_data& game) : m_problems(problems), m_game(game) {}

    std::string faultOf(const variant_tag& tag, const std::string& path)
    {
        if (tag.kind == variant_tag_kind::mesh)
            return path.empty() || isThere(path) ? "" : notFound(path);
        if (tag.kind != variant_tag_kind::reference)
            return {};
        if (path.empty())
            return "The reference names no definition.";
        for (const variant_problem& problem : m_problems)
            if (problem.path == path && problem.what == variant_problem::kind::unreadable)
                return displayText(problem.line);
            else if (problem.path == path && problem.what == variant_problem::kind::other && tag.children.empty())
                return displayText(problem.line); // a circle closes here, or there was no room
        return isThere(path) ? "" : notFound(path);
    }

private:
    bool isThere(const std::string& path)
    {
        const auto [found, is_new] = m_known.emplace(path, false);
        if (is_new)
            found->second = static_cast<bool>(m_game.find(path));
        return found->second;
    }
    std::string notFound(const std::string& path) const
    {
        const std::string what = displayText(path);
        return m_game.hasArchives()
                   ? what + " is in no archive and in no mod folder."
                   : what + " was not looked for: no folder with archives is set. " + std::string(set_folders_advice);
    }

    const std::vector<variant_problem>& m_problems;
    const game_data& m_game;
    std::unordered_map<std::string, bool> m_known;
};

definition_tree::definition_tree(const open_definition& definition, const game_data& game)
    : m_po_content(definition.content())
    , m_path(definition.path())
    , m_fault_mark(game.hasArchives() ? row_mark::error : row_mark::warning)
{
    if (!definition.hasDefinition())
        return;
    const variant_tag& top = m_po_content->root();
    look_up in_game(definition.problemList(), game);
    slot_map slots;
    for (figure_slot& slot : figureSlots(top))
        slots.emplace(slot.tag, std::move(slot));
    m_entries.push_back({&top, root});
    if (!top.name.empty())
        add(top, root, in_game, slots, definition.choice());
    else
        for (const variant_tag& tag : top.children) // several root elements
            add(tag, root, in_game, slots, definition.choice());
}

void definition_tree::add(const variant_tag& tag, node parent, look_up& game, const slot_map& slots,
                          const figure_choice& choice)
{
    const node own = m_entries.size();
    entry fresh{&tag, parent};
    fresh.is_hidden = at(parent).is_hidden;
    if (const auto slot = slots.find(at(parent).tag); slot != slots.end() && slot->second.alternatives.size() > 1)
    {
        const auto& those = slot->second.alternatives;
        const auto place = std::find(those.begin(), those.end(), &tag);
        if (place != those.end())
        {
            fresh.slot = slot->second.path;
            fresh.alternative = static_cast<std::size_t>(place - those.begin());
            fresh.is_hidden = fresh.is_hidden || fresh.alternative != slot->second.shown(choice);
        }
    }
    if (tag.kind == variant_tag_kind::mesh)
        fresh.path = normalInternalPath(tag.attribute("model"));
    else if (tag.kind == variant_tag_kind::reference)
        fresh.path = normalInternalPath(tag.attribute("definition"));
    fresh.fault = game.faultOf(tag, fresh.path);
    m_missing += fresh.fault.empty() ? 0u : 1u;
    m_entries.push_back(std::move(fresh));
    m_entries[parent].children.push_back(own);
    for (const variant_tag& child : tag.children)
        add(child, own, game, slots, choice);
}

std::size_t definition_tree::childCount(node parent) const
{
    return m_entries.empty() ? 0 : at(parent).children.size();
}

tree_model::node definition_tree::child(node parent, std::size_t position) const
{
    return at(parent).children[position];
}

std::string definition_tree::text(node of) const
{
    const entry& its = at(of);
    switch (its.tag->kind)
    {
    case variant_tag_kind::mesh:
        return its.path.empty() ? "Mesh without a model" : shownName(its.path);
    case variant_tag_kind::slot:
        return slotText(*its.tag);
    case variant_tag_kind::reference:
        return its.path.empty() ? "Reference" : "Reference to " + shownName(its.path);
    default:
        return otherText(*its.tag);
    }
}

row_mark definition_tree::mark(node of) const
{
    if (!at(of).fault.empty())
        return m_fault_mark;
    const bool is_idle = at(of).tag->kind == variant_tag_kind::other || at(of).is_hidden;
    return is_idle ? row_mark::dimmed : row_mark::plain;
}

std::string definition_tree::tip(node of) const
{
    const entry& its = at(of);
    return its.fault.empty() ? displayText(its.path) : its.fault;
}

bool definition_tree::isOpenAtFirst(node of) const
{
    return m_entries.size() <= most_open_at_first || at(of).tag->kind != variant_tag_kind::reference;
}

game_path definition_tree::modelOf(node of) const
{
    const bool is_model = isElement(of) && at(of).tag->kind == variant_tag_kind::mesh && !at(of).path.empty();
    return is_model ? game_path::ofInternal(at(of).path) : game_path();
}

game_path definition_tree::definitionOf(node of) const
{
    const bool is_definition = isElement(of) && at(of).tag->kind == variant_tag_kind::reference && !at(of).path.empty();
    return is_definition ? game_path::ofInternal(at(of).path) : game_path();
}

figure_choice definition_tree::choiceThatShows(node of) const
{
    figure_choice changes;
    if (!isElement(of) || !at(of).is_hidden)
        return changes;
    for (; of != root; of = at(of).parent)
        if (!at(of).slot.empty())
            changes[at(of).slot] = at(of).alternative;
    return changes;
}

std::size_t definition_tree::alternativesBeside(node of) const
{
    const std::vector<node>& beside = at(at(of).parent).children;
    return static_cast<std::size_t>(
        std::count_if(beside.begin(), beside.end(), [this](node one) { return !at(one).slot.empty(); }));
}

attribute_list definition_tree::attributesOf(node of) const
{
    if (!isElement(of))
        return attribute_list();
    const entry& its = at(of);
    std::vector<attribute_list::row> rows = {{"Element", displayText(its.tag->name)}};
    for (const auto& [name, value] : its.tag->attributes)
        rows.emplace_back(displayText(name), displayText(value));
    std::string file = displayText(m_path);
    for (node outer = its.parent; outer != root; outer = at(outer).parent)
        if (const entry& reference = at(outer); reference.tag->kind == variant_tag_kind::reference)
        {
            file = displayText(reference.path);
            break;
        }
    rows.emplace_back("Stands in", file + ", line " + std::to_string(its.tag->line));
    if (!its.slot.empty())
        rows.emplace_back("Alternative", std::to_string(its.alternative + 1) + " of " +
                                             std::to_string(alternativesBeside(of)) +
                                             (its.is_hidden ? ", not shown" : ", shown"));
    if (!its.fault.empty())
        rows.emplace_back("Problem", its.fault);
    return attribute_list(std::move(rows));
}

std::string definition_tree::countText() const
{
    std::size_t slots = 0;
    std::size_t models = 0;
    std::size_t references = 0;
    for (node i = 1; i < m_entries.size(); ++i)
        switch (at(i).tag->kind)
        {
        case variant_tag_kind::slot:
            ++slots;
            break;
        case variant_tag_kind::mesh:
            models += at(i).path.empty() ? 0u : 1u;
            break;
        case variant_tag_kind::reference:
            ++references;
            break;
        default:
            break;
        }
    std::string text = shownName(m_path) + ": " + counted(slots, "slot") + ", " + counted(models, "model") + ", " +
                       counted(references, "reference") + ".";
    if (m_missing > 0)
        text += " " + grouped(m_missing) + (m_missing == 1 ? " is" : " are") + " missing or broken.";
    return text;
}

tree_model::node definition_tree::findModel(const game_path& path) const
{
    const std::string wanted = normalInternalPath(path.internalPath());
    for (node i = 1; i < m_entries.size(); ++i)
        if (at(i).tag->kind == variant_tag_kind::mesh && !at(i).path.empty() && (path.empty() || at(i).path == wanted))
            return i;
    return root;
}

} // namespace korvane
