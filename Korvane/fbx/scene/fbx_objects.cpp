#include "Korvane/fbx/scene/fbx_objects.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t max_notes = 100;

fbx_record* findRecord(std::vector<fbx_record>& records, std::string_view wanted)
{
    for (fbx_record& record : records)
        if (record.name == wanted)
            return &record;
    return nullptr;
}

std::string nameKey(std::string_view full_name)
{
    const fbx_full_name parts = splitFullName(full_name);
    return std::string(parts.class_word) + "::" + std::string(parts.name);
}

// Connections as from - to pairs into one list sorted by the first, equal ones in the order of the file.
struct connection
{
    std::size_t child;
    std::size_t parent;
    std::string_view property;
};

template <class first_type, class second_type>
void sortLinks(const std::vector<connection>& connections, std::size_t object_count, const first_type& first,
               const second_type& second, std::vector<fbx_link>& links, std::vector<std::size_t>& begin)
{
    begin.assign(object_count + 1, 0);
    for (const connection& entry : connections)
        ++begin[first(entry) + 1];
    for (std::size_t i = 1; i <= object_count; ++i)
        begin[i] += begin[i - 1];
    links.resize(connections.size());
    std::vector<std::size_t> next(begin.begin(), begin.end() - 1);
    for (const connection& entry : connections)
        links[next[first(entry)]++] = {second(entry), entry.property};
}

} // namespace

fbx_full_name splitFullName(std::string_view text)
{
    constexpr std::string_view separator("\0\1", 2);
    if (const std::size_t end = text.find(separator); end != std::string_view::npos)
        return {text.substr(0, end), text.substr(end + 2)};
    if (const std::size_t end = text.find("::"); end != std::string_view::npos)
        return {text.substr(end + 2), text.substr(0, end)};
    return {text, {}};
}

void addNote(std::vector<std::string>& notes, std::string text)
{
    if (notes.size() < max_notes)
        notes.push_back(std::move(text));
    else if (notes.size() == max_notes)
        notes.emplace_back("more was left out, without a note for each");
}

bool failRecord(failure& why, const fbx_record& record, std::string field, std::string what)
{
    if (!why)
    {
        why.offset = record.offset;
        why.field = std::move(field);
    }
    return fail(why, failure_kind::malformed, std::move(what));
}

bool fbx_object_table::build(fbx_document& document, std::vector<std::string>& notes, failure& why)
{
    m_is_numbered = document.version >= 7000;
    m_objects.emplace_back();
    m_by_number.emplace(0, root);
    m_by_name.emplace("Model::Scene", root);
    fbx_record* const objects = findRecord(document.records, "Objects");
    const fbx_record* const connections = document.find("Connections");
    if (objects == nullptr || connections == nullptr)
        return fail(why, failure_kind::malformed,
                    objects == nullptr ? "there is no record Objects in the file"
                                       : "there is no record Connections in the file");
    if (!addObjects(*objects, notes, why))
        return false;
    addConnections(*connections, notes);
    if (const fbx_record* const definitions = document.find("Definitions"))
        for (const fbx_record& type : definitions->children)
            if (const fbx_record* const defaults = type.find("PropertyTemplate"); type.name == "ObjectType" && defaults)
                m_templates.emplace(type.textAt(0), defaults);
    return true;
}

bool fbx_object_table::addObjects(fbx_record& list, std::vector<std::string>& notes, failure& why)
{
    m_objects.reserve(list.children.size() + 1);
    for (fbx_record& record : list.children)
        if (!addObject(record, notes, why))
            return false;
    return true;
}

bool fbx_object_table::addObject(fbx_record& record, std::vector<std::string>& notes, failure& why)
{
    if (record.name == "GlobalSettings" || record.values.empty())
        return true; // no object that anything is connected to
    const std::size_t name_position = m_is_numbered ? 1 : 0;
    const std::string_view full_name = record.textAt(name_position);
    fbx_object object;
    object.record = &record;
    object.name = splitFullName(full_name).name;
    object.sub_class = record.textAt(name_position + 1);
    if (m_is_numbered)
    {
        const std::int64_t number = record.integerAt(0);
        if (!m_by_number.emplace(number, m_objects.size()).second)
            return failRecord(why, record, "Objects/" + record.name + ", number",
                              "two objects have the number " + std::to_string(number) + "; the second one is the " +
                                  record.name + " \"" + std::string(object.name) + "\"");
    }
    else if (!m_by_name.emplace(nameKey(full_name), m_objects.size()).second)
    {
        const bool is_node = record.name == "Model"; // poses, of which each has its list, may all have one name
        addNote(notes, "the name of the " + record.name + " \"" + std::string(object.name) + "\" occurs twice: " +
                           (is_node ? "the second one is left out" : "connections mean the first one"));
        if (is_node)
            return true;
    }
    m_objects.push_back(object);
    return true;
}

std::size_t fbx_object_table::find(const fbx_record& record, std::size_t position) const
{
    if (m_is_numbered)
    {
        const auto found = m_by_number.find(record.integerAt(position, -1));
        return found == m_by_number.end() ? npos : found->second;
    }
    const auto found = m_by_name.find(nameKey(record.textAt(position)));
    return found == m_by_name.end() ? npos : found->second;
}

void fbx_object_table::addConnections(const fbx_record& list, std::vector<std::string>& notes)
{
    std::vector<connection> connections;
    connections.reserve(list.children.size());
    std::size_t dangling = 0;
    for (const fbx_record& record : list.children)
    {
        if (record.name != "C" && record.name != "Connect")
            continue;
        const std::string_view kind = record.textAt(0);
        if (kind != "OO" && kind != "OP")
            continue; // between properties
        const std::size_t child = find(record, 1);
        const std::size_t parent = find(record, 2);
        if (child == npos || parent == npos || child == root)
            ++dangling;
        else
            connections.push_back({child, parent, kind == "OP" ? record.textAt(3) : std::string_view()});
    }
    if (dangling > 0)
        addNote(notes, std::to_string(dangling) + " connections name objects that are not there");
    const auto childOf = [](const connection& entry) { return entry.child; };
    const auto parentOf = [](const connection& entry) { return entry.parent; };
    sortLinks(connections, m_objects.size(), parentOf, childOf, m_children, m_children_begin);
    sortLinks(connections, m_objects.size(), childOf, parentOf, m_parents, m_parents_begin);
}

std::span<const fbx_link> fbx_object_table::children(std::size_t object) const
{
    return std::span(m_children)
        .subspan(m_children_begin[object], m_children_begin[object + 1] - m_children_begin[object]);
}

std::span<const fbx_link> fbx_object_table::parents(std::size_t object) const
{
    return std::span(m_parents).subspan(m_parents_begin[object], m_parents_begin[object + 1] - m_parents_begin[object]);
}

const fbx_record* fbx_object_table::templateOf(std::string_view kind) const
{
    const auto found = m_templates.find(kind);
    return found == m_templates.end() ? nullptr : found->second;
}

} // namespace korvane
