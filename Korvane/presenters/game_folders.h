#pragma once

// "Setup Game Folders...": the data folders and the mod folders as rows that can be changed, and saved as a whole. The
// dialog shows them and asks for a folder; what it may hold is decided here. Nothing here looks at the disk, but for
// the static functions, which are for a worker. Mod folders stand behind the data folders, and of them the first one
// counts most, as a person reads a list; the configuration has that one last. For the thread that owns the
// configuration.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/services/shared_config.h"
#include "Korvane/game/folder_look.h"
#include "Korvane/game/game_finder.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

class game_folders : public list_model
{
public:
    enum class folder_kind
    {
        data,
        mod
    };

    // The folders of the configuration, which outlives this.
    explicit game_folders(shared_config& config);

    std::span<const list_column> columns() const override; // folder, kind, archives
    std::size_t rowCount() const override { return m_rows.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;
    std::string tip(std::size_t row) const override; // of a folder with a problem what to do about it

    // What the folders hold. The folders that nobody has looked at yet, the look (a worker's), and what it found; a
    // folder that was removed meanwhile is passed over. Until then a row shows no number.
    std::vector<std::string> unseenFolders() const;
    [[nodiscard]] static std::vector<folder_look> look(const std::vector<std::string>& folders, const work_port& work);
    void take(const std::vector<folder_look>& looks);

    // What a person has chosen or typed, looked at by a worker; blanks and quotation marks around it do not count.
    [[nodiscard]] static folder_look lookAtChosen(folder_kind kind, const std::string& chosen,
                                                  const std::stop_token& stop = {});
    // A mod folder that is not there, in a folder that is, can be made: the question to the person; nothing for others.
    [[nodiscard]] static std::optional<std::string> offerToMake(folder_kind kind, const folder_look& look);
    // Adds it behind those of its kind, a mod folder before them. Nothing, or why not, for the person.
    [[nodiscard]] std::optional<std::string> add(folder_kind kind, const folder_look& look);
    // Of the games that were found those whose folder is not in the list yet.
    [[nodiscard]] std::vector<found_game> newOf(const std::vector<found_game>& found) const;
    void add(const found_game& game);
    std::size_t lastAdded() const { return m_last_added; } // row of the folder that was added last

    void remove(std::size_t row);
    // Within its kind.
    bool canMoveUp(std::size_t row) const;
    bool canMoveDown(std::size_t row) const;
    void moveUp(std::size_t row);
    void moveDown(std::size_t row);

    // What was last typed into the dialog's box.
    const std::string& boxText() const { return m_box_text; }
    void setBoxText(const std::string& text) { m_box_text = text; }

    bool hasDataFolders() const { return firstMod() > 0; }
    // The mod folder that counts; empty: none is set.
    std::string modFolder() const { return firstMod() < m_rows.size() ? m_rows[firstMod()].folder : std::string(); }

    // Whether other folders are set than at first or at the last save, so that the archives have to be read again.
    bool isChanged() const;
    // False when the configuration cannot be written (it says so itself): this program has folders and box text all the
    // same.
    bool save();

    // Folders, archives: "2 data folders with 13 archives, 1 mod folder".
    [[nodiscard]] std::string summary() const;

private:
    struct folder_row
    {
        folder_kind kind = folder_kind::data;
        std::string folder;
        std::optional<folder_look> look; // nothing: not looked at yet
    };

    std::size_t firstMod() const;
    std::vector<std::string> folders(folder_kind kind) const; // in the order of the configuration
    bool hasFolder(const std::string& folder) const;
    void insert(folder_kind kind, const folder_look& look);
    bool isProblem(const folder_row& row) const;

    shared_config& m_config;
    std::vector<folder_row> m_rows; // data folders first
    std::vector<std::string> m_saved_data, m_saved_mod;
    std::string m_box_text;
    std::size_t m_last_added = 0;
};

// The games that "Find Games" proposes, to choose from.
class found_games : public list_model
{
public:
    explicit found_games(std::vector<found_game> games) : m_games(std::move(games)) {}

    const found_game& game(std::size_t row) const { return m_games[row]; }
    std::span<const list_column> columns() const override; // game, archives, folder
    std::size_t rowCount() const override { return m_games.size(); }
    std::string text(std::size_t row, std::size_t column) const override;

private:
    std::vector<found_game> m_games;
};

} // namespace korvane
