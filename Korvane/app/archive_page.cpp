#include "Korvane/app/archive_page.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/archive_overview_dialog.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/text_dialogs.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/document/window_place.h"
#include "Korvane/presenters/archive_places.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view archive_columns_name = "archives";
constexpr std::array<std::string_view, 6> types = {"", "rigid_model_v2", "variantmeshdefinition", "dds", "anim", "xml"};

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

archive_page::archive_page(page_host& host)
    : rows_page(host, {&m_back, &m_forward, &m_up, &m_path_name, &m_path, &m_favourites, &m_find_name, &m_find, &m_type,
                       &m_archive, &m_overview, &m_tree, &m_list, &m_details, &m_status, &m_open, &m_take_out})
    , m_exchange(host, m_browser)
    , m_preview(host.thread())
    , m_viewer(host)
    , m_lookups(host, m_browser,
                {[this] {
                     m_list.refresh();
                     m_status.setText(m_browser.status(true));
                 },
                 [this] {
                     if (!m_lookups.isSearch())
                         m_list.select(-1);
                     showList();
                 },
                 [this] { m_list.refresh(); }, [this](const std::string& text) { m_status.setText(text); }})
{
    layout places(layout::direction::across);
    places.add(m_back, fixed(32))
        .add(m_forward, fixed(32))
        .add(m_up, fixed(44))
        .add(m_path_name)
        .add(m_path, share())
        .add(m_favourites);
    layout finding(layout::direction::across);
    finding.add(m_find_name).add(m_find, share()).add(m_type, fixed(130)).add(m_archive, fixed(150)).add(m_overview);
    layout panes(layout::direction::across);
    panes.add(m_tree, share(3, 80)).add(m_list, share(8, 120)).add(m_preview, share(4, 80));
    m_layout.add(std::move(places)).add(std::move(finding)).add(std::move(panes), share(1, 80)).add(m_details);
    m_layout.add(layout(layout::direction::across).add(m_status, share()).add(m_open).add(m_take_out));
}

bool archive_page::createControls(failure& why)
{
    constexpr auto editable = edit_box::access::editable;
    list_view_options options;
    options.has_many = true;
    const bool is_whole =
        m_back.create(handle(), control_archive_back, "<") &&
        m_forward.create(handle(), control_archive_forward, ">") && m_up.create(handle(), control_archive_up, "Up") &&
        m_path_name.create(handle(), "F&older:") && m_path.create(handle(), control_archive_path, editable) &&
        m_favourites.create(handle(), control_archive_favourites, "Fa&vourites...") &&
        m_find_name.create(handle(), "F&ind:") && m_find.create(handle(), control_archive_find, editable) &&
        m_type.create(handle(), control_archive_type) && m_archive.create(handle(), control_archive_archive) &&
        m_overview.create(handle(), control_archive_overview, "Arc&hives...") &&
        m_tree.create(handle(), control_archive_tree, m_browser.folders()) &&
        m_list.create(handle(), control_archive_list, m_browser.rows(), options) && m_preview.createIn(handle(), why) &&
        m_details.create(handle(), control_archive_details) && m_status.create(handle(), control_archive_status) &&
        m_open.create(handle(), control_archive_open, "O&pen") &&
        m_take_out.create(handle(), control_archive_take_out, "Ta&ke Out...") && m_empty.createIn(handle(), why);
    if (!is_whole)
        return fail(why, failure_kind::refused, "a control of the page Archives could not be created");
    m_list.setColumnWidths(
        keptColumns(host().config().table(), archive_columns_name, m_browser.rows().columns().size()));
    restorePlace(m_browser, host().config().table());
    for (const std::string_view type : types)
        m_type.add(type.empty() ? std::string("All types") : typeName(type));
    m_type.select(0);
    m_back.setTip("Back (Alt+Left)");
    m_forward.setTip("Forward (Alt+Right)");
    m_up.setTip("The folder above (Backspace)");
    m_find.setTip("Parts of paths, all of which have to be there; * and ? stand for other characters");
    m_favourites.setTip("Folders to come back to");
    m_overview.setTip("All archives in the order in which they count, what each overrides, and why");
    m_take_out.setTip("Writes the chosen files into a folder of the disk");
    connect();
    return true;
}

void archive_page::connect()
{
    m_back.onClick = [this] { go(&archive_browser::goBack); };
    m_forward.onClick = [this] { go(&archive_browser::goForward); };
    m_up.onClick = [this] { go(&archive_browser::goUp); };
    m_path.onKey = [this](unsigned key) { return key == VK_RETURN && goToRows(); };
    m_favourites.onClick = [this] { showFavourites(); };
    m_overview.onClick = [this] { showArchives(); };
    m_path.onChange = [this] {
        if (!m_browser.open(m_path.text()))
            return;
        clearSearch();
        showPlace();
    };
    m_find.onChange = [this] { search(); };
    m_find.onKey = [this](unsigned key) { return (key == VK_DOWN || key == VK_RETURN) && goToRows(); };
    m_type.onSelect = [this](int) { search(); };
    m_archive.onSelect = [this](int) { search(); };
    m_tree.onSelect = m_tree.onActivate = [this](tree_model::node chosen) {
        openFolder(std::string(m_browser.folders().pathOf(chosen)));
    };
    m_list.onSelect = [this](int) { showChosen(); };
    m_list.onActivate = [this](int row) { open(row); };
    m_list.onContextMenu = [this](int row, POINT on_screen) { showMenu(row, on_screen); };
    m_list.onColumn = [this](int column) {
        m_browser.sortBy(static_cast<archive_rows::column>(column));
        showList();
    };
    m_list.onDrag = [this] { m_exchange.drag(m_list.selectedRows()); };
    m_tree.onDrag = [this](tree_model::node dragged) {
        if (const path_node* const folder = m_browser.folders().folderAt(dragged))
            m_exchange.drag(*folder);
    };
    m_list.onKey = [this](unsigned virtual_key) { return onListKey(virtual_key); };
    m_open.onClick = [this] { open(m_list.selected()); };
    m_take_out.onClick = [this] { takeOut(chosenFiles()); };
}

void archive_page::applyFont(const font& used)
{
    if (hasControls())
        m_preview.setFont(used);
    rows_page::applyFont(used);
}

bool archive_page::keep(config_file& config) const
{
    if (!hasControls())
        return false;
    const bool is_other = m_browser.hasFiles() && keepPlace(config, m_browser);
    return keepColumns(config, archive_columns_name, m_list.columnWidths()) || is_other;
}

HWND archive_page::firstControl() const
{
    return isEmpty() ? m_empty.firstControl() : m_find.handle();
}

empty_content archive_page::emptyContent() const
{
    const auto run = [this](document_command command) { return [this, command] { host().runCommand(command); }; };
    empty_content content;
    content.heading = "No archives are loaded";
    content.lines = {"The games keep their models, textures and animations in archives (.pack).",
                     "Say where a game's data folder is, and they are shown here as one file system."};
    content.choices = {{"&Setup Game Folders...", run(document_command::game_folders)}};
    return content;
}

void archive_page::showDocument()
{
    if (!hasControls())
        return;
    const std::shared_ptr<const game_data>& game = host().document().game();
    if (m_lookups.knows(game))
        return;
    m_lookups.setGame(game);
    m_browser.setGame(game);
    m_tree.restart();
    fillChoices();
    showState();
    showPlace();
    if (!isEmpty())
        m_lookups.isSearch() ? search() : m_lookups.prepare(); // what was found is looked for again
}

void archive_page::showState()
{
    if (isEmpty())
    {
        m_empty.setContent(emptyContent());
        m_empty.showOver(true);
    }
    setRowsVisible(!isEmpty());
    ShowWindow(m_preview.handle(), isEmpty() ? SW_HIDE : SW_SHOWNA);
    if (isEmpty())
        return;
    layOut();
    m_empty.showOver(false);
}

void archive_page::fillChoices()
{
    m_archive.clear();
    m_archive.add("All archives");
    if (m_browser.hasFiles())
        for (const std::unique_ptr<archive_record>& each : m_browser.game()->archives()->archives())
            m_archive.add(displayText(each->name));
    m_archive.select(0);
}

// --- what is shown
// ----------------------------------------------------------------------------------------------------

void archive_page::showPlace()
{
    if (m_path.text() != displayText(m_browser.folder()) && GetFocus() != m_path.handle())
        m_path.setText(displayText(m_browser.folder()));
    m_tree.select(m_browser.folders().find(m_browser.folder()));
    showList();
}

void archive_page::showList()
{
    m_back.setEnabled(m_browser.canGoBack() || !m_browser.isFolderShown());
    m_forward.setEnabled(m_browser.canGoForward());
    m_up.setEnabled(m_browser.canGoUp() || !m_browser.isFolderShown());
    const archive_sorting& sorting = m_browser.sorting();
    m_list.showSorting(sorting.by ? static_cast<int>(*sorting.by) : -1, sorting.is_descending);
    m_list.refresh();
    m_status.setText(m_browser.status(false));
    showChosen();
}

void archive_page::showChosen()
{
    const std::size_t count = m_list.selectedCount();
    const bool is_all = count == 0 && !m_browser.isFolderShown();
    m_take_out.setText(is_all ? "Ta&ke Out All..." : "Ta&ke Out...");
    m_take_out.setEnabled(count > 0 || (is_all && m_browser.rows().fileCount() > 0));
    if (count > 1)
    {
        m_details.setText(counted(count, "row") + " chosen: Take Out... writes them to the disk.");
        m_open.setEnabled(false);
        return m_preview.showNothing("");
    }
    const int row = m_list.selected();
    const pack_file_node* const file = row < 0 ? nullptr : m_browser.rows().fileAt(static_cast<std::size_t>(row));
    m_details.setText(row < 0 ? std::string() : m_browser.details(static_cast<std::size_t>(row)));
    m_open.setEnabled(row >= 0 && (file != nullptr || m_browser.rows().folderAt(static_cast<std::size_t>(row))));
    if (file != nullptr)
        m_preview.show(game_file(std::shared_ptr<const pack_file_node>(m_browser.game()->archives(), file)));
    else
        m_preview.showNothing("");
}

// --- searching
// --------------------------------------------------------------------------------------------------------

void archive_page::search()
{
    const int archive = m_archive.selected();
    const auto& archives = m_browser.game()->archives()->archives();
    path_query query;
    query.text = m_find.text();
    query.extension = types[static_cast<std::size_t>(std::max(0, m_type.selected()))];
    query.po_archive = archive > 0 ? archives[static_cast<std::size_t>(archive - 1)].get() : nullptr;
    if (query.isEmpty())
    {
        m_lookups.forget();
        m_lookups.prepare();
        m_browser.showFolder();
        return showPlace();
    }
    m_lookups.search(query);
    m_list.select(-1);
    m_list.refresh();
    m_status.setText(m_browser.status(true));
}

// --- what is done with files
// ------------------------------------------------------------------------------------------

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

archive_page::file_list archive_page::chosenFiles() const
{
    file_list files;
    std::vector<std::size_t> rows = m_list.selectedRows();
    if (rows.empty() && !m_browser.isFolderShown()) // all that was found
        for (std::size_t row = 0; row < m_browser.rows().rowCount(); ++row)
            rows.push_back(row);
    for (const std::size_t row : rows)
    {
        if (const pack_file_node* const file = m_browser.rows().fileAt(row))
            files.push_back(file);
        else if (const path_node* const folder = m_browser.rows().folderAt(row))
            for (const pack_file_node* const below : m_browser.game()->archives()->filesBelow(*folder))
                files.push_back(below);
    }
    return files;
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
    return false;
}

void archive_page::showMenu(int row, POINT on_screen)
{
    const auto number = static_cast<std::size_t>(std::max(row, 0));
    const pack_file_node* const file = row < 0 ? nullptr : m_browser.rows().fileAt(number);
    const bool is_folder = row >= 0 && m_browser.rows().folderAt(number) != nullptr;
    menu_row copies{0, "&Hidden Copies", false, false, {}};
    const file_list hidden = file != nullptr ? m_browser.copiesOf(number) : file_list();
    constexpr std::size_t most = 20;
    for (std::size_t i = 0; i < hidden.size() && i < most; ++i)
    {
        const int copy = static_cast<int>(i);
        copies.rows.push_back({0,
                               menuText(hidden[i]->archive().name),
                               true,
                               false,
                               {{open_copy + copy, "&Open"},
                                {view_copy + copy, "&View Text or Bytes"},
                                {take_out_copy + copy, "&Take Out..."}}});
    }
    copies.is_enabled = !copies.rows.empty();
    std::vector<menu_row> rows = {
        {open_row, "&Open\tEnter", file != nullptr || is_folder},
        {view_row, "&View Text or Bytes\tF4", file != nullptr},
        {take_out_rows, "&Take Out...", file != nullptr || is_folder},
        {},
        {who_uses_it, "Where Is This &Used?", row >= 0 && !is_folder},
        {what_it_needs, "What Does It &Need?", file != nullptr && namesOtherFiles(file->internalPath())},
        {its_archive, "About Its &Archive...", file != nullptr},
        {show_its_folder, "Show Its &Folder", file != nullptr && !m_browser.isFolderShown()},
        {},
        {copy_paths, "&Copy\tCtrl+C", row >= 0},
    };
    if (!copies.rows.empty())
        rows.insert(rows.begin() + 3, std::move(copies));
    runFromMenu(chooseFromMenu(handle(), on_screen, rows), row);
}

void archive_page::runFromMenu(int chosen, int row)
{
    const auto number = static_cast<std::size_t>(std::max(row, 0));
    const std::string path(row < 0 ? std::string_view() : m_browser.rows().pathAt(number));
    switch (chosen)
    {
    case 0:
        return;
    case open_row:
        return open(row);
    case take_out_rows:
        return takeOut(chosenFiles());
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
    if (const std::optional<std::size_t> shown = m_browser.rowOf(path))
        m_list.select(static_cast<int>(*shown));
    showChosen();
}

} // namespace korvane
