#pragma once

// What the page of the archives shows: the folder one is in, where one was before, or what was searched for. Without a
// window, and for one thread; searching itself is done beside it (archives/path_search.h).

#include "Korvane/game/game_data.h"
#include "Korvane/presenters/archive_folders.h"
#include "Korvane/presenters/archive_rows.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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
    // Of very many rows a list or its order takes longer than a window may wait: then they are due. A worker makes
    // them, and take() shows them. False: other rows have come meanwhile.
    struct due_rows
    {
        std::function<archive_rows()> make; // any thread; empty: nothing is due
        std::size_t number = 0;
        std::size_t row_count = 0; // when it became due
    };
    due_rows takeDue() { return std::exchange(m_due, {}); }
    bool take(archive_rows rows, const due_rows& made);
    bool isWaiting() const { return m_is_waiting; } // for such rows

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
    void clearRows();
    void makeDue(std::function<archive_rows()> make);

    std::shared_ptr<const game_data> m_po_game;
    std::shared_ptr<const hidden_copies> m_po_hidden;
    archive_folders m_folders;
    archive_rows m_rows;
    std::string m_folder;
    std::string m_heading; // empty: the folder is shown
    std::vector<std::string> m_history{std::string()};
    std::size_t m_at = 0;
    archive_sorting m_sorting;
    due_rows m_due;
    std::size_t m_number = 0;  // of the rows
    bool m_is_waiting = false; // for those that are due
};

} // namespace korvane
