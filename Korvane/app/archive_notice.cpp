#include "Korvane/app/archive_notice.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/shared_config.h"

#include <utility>

namespace korvane
{

archive_notice::archive_notice(page_host& host, std::function<void(const std::string& text)> told)
    : m_host(host)
    , m_told(std::move(told))
    , m_work(host.thread(), {})
{
}

// Watched from before the first look, so that nothing is missed between the two.
void archive_notice::setGame(const std::shared_ptr<const game_data>& game)
{
    m_work.stop();
    m_po_game = game;
    m_po_as_read = nullptr;
    m_folders = m_host.config().get(config_keys::data_folders);
    if (!game || !game->archives())
        m_folders.clear();
    m_watch.watch(m_folders);
    m_is_due = !m_folders.empty();
    m_text.clear();
    m_told(m_text);
}

void archive_notice::follow()
{
    m_is_due = m_watch.takeChange() || m_is_due;
    if (m_is_due && !m_work.isRunning())
        look();
}

void archive_notice::look()
{
    m_is_due = false;
    m_work.start([this, game = m_po_game, as_read = m_po_as_read,
                  folders = m_folders](const work_port& work) -> background_task::answer {
        const archive_stamps now = stampArchives(folders, work.stop);
        const auto known =
            as_read ? as_read : std::make_shared<const archive_stamps>(stampsAsRead(*game->archives(), now));
        return [this, known, text = describeChanges(*known, now)] {
            m_po_as_read = known;
            if (std::exchange(m_text, text) != text)
                m_told(text);
        };
    });
}

} // namespace korvane
