#include "Korvane/presenters/archive_places.h"

#include "EASY_GUI/services/config_keys.h"

#include <algorithm>
#include <array>

namespace korvane
{

namespace
{

constexpr std::string_view downwards = " down";
// As they are kept, in the order of the columns.
constexpr std::array<std::string_view, 6> sortings = {"name", "type", "size", "archive", "hides", "folder"};

bool setValues(config_file& config, std::string_view key, const std::vector<std::string>& values)
{
    if (config.get(key) == values)
        return false;
    config.clear(key);
    return values.empty() || config.add(key, values, false);
}

} // namespace

std::vector<std::string> favouriteFolders(const config_file& config)
{
    std::vector<std::string> folders = config.get(config_keys::favourite_folders);
    std::erase(folders, std::string());
    return folders;
}

bool setFavourite(config_file& config, const std::string& folder, bool is_wanted)
{
    std::vector<std::string> folders = favouriteFolders(config);
    std::erase(folders, folder);
    if (is_wanted)
        folders.push_back(folder);
    return setValues(config, config_keys::favourite_folders, folders);
}

void restorePlace(archive_browser& browser, const config_file& config)
{
    const std::vector<std::string> folders = config.get(config_keys::internal_folders);
    archive_sorting sorting;
    for (std::string kept : config.get(config_keys::archive_sorting))
    {
        sorting.is_descending = kept.ends_with(downwards);
        kept.resize(kept.size() - (sorting.is_descending ? downwards.size() : 0));
        const auto found = std::find(sortings.begin(), sortings.end(), kept);
        if (found != sortings.end())
            sorting.by = static_cast<archive_rows::column>(found - sortings.begin());
    }
    browser.restore(folders.empty() ? std::string() : folders.front(), sorting);
}

bool keepPlace(config_file& config, const archive_browser& browser)
{
    std::vector<std::string> folder;
    if (!browser.folder().empty())
        folder.push_back(browser.folder());
    std::vector<std::string> sorting;
    if (const archive_sorting& is = browser.sorting(); is.by)
        sorting.push_back(std::string(sortings[*is.by]) += is.is_descending ? downwards : "");
    const bool is_other = setValues(config, config_keys::internal_folders, folder);
    return setValues(config, config_keys::archive_sorting, sorting) || is_other;
}

} // namespace korvane
