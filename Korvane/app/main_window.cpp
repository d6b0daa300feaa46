#include "Korvane/app/main_window.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/resources.h"
#include "Korvane/document/command_table.h"
#include "Korvane/document/kept_edits.h"
#include "Korvane/document/recent_files.h"

#include <algorithm>
#include <shellapi.h>
#include <utility>

namespace korvane
{

namespace
{

constexpr int margin = 8;          // at 96 dots per inch
constexpr int default_width = 620; // outer
constexpr UINT_PTR look_timer = 1;
constexpr UINT look_pause = 500; // milliseconds

shortcut acceleratorOf(const key_shortcut& keys, int command)
{
    if (keys.function_key > 0)
        return {0, static_cast<WORD>(VK_F1 + keys.function_key - 1), static_cast<WORD>(command)};
    return {static_cast<BYTE>(FCONTROL | (keys.with_shift ? FSHIFT : 0)), static_cast<WORD>(keys.key),
            static_cast<WORD>(command)};
}

// While large files are read.
class wait_cursor
{
public:
    wait_cursor() : m_former(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
    wait_cursor(const wait_cursor&) = delete;
    wait_cursor& operator=(const wait_cursor&) = delete;
    ~wait_cursor() { SetCursor(m_former); }

private:
    HCURSOR m_former;
};

} // namespace

main_window::main_window(main_window_ports ports, std::string command_line, std::vector<std::string> files)
    : m_ports(std::move(ports))
    , m_command_line(std::move(command_line))
    , m_files(std::move(files))
    , m_commands(m_document, m_ports.prompt)
    , m_display(*this, m_document, m_ports.make_view, logPort())
    , m_panels([this](int control) { actOn(control); })
    , m_content(*this, m_panels.all(), m_status, m_show_view)
    , m_recent(nullptr)
{
    m_document.model().setKeeper(m_ports.keeper);
}

bool main_window::open(failure& why)
{
    const RECT area = workArea(nullptr);
    window_settings settings;
    settings.title = m_document.title();
    settings.style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_VSCROLL;
    settings.extended_style = WS_EX_ACCEPTFILES | WS_EX_CONTROLPARENT;
    settings.x = area.left + scaled(margin);
    settings.y = area.top + scaled(margin);
    settings.width = std::min(scaled(default_width), static_cast<int>(area.right) - settings.x);
    settings.height = area.bottom - settings.y - scaled(margin); // until the panels say what they need
    settings.icon = resource_program_icon;
    m_start_failure = {};
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
    m_config_stamp = stampOf(configPath());
    takeGame(game_loader(m_ports.config, m_ports.config_path).load({{}, {}, logPort()}));
    showFirstRunNotice();

    log("assigning accelerators ");
    if (!createPanels())
    {
        log("main_window::onCreated(). " + describe(m_start_failure));
        return false;
    }
    buildMenus();
    fillRecentFiles();
    m_content.applyFont();
    m_content.fitHeight();
    showDocument();
    show();
    UpdateWindow(handle());

    log("main_window::onCreated(). command line " + m_command_line);
    for (const std::string& file : m_files)
        log("main_window::onCreated(). command line processed: " + file);
    openFiles(m_files);
    if (m_document.model().hasModel())
        focusWhenActive(m_panels.lodList());
    if (offerKeptEdits(m_ports.keeper.folder(), m_document, m_ports.prompt, logPort()))
    {
        showDocument();
        showView(scene_display::focus::stays);
    }
    SetTimer(handle(), look_timer, look_pause, nullptr); // goes with the window
    return true;
}

void main_window::onClose()
{
    if (m_commands.mayDiscardEdits())
        destroy();
}

void main_window::onDestroyed()
{
    m_display.close();
    if (m_ports.set_prompt_owner)
        m_ports.set_prompt_owner(nullptr);
    PostQuitMessage(0);
}

void main_window::showFirstRunNotice()
{
    if (!m_ports.config.get(config_keys::first_time).empty())
        return;
    m_ports.prompt.show("Important!",
                        "Rmember to the setup the \\data\\ folders or your game in the Menu 'Tools'->'Setup Game "
                        "Folders'.\n\rIf folders are not set animation/skeleton export and animation playback is "
                        "disabled",
                        prompt_icon::error);
    changeConfig([](config_file& config) { return config.add(config_keys::first_time, {"no"}, false); });
}

bool main_window::createPanels()
{
    if (!m_panels.createIn(handle(), m_start_failure))
        return false;
    return (m_status.create(handle(), control_status) &&
            m_show_view.create(handle(), control_show_view, "Show &3D View")) ||
           fail(m_start_failure, failure_kind::refused,
                "the lower edge could not be created (error " + std::to_string(GetLastError()) + ")");
}

void main_window::buildMenus()
{
    menu bar = menu::makeBar();
    menu open_menu(nullptr);
    menu open_submenu(nullptr);
    std::string_view open_name;
    std::string_view open_submenu_name;
    std::vector<shortcut> shortcuts;
    for (const command_row& row : commandTable())
    {
        if (row.menu.empty())
            continue;
        if (row.menu != open_name)
        {
            open_menu = menu::makePopup();
            open_name = row.menu;
            bar.addSubmenu(open_menu, row.menu);
        }
        if (row.starts_section)
            open_menu.addSeparator();
        if (row.command == document_command::open_recent)
        {
            m_recent = menu::makePopup();
            open_menu.addSubmenu(m_recent, row.text);
            continue;
        }
        if (row.submenu != open_submenu_name && !row.submenu.empty())
        {
            open_submenu = menu::makePopup();
            open_menu.addSubmenu(open_submenu, row.submenu);
        }
        open_submenu_name = row.submenu;
        (row.submenu.empty() ? open_menu : open_submenu).addItem(numberOf(row.command), row.text);
        if (const auto keys = shortcutOf(row.text))
            shortcuts.push_back(acceleratorOf(*keys, numberOf(row.command)));
    }
    SetMenu(handle(), bar.handle());
    for (std::size_t i = 0; i < max_recent_files; ++i)
        if (const auto keys = shortcutOf(recentFileLabel(i, "")))
            shortcuts.push_back(acceleratorOf(*keys, recent_file_first + static_cast<int>(i)));
    m_accelerators = makeAccelerators(shortcuts);
}

void main_window::fillRecentFiles()
{
    m_recent_files = recentFiles(m_ports.config);
    m_recent.clear();
    for (std::size_t i = 0; i < m_recent_files.size(); ++i)
        m_recent.addItem(recent_file_first + static_cast<int>(i), recentFileLabel(i, m_recent_files[i]));
    if (m_recent_files.empty())
    {
        m_recent.addItem(recent_file_first, "(none yet)");
        EnableMenuItem(m_recent.handle(), 0, MF_BYPOSITION | MF_GRAYED);
    }
}

void main_window::onSize(int, int, size_change change)
{
    if (change != size_change::minimised && m_panels.areOpen())
        m_content.layOut();
}

void main_window::onVerticalScroll(int request)
{
    m_content.scroll(request);
}

bool main_window::onMouseWheel(int delta, const mouse_event&)
{
    m_content.scrollByWheel(delta);
    return true;
}

void main_window::onMinimumSize(SIZE& outer)
{
    outer.cx = std::max(outer.cx, static_cast<LONG>(scaled(480)));
    outer.cy = std::max(outer.cy, static_cast<LONG>(scaled(400)));
}

void main_window::onDpiChanged(unsigned)
{
    m_content.applyFont();
}

bool main_window::takesShortcutsOf(HWND top) const
{
    return window::takesShortcutsOf(top) || (view() != nullptr && top == view()->handle());
}

void main_window::onControlFocused(HWND control)
{
    window::onControlFocused(control);
    m_content.scrollInto(control);
}

LRESULT main_window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_ENDSESSION && wparam != 0) // the system ends the program now and asks nobody
    {
        std::string where;
        failure why;
        if (m_ports.keeper.keep(where, why) == edit_keeper::outcome::failed)
            log("main_window: the changes that were not saved could not be kept: " + describe(why));
    }
    if (message == WM_ACTIVATEAPP && wparam != FALSE && m_recent.handle() != nullptr)
        takeUpConfig();
    if ((message == WM_TIMER && wparam == look_timer) || (message == WM_ACTIVATEAPP && wparam != FALSE))
        followFiles();
    return window::handleMessage(message, wparam, lparam);
}

bool main_window::onCommand(int id, int notification, HWND control)
{
    if (control != nullptr) // the panels handle their own
    {
        if (id == control_show_view && notification == BN_CLICKED)
            showView(scene_display::focus::moves);
        return id == control_show_view;
    }
    if (id >= recent_file_first && id < recent_file_first + static_cast<int>(max_recent_files))
    {
        openRecent(static_cast<std::size_t>(id - recent_file_first));
        return true;
    }
    for (const command_row& row : commandTable())
        if (numberOf(row.command) == id && m_commands.isEnabled(row.command))
            return runCommand(row.command), true;
    return false;
}

void main_window::runCommand(document_command command)
{
    switch (command)
    {
    case document_command::open:
        return chooseFile();
    case document_command::open_definition:
        return chooseDefinition();
    case document_command::reread_archives:
        return rereadArchives();
    case document_command::exit:
        PostMessageW(handle(), WM_CLOSE, 0, 0);
        return;
    case document_command::about:
        return showAbout();
    default:
        return;
    }
}

void main_window::actOn(int control)
{
    if (control == control_open_folder && m_commands.isEnabled(document_command::open_folder))
        m_ports.open_folder(m_document.model().file()->path());
    else if (control == control_lod || control == control_group)
        select();
}

void main_window::onFilesDropped(const std::vector<std::string>& paths)
{
    openFiles(paths);
}

void main_window::chooseFile()
{
    openChosen({{"RMV2+VMD Files (*.rigid_model_v2)", "*.rigid_model_v2;*.variantmeshdefinition"}});
}

void main_window::chooseDefinition()
{
    openChosen({{"VMD Files (*.variantmeshdefinition)", "*.variantmeshdefinition"}});
}

void main_window::openChosen(const std::vector<file_filter>& filters)
{
    if (const std::optional<std::string> path = m_ports.prompt.pickOpenPath("Open File", filters))
        openFile(*path);
}

void main_window::openRecent(std::size_t position)
{
    if (position >= m_recent_files.size())
        return;
    const std::string path = m_recent_files[position];
    if (isRecentFileThere(path, *m_document.game()))
        openFile(path);
    else if (m_ports.prompt.confirm("Recent Files",
                                    "This file cannot be found any more:\r\n" + path + "\r\n\r\nTake it off the list?",
                                    prompt_answer::yes))
    {
        changeConfig([&path](config_file& config) { return removeRecentFile(config, path); });
        fillRecentFiles();
    }
}

void main_window::openFiles(const std::vector<std::string>& paths)
{
    const file_choice choice = chooseFiles(paths);
    for (const std::string& path : choice.opened)
        openFile(path);
    if (!choice.left_out.empty())
        m_ports.prompt.show("Open", choice.describeLeftOut(), prompt_icon::information);
}

bool main_window::openFile(const std::string& path)
{
    if (!isDefinitionPath(path) && !m_commands.mayDiscardEdits())
        return false;
    const wait_cursor waiting;
    failure why;
    if (!m_document.open(path, why))
    {
        const open_error error = describeOpenFailure(path, why, *m_document.game());
        log("main_window::openFile(). " + describe(why));
        m_ports.prompt.show(error.title, error.text, prompt_icon::error);
        return false;
    }
    if (m_document.shown() == open_files::kind::definition)
        logProblems();
    changeConfig([&path](config_file& config) { return addRecentFile(config, path), true; });
    fillRecentFiles();
    showDocument();
    showView(scene_display::focus::stays);
    return true;
}

// Says what there is to say of the loading. Where nothing was loaded, what was there before stays.
bool main_window::takeGame(const game_load& loaded)
{
    for (const notice& each : loaded.notices)
    {
        std::string line = each.title + " " + each.text;
        std::erase(line, '\r');
        std::replace(line.begin(), line.end(), '\n', ' ');
        log(line);
        m_ports.prompt.show(each.title, each.text, prompt_icon::error);
    }
    if (loaded.game == nullptr)
        return false;
    publishGame(*loaded.game);
    m_document.setGame(loaded.game);
    return true;
}

// The archives themselves say in the log what was read.
void main_window::rereadArchives()
{
    const wait_cursor waiting;
    takeUpConfig();
    if (!takeGame(game_loader(m_ports.config, m_ports.config_path).reload({{}, {}, logPort()})))
        return;
    for (const open_error& error : m_document.reopen())
        m_ports.prompt.show(error.title, error.text, prompt_icon::error);
    logProblems();
    showDocument();
}

void main_window::logProblems()
{
    for (const std::string& problem : m_document.definition().problems())
        log(m_document.definition().path() + ": " + problem);
}

void main_window::select()
{
    const int former_lod = m_document.model().selection().lod;
    m_document.select(m_panels.chosen());
    showSelection();
    if (m_document.model().selection().lod != former_lod)
        m_display.showLevel();
}

void main_window::showDocument()
{
    setTitle(m_document.title());
    m_panels.showFile(m_document.model());
    m_show_view.setEnabled(m_commands.isEnabled(document_command::show_view));
    m_display.showDocument();
    showSelection();
}

void main_window::showSelection()
{
    m_panels.showSelection(m_document.model());
    m_status.setText(m_document.status(m_display.drawn()));
}

void main_window::showView(scene_display::focus wanted)
{
    failure why;
    if (!m_commands.isEnabled(document_command::show_view))
        return;
    if (!m_display.show(wanted, why))
    {
        log("main_window::showView(). " + describe(why));
        m_ports.prompt.show("Error!", "The 3D view could not be opened.\r\n\r\n" + describe(why), prompt_icon::error);
    }
    m_status.setText(m_document.status(m_display.drawn()));
}

void main_window::followFiles()
{
    if (const std::string news = m_display.followFiles(); !news.empty())
        m_status.setText(news);
}

void main_window::showAbout()
{
    m_ports.prompt.show(
        "Info And Credits",
        std::string(program_name) + ' ' + std::string(program_version) +
            "\r\n\r\nOpens, describes and draws the rigid_model_v2 models of the Total War games, alone or "
            "as variant mesh definitions put them together, from the disk and from .pack archives."
            "\r\n\r\nMade by the Korvane contributors; free software under the MIT licence."
            "\r\nUses GLM, LodePNG, LZ4, pugixml, XZ Utils (liblzma) and Zstandard.",
        prompt_icon::information);
}

// As the file stands now, with what other programs have written into it meanwhile.
void main_window::changeConfig(const config_file::change_function& change)
{
    failure why;
    if (!m_ports.config.change(m_ports.config_path, change, why))
        log("main_window::saveConfig(). config.cfg could not be written: " + describe(why));
    m_config_stamp = stampOf(configPath());
}

void main_window::takeUpConfig()
{
    const file_stamp now = stampOf(configPath());
    config_file fresh;
    if (now == m_config_stamp || !fresh.load(configPath()))
        return;
    const auto folders = [](const config_file& config) {
        return std::pair(config.get(config_keys::data_folders), config.get(config_keys::mod_folders));
    };
    const bool has_other_folders = folders(fresh) != folders(m_ports.config);
    m_ports.config = std::move(fresh);
    m_config_stamp = now;
    fillRecentFiles();
    if (has_other_folders)
        m_status.setText("The data folders were changed: File, Re-read .pack files... takes them up.");
}

std::string main_window::configPath() const
{
    return m_ports.config_path.empty() ? config_file::defaultPath() : m_ports.config_path;
}

void main_window::log(const std::string& line)
{
    m_ports.log.write(line + "\r\n");
}

log_port main_window::logPort()
{
    return [this](const std::string& line) { log(line); };
}

} // namespace korvane
