#pragma once

// The objects of an FBX document and how they are connected, the same for all versions: by number from version 7000 on,
// by full name before. For the readers of the scene layer. Refers to the document's records, which must stay where they
// are.

#include "Korvane/fbx/container/fbx_document.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvane
{

// "Name\0\1Class" or "Class::Name" taken apart.
struct fbx_full_name
{
    std::string_view name;
    std::string_view class_word;
};
[[nodiscard]] fbx_full_name splitFullName(std::string_view text);

struct fbx_object
{
    fbx_record* record = nullptr; // null: the scene's root
    std::string_view name;
    std::string_view sub_class; // "Mesh", "LimbNode", "Skin", ...

    std::string_view kind() const { return record == nullptr ? std::string_view() : std::string_view(record->name); }
    bool is(std::string_view wanted_kind) const { return record != nullptr && record->name == wanted_kind; }
    bool is(std::string_view wanted_kind, std::string_view wanted_class) const
    {
        return is(wanted_kind) && sub_class == wanted_class;
    }
};

struct fbx_link // one end of a connection, seen from the other
{
    std::size_t object = 0;
    std::string_view property; // empty: the object as a whole
};

class fbx_object_table
{
public:
    static constexpr std::size_t root = 0;

    // False when objects or connections are missing, or two objects have the same number.
    [[nodiscard]] bool build(fbx_document& document, std::vector<std::string>& notes, failure& why);

    std::span<const fbx_object> objects() const { return m_objects; }
    const fbx_object& operator[](std::size_t object) const { return m_objects[object]; }
    // In the order of the file.
    std::span<const fbx_link> children(std::size_t object) const;
    std::span<const fbx_link> parents(std::size_t object) const;

    // The object that a value of a record names: a number or a full name. root + 0 for the root; npos: none such.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t find(const fbx_record& record, std::size_t position) const;

    // The default properties of objects of that kind; null: none.
    const fbx_record* templateOf(std::string_view kind) const;

private:
    bool addObjects(fbx_record& list, std::vector<std::string>& notes, failure& why);
    bool addObject(fbx_record& record, std::vector<std::string>& notes, failure& why);
    void addConnections(const fbx_record& list, std::vector<std::string>& notes);

    bool m_is_numbered = true;
    std::vector<fbx_object> m_objects;
    std::unordered_map<std::int64_t, std::size_t> m_by_number;
    std::unordered_map<std::string, std::size_t> m_by_name; // "Class::Name"
    // Connections sorted by child or parent: those of object i from m_…_begin[i] to m_…_begin[i + 1].
    std::vector<fbx_link> m_children;
    std::vector<fbx_link> m_parents;
    std::vector<std::size_t> m_children_begin;
    std::vector<std::size_t> m_parents_begin;
    std::unordered_map<std::string_view, const fbx_record*> m_templates;
};

// Calls action(name, value record, position of the first value) for every property of an object, template or settings
// record, whichever of the two forms it has.
template <class action_type>
void forEachProperty(const fbx_record& owner, const action_type& action)
{
    const bool is_new = owner.find("Properties70") != nullptr;
    const fbx_record* const list = owner.find(is_new ? "Properties70" : "Properties60");
    if (list == nullptr)
        return;
    for (const fbx_record& property : list->children)
        if (property.name == (is_new ? "P" : "Property"))
            action(property.textAt(0), property, is_new ? std::size_t{4} : std::size_t{3});
}

// The failure of a record, with its place in the file and, as the field, its path; always false.
bool failRecord(failure& why, const fbx_record& record, std::string field, std::string what);

// Adds a note unless there are a hundred already.
void addNote(std::vector<std::string>& notes, std::string text);

} // namespace korvane
