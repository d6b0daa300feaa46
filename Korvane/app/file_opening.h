#pragma once

// Opens files in the main window: by the ending of their paths, chosen, dropped, from the command line or from the list
// of those that were opened last. Files are read by a worker; what cannot be opened is said, and what was open stays.

#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/app/main_menu.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/fbx_report.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace korvane
{

class file_opening
{
public:
    // Both outlive this. opened is called when the document holds a file that was opened, imported when an FBX file,
    // of which nothing is made, was read.
    file_opening(page_host& host, main_menu& menu, std::function<void(const std::string& path)> opened,
                 std::function<void(fbx_report report)> imported)
        : m_host(host)
        , m_menu(menu)
        , m_opened(std::move(opened))
        , m_imported(std::move(imported))
    {
    }

    bool open(const std::string& path); // false: it was not opened, and that was said
    void openAll(const std::vector<std::string>& paths);
    void chooseFile();
    void chooseDefinition();

    void openRecent(std::size_t position);
    void fillRecentFiles();
    void addRecentFile(const std::string& path);

private:
    void openChosen(const std::vector<file_filter>& filters);
    bool importFbx(const std::string& path);

    page_host& m_host;
    main_menu& m_menu;
    std::function<void(const std::string& path)> m_opened;
    std::function<void(fbx_report report)> m_imported;
};

} // namespace korvane
