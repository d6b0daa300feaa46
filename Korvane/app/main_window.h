#pragma once

// The program's top-level window: a menu bar, pages behind tabs, the status line, and what happens when a command is
// given. What is loaded and what is shown of it is the document's business (Korvane/document); what a page shows is the
// page's.

#include "EASY_GUI/services/log_file.h"
#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/user_prompt.h"
#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/status_bar.h"
#include "EASY_GUI/win32/tab_view.h"
#include "Korvane/app/archive_page.h"
#include "Korvane/app/definition_page.h"
#include "Korvane/app/fbx_page.h"
#include "Korvane/app/file_opening.h"
#include "Korvane/app/game_archives.h"
#include "Korvane/app/main_menu.h"
#include "Korvane/app/model_page.h"
#include "Korvane/app/model_view.h"
#include "Korvane/app/page.h"
#include "Korvane/app/playback_box.h"
#include "Korvane/app/problems_page.h"
#include "Korvane/app/scene_display.h"

#include <functional>
#include <map>
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
    std::function<bool(const std::string& path)> open_editor; // opens a picture to be painted; false: nothing can
    std::function<bool(const std::string& path)> open_page;   // shows a page in the browser; false: nothing can
    std::string guide_folder;                                 // with a separator at its end
    std::shared_ptr<scene_pictures> pictures = {};            // of models, for previews; may be null
};

class main_window : public window, public page_host
{
public:
    // The files are those of the command line.
    main_window(main_window_ports ports, std::string command_line, std::vector<std::string> files);
    ~main_window() override { destroy(); }

    // Creates and shows the window, runs the start-up sequence and opens the files of the command line.
    [[nodiscard]] bool open(failure& why);
    HACCEL accelerators() const { return m_menu.accelerators(); }
    const model_view* view() const { return m_display.view(); } // null until a file was opened
    const status_bar& statusLine() const { return m_status; }
    bool isChecking() const { return m_problems_page.isChecking(); }
    const archive_page& archivePage() const { return m_archive_page; }
    bool isLoading() const { return m_display.isLoading(); } // what the view will show
    const playback_box& playbackBox() const { return m_playback_box; }
    bool takesShortcutsOf(HWND top) const override;

    open_files& document() override { return m_document; }
    model_commands& commands() override { return m_commands; }
    user_prompt& prompt() override { return m_ports.prompt; }
    shared_config& config() override { return m_config; }
    const ui_thread& thread() const override { return m_thread; }
    const std::shared_ptr<scene_pictures>& pictures() const override { return m_ports.pictures; }
    HWND frame() const override { return handle(); }
    // False, after a message box, when it cannot be opened, and when unsaved changes are not to be lost: what was open
    // stays.
    bool openFile(const std::string& path) override { return m_opening.open(path); }
    void openFiles(const std::vector<std::string>& paths) override;
    bool mayLeaveModel() override;
    void runCommand(document_command command) override;
    bool isEnabled(document_command command) const override;
    void took(command_outcome outcome) override;
    void select(model_selection wanted) override;
    void showModelPage(int texture_row) override;
    void showDefinitionPage() override;
    void rereadArchives(bool trusts_cache) override;
    void showFigure() override;
    void tookConverted() override;
    void playAnimation(const std::string& path) override;
    void setStatus(const std::string& text) override;
    void logLine(const std::string& line) override;
    bool work(const std::string& title, const std::function<void(const work_port&)>& work) override;

protected:
    bool onCreated() override;
    void onClose() override;
    void onDestroyed() override;
    void onSize(int width, int height, size_change change) override;
    bool onCommand(int id, int notification, HWND control) override;
    void onMinimumSize(SIZE& outer) override;
    void onDpiChanged(unsigned dpi) override;
    void onFilesDropped(const std::vector<std::string>& paths) override { openFiles(paths); }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    // Start
    bool createContent();
    void nameActions();
    void showFirstRunNotice();
    void takeTyped();
    void keepPlaces();
    void closeIfWanted();
    bool restoreView(HWND shown) const;

    // Layout
    void applyFont();
    void layOut();
    void fitHeight();
    void showPage(std::size_t page);
    page& shownPage() const { return *m_pages[m_shown_page]; }

    // Files and archives
    bool isBusy() const { return m_works > 0; }
    void opened(const std::string& path);
    void showFbx(fbx_report report);
    void reset();
    void setUpFolders();
    void logProblems();
    void followFiles();
    void takeUpConfig();

    // What is shown
    void showDocument();
    void showEdited();
    void showSelection();
    void showCounts();
    void showLoading(const work_progress& now); // of what the view will show
    view_events viewEvents();
    void picked(const shown_group& group);
    void showView(scene_display::focus wanted);
    void savePicture();
    help_topic helpTopic() const;
    void showGuide(help_topic topic);
    void showAbout();
    log_port logPort();

    main_window_ports m_ports;
    std::string m_command_line;
    std::vector<std::string> m_files; // of the command line
    shared_config m_config;
    ui_thread m_thread;
    open_files m_document;
    model_commands m_commands;
    failure m_start_failure; // why the window could not be filled
    bool m_is_started = false;
    bool m_wants_to_close = false; // as soon as the start or the work is over
    int m_works = 0;               // that run, one within the other
    main_menu m_menu;
    scene_display m_display;
    playback_box m_playback_box;
    game_archives m_archives;
    file_opening m_opening;

    model_page m_model_page;
    definition_page m_definition_page;
    problems_page m_problems_page;
    archive_page m_archive_page;
    fbx_page m_fbx_page;
    std::vector<page*> m_pages; // in the order of the tabs
    std::size_t m_shown_page = 0;
    std::unique_ptr<font> m_po_font;
    tab_view m_tabs;
    button m_show_view;
    status_bar m_status;
    std::string m_happened; // last, for the status line
    std::map<document_command, std::function<void()>> m_actions;
};

} // namespace korvane
