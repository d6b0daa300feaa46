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
    std::string summary;            // "alpha mode of LOD 0, group 1: 0 (Alpha Off) -> 1 (Alpha On)"; empty: no change
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
    // first: what texts call the first LOD, group and texture; 1 where lists are counted so.
    explicit model_editor(rmv2_file& model, std::size_t first = 0) : m_model(model), m_first(first) {}

    // A path longer than the field takes (255 characters) is cut, with a note. False when the model has no such place.
    [[nodiscard]] bool setTexturePath(texture_place place, std::string_view path, edit_scope scope, edit_result& result,
                                      failure& why);
    [[nodiscard]] bool setAlphaMode(group_place place, std::uint32_t value, edit_scope scope, edit_result& result,
                                    failure& why);
    // In all textures of all groups: paths that begin with what is wanted, case and kind of separator aside, get
    // replacement in its place, as it is written, and keep their rest. wanted is not empty.
    edit_result replacePathPrefix(std::string_view wanted, std::string_view replacement);
    // What it would change.
    [[nodiscard]] std::vector<field_change> previewPathPrefix(std::string_view wanted,
                                                              std::string_view replacement) const;

    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_steps.size(); }
    // Say what they changed, as edit_result::summary does. Nothing to undo: nothing happens.
    std::string undo();
    std::string redo();

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
        field_change told;
    };
    using edit_step = std::vector<field_edit>;

    group_data* groupAt(group_place place, failure& why);
    void setPath(edit_step& step, texture_place place, std::string_view path, edit_result& result);
    void setAlpha(edit_step& step, group_place place, std::uint32_t value, edit_result& result);
    template <class function>
    void forEachWithPrefix(std::string_view wanted, std::string_view replacement, const function& use) const;
    std::string placeText(std::size_t lod, std::size_t group) const;
    std::string placeText(const texture_place& place) const;
    // The place itself, and with all_lods its like in the other LODs; a note for each LOD without one.
    std::vector<group_place> placesOf(group_place place, edit_scope scope, edit_result& result) const;
    static void restore(const edit_step& step, std::vector<std::byte> field_edit::*bytes);
    void finish(edit_step step, edit_result& result);

    std::string summaryOf(const edit_step& step, bool is_undone) const;

    rmv2_file& m_model;
    std::size_t m_first;
    std::vector<edit_step> m_steps;
    std::size_t m_done = 0;                 // steps that are not undone
    std::optional<std::size_t> m_saved = 0; // m_done when it was saved; nothing: no undo or redo leads there any more
};

// "LOD 0, group 1, texture 2"; first as for model_editor.
[[nodiscard]] std::string placeOf(std::size_t lod, std::size_t group, std::optional<std::size_t> texture,
                                  std::size_t first = 0);
// "LOD 0, group 1, texture 2: old.dds -> new.dds"
[[nodiscard]] std::string describe(const field_change& change, std::size_t first = 0);

} // namespace korvane
