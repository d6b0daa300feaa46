#pragma once

// Edits a loaded model: texture paths and alpha modes, one step at a time, with undo and redo. An edit changes fields
// (fixed_field) and nothing else; saving (Korvane/models/rmv2_writer.h) brings them into the file. The model outlives
// its editor and is edited by nobody else. One thread; texts are UTF-8.

#include "EASY_GUI/services/failure.h"
#include "Korvane/models/rmv2_file.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// Where an edit goes, counted from 0.
struct group_place
{
    std::size_t lod = 0;
    std::size_t group = 0;
};
struct texture_place
{
    std::size_t lod = 0;
    std::size_t group = 0;
    std::size_t texture = 0;
};

// "Fill all LODs in GROUP": all_lods makes the edit in the group of the same name in every other LOD, too. Of several
// with that name it is the one with the same rank among them, and of its textures the one with the same type and rank.
enum class edit_scope
{
    one_group,
    all_lods
};

struct edit_result
{
    std::size_t changed = 0;        // fields that got another value; 0: there is nothing to undo
    std::vector<std::string> notes; // what the person should know of it, one sentence each
};

// A field that holds another value than the file image.
struct field_change
{
    std::size_t lod = 0;
    std::size_t group = 0;
    std::optional<std::size_t> texture; // nothing: the group's alpha mode
    std::string before;                 // path, or alpha mode in words
    std::string after;
    bool is_saved = true; // false: an alpha mode that no save writes, since the group has no textures
};

class model_editor
{
public:
    explicit model_editor(rmv2_file& model) : m_model(model) {}

    // A path longer than the field takes (255 characters) is cut, with a note. False when the model has no such place.
    [[nodiscard]] bool setTexturePath(texture_place place, std::string_view path, edit_scope scope, edit_result& result,
                                      failure& why);
    [[nodiscard]] bool setAlphaMode(group_place place, std::uint32_t value, edit_scope scope, edit_result& result,
                                    failure& why);
    // In all textures of all groups: paths that begin with what is wanted, case and kind of separator aside, get
    // replacement in its place, as it is written, and keep their rest. wanted is not empty.
    edit_result replacePathPrefix(std::string_view wanted, std::string_view replacement);

    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_steps.size(); }
    void undo(); // nothing to undo: nothing happens
    void redo();

    // True while undo or redo would be needed to come back to what was saved or loaded.
    bool isEdited() const { return m_saved != m_done; }
    void markSaved() { m_saved = m_done; }
    void markEdited() { m_saved.reset(); } // the file image itself is what was not saved

    // All that would be different after a save, in the order of the file.
    [[nodiscard]] std::vector<field_change> changes() const;

private:
    struct field_edit // one field of a step
    {
        fixed_field* field;
        std::vector<std::byte> before, after;
    };
    using edit_step = std::vector<field_edit>;

    group_data* groupAt(group_place place, failure& why);
    static void setPath(edit_step& step, fixed_field& field, std::string_view path, const std::string& place,
                        edit_result& result);
    static void setAlpha(edit_step& step, group_data& group, std::uint32_t value, const std::string& place,
                         edit_result& result);
    static void addEdit(edit_step& step, fixed_field& field, std::vector<std::byte> before);
    // The place itself, and with all_lods its like in the other LODs; a note for each LOD without one.
    std::vector<group_place> placesOf(group_place place, edit_scope scope, edit_result& result) const;
    static void restore(const edit_step& step, std::vector<std::byte> field_edit::*bytes);
    void finish(edit_step step, edit_result& result);

    rmv2_file& m_model;
    std::vector<edit_step> m_steps;
    std::size_t m_done = 0;                 // steps that are not undone
    std::optional<std::size_t> m_saved = 0; // m_done when it was saved; nothing: no undo or redo leads there any more
};

// "LOD 0, group 1, texture 2: old.dds -> new.dds"
[[nodiscard]] std::string describe(const field_change& change);

} // namespace korvane
