#pragma once

// The program's top-level window: menus, the information panels, and what happens when a command is given. What is
// loaded and what is shown of it is the document's business (Korvane/document).

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_stamp.h"
#include "EASY_GUI/services/log_file.h"
#include "EASY_GUI/services/user_prompt.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/information_panels.h"
#include "Korvane/app/model_view.h"
#include "Korvane/app/panel_column.h"
#include "Korvane/app/scene_display.h"
#include "Korvane/document/model_commands.h"
#include "Korvane/document/open_files.h"
#include "Korvane/game/game_loader.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

// The world around the main window. All of it outlives the window.
struct main_window_ports
{
    config_file& config;     // loaded already
    std::string config_path; // where it stands; empty: beside the program
    log_file& log;
    std::string log_name; // opened beside the program at start; empty: the log is open already
    user_prompt& prompt;
    std::function<void(HWND)> set_prompt_owner; // the window over which the prompt shows its boxes; may be empty
    model_view_factory make_view;
    std::function<void(const std::string& path)> open_folder; // shows a file in the system's file manager
    edit_keeper& keeper;                                      // of unsaved edits, and what the last program kept
};

class main_window : public window
{
public:
    // The files are those of the command line.
    main_window(main_window_ports ports, std::string command_line, std::vector<std::string> files);
    ~main_window() override { destroy(); }

    // Creates and shows the window, runs the start-up sequence and opens the files of the command line.
    [[nodiscard]] bool open(failure& why);
    HACCEL accelerators() const { return m_accelerators.get(); }
    const open_files& document() const { return m_document; }
    const model_view* view() const { return m_display.view(); } // null until a file was opened

    // As if the person had chosen it. False, after a message box, when it cannot be opened, and when unsaved changes
    // are not to be lost: what was open stays.
    bool openFile(const std::string& path);
    bool takesShortcutsOf(HWND top) const override;

protected:
    bool onCreated() override;
    void onClose() override;
    void onDestroyed() override;
    void onSize(int width, int height, size_change change) override;
    void onVerticalScroll(int request) override;
    bool onMouseWheel(int delta, const mouse_event& event) override;
    bool onCommand(int id, int notification, HWND control) override;
    void onMinimumSize(SIZE& outer) override;
    void onDpiChanged(unsigned dpi) override;
    void onFilesDropped(const std::vector<std::string>& paths) override;
    void onControlFocused(HWND control) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    bool createPanels();
    void buildMenus();
    void runCommand(document_command command);
    void actOn(int control);
    void fillRecentFiles();
    void showFirstRunNotice();
    void showDocument();
    void showSelection();
    void select();
    void chooseFile();
    void chooseDefinition();
    void openChosen(const std::vector<file_filter>& filters);
    void openRecent(std::size_t position);
    void openFiles(const std::vector<std::string>& paths);
    bool takeGame(const game_load& loaded);
    void rereadArchives();
    void logProblems();
    void showView(scene_display::focus wanted);
    void followFiles();
    void showAbout();
    void changeConfig(const config_file::change_function& change);
    void takeUpConfig();
    std::string configPath() const;
    void log(const std::string& line);
    log_port logPort();

    main_window_ports m_ports;
    std::string m_command_line;
    std::vector<std::string> m_files; // of the command line
    open_files m_document;
    model_commands m_commands;
    failure m_start_failure; // why the window could not be filled
    scene_display m_display;
    file_stamp m_config_stamp; // of the configuration that is known

    information_panels m_panels;
    label m_status;
    button m_show_view;
    panel_column m_content; // lays all of these out

    menu m_recent;
    std::vector<std::string> m_recent_files;
    unique_accelerators m_accelerators;
};

} // namespace korvane
