#include "Korvane/app/main_window.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "EASY_GUI/win32/modal_work.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/game_folders_dialog.h"
#include "Korvane/app/resources.h"
#include "Korvane/app/window_places.h"
#include "Korvane/document/kept_edits.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane
{

namespace
{

constexpr int window_margin = 8;   // at 96 dots per inch
constexpr int default_width = 860; // outer
constexpr int status_widths[] = {0, 330};
constexpr UINT_PTR look_timer = 1;
constexpr UINT look_pause = 500; // milliseconds
enum page_tab : std::size_t
{
    model_tab,
    definition_tab,
    problems_tab,
    archives_tab,
    fbx_tab // there from the first FBX file on
};
// In the configuration. The last page is not there at the next start.
constexpr std::array<std::string_view, 5> page_names = {"model", "definition", "problems", "archives", "model"};

// Where nothing, or nonsense, is kept the model's.
std::size_t keptTab(const config_file& config)
{
    const auto found = std::find(page_names.begin(), page_names.end(), keptPage(config));
    return found == page_names.end() ? model_tab : static_cast<std::size_t>(found - page_names.begin());
}

} // namespace

main_window::main_window(main_window_ports ports, std::string command_line, std::vector<std::string> files)
    : m_ports(std::move(ports))
    , m_command_line(std::move(command_line))
    , m_files(std::move(files))
    , m_config(m_ports.config, m_ports.config_path,
               {[this](const failure& why) { // behind what else is to be said of the command
                    m_thread.box().post([this, text = "Settings are not kept: " + describe(why)] { setStatus(text); });
                },
                [this](const failure& why) {
                    logLine("main_window::saveConfig(). config.cfg could not be written: " + describe(why));
                }})
    , m_commands(m_document, m_ports.prompt, m_ports.config)
    , m_display(*this, m_document, m_thread, m_ports.make_view,
                {logPort(),
                 [this] {
                     showCounts();
                     m_playback_box.follow();
                 },
                 [this](const work_progress& now) { showLoading(now); },
                 [this](HWND view) { return restoreView(view); }, viewEvents()})
    , m_playback_box(*this, m_display)
    , m_archives(*this)
    , m_opening(
          *this, m_menu, [this](const std::string& path) { opened(path); },
          [this](fbx_report report) { showFbx(std::move(report)); })
    , m_model_page(*this, {m_ports.open_folder, m_ports.open_editor})
    , m_definition_page(*this)
    , m_problems_page(
          *this, [this](const std::string& caption) { m_tabs.setCaption(static_cast<int>(problems_tab), caption); })
    , m_archive_page(*this)
    , m_fbx_page(*this)
    , m_pages{&m_model_page, &m_definition_page, &m_problems_page, &m_archive_page, &m_fbx_page}
{
    m_document.model().setKeeper(m_ports.keeper);
    nameActions();
}

bool main_window::open(failure& why)
{
    const RECT area = workArea(nullptr);
    window_settings settings;
    settings.title = m_document.title();
    settings.style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
    settings.extended_style = WS_EX_ACCEPTFILES | WS_EX_CONTROLPARENT;
    settings.x = area.left + scaled(window_margin);
    settings.y = area.top + scaled(window_margin);
    settings.width = std::min(scaled(default_width), static_cast<int>(area.right) - settings.x);
    settings.height = area.bottom - settings.y - scaled(window_margin); // until the pages say what they need
    settings.icon = resource_program_icon;
    m_start_failure = {};
    if (!m_thread.open(why))
        return false;
    if (create(settings, why))
        return true;
    if (m_start_failure)
        why = m_start_failure;
    return false;
}

// The order of these steps is what the log of a start shows.
bool main_window::onCreated()
{
    if (m_ports.set_prompt_owner)
        m_ports.set_prompt_owner(handle());
    if (!m_ports.log_name.empty())
        m_ports.log.open(m_ports.log_name);
    const bool has_game = m_archives.load(true);
    m_archives.loadDefaultSkeleton();
    showFirstRunNotice();

    logLine("assigning accelerators ");
    if (!createContent())
    {
        logLine("main_window::onCreated(). " + describe(m_start_failure));
        return false;
    }
    m_menu.createFor(handle());
    m_opening.fillRecentFiles();
    applyFont();
    answerOthers();
    bool is_maximised = false;
    if (!restorePlace(handle(), m_config, config_keys::main_window_place, is_maximised))
        fitHeight();
    answerOthers();
    showDocument();
    answerOthers();
    showPage(keptTab(m_config.table()));
    show(is_maximised ? SW_SHOWMAXIMIZED : SW_SHOW);
    UpdateWindow(handle());
    if (!has_game)
        setStatus("The archives were not read: File, Re-read .pack files... reads them.");

    logLine("main_window::onCreated(). command line " + m_command_line);
    for (const std::string& file : m_files)
        logLine("main_window::onCreated(). command line processed: " + file);
    m_opening.openAll(m_files);
    if (offerKeptEdits(m_ports.keeper.folder(), m_document, m_ports.prompt, logPort()))
    {
        showPage(model_tab);
        showDocument();
        showView(scene_display::focus::stays);
    }
    if (const HWND first = shownPage().firstControl(); first != nullptr)
        focusWhenActive(first);
    SetTimer(handle(), look_timer, look_pause, nullptr); // goes with the window
    m_is_started = true;
    closeIfWanted();
    return true;
}

void main_window::closeIfWanted()
{
    if (m_wants_to_close && m_is_started && !isBusy())
        PostMessageW(handle(), WM_CLOSE, 0, 0);
}

bool main_window::createContent()
{
    const auto refuse = [this](const char* what) {
        return fail(m_start_failure, failure_kind::refused,
                    std::string(what) + " could not be created (error " + std::to_string(GetLastError()) + ")");
    };
    if (!m_tabs.create(handle(), control_tabs))
        return refuse("the tabs");
    if (!m_show_view.create(handle(), control_show_view, "Show &3D View"))
        return refuse("a button");
    for (page* const each : m_pages)
    {
        if (!each->createIn(handle(), m_start_failure))
            return false;
        answerOthers();
    }
    if (!m_status.create(handle(), control_status, status_widths))
        return refuse("the status line");
    for (const char* const caption : {"Model", "Definition", "Problems", "Archives"})
        m_tabs.add(caption);
    m_tabs.onSelect = [this](int chosen) { showPage(static_cast<std::size_t>(chosen)); };
    m_show_view.onClick = [this] { runCommand(document_command::show_view); };
    return true;
}

void main_window::showFirstRunNotice()
{
    if (!m_config.get(config_keys::first_time).empty())
        return;
    m_ports.prompt.show("Important!",
                        "Rmember to the setup the \\data\\ folders or your game in the Menu 'Tools'->'Setup Game "
                        "Folders'.\n\rIf folders are not set animation/skeleton export and animation playback is "
                        "disabled",
                        prompt_icon::error);
    m_config.change([](config_file& config) { return config.add(config_keys::first_time, {"no"}, false); });
}

void main_window::onClose()
{
    m_wants_to_close = isBusy() || !m_is_started;
    if (m_wants_to_close) // a moment later
        return;
    takeTyped();
    if (!mayLeaveModel())
        return;
    m_ports.keeper.release(); // what was not saved is not wanted
    keepPlaces();
    destroy();
}

bool main_window::mayLeaveModel()
{
    command_outcome saved{};
    const bool may_leave = m_commands.mayLeaveModel(saved);
    took(saved);
    return may_leave;
}

bool main_window::restoreView(HWND shown) const
{
    bool is_maximised = false; // the view has a full screen of its own
    return restorePlace(shown, m_config, config_keys::view_place, is_maximised);
}

void main_window::keepPlaces()
{
    const std::optional<window_place> own = placeOf(handle());
    const std::optional<window_place> other = view() != nullptr ? placeOf(view()->handle()) : std::nullopt;
    m_config.change([&](config_file& config) {
        bool has_pages = keepPage(config, page_names[m_shown_page]);
        for (const page* const each : m_pages)
            has_pages = each->keep(config) || has_pages;
        const bool has_own = own && keepPlace(config, config_keys::main_window_place, *own);
        const bool has_other = other && keepPlace(config, config_keys::view_place, *other);
        return has_own || has_other || has_pages;
    });
}

void main_window::onDestroyed()
{
    m_display.close();
    if (m_ports.set_prompt_owner)
        m_ports.set_prompt_owner(nullptr);
    PostQuitMessage(0);
}

void main_window::applyFont()
{
    auto fresh = std::make_unique<font>(dpi(), font::weight::regular);
    m_tabs.setFont(*fresh);
    m_show_view.setFont(*fresh);
    m_status.setFont(*fresh);
    for (page* const each : m_pages)
    {
        each->setFont(*fresh);
        answerOthers();
    }
    m_po_font = std::move(fresh); // the old one goes only now that no control uses it
    layOut();
}

void main_window::layOut()
{
    if (m_po_font == nullptr)
        return;
    const RECT client = clientRectangle();
    const int button_width = m_po_font->widthOf(m_show_view.text()) + scaled(28);
    const int button_height = m_po_font->height() + scaled(11);
    const int gap = scaled(window_margin) / 2;
    const int tabs_width = client.right - button_width - 3 * scaled(window_margin);
    m_tabs.place(scaled(window_margin), gap, tabs_width, 2 * button_height);
    const int captions = m_tabs.displayRectangle().top - gap - scaled(3); // and the line below them, no frame
    m_tabs.place(scaled(window_margin), gap, tabs_width, captions);
    const LONG top = std::max(captions, button_height) + 2 * gap;
    m_show_view.place(client.right - button_width - scaled(window_margin), (top - button_height) / 2, button_width,
                      button_height);
    const int status_height = m_status.preferredHeight();
    m_status.place(0, client.bottom - status_height, client.right, status_height);
    // Where controls were moved over others their old pixels stay.
    RedrawWindow(handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    for (page* const each : m_pages)
        each->place({0, top, client.right, std::max<LONG>(top, client.bottom - status_height)});
}

// Lower when the pages leave room at their end.
void main_window::fitHeight()
{
    RECT own{}, shown{};
    GetWindowRect(handle(), &own);
    GetClientRect(m_model_page.handle(), &shown);
    const int spare = shown.bottom - m_model_page.preferredHeight();
    if (spare > 0)
        SetWindowPos(handle(), nullptr, 0, 0, own.right - own.left, own.bottom - own.top - spare,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void main_window::showPage(std::size_t chosen)
{
    const bool had_focus = IsChild(shownPage().handle(), GetFocus()) != 0;
    m_shown_page = chosen;
    m_tabs.select(static_cast<int>(chosen));
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        ShowWindow(m_pages[i]->handle(), i == chosen ? SW_SHOW : SW_HIDE);
    if (had_focus)
        SetFocus(shownPage().firstControl() != nullptr ? shownPage().firstControl() : m_tabs.handle());
}

void main_window::onSize(int, int, size_change change)
{
    if (change != size_change::minimised)
        layOut();
}

void main_window::onMinimumSize(SIZE& outer)
{
    outer.cx = std::max(outer.cx, static_cast<LONG>(scaled(480)));
    outer.cy = std::max(outer.cy, static_cast<LONG>(scaled(400)));
}

void main_window::onDpiChanged(unsigned)
{
    applyFont();
}

bool main_window::takesShortcutsOf(HWND top) const
{
    return window::takesShortcutsOf(top) || (view() != nullptr && top == view()->handle()) ||
           (m_playback_box.isOpen() && top == m_playback_box.handle());
}

// The same model with other fields: the view keeps its place.
void main_window::showEdited()
{
    setTitle(m_document.title());
    for (page* const each : m_pages)
        each->showDocument();
    m_display.showEdited();
    showCounts();
}

bool main_window::work(const std::string& title, const std::function<void(const work_port&)>& work)
{
    if (isBusy())
        return false;
    struct counted_work
    {
        explicit counted_work(main_window& owner) : m_owner(owner) { ++m_owner.m_works; }
        ~counted_work()
        {
            --m_owner.m_works;
            m_owner.closeIfWanted();
        }
        main_window& m_owner;
    };
    modal_work modal;
    modal.owner = handle();
    modal.title = title;
    modal.log = logPort();
    const counted_work counted(*this);
    return modal.run(work);
}

void main_window::openFiles(const std::vector<std::string>& paths)
{
    if (!isBusy())
        m_opening.openAll(paths);
}

void main_window::opened(const std::string& path)
{
    if (m_document.shown() == open_files::kind::definition)
        logProblems();
    setStatus("Opened " + path);
    showDocument();
    showPage(m_document.shown() == open_files::kind::definition ? definition_tab : model_tab);
    showView(scene_display::focus::stays);
}

// The archives themselves say in the log what was read.
void main_window::rereadArchives(bool trusts_cache)
{
    const auto former = m_document.game();
    if (!m_archives.load(trusts_cache) || m_document.game() == former)
        return;
    for (const open_error& error : m_document.reopen())
        m_ports.prompt.show(error.title, error.text, prompt_icon::error);
    logProblems();
    setStatus("The archives were read again.");
    showDocument();
}

void main_window::setUpFolders()
{
    takeUpConfig();
    failure why;
    game_folders_dialog dialog(*this);
    if (dialog.ask(handle(), why))
    {
        rereadArchives(true);
        setStatus(dialog.summary());
    }
    else if (why)
        m_ports.prompt.show("Error!", "The folders could not be shown.\r\n\r\n" + describe(why), prompt_icon::error);
}

void main_window::logProblems()
{
    for (const std::string& problem : m_document.definition().problems())
        logLine(m_document.definition().path() + ": " + problem);
}

void main_window::select(model_selection wanted)
{
    const int former_lod = m_document.model().selection().lod;
    m_document.select(wanted);
    showSelection();
    if (m_document.model().selection().lod != former_lod)
        m_display.showLevel();
    m_display.showSelection();
}

// A click in the view. Of a figure's model the name is said: it is not what is open.
void main_window::picked(const shown_group& group)
{
    const scene_pointer& scene = m_display.scene();
    if (!scene || group.part >= scene->parts.size())
        return;
    const scene_part& part = scene->parts[group.part];
    if (m_document.shown() == open_files::kind::definition)
        return setStatus(displayText(part.model->path) + ", group " + std::to_string(group.group));
    model_selection wanted = m_document.model().selection();
    wanted.group = static_cast<int>(group.group);
    select(wanted);
}

void main_window::showDefinitionPage()
{
    showPage(definition_tab);
}

void main_window::showFbx(fbx_report report)
{
    m_fbx_page.show(std::move(report));
    if (m_tabs.count() == static_cast<int>(fbx_tab))
    {
        m_tabs.add("FBX");
        layOut();
    }
    showPage(fbx_tab);
}

void main_window::showModelPage(int texture_row)
{
    showPage(model_tab);
    m_model_page.textures().select(texture_row, true);
}

void main_window::showDocument()
{
    setTitle(m_document.title());
    for (page* const each : m_pages)
        each->showDocument();
    m_show_view.setEnabled(isEnabled(document_command::show_view));
    m_display.showDocument();
    m_playback_box.follow();
    showCounts();
}

// The list of converted animations has grown in the file.
void main_window::tookConverted()
{
    takeUpConfig();
    m_playback_box.follow();
}

void main_window::playAnimation(const std::string& path)
{
    m_playback_box.open();
    m_playback_box.playFile(path);
}

void main_window::showFigure()
{
    m_display.showFigure();
    showCounts();
}

void main_window::showSelection()
{
    for (page* const each : m_pages)
        each->showSelection();
    showCounts();
}

void main_window::showCounts()
{
    m_status.setPart(0, m_happened); // in place of progress
    m_status.showProgress(false);
    m_status.setPart(1, m_document.status(m_display.drawn()));
}

void main_window::showLoading(const work_progress& now)
{
    if (now.total <= 1)
        return;
    m_status.setPart(0, "Loading model " + grouped(now.done + 1) + " of " + grouped(now.total) + ": " + now.what);
    m_status.progress().setRange(static_cast<int>(now.total));
    m_status.progress().setPosition(static_cast<int>(now.done));
    m_status.showProgress(true);
}

void main_window::setStatus(const std::string& text)
{
    m_happened = text;
    if (m_status.handle() != nullptr)
        m_status.setPart(0, text);
}

void main_window::showView(scene_display::focus wanted)
{
    failure why;
    if (!isEnabled(document_command::show_view))
        return;
    if (!m_display.show(wanted, why))
    {
        logLine("main_window::showView(). " + describe(why));
        m_ports.prompt.show("Error!", "The 3D view could not be opened.\r\n\r\n" + describe(why), prompt_icon::error);
    }
    showCounts();
}

void main_window::followFiles()
{
    if (isBusy())
        return;
    for (page* const each : m_pages)
        each->follow();
    const std::string news = m_display.followFiles();
    if (!news.empty() &&
        !m_happened.starts_with(news.substr(0, news.find(" was read again")) + ' ')) // which says more of that file
        setStatus(news);
    const HWND active = GetActiveWindow();
    if (IsWindowEnabled(handle()) == 0 || active == nullptr || !takesShortcutsOf(active))
        return; // nobody is asked behind a box, or while another program is worked with
    for (const disk_change& change : m_document.lookAtDisk())
        if (m_commands.offerReread(change) == command_outcome::done)
            showDocument();
        else if (!m_commands.lastAction().empty())
            setStatus(m_commands.lastAction());
}

void main_window::takeUpConfig()
{
    const auto folders = [this] {
        return std::pair(m_config.get(config_keys::data_folders), m_config.get(config_keys::mod_folders));
    };
    const auto former = folders();
    if (!m_config.takeUp())
        return;
    m_opening.fillRecentFiles();
    if (folders() != former)
        setStatus("The data folders were changed: File, Re-read .pack files... takes them up.");
}

void main_window::logLine(const std::string& line)
{
    m_ports.log.write(line + "\r\n");
}

log_port main_window::logPort()
{
    return [this](const std::string& line) { logLine(line); };
}

} // namespace korvane
