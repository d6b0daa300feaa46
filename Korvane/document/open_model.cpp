#include "Korvane/document/open_model.h"

#include "Korvane/archives/game_file.h"
#include "Korvane/models/catalogue.h"
#include "Korvane/models/rmv2_writer.h"

#include <utility>

namespace korvane
{

bool open_model::open(const std::string& path, failure& why)
{
    // A fresh reader each time: one that has read a version 5 file keeps that version's text widths.
    auto fresh = std::make_shared<rmv2_file>();
    memory_file bytes;
    if (isPackPath(path) ? !readGameFile(path, bytes, why) || !fresh->openFromMemory(std::move(bytes), path, why)
                         : !fresh->open(path, why))
        return false;
    m_po_editor = std::make_unique<model_editor>(*fresh);
    m_po_file = std::move(fresh);
    m_patched_path.clear();
    select(m_selection);
    return true;
}

void open_model::close()
{
    m_po_editor.reset();
    m_po_file.reset();
    m_patched_path.clear();
    select({});
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
    return result;
}

edit_result open_model::chooseTexture(std::size_t row, const std::string& chosen_file)
{
    edit_result result;
    const group_data* const group = selectedGroup();
    if (group == nullptr || row >= group->textures.size())
        return result;
    failure never;
    static_cast<void>(m_po_editor->setTexturePath(
        {static_cast<std::size_t>(m_selection.lod), static_cast<std::size_t>(m_selection.group), row},
        pathWithChosenFile(group->textures[row], chosen_file), m_scope, result, never));
    return result;
}

void open_model::undo()
{
    if (canUndo())
        m_po_editor->undo();
}

void open_model::redo()
{
    if (canRedo())
        m_po_editor->redo();
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
    return true;
}

bool open_model::patch(const std::string& path, failure& why)
{
    if (!patchToVersion7(*m_po_file, path, why))
        return false;
    m_patched_path = path;
    return true;
}

} // namespace korvane
