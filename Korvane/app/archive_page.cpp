#include "Korvane/app/archive_page.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/document/window_place.h"
#include "Korvane/presenters/archive_places.h"

#include <algorithm>
#include <array>
#include <shellapi.h>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view archive_columns_name = "archives";
constexpr std::string_view archive_panes_name = "archive_panes";
constexpr UINT_PTR creation_timer = 1;
constexpr UINT until_creation = 1500; // milliseconds; timers wait until nothing else is to be done
constexpr std::array<std::string_view, 6> types = {"", "rigid_model_v2", "variantmeshdefinition", "dds", "anim", "xml"};

} // namespace

archive_page::archive_page(page_host& host)
    : rows_page(host, {&m_back, &m_forward, &m_up, &m_path_name, &m_path, &m_favourites, &m_find_name, &m_find, &m_type,
                       &m_archive, &m_overview, &m_tree, &m_list, &m_details, &m_status, &m_open, &m_take_out})
    , m_exchange(host, m_browser)
    , m_mod_folder(host, m_browser,
                   [this](const std::string& path) {
                       if (const std::optional<std::size_t> row = m_browser.rowOf(path))
                           m_list.select(static_cast<int>(*row));
                       showChosen();
                   })
    , m_preview(host.thread(), host.pictures())
    , m_viewer(host)
    , m_texture(host)
    , m_notice(host, [this](const std::string& text) { showNews(text); })
    , m_lookups(host, m_browser,
                {[this] {
                     m_list.refresh();
                     m_status.setText(m_browser.status(true));
                 },
                 [this] {
                     if (hasAllChosen()) // while the rows were made
                         m_keeps_all = true;
                     if (!m_lookups.isSearch())
                         m_list.select(-1);
                     showList();
                     chooseKept();
                 },
                 [this] { m_list.refresh(); }, [this](const std::string& text) { m_status.setText(text); }})
{
    arrange();
}

void archive_page::arrange()
{
    layout places(layout::direction::across);
    places.add(m_back, fixed(32))
        .add(m_forward, fixed(32))
        .add(m_up, fixed(44))
        .add(m_path_name)
        .add(m_path, share())
        .add(m_favourites);
    layout finding(layout::direction::across);
    finding.add(m_find_name)
        .add(m_find, share(4, 80))
        .add(m_type, share(1, 70))
        .add(m_archive, share(1, 70))
        .add(m_overview);
    layout panes(layout::direction::across, 0);
    panes.add(m_tree, share(m_pane_widths[0], 80))
        .add(m_splitters[0], fixed(splitter::width))
        .add(m_list, share(m_pane_widths[1], 120))
        .add(m_splitters[1], fixed(splitter::width))
        .add(m_preview, share(m_pane_widths[2], 80));
    m_layout = layout(layout::direction::down);
    m_layout.setMargins(8, 2, 8, 8);
    m_layout.add(std::move(places)).add(std::move(finding)).add(std::move(panes), share(1, 80)).add(m_details);
    if (m_has_news) // below the list, so that no row moves away under the mouse
        m_layout.add(layout(layout::direction::across).add(m_news, share()).add(m_reread));
    m_layout.add(layout(layout::direction::across).add(m_status, share()).add(m_open).add(m_take_out));
}

// What one pane gains its neighbour loses.
void archive_page::movePanes(std::size_t left, int pixels)
{
    const HWND panes[] = {m_tree.handle(), m_list.handle(), m_preview.handle()};
    for (std::size_t i = 0; i < m_pane_widths.size(); ++i)
    {
        RECT area{};
        GetWindowRect(panes[i], &area);
        m_pane_widths[i] = static_cast<int>(area.right - area.left);
    }
    const int smallest = scaled(80);
    if (m_pane_widths[left] + pixels < smallest || m_pane_widths[left + 1] - pixels < smallest)
        return;
    m_pane_widths[left] += pixels;
    m_pane_widths[left + 1] -= pixels;
    arrange();
    layOut();
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
        m_splitters[0].createIn(handle(), why) && m_splitters[1].createIn(handle(), why) &&
        m_details.create(handle(), control_archive_details) && m_news.create(handle(), control_archive_news) &&
        m_reread.create(handle(), control_archive_reread, "&Re-read") &&
        m_status.create(handle(), control_archive_status) && m_open.create(handle(), control_archive_open, "O&pen") &&
        m_take_out.create(handle(), control_archive_take_out, "Ta&ke Out...") && m_empty.createIn(handle(), why);
    if (!is_whole)
        return fail(why, failure_kind::refused, "a control of the page Archives could not be created");
    m_list.setColumnWidths(
        keptColumns(host().config().table(), archive_columns_name, m_browser.rows().columns().size()));
    restorePlace(m_browser, host().config().table());
    if (std::vector<int> kept = keptColumns(host().config().table(), archive_panes_name, 3); !kept.empty())
        m_pane_widths = std::move(kept);
    arrange();
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
    DragAcceptFiles(handle(), TRUE);
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
    for (std::size_t i = 0; i < m_splitters.size(); ++i)
        m_splitters[i].onMove = [this, i](int pixels) { movePanes(i, pixels); };
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
        keepChosen();
        m_browser.sortBy(static_cast<archive_rows::column>(column));
        showList();
        chooseKept();
    };
    m_list.onDrag = [this] { m_exchange.drag(m_list.selectedRows()); };
    m_tree.onDrag = [this](tree_model::node dragged) {
        if (const path_node* const folder = m_browser.folders().folderAt(dragged))
            m_exchange.drag(*folder);
    };
    m_list.onKey = [this](unsigned virtual_key) { return onListKey(virtual_key); };
    m_reread.onClick = [this] { host().runCommand(document_command::reread_archives); };
    m_open.onClick = m_preview.onOpen = [this] { open(m_list.selected()); };
    m_take_out.onClick = [this] { takeOut(filesOf(m_browser, m_list.selectedRows())); };
}

void archive_page::applyFont(const font& used)
{
    if (hasControls())
    {
        m_preview.setFont(used);
        m_news.setFont(used);
        m_reread.setFont(used);
    }
    rows_page::applyFont(used);
}

bool archive_page::keep(config_file& config) const
{
    if (!hasControls())
        return false;
    const bool is_other = m_browser.hasFiles() && keepPlace(config, m_browser);
    const bool has_panes = keepColumns(config, archive_panes_name, m_pane_widths);
    return keepColumns(config, archive_columns_name, m_list.columnWidths()) || is_other || has_panes;
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

// The page has many controls: they are made while nobody waits for them, unless somebody looks at it before.
LRESULT archive_page::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_TIMER && wparam == creation_timer)
    {
        KillTimer(handle(), creation_timer);
        needControls();
        return 0;
    }
    const LRESULT result = rows_page::handleMessage(message, wparam, lparam);
    if (message == WM_SHOWWINDOW && wparam != FALSE && std::exchange(m_is_unseen, false))
        m_lookups.prepare();
    return result;
}

void archive_page::showDocument()
{
    const std::shared_ptr<const game_data>& game = host().document().game();
    if (!hasControls())
    {
        if (game->archives() != nullptr)
            SetTimer(handle(), creation_timer, until_creation, nullptr);
        return;
    }
    if (m_lookups.knows(game))
        return;
    keepChosen();
    m_lookups.setGame(game);
    m_browser.setGame(game);
    m_notice.setGame(game);
    m_tree.restart();
    fillChoices();
    showState();
    showPlace();
    if (isEmpty())
        return;
    if (m_lookups.isSearch())
        return search(); // what was found is looked for again
    chooseKept();
    m_is_unseen = IsWindowVisible(handle()) == FALSE;
    if (!m_is_unseen)
        m_lookups.prepare();
}

void archive_page::keepChosen()
{
    constexpr std::size_t most = 10000;
    m_keeps_all = hasAllChosen();
    m_kept = m_list.selectedCount() <= most ? m_browser.pathsOf(m_list.selectedRows()) : std::vector<std::string>();
}

bool archive_page::hasAllChosen() const
{
    return m_list.selectedCount() > 1 && m_list.selectedCount() >= m_browser.rows().rowCount();
}

void archive_page::chooseKept()
{
    if (m_browser.isWaiting())
        return; // for the rows
    const std::vector<std::size_t> rows = m_browser.rowsOf(std::exchange(m_kept, {}));
    if (std::exchange(m_keeps_all, false))
        return m_list.selectAll();
    if (rows.empty())
        return;
    rows.size() == 1 ? m_list.select(static_cast<int>(rows.front())) : m_list.select(rows);
    showChosen();
}

void archive_page::showNews(const std::string& text)
{
    const bool has_focus = GetFocus() == m_reread.handle();
    m_has_news = !text.empty();
    m_news.setText(text);
    m_news.setVisible(m_has_news);
    m_reread.setVisible(m_has_news);
    if (has_focus && !m_has_news)
        m_list.focus();
    arrange();
    layOut();
    RedrawWindow(handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN); // what was moved over
}

void archive_page::showState()
{
    if (isEmpty())
    {
        m_empty.setContent(emptyContent());
        m_empty.showOver(true);
    }
    setRowsVisible(!isEmpty());
    for (const HWND each : {m_preview.handle(), m_splitters[0].handle(), m_splitters[1].handle()})
        ShowWindow(each, isEmpty() ? SW_HIDE : SW_SHOWNA);
    if (isEmpty())
        return;
    layOut();
    m_empty.showOver(false);
}

void archive_page::fillChoices()
{
    const std::string former = m_archive.text();
    m_archive.clear();
    m_archive.add("All archives");
    m_archive.select(0);
    for (int i = 0; m_browser.hasFiles() && i < static_cast<int>(m_browser.game()->archives()->archives().size()); ++i)
    {
        const std::string name = archiveName(*m_browser.game()->archives()->archives()[static_cast<std::size_t>(i)]);
        m_archive.add(name);
        if (name == former)
            m_archive.select(i + 1);
    }
}

// --- what is shown ---

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
    m_lookups.order();
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
        m_preview.show(game_file(std::shared_ptr<const pack_file_node>(m_browser.game()->archives(), file)),
                       m_browser.game());
    else
        m_preview.showNothing("");
}

// --- searching ---

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
    m_list.select(-1);
    m_lookups.search(query); // the list is drawn again with the first rows, which come at once, or when there are none
    m_status.setText(m_browser.status(true));
}

} // namespace korvane
