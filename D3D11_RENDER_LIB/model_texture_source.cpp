#include "D3D11_RENDER_LIB/model_texture_source.h"

#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"

namespace korvane
{

std::optional<memory_file> model_texture_source::read(const std::string& internal_path) const
{
    const path_tree::node_pointer node = getNodeFromInternalPath(internal_path);
    if (!node || !node->file())
        return m_disk.read(internal_path);
    memory_file bytes;
    failure why;
    if (readEntry(*node->file(), bytes, why))
        return bytes;
    if (m_log)
        m_log(describe(why));
    return std::nullopt;
}

} // namespace korvane
