#include "Korvane/app/main_window.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/resources.h"
#include "Korvane/document/game_archives.h"
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

RECT workArea()
{
    RECT area{};
    if (!SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0))
        area = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    return area;
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

main_window::main_window(main_window_ports ports, std::string command_line, std::string file)
    : m_ports(std::move(ports))
    , m_command_line(std::move(command_line))
    , m_file(std::move(file))
    , m_file_info([this] {
        if (m_document.model().hasModel())
            m_ports.open_folder(m_document.model().file()->path());
    })
    , m_select([this](model_selection wanted) { select(wanted); })
    , m_content(*this, {&m_file_info, &m_select, &m_group_info, &m_group_tool, &m_textures}, m_status, m_show_view)
    , m_recent(nullptr)
{
}

bool main_window::open(failure& why)
{
    const RECT area = workArea();
    window_settings settings;
    settings.title = m_document.title();
    settings.style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_VSCROLL;
    settings.extended_style = WS_EX_ACCEPTFILES | WS_EX_CONTROLPARENT;
    settings.x = area.left + scaled(margin);
    settings.y = area.top + scaled(margin);
    settings.width = std::min(scaled(default_width), static_cast<int>(area.right) - settings.x);
    settings.height = area.bottom - settings.y - scaled(margin); // until the panels say what they need
    settings.icon = resource_program_icon;
    return create(settings, why);
}

// The order of these steps is what the log of a start shows.
bool main_window::onCreated()
{
    if (m_ports.set_prompt_owner)
        m_ports.set_prompt_owner(handle());
    if (!m_ports.log_name.empty())
        m_ports.log.open(m_ports.log_name);
    loadGameArchives({m_ports.config, m_ports.config_path, m_ports.prompt, logPort()});
    showFirstRunNotice();

    log("assigning accelerators ");
    failure why;
    if (!createPanels(why))
        return false;
    buildMenus();
    fillRecentFiles();
    m_content.applyFont();
    m_content.fitHeight();
    showDocument();
    show();
    UpdateWindow(handle());

    log("main_window::onCreated(). command line " + m_command_line);
    if (!m_file.empty())
    {
        log("main_window::onCreated(). command line processed: " + m_file);
        openFile(m_file);
    }
    return true;
}

void main_window::onDestroyed()
{
    m_po_view.reset(); // its render thread ends here
    if (m_ports.set_prompt_owner)
        m_ports.set_prompt_owner(nullptr);
    PostQuitMessage(0);
}

void main_window::showFirstRunNotice()
{
    if (!m_ports.config.get("FIRST_TIME").empty())
        return;
    m_ports.prompt.show("Important!",
                        "Rmember to the setup the \\data\\ folders or your game in the Menu 'Tools'->'Setup Game "
                        "Folders'.\n\rIf folders are not set animation/skeleton export and animation playback is "
                        "disabled",
                        prompt_icon::error);
    m_ports.config.add("FIRST_TIME", {"no"}, false);
    saveConfig();
}

bool main_window::createPanels(failure& why)
{
    return m_file_info.createIn(handle(), "File Info: ", why) && m_select.createIn(handle(), "Select LOD/Group", why) &&
           m_group_info.createIn(handle(), "Group Info:", why) && m_group_tool.createIn(handle(), "Group Tool:", why) &&
           m_textures.createIn(handle(), "Textures:", why) && m_status.create(handle(), control_status) &&
           m_show_view.create(handle(), control_show_view, "Show &3D View");
}

void main_window::buildMenus()
{
    menu file = menu::makePopup();
    m_recent = menu::makePopup();
    file.addItem(command_open, "&Open \t\t Ctrl+O");
    file.addSubmenu(m_recent, "Recent Files...");
    file.addSeparator();
    file.addItem(command_file_update, "Re-read .pack files...");
    file.addSeparator();
    file.addItem(command_exit, "E&xit \t\t Alt+F4");
    menu variants = menu::makePopup();
    variants.addItem(command_variant_open, "&Open .variantmeshdefintion file");
    menu help = menu::makePopup();
    help.addItem(command_about, "&Info And Credits");
    menu bar = menu::makeBar();
    bar.addSubmenu(file, "&File");
    bar.addSubmenu(variants, "&Variants");
    bar.addSubmenu(help, "&Help");
    SetMenu(handle(), bar.handle());

    // Alt+F4 is the system's own and closes whichever window is in front.
    std::vector<shortcut> shortcuts = {{FCONTROL, 'O', command_open}};
    for (WORD i = 0; i < max_recent_files; ++i)
        shortcuts.push_back(
            {FCONTROL, static_cast<WORD>('0' + (i + 1) % 10), static_cast<WORD>(command_recent_first + i)});
    m_accelerators = makeAccelerators(shortcuts);
}

void main_window::fillRecentFiles()
{
    m_recent_files = recentFiles(m_ports.config);
    m_recent.clear();
    for (std::size_t i = 0; i < m_recent_files.size(); ++i)
        m_recent.addItem(command_recent_first + static_cast<int>(i), recentFileLabel(i, m_recent_files[i]));
    if (m_recent_files.empty())
    {
        m_recent.addItem(command_recent_first, "(none yet)");
        EnableMenuItem(m_recent.handle(), 0, MF_BYPOSITION | MF_GRAYED);
    }
}

void main_window::onSize(int, int, size_change change)
{
    if (change != size_change::minimised && m_textures.isOpen())
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

bool main_window::onCommand(int id, int notification, HWND)
{
    if (id >= command_recent_first && id < command_recent_first + static_cast<int>(max_recent_files))
    {
        openRecent(static_cast<std::size_t>(id - command_recent_first));
        return true;
    }
    switch (id)
    {
    case command_open:
        chooseFile();
        return true;
    case command_variant_open:
        chooseDefinition();
        return true;
    case command_file_update:
        rereadArchives();
        return true;
    case command_exit:
        PostMessageW(handle(), WM_CLOSE, 0, 0);
        return true;
    case command_about:
        showAbout();
        return true;
    case control_show_view:
        if (notification == BN_CLICKED)
            showView();
        return true;
    default:
        return false;
    }
}

void main_window::onFilesDropped(const std::vector<std::string>& paths)
{
    if (!paths.empty())
        openFile(paths.front());
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
    if (position < m_recent_files.size())
        openFile(std::string(m_recent_files[position]));
}

bool main_window::openFile(const std::string& path)
{
    const wait_cursor waiting;
    failure why;
    if (!m_document.open(path, why))
    {
        const open_error error = describeOpenFailure(path, why);
        log("main_window::openFile(). " + describe(why));
        m_ports.prompt.show(error.title, error.text, prompt_icon::error);
        return false;
    }
    if (m_document.shown() == open_files::kind::definition)
        logProblems();
    addRecentFile(m_ports.config, path);
    saveConfig();
    fillRecentFiles();
    showDocument();
    showView();
    return true;
}

// The archives themselves say in the log what was read.
void main_window::rereadArchives()
{
    const wait_cursor waiting;
    if (!rereadGameArchives({m_ports.config, m_ports.config_path, m_ports.prompt, logPort()}))
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

void main_window::select(model_selection wanted)
{
    const int former_lod = m_document.model().selection().lod;
    m_document.select(wanted);
    showSelection();
    if (m_document.shown() == open_files::kind::model && m_document.model().selection().lod != former_lod)
        showInView();
}

void main_window::showDocument()
{
    const open_model& model = m_document.model();
    setTitle(m_document.title());
    m_file_info.show(model.hasModel() ? std::optional(fileInfo(*model.file())) : std::nullopt);
    m_show_view.setEnabled(m_document.shown() != open_files::kind::nothing);
    showInView();
    showSelection();
}

void main_window::showSelection()
{
    const open_model& document = m_document.model();
    const model_selection selection = document.selection();
    const group_data* const group = document.selectedGroup();
    if (document.hasModel())
        m_select.show(lodEntries(*document.data()), groupEntries(*document.data(), selection.lod), selection);
    else
        m_select.show({}, {}, selection);
    m_status.setText(m_document.status(m_drawn));
    m_group_info.show(group != nullptr ? std::optional(groupInfo(*group)) : std::nullopt);
    m_group_tool.show(group != nullptr ? std::optional(groupTool(*group, selection)) : std::nullopt);
    m_textures.show(group != nullptr ? textureRows(*group) : texture_rows{});
}

void main_window::showView()
{
    if (m_document.shown() == open_files::kind::nothing)
        return;
    if (m_po_view == nullptr)
    {
        failure why;
        m_po_view = m_ports.make_view(logPort(), why);
        if (m_po_view == nullptr)
        {
            log("main_window::showView(). " + describe(why));
            m_ports.prompt.show("Error!", "The 3D view could not be opened.\r\n\r\n" + describe(why),
                                prompt_icon::error);
            return;
        }
        placeView();
        showInView();
    }
    m_po_view->show();
}

// Hands what is shown to the view, when there is one.
void main_window::showInView()
{
    m_drawn = std::nullopt;
    if (m_po_view == nullptr)
        return;
    const open_model& model = m_document.model();
    const open_definition& definition = m_document.definition();
    if (m_document.shown() == open_files::kind::model)
        m_po_view->setModel(model.data(), model.file()->path(),
                            static_cast<std::size_t>(std::max(0, model.selection().lod)));
    else if (m_document.shown() == open_files::kind::definition)
        m_drawn = m_po_view->setDefinition(definition.models(), definition.path());
    m_status.setText(m_document.status(m_drawn));
}

// Beside the main window when the screen has room for it, at least as high as that and otherwise as large as it wants.
void main_window::placeView()
{
    const HWND view = m_po_view->handle();
    RECT own{};
    RECT wanted{};
    if (view == nullptr || !GetWindowRect(handle(), &own) || !GetWindowRect(view, &wanted))
        return;
    const RECT area = workArea();
    const LONG x = own.right + scaled(margin);
    const LONG room = area.right - scaled(margin) - x;
    if (room < scaled(320))
        return;
    const LONG width = std::min(room, wanted.right - wanted.left);
    const LONG height =
        std::min(area.bottom - own.top - scaled(margin), std::max(wanted.bottom - wanted.top, own.bottom - own.top));
    SetWindowPos(view, nullptr, x, own.top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
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

void main_window::saveConfig()
{
    if (!m_ports.config.save(m_ports.config_path))
        log("main_window::saveConfig(). config.cfg could not be written");
}

void main_window::log(const std::string& line)
{
    m_ports.log.write(line + "\r\n");
}

std::function<void(const std::string&)> main_window::logPort()
{
    return [this](const std::string& line) { log(line); };
}

} // namespace korvane
