#include "Korvane/game/folder_look.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/game/data_folders.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::array<std::string_view, 3> rome2_archives = {"models_rome2.pack", "models2_rome2.pack",
                                                            "models3_rome2.pack"};

bool isRome2Archive(const std::string& path)
{
    return std::any_of(rome2_archives.begin(), rome2_archives.end(),
                       [&path](std::string_view name) { return equalsIgnoringCase(fileName(path), name); });
}

} // namespace

folder_look lookAtFolder(const std::string& folder, const std::stop_token& stop)
{
    folder_look look;
    look.folder = withSeparator(wholeFolder(existingPathAnyCase(folder)));
    std::error_code error;
    look.is_there = std::filesystem::is_directory(toPath(look.folder), error);
    if (!look.is_there)
        return look;
    std::vector<std::string> archives;
    failure why;
    if (!listArchives(look.folder, archives, why, stop))
        look.problem = why.what;
    look.archives = archives.size();
    look.has_rome2_models = std::any_of(archives.begin(), archives.end(), isRome2Archive);
    return look;
}

folder_look lookForArchives(const std::string& chosen, const std::stop_token& stop)
{
    folder_look look = lookAtFolder(chosen, stop);
    if (!look.is_there || look.archives > 0)
        return look;
    folder_look data = lookAtFolder(toUtf8(toPath(look.folder) / "data"), stop);
    return data.archives > 0 ? data : look;
}

} // namespace korvane
