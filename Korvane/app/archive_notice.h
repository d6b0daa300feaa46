#pragma once

// Says that archives have changed on the disk since they were read. The folders are watched by the system; what has
// become of them is looked up by a worker. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "Korvane/app/folder_watch.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/archive_changes.h"

#include <functional>
#include <memory>
#include <string>

namespace korvane
{

class archive_notice
{
public:
    // Told in words, and with an empty text when all is as it was read.
    archive_notice(page_host& host, std::function<void(const std::string& text)> told);

    void setGame(const std::shared_ptr<const game_data>& game);
    void follow(); // about twice a second
    void stop() { m_work.stop(); }

private:
    void look();

    page_host& m_host;
    std::function<void(const std::string& text)> m_told;
    std::shared_ptr<const game_data> m_po_game;
    std::shared_ptr<const archive_stamps> m_po_as_read; // null: not known yet
    std::vector<std::string> m_folders;
    folder_watch m_watch;
    std::string m_text; // that was told last
    bool m_is_due = false;
    background_task m_work; // the last member: its work ends first
};

} // namespace korvane
