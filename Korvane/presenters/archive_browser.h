#pragma once

// What the page of the archives shows: the folder one is in, where one was before, or what was searched for. Without a
// window, and for one thread; searching itself is done beside it (archives/path_search.h).

#include "Korvane/game/game_data.h"
#include "Korvane/presenters/archive_folders.h"
#include "Korvane/presenters/archive_rows.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct archive_sorting
{
    std::optional<archive_rows::column> by; // nothing: by path, as the archives are
    bool is_descending = false;

    friend bool operator==(const archive_sorting&, const archive_sorting&) = default;
};

class archive_browser
{
public:
    // What was shown last, before there are archives.
    void restore(std::string folder, archive_sorting sorting);
    // The archives were read: place and history stay, as far as these folders are there.
    void setGame(std::shared_ptr<const game_data> game);
    const std::shared_ptr<const game_data>& game() const { return m_po_game; }
    bool hasFiles() const { return m_po_game && m_po_game->archives() != nullptr; }
    void setHidden(std::shared_ptr<const hidden_copies> hidden);

    archive_folders& folders() { return m_folders; }
    archive_rows& rows() { return m_rows; }
    const archive_rows& rows() const { return m_rows; }

    // --- places ---------------------------------------------------------------------------------------------------
    const std::string& folder() const { return m_folder; } // internal; empty: all archives
    // As a person spells it. False: there is none, and nothing changes.
    bool open(std::string_view folder);
    bool canGoBack() const { return m_at > 0; }
    bool canGoForward() const { return m_at + 1 < m_history.size(); }
    bool canGoUp() const { return !m_folder.empty(); }
    void goBack();
    void goForward();
    void goUp();

    // --- other lists ----------------------------------------------------------------------------------------------
    // What is listed instead of the folder, as the line above the list says it: "Files with \"guard\"".
    void beginList(std::string heading);
    void showFolder(); // again
    bool isFolderShown() const { return m_heading.empty(); }
    // A click on a column's title: once upwards, again downwards.
    void sortBy(archive_rows::column wanted);
    const archive_sorting& sorting() const { return m_sorting; }
    void sortAgain(); // when more has come

    // --- texts ----------------------------------------------------------------------------------------------------
    // "Files with \"guard\": 1,204 of 1,000,000", "2 folders, 31 files".
    std::string status(bool is_searching) const;
    // Of a row: which archive wins and why, what it hides, whether it is compressed.
    std::string details(std::size_t row) const;
    // The copies that a row's file hides, for a menu.
    std::vector<const pack_file_node*> copiesOf(std::size_t row) const;
    std::optional<std::size_t> rowOf(std::string_view path) const;
    // So that what is chosen can be chosen again in other rows; paths that are not listed are passed over.
    std::vector<std::string> pathsOf(const std::vector<std::size_t>& rows) const;
    std::vector<std::size_t> rowsOf(const std::vector<std::string>& paths) const;

private:
    void enter(std::string folder);

    std::shared_ptr<const game_data> m_po_game;
    std::shared_ptr<const hidden_copies> m_po_hidden;
    archive_folders m_folders;
    archive_rows m_rows;
    std::string m_folder;
    std::string m_heading; // empty: the folder is shown
    std::vector<std::string> m_history{std::string()};
    std::size_t m_at = 0;
    archive_sorting m_sorting;
};

} // namespace korvane
