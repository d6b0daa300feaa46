#pragma once

// The page "Archives": all archives of the data folders as one file system, to look around in, to search, to open and
// to take files out of. What it shows is the browser's business (presenters/archive_browser.h); a worker searches.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/splitter.h"
#include "EASY_GUI/win32/tree_view.h"
#include "Korvane/app/archive_exchange.h"
#include "Korvane/app/archive_lookups.h"
#include "Korvane/app/archive_notice.h"
#include "Korvane/app/file_preview_panel.h"
#include "Korvane/app/file_viewer.h"
#include "Korvane/app/filter_field.h"
#include "Korvane/app/mod_folder_commands.h"
#include "Korvane/app/rows_page.h"
#include "Korvane/app/texture_window.h"
#include "Korvane/presenters/archive_browser.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class archive_page : public rows_page
{
public:
    explicit archive_page(page_host& host);
    ~archive_page() override { destroy(); }

    void showDocument() override;
    void follow() override { m_notice.follow(); }
    HWND firstControl() const override;
    help_topic helpTopic() const override { return help_topic::archives; }
    bool copyMore() override; // the chosen rows: files, and their internal paths
    bool onPageKey(int command) override;
    bool keep(config_file& config) const override;
    bool isSearching() const { return m_lookups.isRunning(); }
    const archive_browser& browser() const { return m_browser; }
    const file_viewer& viewer() const { return m_viewer; }
    const texture_window& textureWindow() const { return m_texture; }

protected:
    bool createControls(failure& why) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    void applyFont(const font& used) override;
    void onDestroyed() override
    {
        m_lookups.stop();
        m_notice.stop();
    }
    void onFilesDropped(const std::vector<std::string>& paths) override;

private:
    using file_list = std::vector<const pack_file_node*>;

    bool isEmpty() const override { return !m_browser.hasFiles(); }
    void connect();
    void arrange(); // all rows, that of the news where there are any
    void movePanes(std::size_t left, int pixels);
    void showNews(const std::string& text);
    void keepChosen(); // until there are other rows
    void chooseKept();
    bool hasAllChosen() const;
    empty_content emptyContent() const;
    void showState();
    void showPlace();  // the folder that the browser is in, everywhere
    void showList();   // its rows
    void showChosen(); // the file with the focus, beside the list
    void fillChoices();

    void search();
    void open(int row);
    void openFile(const pack_file_node& file);
    void view(const pack_file_node& file); // as text or bytes
    void takeOut(const file_list& files);
    void openFolder(const std::string& folder);
    void showFavourites();
    void showArchives();
    void showMenu(int row, POINT on_screen);
    void showItsFolder(const std::string& path);
    void runFromMenu(int chosen, int row);
    bool onListKey(unsigned virtual_key);
    void go(void (archive_browser::*where)());
    bool leaveList();   // of what was found, or of what uses a file: to the folder, or to the search before
    void clearSearch(); // its fields
    bool goToRows();    // the focus, and the first one is chosen; false: there are none

    archive_browser m_browser;
    archive_exchange m_exchange;
    mod_folder_commands m_mod_folder;

    button m_back, m_forward, m_up, m_favourites;
    field_name m_path_name;
    filter_field m_path;
    field_name m_find_name;
    filter_field m_find;
    combo_box m_type, m_archive;
    button m_overview;
    tree_view m_tree;
    list_view m_list;
    file_preview_panel m_preview;
    std::array<splitter, 2> m_splitters;        // before and behind the list
    std::vector<int> m_pane_widths = {3, 8, 4}; // of tree, list and preview: what they are to each other
    label m_details;
    label m_news; // of archives that have changed on the disk; seen when there is something to say
    button m_reread;
    bool m_has_news = false;
    label m_status;
    button m_open, m_take_out;
    file_viewer m_viewer;
    texture_window m_texture;
    std::vector<std::string> m_kept; // rows that were chosen before the archives were read again
    bool m_is_unseen = false;        // filled, and not shown since then
    bool m_keeps_all = false;        // all rows were
    archive_notice m_notice;
    archive_lookups m_lookups; // the last member: its work ends first
};

} // namespace korvane
