#include "D3D11_RENDER_LIB/disk_texture_source.h"

#include "Korvane/archives/loose_file.h"

namespace korvane
{

std::optional<memory_file> disk_texture_source::read(const std::string& internal_path) const
{
    const std::string found = findLooseFile(internal_path, m_model_path);
    memory_file file;
    failure why;
    if (found.empty() || !file.read(found, why))
        return std::nullopt;
    return file;
}

} // namespace korvane
