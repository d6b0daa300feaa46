// What is done with the files of the page, and the keys and menus that do it.

#include "Korvane/app/archive_overview_dialog.h"
#include "Korvane/app/archive_page.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/text_dialogs.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/presenters/archive_places.h"

#include <algorithm>

namespace korvane
{

namespace
{

enum archive_command : int
{
    open_row = 1,
    take_out_rows,
    copy_paths,
    who_uses_it,
    what_it_needs,
    show_its_folder,
    view_row,
    its_archive,
    add_favourite,
    remove_favourite,
    open_copy = 200, // + number of the hidden copy
    view_copy = 300,
    take_out_copy = 400,
    favourite_first = 1000,
};

} // namespace

void archive_page::open(int row)
{
    if (row < 0)
        return;
    const auto number = static_cast<std::size_t>(row);
    if (const path_node* const folder = m_browser.rows().folderAt(number))
    {
        openFolder(std::string(folder->path()));
        m_list.select(m_browser.rows().rowCount() > 0 ? 0 : -1);
        return showChosen();
    }
    if (const pack_file_node* const file = m_browser.rows().fileAt(number))
        openFile(*file);
}

void archive_page::openFile(const pack_file_node& file)
{
    const std::string path(file.internalPath());
    const bool counts = m_browser.game()->archives()->findStored(path)->file() == &file;
    const std::string given =
        (counts ? game_path::ofInternal(path) : game_path::ofCopy(file.archive().name, path)).text();
    if (namesOtherFiles(path) || isFbxPath(path))
        host().openFile(given);
    else if (endsWithIgnoringCase(path, ".anim"))
        host().playAnimation(given);
    else if (isTexturePath(path))
        m_texture.view(game_file(std::shared_ptr<const pack_file_node>(m_browser.game()->archives(), &file)));
    else
        view(file);
}

void archive_page::view(const pack_file_node& file)
{
    m_viewer.view(game_file(std::shared_ptr<const pack_file_node>(m_browser.game()->archives(), &file)));
}

void archive_page::openFolder(const std::string& folder)
{
    clearSearch();
    m_browser.open(folder);
    showPlace();
}

void archive_page::showFavourites()
{
    const std::vector<std::string> folders = favouriteFolders(host().config().table());
    const bool is_one = std::find(folders.begin(), folders.end(), m_browser.folder()) != folders.end();
    std::vector<menu_row> rows;
    for (std::size_t i = 0; i < folders.size(); ++i)
        rows.push_back({favourite_first + static_cast<int>(i), menuText(folders[i])});
    if (!rows.empty())
        rows.push_back({});
    if (is_one)
        rows.push_back({remove_favourite, "&Remove This Folder"});
    else
        rows.push_back({add_favourite, "&Add This Folder", !m_browser.folder().empty()});
    RECT below{};
    GetWindowRect(m_favourites.handle(), &below);
    const int chosen = chooseFromMenu(handle(), {below.left, below.bottom}, rows);
    if (chosen == add_favourite || chosen == remove_favourite)
        host().config().change(
            [&](config_file& config) { return setFavourite(config, m_browser.folder(), chosen == add_favourite); });
    else if (chosen >= favourite_first)
    {
        const std::string& folder = folders[static_cast<std::size_t>(chosen - favourite_first)];
        openFolder(folder);
        if (m_browser.folder() != folder)
            host().setStatus("The archives have no folder " + displayText(folder) + " now.");
        goToRows();
    }
}

void archive_page::showArchives()
{
    const auto& archives = m_browser.game()->archives()->archives();
    std::optional<archive_overview> overview;
    if (archives.empty() || !host().work("Looking at all archives", [&](const work_port& work) {
            overview.emplace(m_browser.game()->archives(), work);
        }))
        return;
    const int row = m_list.selected();
    const pack_file_node* const file = row < 0 ? nullptr : m_browser.rows().fileAt(static_cast<std::size_t>(row));
    std::size_t first = archives.size() - 1;
    for (std::size_t i = 0; i < archives.size(); ++i)
        if (m_archive.selected() > 0 ? m_archive.selected() - 1 == static_cast<int>(i)
                                     : file != nullptr && archives[i].get() == &file->archive())
            first = i;
    archive_overview_dialog shown(*overview, first);
    if (runDialog(host(), shown) != archive_overview_dialog::show_files)
        return;
    m_find.setText("");
    m_type.select(0);
    m_archive.select(static_cast<int>(shown.chosen()) + 1);
    search();
    m_list.focus();
}

void archive_page::takeOut(const file_list& files)
{
    m_exchange.takeOut(files);
}

bool archive_page::copyMore()
{
    m_exchange.copy(m_list.selectedRows());
    return true;
}

void archive_page::go(void (archive_browser::*where)())
{
    if (leaveList()) // what was found, or what uses a file, is one step deep
        return;
    (m_browser.*where)();
    showPlace();
}

bool archive_page::leaveList()
{
    if (m_browser.isFolderShown())
        return false;
    if (!m_lookups.isSearch() && !m_find.text().empty())
        search(); // from which somebody came
    else
    {
        clearSearch();
        m_browser.showFolder();
        showPlace();
    }
    return true;
}

void archive_page::clearSearch()
{
    m_lookups.forget();
    m_find.setText("");
    m_type.select(0);
    m_archive.select(0);
}

bool archive_page::goToRows()
{
    if (m_browser.rows().rowCount() == 0)
        return false;
    m_list.focus();
    if (m_list.selected() < 0)
        m_list.select(0);
    showChosen();
    return true;
}

bool archive_page::onPageKey(int command)
{
    if (!hasControls() || isEmpty())
        return false;
    switch (command)
    {
    case find_command:
        return m_find.focusAll(), true;
    case back_command:
        return m_back.press(), true;
    case forward_command:
        return m_forward.press(), true;
    default:
        return leaveList();
    }
}

bool archive_page::onListKey(unsigned virtual_key)
{
    if (virtual_key == VK_BACK)
        return go(&archive_browser::goUp), true;
    const int row = m_list.selected();
    if (const pack_file_node* const file = row < 0 ? nullptr : m_browser.rows().fileAt(static_cast<std::size_t>(row));
        virtual_key == VK_F4 && file != nullptr)
        return view(*file), true;
    return m_mod_folder.onKey(virtual_key, m_list.selectedRows());
}

void archive_page::onFilesDropped(const std::vector<std::string>& paths)
{
    isEmpty() ? host().openFiles(paths) : m_mod_folder.put(paths);
}

void archive_page::showMenu(int row, POINT on_screen)
{
    const auto number = static_cast<std::size_t>(std::max(row, 0));
    const pack_file_node* const file = row < 0 ? nullptr : m_browser.rows().fileAt(number);
    const bool is_folder = row >= 0 && m_browser.rows().folderAt(number) != nullptr;
    const bool is_one = m_list.selectedCount() == 1; // else only what is done with all of them
    menu_row copies{0, "&Hidden Copies", false, false, {}};
    const file_list hidden = file != nullptr && is_one ? m_browser.copiesOf(number) : file_list();
    constexpr std::size_t most = 20;
    for (std::size_t i = 0; i < hidden.size() && i < most; ++i)
    {
        const int copy = static_cast<int>(i);
        copies.rows.push_back({0,
                               menuText(archiveName(hidden[i]->archive())),
                               true,
                               false,
                               {{open_copy + copy, "&Open"},
                                {view_copy + copy, "&View Text or Bytes"},
                                {take_out_copy + copy, "&Take Out..."}}});
    }
    copies.is_enabled = !copies.rows.empty();
    std::vector<menu_row> rows = {
        {open_row, "&Open\tEnter", is_one && (file != nullptr || is_folder)},
        {view_row, "&View Text or Bytes\tF4", is_one && file != nullptr},
        {take_out_rows, "&Take Out...", file != nullptr || is_folder},
        {},
        {who_uses_it, "Where Is This &Used?", is_one && !is_folder},
        {what_it_needs, "What Does It &Need?", is_one && file != nullptr && namesOtherFiles(file->internalPath())},
        {its_archive, "About Its &Archive...", is_one && file != nullptr},
        {show_its_folder, "Show Its &Folder", is_one && file != nullptr && !m_browser.isFolderShown()},
        {},
        {copy_paths, "&Copy\tCtrl+C", row >= 0},
        m_mod_folder.menu(m_list.selectedRows()),
    };
    if (!copies.rows.empty())
        rows.insert(rows.begin() + 3, std::move(copies));
    runFromMenu(chooseFromMenu(handle(), on_screen, rows), row);
}

void archive_page::runFromMenu(int chosen, int row)
{
    if (m_mod_folder.run(chosen, m_list.selectedRows()))
        return;
    const auto number = static_cast<std::size_t>(std::max(row, 0));
    const std::string path(row < 0 ? std::string_view() : m_browser.rows().pathAt(number));
    switch (chosen)
    {
    case 0:
        return;
    case open_row:
        return open(row);
    case take_out_rows:
        return takeOut(filesOf(m_browser, m_list.selectedRows()));
    case who_uses_it:
        return m_lookups.listUsers(path);
    case what_it_needs:
        return m_lookups.listNeeds(path);
    case show_its_folder:
        return showItsFolder(path);
    case view_row:
        return view(*m_browser.rows().fileAt(number));
    case its_archive:
        return showArchives();
    case copy_paths:
        return m_exchange.copy(m_list.selectedRows());
    default:
        const file_list hidden = m_browser.copiesOf(number);
        const auto copy = static_cast<std::size_t>(chosen % 100);
        if (copy >= hidden.size())
            return;
        if (chosen >= take_out_copy)
            takeOut({hidden[copy]});
        else
            chosen >= view_copy ? view(*hidden[copy]) : openFile(*hidden[copy]);
    }
}

void archive_page::showItsFolder(const std::string& path)
{
    openFolder(std::string(folderAround(path)));
    m_kept = {path};
    chooseKept();
}

} // namespace korvane
