#include "Korvane/app/game_archives.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_loader.h"
#include "Korvane/jobs/cache_job.h"
#include "Korvane/jobs/operands.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{
constexpr std::string_view default_skeleton = "animations\\skeletons\\humanoid01.anim";
}

bool game_archives::load(bool trusts_cache)
{
    game_load loaded;
    game_loader loader(m_host.config().table(), m_host.config().path());
    loader.deferCache();
    if (m_po_writing)
        m_po_writing->stop();
    const bool went_on = m_host.work("Reading the archives of the game", [&](const work_port& port) {
        loaded = trusts_cache ? loader.load(port) : loader.reload(port);
    });
    m_host.config().noteOwnChange();
    if (!went_on)
        return false;
    if (trusts_cache && !loader.hasFolders()) // the last one was taken off the list
        loaded.game = std::make_shared<const game_data>();
    sayNotices(loaded.notices);
    sayLeftOut(loaded.left_out);
    if (loaded.game != nullptr)
    {
        publishGame(*loaded.game);
        m_host.document().setGame(loaded.game);
    }
    if (loaded.wants_cache)
        writeCache();
    return true;
}

// Nobody waits for it: it is of use at the next start.
void game_archives::writeCache()
{
    const log_port log = [this](const std::string& line) { m_host.logLine(line); };
    if (!m_po_writing)
        m_po_writing = std::make_unique<background_task>(
            m_host.thread(), background_task::listeners{{}, log, [log](const std::string& what) {
                                                            log("[PACK CACHE] not written: " + what);
                                                        }});
    m_po_writing->start([this, log, places = cache_places::of(m_host.config().table(), m_host.config().path())](
                            const work_port& work) -> background_task::answer {
        failure why;
        const bool is_written = rebuildPackCache(places, work, why);
        return [this, log, is_written, line = "[PACK CACHE] " + places.packs.path() + " : not written, " + why.what] {
            if (!is_written)
                return log(line);
            static_cast<void>(m_host.config().change([](config_file& config) { return pack_cache::recordIn(config); }));
        };
    });
}

void game_archives::sayNotices(const std::vector<notice>& notices)
{
    for (const notice& each : notices)
    {
        std::string line = each.title + " " + each.text;
        std::erase(line, '\r');
        std::replace(line.begin(), line.end(), '\n', ' ');
        m_host.logLine(line);
        m_host.prompt().show(each.title, each.text, prompt_icon::error);
    }
}

void game_archives::sayLeftOut(const std::vector<std::string>& lines)
{
    constexpr std::size_t most_named = 8; // two archives at least: each has four lines at most
    if (lines.empty())
        return;
    std::string text = "Some files are listed in an archive that does not hold them. They are left out:\r\n";
    for (std::size_t i = 0; i < std::min(lines.size(), most_named); ++i)
        text += "\r\n" + displayText(lines[i]);
    if (lines.size() > most_named)
        text += "\r\nand " + counted(lines.size() - most_named, "more line") + " in log.txt";
    m_host.prompt().show("Damaged archive", text + "\r\n\r\nLet the game's store check its files.",
                         prompt_icon::warning);
}

void game_archives::loadDefaultSkeleton()
{
    if (!m_host.document().game()->hasArchives())
        return;
    const std::string step = "Loading default skeleton: " + std::string(default_skeleton);
    m_host.logLine(step);
    const auto game = m_host.document().game();
    // A path that no archive holds is looked for under other spellings, and compared with all: seconds for a million.
    if (game->archives()->find(default_skeleton) == nullptr)
        return m_host.logLine("main_window::loadDefaultSkeleton(). No archive holds it.");
    failure why;
    std::shared_ptr<const anim_data> loaded;
    const bool went_on = m_host.work("Loading the default skeleton", [&](const work_port&) {
        loaded_game source(game);
        loaded = loadAnim(source, game_path("pack:" + std::string(default_skeleton)), anim_depth::skeleton, why);
    });
    if (!went_on)
        return;
    m_po_default_skeleton = std::move(loaded);
    m_host.logLine(m_po_default_skeleton ? step + ": SUCCESS" : "main_window::loadDefaultSkeleton(). " + describe(why));
}

} // namespace korvane
