#include "Korvane/app/archive_lookups.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/jobs/needs_job.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t first_step = 20000;              // files that are looked at before the first rows are shown
constexpr std::size_t step = 500000;                   // each shows the list again, which takes time, too
constexpr std::chrono::milliseconds between_rows(100); // until more of them are shown

} // namespace

archive_lookups::archive_lookups(page_host& host, archive_browser& browser, listeners told)
    : m_host(host)
    , m_browser(browser)
    , m_told(std::move(told))
    , m_ordering(host.thread(), {})
    , m_work(host.thread(),
             {[this](const work_progress& now) {
                  m_told.said("Looking into " + now.what + ": " + grouped(now.done) + " of " + grouped(now.total));
              },
              [&host](const std::string& line) { host.logLine(line); },
              [this](const std::string& what) {
                  m_host.logLine("archive_lookups: the work ended early: " + what);
                  m_told.said("This could not be finished: " + what);
              }})
{
}

void archive_lookups::setGame(const std::shared_ptr<const game_data>& game)
{
    m_work.stop();
    m_po_known = std::make_shared<known_archives>();
    m_po_known->game = game;
}

void archive_lookups::forget()
{
    ++m_number;
    m_is_search = false;
}

void archive_lookups::prepare()
{
    if (m_po_known->hidden != nullptr)
        return m_work.stop();
    m_work.start([this, known = m_po_known](const work_port&) -> background_task::answer {
        known->search = std::make_unique<path_search>(known->game->archives());
        known->hidden = std::make_shared<hidden_copies>(known->game->archives());
        return [this, known] {
            if (known != m_po_known)
                return;
            m_browser.setHidden(known->hidden);
            m_told.marked();
        };
    });
}

void archive_lookups::search(const path_query& query)
{
    const std::size_t number = ++m_number;
    m_is_search = true;
    m_was_told = false;
    std::string heading = "Files";
    if (!query.text.empty())
        heading += " with \"" + displayText(query.text) + "\"";
    if (!query.extension.empty())
        heading += " of this type";
    if (query.po_archive != nullptr)
        heading += " of " + displayText(query.po_archive->name);
    m_browser.beginList(heading);
    m_work.start([this, known = m_po_known, number, query,
                  box = m_host.thread().box()](const work_port& work) -> background_task::answer {
        if (known->search == nullptr)
            known->search = std::make_unique<path_search>(known->game->archives());
        path_search& search = *known->search;
        search.find(query);
        std::size_t handed_over = 0;
        std::size_t portion = first_step;
        for (bool goes_on = true; goes_on && !work.isStopped(); portion = handed_over > 0 ? step : portion * 2)
        {
            goes_on = search.advance(portion);
            file_list fresh = search.hits(handed_over);
            handed_over = search.hitCount();
            if (!fresh.empty())
                box.post([this, known, number, files = std::make_shared<const file_list>(std::move(fresh))] {
                    if (known == m_po_known)
                        take(number, *files);
                });
        }
        if (!work.isStopped() && known->hidden == nullptr)
            known->hidden = std::make_shared<hidden_copies>(known->game->archives());
        return [this, known, number] {
            if (known != m_po_known || number != m_number)
                return;
            m_browser.setHidden(known->hidden);
            m_browser.sortAgain();
            m_told.listed();
        };
    });
}

void archive_lookups::order()
{
    const archive_browser::due_rows due = m_browser.takeDue();
    if (!due.make)
        return;
    m_ordering.start([this, due](const work_port&) -> background_task::answer {
        auto rows = std::make_shared<archive_rows>(due.make());
        return [this, due, rows] {
            if (m_browser.take(std::move(*rows), due))
                m_told.listed();
        };
    });
}

void archive_lookups::take(std::size_t number, const file_list& files)
{
    if (number != m_number)
        return; // of a search that was replaced
    m_browser.rows().add(files);
    // The first rows at once; to draw all those that come after them would hold up the search.
    const auto now = std::chrono::steady_clock::now();
    if (m_was_told && now - m_told_at < between_rows)
        return;
    m_was_told = true;
    m_told_at = now;
    m_told.grown();
}

void archive_lookups::list(const std::string& heading, const file_list& files, std::vector<std::string> missing)
{
    m_is_search = false;
    m_browser.beginList(heading);
    m_browser.rows().add(files);
    m_browser.rows().setMissing(std::move(missing));
    m_told.listed();
}

void archive_lookups::listUsers(const std::string& path)
{
    forget();
    const usage_store store = usage_store::of(m_host.config().table(), m_host.config().path());
    m_work.start([this, known = m_po_known, path, store](const work_port& work) -> background_task::answer {
        if (!known->has_usage)
        {
            failure why;
            const usage_index former = store.load(why);
            usage_index made = indexUsage(*known->game, former, work, known->has_usage);
            if (!known->has_usage)
                return {};
            if (made.isOtherThan(former) && !store.write(made, why))
                tell(work.log, "archive_lookups: the usage index is not kept: " + describe(why));
            known->usage = std::move(made);
        }
        auto users = std::make_shared<file_list>();
        for (const file_user& each : known->usage.usersOf(*known->game, path))
            if (users->empty() || users->back() != each.user)
                users->push_back(each.user);
        return [this, known, path, users] {
            if (known == m_po_known)
                list("Models and definitions that name " + displayText(std::string(fileName(path))), *users, {});
        };
    });
    m_told.said("Looking into models and definitions...");
}

void archive_lookups::listNeeds(const std::string& path)
{
    forget();
    m_work.start([this, known = m_po_known, path](const work_port& work) -> background_task::answer {
        auto result = std::make_shared<needs_result>();
        failure why;
        const bool is_read = findNeeds(*known->game, {game_path::ofInternal(path)}, work, *result, why);
        return [this, known, path, result, is_read, why] {
            if (known != m_po_known)
                return;
            if (!is_read)
                return m_host.prompt().show("Archives", describe(why), prompt_icon::error);
            file_list files;
            std::vector<std::string> missing;
            for (const needed_file& each : result->files)
                if (const pack_file_node* const file = known->game->archives()->findFile(each.path); file != nullptr)
                    files.push_back(file);
                else
                    missing.push_back(each.path);
            list("What " + displayText(std::string(fileName(path))) + " needs", files, std::move(missing));
        };
    });
}

} // namespace korvane
