#include "D3D11_RENDER_LIB/model_texture_source.h"

#include "Korvane/archives/game_file.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"

#include <utility>

namespace korvane
{

model_texture_source::model_texture_source(const std::string& path, std::function<void(const std::string&)> log)
    : m_log(std::move(log))
{
    if (!isPackPath(path))
        m_disk.emplace(path);
}

std::optional<memory_file> model_texture_source::read(const std::string& internal_path) const
{
    const path_tree::node_pointer node = getNodeFromInternalPath(internal_path);
    if (!node || !node->file())
        return m_disk ? m_disk->read(internal_path) : std::nullopt;
    memory_file bytes;
    failure why;
    if (readEntry(*node->file(), bytes, why))
        return bytes;
    if (m_log)
        m_log(describe(why));
    return std::nullopt;
}

} // namespace korvane
