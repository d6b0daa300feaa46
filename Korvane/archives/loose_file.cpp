#include "Korvane/archives/loose_file.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/positioned_file.h"

#include <algorithm>
#include <system_error>

namespace korvane
{

namespace
{

// With '/', and without blanks at the ends: those of a disk that is asked would count.
std::string relativePath(std::string_view internal_path)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = internal_path.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    std::string path(internal_path.substr(begin, internal_path.find_last_not_of(blanks) + 1 - begin));
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

std::string findFileBelow(const std::string& folder, std::string_view internal_path)
{
    const std::string relative = relativePath(internal_path);
    return staysInside(relative) ? existingFile(toPath(existingPathAnyCase(folder)), relative) : std::string();
}

std::string findLooseFile(std::string_view internal_path, const std::string& around)
{
    const std::string relative = relativePath(internal_path);
    if (!staysInside(relative))
        return {};
    std::error_code error;
    const std::filesystem::path other = std::filesystem::absolute(toPath(around), error);
    if (error)
        return {};
    const std::filesystem::path own_folder = other.parent_path();
    for (std::filesystem::path folder = own_folder;; folder = folder.parent_path())
    {
        if (std::string found = existingFile(folder, relative); !found.empty())
            return found;
        if (!folder.has_relative_path())
            break;
    }
    return existingFile(own_folder, relative.substr(relative.find_last_of('/') + 1));
}

bool readLooseFile(const std::string& path, memory_file& bytes, failure& why, std::uint64_t limit)
{
    positioned_file file;
    if (!file.open(path, why))
        return false;
    if (file.size() > limit)
        return fail(why, failure_kind::malformed,
                    std::to_string(file.size()) + " bytes are more than the " + std::to_string(limit) +
                        " that are allowed",
                    path);
    return bytes.read(path, why);
}

bool readLooseStart(const std::string& path, std::span<std::byte> target, std::size_t& count, failure& why)
{
    positioned_file file;
    if (!file.open(path, why))
        return false;
    const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(target.size(), file.size()));
    if (!file.readAt(0, target.first(there)))
        return fail(why, failure_kind::unreadable, "the file cannot be read", path);
    count = there;
    return true;
}

} // namespace korvane
