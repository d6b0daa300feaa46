#include "Korvane/document/open_model.h"

#include "Korvane/archives/game_file.h"

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
    m_po_file = std::move(fresh);
    select(m_selection);
    return true;
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

} // namespace korvane
