#include "D3D11_RENDER_LIB/disk_texture_source.h"

#include "EASY_GUI/services/file_system.h"

#include <algorithm>
#include <system_error>

namespace korvane
{

namespace
{

std::string withSlashes(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// Only plain names between the slashes: what a file says must not lead anywhere else on the disk.
bool staysInside(const std::string& path)
{
    if (path.empty() || path.front() == '/' || path.find(':') != std::string::npos)
        return false;
    for (std::size_t start = 0; start <= path.size();)
    {
        const std::size_t end = std::min(path.find('/', start), path.size());
        if (path.compare(start, end - start, "..") == 0)
            return false;
        start = end + 1;
    }
    return true;
}

std::string existingFile(const std::filesystem::path& folder, const std::string& relative)
{
    std::error_code error;
    const std::string found = existingPathAnyCase(toUtf8(folder / toPath(relative)));
    return std::filesystem::is_regular_file(toPath(found), error) ? found : std::string();
}

} // namespace

std::string disk_texture_source::find(const std::string& internal_path) const
{
    const std::string relative = withSlashes(internal_path);
    if (!staysInside(relative))
        return {};
    std::error_code error;
    const std::filesystem::path model = std::filesystem::absolute(toPath(m_model_path), error);
    if (error)
        return {};
    const std::filesystem::path own_folder = model.parent_path();
    for (std::filesystem::path folder = own_folder;; folder = folder.parent_path())
    {
        if (std::string found = existingFile(folder, relative); !found.empty())
            return found;
        if (!folder.has_relative_path())
            break;
    }
    return existingFile(own_folder, relative.substr(relative.find_last_of('/') + 1));
}

std::optional<memory_file> disk_texture_source::read(const std::string& internal_path) const
{
    const std::string found = find(internal_path);
    memory_file file;
    failure why;
    if (found.empty() || !file.read(found, why))
        return std::nullopt;
    return file;
}

} // namespace korvane
