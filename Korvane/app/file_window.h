#pragma once

// A window beside the main window that shows one file at a time, whatever it shows of it. Window thread.

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "Korvane/app/page.h"
#include "Korvane/game/game_file.h"
#include "Korvane/presenters/archive_rows.h"

#include <utility>

namespace korvane
{

class file_window : public dialog_box
{
public:
    ~file_window() override { destroy(); }

    // Opens the window, or shows the file in the one that is open.
    void view(const game_file& file)
    {
        m_file = file;
        failure why;
        if (isOpen())
            SetForegroundWindow(handle());
        else if (!showBeside(m_host.frame(), why))
            return m_host.prompt().show("View File", describe(why), prompt_icon::error);
        const pack_file_node* const entry = m_file.entry();
        const std::string name = displayText(std::string(fileName(m_file.path())));
        setTitle(entry != nullptr ? name + " - " + archiveName(entry->archive()) : name);
        load();
    }

protected:
    file_window(page_host& host, dialog_settings settings) : dialog_box(std::move(settings)), m_host(host) {}

    virtual void load() = 0; // file(), in place of what is shown
    const game_file& file() const { return m_file; }
    void onDestroyed() override
    {
        m_file = {}; // which keeps its archives open
        dialog_box::onDestroyed();
    }

private:
    page_host& m_host;
    game_file m_file;
};

} // namespace korvane
