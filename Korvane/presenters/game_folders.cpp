#include "Korvane/presenters/game_folders.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/game/data_folders.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::array folder_columns = {list_column{"Folder", 0}, list_column{"Kind", 90},
                                       list_column{"Archives", 80, true}};
constexpr std::array game_columns = {list_column{"Game", 220}, list_column{"Archives", 80, true},
                                     list_column{"Folder", 0}};
enum folder_column : std::size_t
{
    column_folder,
    column_kind,
    column_archives
};

// As a path is copied out of a file manager: "C:\Games\data".
std::string withoutFrame(const std::string& text)
{
    constexpr const char* frame = " \t\r\n\"";
    const std::size_t begin = text.find_first_not_of(frame);
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(frame) + 1 - begin);
}

bool isSameFolder(const std::string& left, const std::string& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return foldedCharacter(a) == foldedCharacter(b); });
}

} // namespace

game_folders::game_folders(shared_config& config)
    : m_config(config)
    , m_saved_data(config.get(config_keys::data_folders))
    , m_saved_mod(config.get(config_keys::mod_folders))
{
    for (const std::string& folder : m_saved_data)
        m_rows.push_back({folder_kind::data, folder, {}});
    for (auto folder = m_saved_mod.rbegin(); folder != m_saved_mod.rend(); ++folder)
        m_rows.push_back({folder_kind::mod, *folder, {}});
    if (const std::vector<std::string> texts = config.get(config_keys::folder_box_text); !texts.empty())
        m_box_text = texts.front();
}

std::span<const list_column> game_folders::columns() const
{
    return folder_columns;
}

std::string game_folders::text(std::size_t row, std::size_t column) const
{
    const folder_row& of = m_rows[row];
    const bool is_data = of.kind == folder_kind::data;
    if (column == column_kind)
        return is_data ? "Game data" : "Mod folder";
    if (column == column_folder)
        return (of.look && of.look->has_rome2_models ? "Total War Rome 2 |  Path | " : "") + displayText(of.folder);
    if (!of.look)
        return {};
    return !of.look->is_there ? "missing" : is_data || of.look->archives > 0 ? grouped(of.look->archives) : "";
}

bool game_folders::isProblem(const folder_row& row) const
{
    return row.look && (!row.look->is_there || !row.look->problem.empty() ||
                        (row.kind == folder_kind::data && row.look->archives == 0));
}

row_mark game_folders::mark(std::size_t row) const
{
    return isProblem(m_rows[row]) ? row_mark::error : row_mark::plain;
}

std::string game_folders::tip(std::size_t row) const
{
    const folder_row& of = m_rows[row];
    if (isProblem(of))
        return !of.look->is_there ? "This folder is not there. Connect its drive, or remove it and add the right one."
               : !of.look->problem.empty()
                   ? "This folder cannot be read (" + of.look->problem + "). Remove it, or ask for access to it."
                   : "This folder holds no .pack archives, and as long as it is in the list no archives are read. "
                     "Remove it, and add the game's \"data\" folder.";
    if (of.kind == folder_kind::mod)
        return "Your own files, used in place of those of the game. The upper one of two mod folders counts.";
    return "The archives in this folder are read when the program starts.";
}

std::vector<std::string> game_folders::unseenFolders() const
{
    std::vector<std::string> unseen;
    for (const folder_row& row : m_rows)
        if (!row.look)
            unseen.push_back(row.folder);
    return unseen;
}

std::vector<folder_look> game_folders::look(const std::vector<std::string>& folders, const work_port& work)
{
    std::vector<folder_look> looks;
    for (const std::string& folder : folders)
    {
        work.report(looks.size(), folders.size(), displayText(folder));
        looks.push_back(lookAtFolder(folder, work.stop));
        if (work.isStopped()) // what it says is not all
        {
            looks.pop_back();
            break;
        }
    }
    return looks;
}

void game_folders::take(const std::vector<folder_look>& looks)
{
    for (const folder_look& look : looks)
        for (folder_row& row : m_rows)
            if (isSameFolder(withSeparator(row.folder), look.folder))
            {
                row.folder = look.folder; // the configuration has it in lower case
                row.look = look;
            }
}

folder_look game_folders::lookAtChosen(folder_kind kind, const std::string& chosen, const std::stop_token& stop)
{
    const std::string folder = withoutFrame(chosen);
    return folder.empty()              ? folder_look()
           : kind == folder_kind::data ? lookForArchives(folder, stop)
                                       : lookAtFolder(folder, stop);
}

std::optional<std::string> game_folders::offerToMake(folder_kind kind, const folder_look& look)
{
    std::string folder = look.folder;
    while (folder.ends_with('/') || folder.ends_with('\\'))
        folder.pop_back();
    const std::filesystem::path path = toPath(folder);
    std::error_code error;
    if (kind != folder_kind::mod || look.is_there || !path.is_absolute() || std::filesystem::exists(path, error) ||
        !std::filesystem::is_directory(path.parent_path(), error))
        return std::nullopt;
    return "There is no folder \"" + displayText(folder) + "\". Make it?";
}

std::optional<std::string> game_folders::add(folder_kind kind, const folder_look& look)
{
    const std::string shown = "\"" + displayText(look.folder) + "\"";
    if (look.folder.empty())
        return "Type the path of a folder, or choose one with Browse.";
    if (!look.is_there)
        return "There is no folder " + shown + ". Check the spelling, or choose it with Browse.";
    if (!look.problem.empty())
        return "The folder " + shown + " cannot be read: " + look.problem + ".";
    if (look.folder.find('"') != std::string::npos)
        return "The folder " + shown + " has a quotation mark in its name, which the settings cannot hold. Rename it.";
    if (hasFolder(look.folder))
        return "The folder " + shown + " is in the list already.";
    if (kind == folder_kind::data && look.archives == 0)
        return "The folder " + shown +
               " holds no .pack archives. Choose the folder of a game, or the folder \"data\" in it.";
    insert(kind, look);
    return std::nullopt;
}

void game_folders::insert(folder_kind kind, const folder_look& look)
{
    m_last_added = firstMod();
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(m_last_added), {kind, look.folder, look});
}

std::vector<found_game> game_folders::newOf(const std::vector<found_game>& found) const
{
    std::vector<found_game> others;
    std::copy_if(found.begin(), found.end(), std::back_inserter(others),
                 [this](const found_game& game) { return !hasFolder(game.data_folder); });
    return others;
}

void game_folders::add(const found_game& game)
{
    m_last_added = firstMod();
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(m_last_added),
                  {folder_kind::data, game.data_folder, {}});
}

void game_folders::remove(std::size_t row)
{
    m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
}

bool game_folders::canMoveUp(std::size_t row) const
{
    return row > 0 && row < m_rows.size() && m_rows[row - 1].kind == m_rows[row].kind;
}

bool game_folders::canMoveDown(std::size_t row) const
{
    return canMoveUp(row + 1);
}

void game_folders::moveUp(std::size_t row)
{
    if (canMoveUp(row))
        std::swap(m_rows[row - 1], m_rows[row]);
}

void game_folders::moveDown(std::size_t row)
{
    moveUp(row + 1);
}

std::size_t game_folders::firstMod() const
{
    return static_cast<std::size_t>(std::count_if(m_rows.begin(), m_rows.end(),
                                                  [](const folder_row& row) { return row.kind == folder_kind::data; }));
}

bool game_folders::hasFolder(const std::string& folder) const
{
    return std::any_of(m_rows.begin(), m_rows.end(), [&folder](const folder_row& row) {
        return isSameFolder(withSeparator(row.folder), withSeparator(folder));
    });
}

std::vector<std::string> game_folders::folders(folder_kind kind) const
{
    std::vector<std::string> folders;
    for (const folder_row& row : m_rows)
        if (row.kind == kind)
            folders.push_back(row.folder);
    if (kind == folder_kind::mod)
        std::reverse(folders.begin(), folders.end());
    return folders;
}

bool game_folders::isChanged() const
{
    const auto same = [](const std::vector<std::string>& left, const std::vector<std::string>& right) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSameFolder);
    };
    return !same(folders(folder_kind::data), m_saved_data) || !same(folders(folder_kind::mod), m_saved_mod);
}

bool game_folders::save()
{
    const std::vector<std::string> data = folders(folder_kind::data), mod = folders(folder_kind::mod);
    const bool writes_folders = isChanged(); // otherwise those that another window has set meanwhile stay
    const bool is_saved = m_config.change([&](config_file& config) {
        if (writes_folders)
        {
            config.clear(config_keys::data_folders);
            config.add(config_keys::data_folders, data, false);
            config.clear(config_keys::mod_folders);
            config.add(config_keys::mod_folders, mod, false);
        }
        const std::vector<std::string> box = {toLower(m_box_text)};
        const bool writes_text = config.get(config_keys::folder_box_text) != box;
        config.clear(config_keys::folder_box_text);
        config.add(config_keys::folder_box_text, box, false);
        return writes_folders || writes_text;
    });
    m_saved_data = data;
    m_saved_mod = mod;
    return is_saved;
}

std::string game_folders::summary() const
{
    std::size_t archives = 0;
    for (const folder_row& row : m_rows)
        archives += row.kind == folder_kind::data && row.look ? row.look->archives : 0;
    const std::size_t data = firstMod(), mod = m_rows.size() - data;
    if (m_rows.empty())
        return "No folders yet. Press Find Games, or add the folder of a game.";
    return counted(data, "data folder") + " with " + counted(archives, "archive") +
           (mod == 0 ? std::string() : ", " + counted(mod, "mod folder"));
}

std::span<const list_column> found_games::columns() const
{
    return game_columns;
}

std::string found_games::text(std::size_t row, std::size_t column) const
{
    const found_game& game = m_games[row];
    return column == 0 ? game.name : column == 1 ? grouped(game.archives) : displayText(game.data_folder);
}

} // namespace korvane
