#include "Korvane/archives/extraction_folder.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

namespace korvane
{

// May number a name of the flat layout.
bool extraction_folder::claim(std::string& relative)
{
    if (m_taken.insert(toLower(relative)).second)
        return true;
    if (m_layout == extraction_layout::by_path)
        return false;
    const std::size_t dot = std::min(relative.rfind('.'), relative.size());
    const std::string stem = relative.substr(0, dot), extension = relative.substr(dot);
    for (int number = 2; !m_taken.insert(toLower(relative)).second; ++number)
        relative = stem + "_" + std::to_string(number) + extension;
    return true;
}

bool extraction_folder::locate(std::string_view internal_path, std::string& disk_path, failure& why)
{
    std::string reason;
    std::optional<std::string> relative = relativeDiskPath(internal_path, reason);
    if (!relative)
        return fail(why, failure_kind::refused, "refused: " + reason, std::string(internal_path));
    if (m_layout == extraction_layout::flat)
        relative = std::string(fileName(*relative));
    relative = displayText(*relative); // a disk's names are text
    if (!claim(*relative))
        return fail(why, failure_kind::refused, "refused: another file has the same path on the disk",
                    std::string(internal_path));
    disk_path = toUtf8(toPath(m_folder) / toPath(*relative));
    return true;
}

bool extraction_folder::place(std::string_view internal_path, std::string& disk_path, failure& why)
{
    std::string located;
    if (!locate(internal_path, located, why))
        return false;
    const std::filesystem::path target = toPath(located);
    std::error_code error;
    std::filesystem::create_directories(target.parent_path(), error);
    if (error)
        return fail(why, failure_kind::unwritable, "the folder cannot be created: " + error.message(),
                    toUtf8(target.parent_path()));
    disk_path = std::move(located);
    return true;
}

} // namespace korvane
