#include "Korvane/presenters/archive_browser.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <unordered_set>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t most_at_once = 20000; // rows that are listed or put in order while a window waits

archive_rows rowsOfFolder(const path_tree& tree, const path_node& folder)
{
    std::vector<const path_node*> folders;
    std::vector<const pack_file_node*> files;
    for (const path_node* const child : tree.children(folder))
    {
        if (tree.isFolder(*child))
            folders.push_back(child);
        if (child->file() != nullptr)
            files.push_back(child->file());
    }
    archive_rows rows;
    rows.setFolders(std::move(folders));
    rows.add(files);
    return rows;
}

} // namespace

void archive_browser::setGame(std::shared_ptr<const game_data> game)
{
    m_po_game = std::move(game);
    m_po_hidden = nullptr;
    m_rows.setHidden(nullptr);
    m_folders.show(m_po_game ? m_po_game->archives() : nullptr);
    m_folder = m_folders.pathOf(m_folders.find(m_folder));
    m_history[m_at] = m_folder;
    showFolder();
}

void archive_browser::restore(std::string folder, archive_sorting sorting)
{
    m_folder = std::move(folder);
    m_history = {m_folder};
    m_at = 0;
    m_sorting = sorting;
}

void archive_browser::setHidden(std::shared_ptr<const hidden_copies> hidden)
{
    m_po_hidden = std::move(hidden);
    m_rows.setHidden(m_po_hidden);
}

bool archive_browser::open(std::string_view folder)
{
    std::string wanted = normalInternalPath(folder);
    if (!hasFiles() || m_folders.pathOf(m_folders.find(wanted)) != wanted)
        return false;
    if (wanted != m_folder)
    {
        m_history.resize(m_at + 1);
        m_history.push_back(wanted);
        ++m_at;
    }
    enter(std::move(wanted));
    return true;
}

void archive_browser::enter(std::string folder)
{
    m_folder = std::move(folder);
    showFolder();
}

void archive_browser::goBack()
{
    if (canGoBack())
        enter(std::string(m_folders.pathOf(m_folders.find(m_history[--m_at]))));
}

void archive_browser::goForward()
{
    if (canGoForward())
        enter(std::string(m_folders.pathOf(m_folders.find(m_history[++m_at]))));
}

void archive_browser::goUp()
{
    if (!canGoUp())
        return;
    open(std::string(folderAround(m_folder)));
}

void archive_browser::clearRows()
{
    m_rows.clear();
    m_due = {};
    m_is_waiting = false;
    ++m_number;
}

void archive_browser::beginList(std::string heading)
{
    m_heading = std::move(heading);
    clearRows();
    m_sorting = {};
}

void archive_browser::showFolder()
{
    m_heading.clear();
    clearRows();
    const path_node* const shown = m_folders.folderAt(m_folders.find(m_folder));
    if (shown == nullptr)
        return;
    const std::shared_ptr<const path_tree>& tree = m_po_game->archives();
    if (tree->hasMoreChildren(*shown, most_at_once))
        return makeDue([tree, shown, sorting = m_sorting, hidden = m_po_hidden] {
            archive_rows rows = rowsOfFolder(*tree, *shown);
            rows.setHidden(hidden);
            if (sorting.by)
                rows.sort(*sorting.by, sorting.is_descending);
            return rows;
        });
    m_rows = rowsOfFolder(*tree, *shown);
    m_rows.setHidden(m_po_hidden);
    sortAgain();
}

void archive_browser::sortBy(archive_rows::column wanted)
{
    m_sorting = {wanted, m_sorting.by == wanted && !m_sorting.is_descending};
    if (m_is_waiting && isFolderShown() && m_rows.rowCount() == 0)
        return showFolder(); // in that order
    sortAgain();
}

void archive_browser::sortAgain()
{
    if (!m_sorting.by)
        return;
    if (m_rows.rowCount() <= most_at_once)
        return m_rows.sort(*m_sorting.by, m_sorting.is_descending);
    makeDue([rows = m_rows, sorting = m_sorting] {
        archive_rows sorted = rows;
        sorted.sort(*sorting.by, sorting.is_descending);
        return sorted;
    });
}

void archive_browser::makeDue(std::function<archive_rows()> make)
{
    m_due = {std::move(make), ++m_number, m_rows.rowCount()};
    m_is_waiting = true;
}

bool archive_browser::take(archive_rows rows, const due_rows& made)
{
    if (made.number != m_number || made.row_count != m_rows.rowCount())
        return false;
    m_rows = std::move(rows);
    m_rows.setHidden(m_po_hidden);
    m_is_waiting = false;
    return true;
}

std::string archive_browser::status(bool is_searching) const
{
    std::string text;
    if (!isFolderShown())
        text = m_heading + ": " + counted(m_rows.fileCount(), "file");
    else if (m_rows.folderCount() > 0)
        text = counted(m_rows.folderCount(), "folder") + ", " + counted(m_rows.fileCount(), "file");
    else
        text = counted(m_rows.fileCount(), "file");
    if (m_rows.missingCount() > 0)
        text += ", " + grouped(m_rows.missingCount()) + " missing";
    return text + (is_searching ? ", searching..." : m_is_waiting ? ", being put in order..." : "");
}

std::vector<const pack_file_node*> archive_browser::copiesOf(std::size_t row) const
{
    const pack_file_node* const file = m_rows.fileAt(row);
    if (file == nullptr || !m_po_hidden)
        return {};
    const std::span<const pack_file_node* const> copies = m_po_hidden->of(*file);
    return {copies.rbegin(), copies.rend()}; // the one that would count next stands first
}

std::string archive_browser::details(std::size_t row) const
{
    const pack_file_node* const file = m_rows.fileAt(row);
    if (file == nullptr)
        return m_rows.folderAt(row) != nullptr || row >= m_rows.rowCount()
                   ? std::string()
                   : "No archive and no mod folder holds this file.";
    const archive_record& from = file->archive();
    std::string text = displayText(std::string(file->internalPath())) + ": ";
    text += from.is_folder ? "from the mod folder " + displayText(from.path) + ", which stands before all archives"
                           : "from " + displayText(from.name) + " (" + from.format + ")";
    if (file->compression() != 0)
        text += ", compressed";
    const std::vector<const pack_file_node*> copies = copiesOf(row);
    if (copies.empty())
        return text + ".";
    text += ". Hides " + counted(copies.size(), "copy", "copies") +
            (from.is_folder ? " of: " : ", for its archive counts more: ");
    constexpr std::size_t most = 4;
    for (std::size_t i = 0; i < copies.size() && i < most; ++i)
        text += (i == 0 ? "" : ", ") + archiveName(copies[i]->archive());
    return text + (copies.size() > most ? ", ..." : ".");
}

std::vector<std::string> archive_browser::pathsOf(const std::vector<std::size_t>& rows) const
{
    std::vector<std::string> paths;
    for (const std::size_t row : rows)
        paths.emplace_back(m_rows.pathAt(row));
    return paths;
}

std::vector<std::size_t> archive_browser::rowsOf(const std::vector<std::string>& paths) const
{
    const std::unordered_set<std::string_view> wanted(paths.begin(), paths.end());
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < m_rows.rowCount() && rows.size() < wanted.size(); ++row)
        if (wanted.contains(m_rows.pathAt(row)))
            rows.push_back(row);
    return rows;
}

std::optional<std::size_t> archive_browser::rowOf(std::string_view path) const
{
    for (std::size_t row = 0; row < m_rows.rowCount(); ++row)
        if (m_rows.pathAt(row) == path)
            return row;
    return std::nullopt;
}

} // namespace korvane
