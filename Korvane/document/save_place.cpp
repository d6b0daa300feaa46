#include "Korvane/document/save_place.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/game/game_path.h"

#include <algorithm>

namespace korvane
{

save_place::save_place(const std::string& model_path, const std::string& disk_path, const std::string& mod_folder,
                       std::string_view addition)
{
    std::string reason;
    const game_path path(model_path);
    const auto relative = relativeDiskPath(normalInternalPath(path.pathInArchive()), reason);
    const bool is_new = path.isInternal() && disk_path.empty(); // there is none in the way
    m_suggestion.name = fileName(path.pathInArchive());
    if (!is_new)
        m_suggestion.name.insert(std::min(m_suggestion.name.rfind('.'), m_suggestion.name.size()), addition);
    std::error_code error;
    std::filesystem::path folder = toPath(disk_path).parent_path();
    if (is_new && relative && !mod_folder.empty() && std::filesystem::is_directory(toPath(mod_folder), error))
        makeFolders(folder = toPath(mod_folder) / toPath(*relative).parent_path());
    if (std::filesystem::is_directory(folder, error))
        m_suggestion.folder = toUtf8(folder.make_preferred());
}

save_place::~save_place()
{
    std::error_code error; // of one that is not empty
    std::for_each(m_made.rbegin(), m_made.rend(),
                  [&error](const std::filesystem::path& folder) { std::filesystem::remove(folder, error); });
}

void save_place::makeFolders(const std::filesystem::path& wanted)
{
    std::error_code error;
    if (wanted.empty() || std::filesystem::exists(wanted, error))
        return;
    makeFolders(wanted.parent_path());
    if (std::filesystem::create_directory(wanted, error))
        m_made.push_back(wanted);
}

} // namespace korvane
