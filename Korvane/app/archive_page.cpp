#include "Korvane/app/archive_page.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/document/window_place.h"
#include "Korvane/jobs/extract_job.h"
#include "Korvane/jobs/needs_job.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view archive_columns_name = "archives";
constexpr std::size_t first_step = 20000; // files that are looked at before the first rows are shown
constexpr std::size_t step = 200000;

constexpr std::array<std::string_view, 6> types = {"", "rigid_model_v2", "variantmeshdefinition", "dds", "anim", "xml"};

enum archive_command : int
{
    open_row = 1,
    take_out_rows,
    copy_paths,
    who_uses_it,
    what_it_needs,
    show_its_folder,
    take_out_copy = 200, // + number of the hidden copy
};

} // namespace

archive_page::archive_page(page_host& host)
    : rows_page(host, {&m_back, &m_forward, &m_up, &m_path_name, &m_path, &m_find_name, &m_find, &m_type, &m_archive,
                       &m_tree, &m_list, &m_details, &m_status, &m_open, &m_take_out})
    , m_preview(host.thread())
    , m_work(host.thread(),
             {[this](const work_progress& now) {
                  m_status.setText("Looking into " + now.what + ": " + grouped(now.done) + " of " + grouped(now.total));
              },
              [&host](const std::string& line) { host.logLine(line); },
              [this](const std::string& what) {
                  this->host().logLine("archive_page: the work ended early: " + what);
                  m_status.setText("This could not be finished: " + what);
              }})
{
    layout places(layout::direction::across);
    places.add(m_back, fixed(32)).add(m_forward, fixed(32)).add(m_up, fixed(44)).add(m_path_name).add(m_path, share());
    layout finding(layout::direction::across);
    finding.add(m_find_name).add(m_find, share()).add(m_type, fixed(130)).add(m_archive, fixed(150));
    layout panes(layout::direction::across);
    panes.add(m_tree, share(3, 80)).add(m_list, share(7, 120)).add(m_preview, share(4, 80));
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
        m_find_name.create(handle(), "F&ind:") && m_find.create(handle(), control_archive_find, editable) &&
        m_type.create(handle(), control_archive_type) && m_archive.create(handle(), control_archive_archive) &&
        m_tree.create(handle(), control_archive_tree, m_browser.folders()) &&
        m_list.create(handle(), control_archive_list, m_browser.rows(), options) && m_preview.createIn(handle(), why) &&
        m_details.create(handle(), control_archive_details) && m_status.create(handle(), control_archive_status) &&
        m_open.create(handle(), control_archive_open, "O&pen") &&
        m_take_out.create(handle(), control_archive_take_out, "Ta&ke Out...") && m_empty.createIn(handle(), why);
    if (!is_whole)
        return fail(why, failure_kind::refused, "a control of the page Archives could not be created");
    m_list.setColumnWidths(
        keptColumns(host().config().table(), archive_columns_name, m_browser.rows().columns().size()));
    for (const std::string_view type : types)
        m_type.add(type.empty() ? std::string("All types") : typeName(type));
    m_type.select(0);
    m_back.setTip("Back (Alt+Left)");
    m_forward.setTip("Forward (Alt+Right)");
    m_up.setTip("The folder above (Backspace)");
    m_find.setTip("Parts of paths, all of which have to be there; * and ? stand for other characters");
    m_take_out.setTip("Writes the chosen files into a folder of the disk");
    connect();
    return true;
}

void archive_page::connect()
{
    m_back.onClick = [this] { go(&archive_browser::goBack); };
    m_forward.onClick = [this] { go(&archive_browser::goForward); };
    m_up.onClick = [this] { go(&archive_browser::goUp); };
    m_path.onKey = [this](unsigned key) { return key == VK_F3 && (m_find.focus(), true); };
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
        clearSearch();
        m_browser.open(m_browser.folders().pathOf(chosen));
        showPlace();
    };
    m_list.onSelect = [this](int) { showChosen(); };
    m_list.onActivate = [this](int row) { open(row); };
    m_list.onContextMenu = [this](int row, POINT on_screen) { showMenu(row, on_screen); };
    m_list.onColumn = [this](int column) {
        m_browser.sortBy(static_cast<archive_rows::column>(column));
        showList();
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
    return hasControls() && keepColumns(config, archive_columns_name, m_list.columnWidths());
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
    if (m_po_known != nullptr && m_po_known->game == game)
        return;
    m_work.stop();
    m_po_known = std::make_shared<known_archives>();
    m_po_known->game = game;
    m_browser.setGame(game);
    m_tree.restart();
    fillChoices();
    showState();
    showPlace();
    if (!isEmpty())
        m_is_search ? search() : prepare(); // what was found is looked for again
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
    m_list.refresh();
    m_status.setText(m_browser.status(false));
    showChosen();
}

void archive_page::showChosen()
{
    const std::size_t count = m_list.selectedCount();
    m_take_out.setEnabled(count > 0);
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

// The tasks run one after the other, so that only one of them knows the archives at a time.
void archive_page::prepare()
{
    m_work.start([this, known = m_po_known](const work_port&) -> background_task::answer {
        known->search = std::make_unique<path_search>(known->game->archives());
        known->hidden = std::make_shared<hidden_copies>(known->game->archives());
        return [this, known] {
            if (known != m_po_known)
                return;
            m_browser.setHidden(known->hidden);
            m_list.refresh();
        };
    });
}

void archive_page::search()
{
    const int archive = m_archive.selected();
    const auto& archives = m_browser.game()->archives()->archives();
    path_query query;
    query.text = m_find.text();
    query.extension = types[static_cast<std::size_t>(std::max(0, m_type.selected()))];
    query.po_archive = archive > 0 ? archives[static_cast<std::size_t>(archive - 1)].get() : nullptr;
    const std::size_t number = ++m_search;
    if (query.isEmpty())
    {
        m_work.stop();
        m_browser.showFolder();
        if (m_po_known->hidden == nullptr)
            prepare();
        return showPlace();
    }
    m_is_search = true;
    m_browser.beginList(query.text.empty() ? "Files of this kind" : "Files with \"" + displayText(query.text) + "\"");
    m_work.start([this, known = m_po_known, number, query,
                  box = host().thread().box()](const work_port& work) -> background_task::answer {
        if (known->search == nullptr)
            known->search = std::make_unique<path_search>(known->game->archives());
        path_search& search = *known->search;
        search.find(query);
        std::size_t handed_over = 0;
        for (bool goes_on = true; goes_on && !work.isStopped();)
        {
            goes_on = search.advance(handed_over == 0 ? first_step : step);
            const auto fresh = search.hits().subspan(handed_over);
            handed_over = search.hits().size();
            if (!fresh.empty())
                box.post([this, known, number, files = std::make_shared<const file_list>(fresh.begin(), fresh.end())] {
                    if (known == m_po_known)
                        take(number, *files);
                });
        }
        if (!work.isStopped() && known->hidden == nullptr)
            known->hidden = std::make_shared<hidden_copies>(known->game->archives());
        return [this, known, number] {
            if (known != m_po_known || number != m_search)
                return;
            m_browser.setHidden(known->hidden);
            m_browser.sortAgain();
            showList();
        };
    });
    m_list.select(-1);
    m_list.refresh();
    m_status.setText(m_browser.status(true));
}

void archive_page::take(std::size_t number, const file_list& files)
{
    if (number != m_search)
        return; // of a search that was replaced
    m_browser.rows().add(files);
    m_list.refresh();
    m_status.setText(m_browser.status(true));
}

void archive_page::listFiles(const std::string& heading, file_list files, std::vector<std::string> missing)
{
    m_is_search = false;
    m_browser.beginList(heading);
    m_browser.rows().add(files);
    m_browser.rows().setMissing(std::move(missing));
    m_list.select(-1);
    showList();
}

void archive_page::showUsers(const std::string& path)
{
    ++m_search; // what is still found belongs to no list any more
    const usage_store store = usage_store::of(host().config().table(), host().config().path());
    m_work.start([this, known = m_po_known, path, store](const work_port& work) -> background_task::answer {
        if (!known->has_usage)
        {
            failure why;
            const usage_index former = store.load(why);
            usage_index made = indexUsage(*known->game, former, work, known->has_usage);
            if (!known->has_usage)
                return {};
            if (made.isOtherThan(former) && !store.write(made, why))
                tell(work.log, "archive_page: the usage index is not kept: " + describe(why));
            known->usage = std::move(made);
        }
        auto users = std::make_shared<file_list>();
        for (const file_user& each : known->usage.usersOf(*known->game, path))
            if (users->empty() || users->back() != each.user)
                users->push_back(each.user);
        return [this, known, path, users] {
            if (known == m_po_known)
                listFiles("Models and definitions that name " + displayText(std::string(fileName(path))), *users, {});
        };
    });
    m_status.setText("Looking into models and definitions...");
}

void archive_page::showNeeds(const std::string& path)
{
    ++m_search;
    m_work.start([this, known = m_po_known, path](const work_port& work) -> background_task::answer {
        auto result = std::make_shared<needs_result>();
        failure why;
        const bool is_read = findNeeds(*known->game, {game_path::ofInternal(path)}, work, *result, why);
        return [this, known, path, result, is_read, why] {
            if (known != m_po_known)
                return;
            if (!is_read)
                return host().prompt().show("Archives", describe(why), prompt_icon::error);
            file_list files;
            std::vector<std::string> missing;
            for (const needed_file& each : result->files)
                if (const pack_file_node* const file = known->game->archives()->findFile(each.path); file != nullptr)
                    files.push_back(file);
                else
                    missing.push_back(each.path);
            listFiles("What " + displayText(std::string(fileName(path))) + " needs", std::move(files),
                      std::move(missing));
        };
    });
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
        clearSearch();
        m_browser.open(folder->path());
        showPlace();
        m_list.select(m_browser.rows().rowCount() > 0 ? 0 : -1);
        return showChosen();
    }
    if (const pack_file_node* const file = m_browser.rows().fileAt(number))
        openFile(*file);
}

void archive_page::openFile(const pack_file_node& file)
{
    const std::string path(file.internalPath());
    if (namesOtherFiles(path) || isFbxPath(path))
        host().openFile(game_path::ofInternal(path).text());
    else if (endsWithIgnoringCase(path, ".anim"))
        host().playAnimation(game_path::ofInternal(path).text());
    else
        host().setStatus("Its contents are shown beside the list; Take Out... writes it to the disk.");
}

archive_page::file_list archive_page::chosenFiles() const
{
    file_list files;
    for (const std::size_t row : m_list.selectedRows())
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
    if (files.empty())
        return;
    const std::optional<std::string> folder = host().prompt().pickFolder("Take Out " + counted(files.size(), "File"));
    if (!folder)
        return;
    extract_job_options options;
    options.folder = *folder;
    extract_job_result result;
    const auto tree = m_browser.game()->archives();
    const bool is_whole = host().work("Taking out " + counted(files.size(), "file"), [&](const work_port& work) {
        extractEntries(tree, files, options, work, result);
    });
    std::string text = filesExtracted(result.written) + " to " + *folder;
    if (result.kept > 0)
        text += "; " + counted(result.kept, "file") + " that differ were left as they are";
    if (result.failed > 0)
        text += "; " + grouped(result.failed) + " failed";
    host().setStatus(text + (is_whole ? "." : "; stopped."));
    if (result.failed == 0 && result.kept == 0)
        return;
    std::string lines = text + ".\r\n";
    constexpr std::size_t most = 20;
    std::size_t named = 0;
    for (const extracted_file& file : result.files)
        if ((file.why || file.outcome == output_outcome::kept) && named++ < most)
            lines += "\r\n" + displayText(file.why ? describe(file.why) : file.path + ": left as it is");
    host().prompt().show("Take Out", lines + (named > most ? "\r\n..." : ""), prompt_icon::information);
}

std::string archive_page::copiedText() const
{
    std::string text;
    for (const std::size_t row : m_list.selectedRows())
        text += (text.empty() ? "" : "\r\n") + displayText(m_browser.rows().pathAt(row));
    return text;
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
    const bool is_search = m_is_search;
    if (!is_search && !m_find.text().empty())
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
    ++m_search;
    m_is_search = false;
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

bool archive_page::onListKey(unsigned virtual_key)
{
    const bool has_alt = GetKeyState(VK_MENU) < 0;
    if (virtual_key == VK_BACK || (has_alt && virtual_key == VK_UP))
        return go(&archive_browser::goUp), true;
    if (has_alt && virtual_key == VK_LEFT)
        return go(&archive_browser::goBack), true;
    if (has_alt && virtual_key == VK_RIGHT)
        return go(&archive_browser::goForward), true;
    if (virtual_key == VK_F3)
        return m_find.focus(), true;
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
        copies.rows.push_back({take_out_copy + static_cast<int>(i),
                               "Take out that of " + displayText(hidden[i]->archive().name) + "...", true});
    copies.is_enabled = !copies.rows.empty();
    std::vector<menu_row> rows = {
        {open_row, "&Open\tEnter", file != nullptr || is_folder},
        {take_out_rows, "&Take Out...", file != nullptr || is_folder},
        {},
        {who_uses_it, "Where Is This &Used?", row >= 0 && !is_folder},
        {what_it_needs, "What Does It &Need?", file != nullptr && namesOtherFiles(file->internalPath())},
        {show_its_folder, "Show Its &Folder", file != nullptr && !m_browser.isFolderShown()},
        {},
        {copy_paths, "&Copy Path\tCtrl+C", row >= 0},
    };
    if (!copies.rows.empty())
        rows.insert(rows.begin() + 2, std::move(copies));
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
        return showUsers(path);
    case what_it_needs:
        return showNeeds(path);
    case show_its_folder:
        clearSearch();
        m_browser.open(folderAround(path));
        showPlace();
        if (const std::optional<std::size_t> shown = m_browser.rowOf(path))
            m_list.select(static_cast<int>(*shown));
        return showChosen();
    case copy_paths:
        return copyText(host(), copiedText());
    default:
        const file_list hidden = m_browser.copiesOf(number);
        if (const auto copy = static_cast<std::size_t>(chosen - take_out_copy); copy < hidden.size())
            takeOut({hidden[copy]});
    }
}

} // namespace korvane
