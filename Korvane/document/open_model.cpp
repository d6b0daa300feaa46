#include "Korvane/document/open_model.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/models/catalogue.h"
#include "Korvane/models/rmv2_writer.h"

#include <algorithm>
#include <utility>

namespace korvane
{

void open_model::take(std::shared_ptr<rmv2_file> model)
{
    replace(std::move(model));
    tellKeeper(image_state::other);
}

void open_model::openKept(std::shared_ptr<rmv2_file> model, edit_origin origin, bool is_elsewhere,
                          std::unique_ptr<keep_claim> claim)
{
    replace(std::move(model));
    m_po_editor->markEdited();
    m_origin = std::move(origin);
    m_po_claim = std::move(claim);
    m_saves_elsewhere = is_elsewhere;
    tellKeeper(image_state::other);
}

void open_model::replace(std::shared_ptr<rmv2_file> model)
{
    if (!m_po_file || m_po_file->path() != model->path())
        m_selection = {};
    m_po_editor = std::make_unique<model_editor>(*model, first_number);
    m_po_file = std::move(model);
    m_origin = {};
    m_po_claim.reset();
    m_saves_elsewhere = false;
    m_patched_path.clear();
    select(m_selection);
}

void open_model::tellKeeper(image_state state)
{
    if (m_po_keeper == nullptr)
        return;
    m_is_held = m_is_held && state == image_state::same && isEdited();
    if (!isEdited())
        return m_po_keeper->release();
    if (m_is_held)
        return m_po_keeper->update(savedEdits(*m_po_file));
    const edit_origin origin = m_origin.path.empty() ? edit_origin{m_po_file->path(), ""} : m_origin;
    m_po_keeper->hold(origin, m_po_file->image().bytes(), savedEdits(*m_po_file));
    m_is_held = true;
}

void open_model::close()
{
    m_po_editor.reset();
    m_po_file.reset();
    m_origin = {};
    m_po_claim.reset();
    m_patched_path.clear();
    select({});
    tellKeeper(image_state::other);
}

std::shared_ptr<const RMV2_FILE_DATA> open_model::data() const
{
    return m_po_file == nullptr ? nullptr : std::shared_ptr<const RMV2_FILE_DATA>(m_po_file, &m_po_file->data());
}

void open_model::select(model_selection wanted)
{
    m_selection = hasModel() ? clampSelection(m_po_file->data(), wanted) : model_selection{};
}

const group_data* open_model::selectedGroup() const
{
    if (!hasModel() || m_selection.lod < 0 || m_selection.group < 0)
        return nullptr;
    return &m_po_file->data()
                .lods[static_cast<std::size_t>(m_selection.lod)]
                .groups[static_cast<std::size_t>(m_selection.group)];
}

edit_result open_model::chooseAlphaMode(int position)
{
    edit_result result;
    const auto choices = alphaModes();
    if (selectedGroup() == nullptr || position < 0 || static_cast<std::size_t>(position) >= choices.size())
        return result;
    failure never; // the place is there
    static_cast<void>(m_po_editor->setAlphaMode(
        {static_cast<std::size_t>(m_selection.lod), static_cast<std::size_t>(m_selection.group)},
        choices[static_cast<std::size_t>(position)].value, m_scope, result, never));
    tellKeeper(image_state::same);
    return result;
}

edit_result open_model::setPath(std::size_t row, std::string_view path)
{
    edit_result result;
    failure never; // the place is there
    static_cast<void>(m_po_editor->setTexturePath(
        {static_cast<std::size_t>(m_selection.lod), static_cast<std::size_t>(m_selection.group), row}, path, m_scope,
        result, never));
    tellKeeper(image_state::same);
    return result;
}

edit_result open_model::chooseTexture(std::size_t row, const std::string& chosen_file)
{
    const group_data* const group = selectedGroup();
    if (group == nullptr || row >= group->textures.size())
        return {};
    return setPath(row, pathWithChosenFile(group->textures[row], chosen_file));
}

edit_result open_model::setTexturePath(std::size_t row, std::string directory, std::string file)
{
    const group_data* const group = selectedGroup();
    if (group == nullptr || row >= std::min(group->textures.size(), texture_row_count))
        return {};
    const texture_row_content shown = textureRows(*group)[row];
    const std::string path = group->textures[row].path_field.text();
    const std::size_t cut = path.size() - fileName(path).size();
    if (directory == shown.directory)
        directory = path.substr(0, cut);
    if (file == shown.file)
        file = path.substr(cut);
    const std::string typed = directory + file;
    return typed == path ? edit_result() : setPath(row, typed);
}

edit_result open_model::replacePathPrefix(std::string_view wanted, std::string_view replacement)
{
    if (m_po_editor == nullptr)
        return {};
    edit_result result = m_po_editor->replacePathPrefix(wanted, replacement);
    tellKeeper(image_state::same);
    return result;
}

std::vector<field_change> open_model::previewPathPrefix(std::string_view wanted, std::string_view replacement) const
{
    return m_po_editor == nullptr ? std::vector<field_change>() : m_po_editor->previewPathPrefix(wanted, replacement);
}

std::string open_model::undo()
{
    if (!canUndo())
        return {};
    std::string undone = m_po_editor->undo();
    tellKeeper(image_state::same);
    return undone;
}

std::string open_model::redo()
{
    if (!canRedo())
        return {};
    std::string redone = m_po_editor->redo();
    tellKeeper(image_state::same);
    return redone;
}

std::vector<field_change> open_model::changes() const
{
    return m_po_editor == nullptr ? std::vector<field_change>() : m_po_editor->changes();
}

bool open_model::save(const std::string& path, failure& why)
{
    if (!saveModel(*m_po_file, path, why))
        return false;
    m_po_editor->markSaved();
    m_origin = {};
    m_po_claim.reset();
    m_saves_elsewhere = false;
    tellKeeper(image_state::other);
    return true;
}

bool open_model::patch(const std::string& path, failure& why)
{
    if (!patchToVersion7(*m_po_file, path, why))
        return false;
    m_patched_path = path;
    tellKeeper(image_state::other); // which got another version word
    return true;
}

} // namespace korvane
