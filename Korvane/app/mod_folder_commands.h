#pragma once

// What the page of the archives does with the mod folder: files are put into it, from the disk or out of the archives,
// renamed, and moved into the system's bin. Afterwards the archives are read again, and the page shows it. Window
// thread.

#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/own_files.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// Empty when none is set, and the person, who was asked to, does not set one.
[[nodiscard]] std::string wantedModFolder(page_host& host, const std::string& title);

class mod_folder_commands
{
public:
    using rows_of_list = std::vector<std::size_t>;

    // The browser outlives this. Shown is called with the path of the row to be chosen; empty: as it is.
    mod_folder_commands(page_host& host, const archive_browser& browser,
                        std::function<void(const std::string& path)> shown)
        : m_host(host)
        , m_browser(browser)
        , m_shown(std::move(shown))
    {
    }

    menu_row menu(const rows_of_list& rows) const;      // a submenu
    bool run(int command, const rows_of_list& rows);    // false: it is none of the submenu's
    bool onKey(unsigned key, const rows_of_list& rows); // F2 and Delete

    // Files and folders of the disk, into the folder that is shown.
    void put(const std::vector<std::string>& paths);

private:
    void putRows(const rows_of_list& rows); // at their own paths
    void rename(const rows_of_list& rows);
    void remove(const rows_of_list& rows);
    void changed(const std::string& said, const std::string& path);
    void report(const std::string& title, const std::string& text);

    page_host& m_host;
    const archive_browser& m_browser;
    std::function<void(const std::string& path)> m_shown;
};

} // namespace korvane
