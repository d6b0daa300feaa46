#pragma once

// What a worker finds out for the page of the archives: what a search finds, which copies a file hides, what names a
// file and what it needs. The rows come into the browser as they are found. Of several questions the newest counts;
// they are answered one after the other, so that only one of them knows the archives at a time. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "Korvane/app/page.h"
#include "Korvane/archives/path_search.h"
#include "Korvane/game/usage_index.h"
#include "Korvane/presenters/archive_browser.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class archive_lookups
{
public:
    struct listeners
    {
        std::function<void()> grown;                       // more rows have come
        std::function<void()> listed;                      // other rows, and all of them
        std::function<void()> marked;                      // the same rows say more
        std::function<void(const std::string& text)> said; // how far the work is, or why it ended early
    };

    // The browser outlives it.
    archive_lookups(page_host& host, archive_browser& browser, listeners told);

    void setGame(const std::shared_ptr<const game_data>& game);
    bool knows(const std::shared_ptr<const game_data>& game) const { return m_po_known && m_po_known->game == game; }
    void prepare(); // what is wanted of every file; what else was looked for is not any more
    void search(const path_query& query);
    void order(); // the browser's rows that are due, if there are any
    void listUsers(const std::string& path);
    void listNeeds(const std::string& path);
    // What is still found belongs to no list any more.
    void forget();
    void stop()
    {
        m_ordering.stop();
        m_work.stop();
    }
    bool isRunning() const { return m_work.isRunning(); }
    bool isSearch() const { return m_is_search; } // what is listed was searched for

private:
    using file_list = std::vector<const pack_file_node*>;

    // What belongs to one reading of the archives; made by the worker when it is needed first.
    struct known_archives
    {
        std::shared_ptr<const game_data> game;
        std::unique_ptr<path_search> search;
        std::shared_ptr<const hidden_copies> hidden;
        usage_index usage;
        bool has_usage = false;
    };

    void take(std::size_t number, const file_list& files);
    void list(const std::string& heading, const file_list& files, std::vector<std::string> missing);

    page_host& m_host;
    archive_browser& m_browser;
    listeners m_told;
    std::shared_ptr<known_archives> m_po_known;
    std::size_t m_number = 0; // of the newest question
    bool m_is_search = false;
    bool m_was_told = false; // of rows of this search
    std::chrono::steady_clock::time_point m_told_at;
    background_task m_ordering; // beside the questions, of which it knows nothing
    background_task m_work;     // the last member: its work ends first
};

} // namespace korvane
