#pragma once

// Finds the archives of the data folders, puts them in their order and indexes them into one new tree. What was loaded
// before is nobody's business here: it goes on to serve until its owner takes the new tree. One thread, any one.
//
// Order: by file name, byte by byte, descending; archives of equal names keep the order in which they were listed. A
// file that stands in several archives is taken from the one indexed last, so the lowest name wins.
//
// With a cache nothing is indexed as long as the archives are those of which the cache was made; what is loaded, logged
// and reported is the same.

#include "EASY_GUI/services/notice.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/pack_cache.h"

#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

// What is said of an archive's files that were left out: the first three, and how many more. Nothing for none.
[[nodiscard]] std::vector<std::string> describeLeftOut(const archive_listing& archive);

// The archives in a folder, which may be spelled in any case, in an order that is the same on every disk. False, with
// the reason, when it cannot be listed to its end; what was found before stands there. A stop ends the listing.
[[nodiscard]] bool listArchives(const std::string& folder, std::vector<std::string>& archives, failure& why,
                                const std::stop_token& stop = {});

// The archives of several folders in the order in which they are indexed; folders without any are passed over.
[[nodiscard]] std::vector<std::string> archivesInOrder(const std::vector<std::string>& folders,
                                                       const std::stop_token& stop = {});

// What the notice of damaged archives begins with, before a line for each.
inline constexpr std::string_view archive_damage_heading = "An error has occured ";

class pack_reader
{
public:
    // Progress counts archives and names the one that is read. A null cache: the archives are always indexed.
    explicit pack_reader(work_port work = {}, const pack_cache* cache = nullptr)
        : m_work(std::move(work))
        , m_po_cache(cache)
    {
    }

    // Loads the archives of the folders, each ending in a separator. False when there are no folders, one of them has
    // no archive (then nothing is indexed), or the work was stopped. Archives that cannot be read are reported and left
    // out; that is no failure.
    [[nodiscard]] bool loadAllArchives(const std::vector<std::string>& folders);
    // Lays a mod folder over what is loaded, also over nothing (mod_folder.h).
    [[nodiscard]] bool addModFolder(const std::string& folder, failure& why);

    // What was loaded; null when nothing was.
    std::shared_ptr<const path_tree> tree() const { return m_po_tree; }
    // Every archive of the last load in its order, the damaged ones included.
    const std::vector<archive_listing>& listings() const { return m_listings; }
    // What the person is to be told of the last load.
    const std::vector<notice>& notices() const { return m_notices; }

    // Whether the cache could not serve, and is to be written for the archives as they are.
    bool wantsCache(cache_use use) const;
    // Before a mod folder is laid over the archives. Whether it was written, so that it wants to be recorded
    // (pack_cache::recordIn); else the log says why not.
    bool writeCache() const;

    // Adds the archives of one folder to the list; false, with a notice, when there is none.
    [[nodiscard]] bool findValidPakFiles(const std::string& folder);

private:
    void sortArchives();
    bool loadFromCache(indexed_archives& indexed) const;
    void report();

    work_port m_work;
    const pack_cache* m_po_cache;
    std::vector<std::string> m_archives;  // paths on disk
    std::shared_ptr<path_tree> m_po_tree; // becomes constant when it is given away
    std::vector<archive_listing> m_listings;
    std::vector<notice> m_notices;
    bool m_is_from_cache = false;
};

} // namespace korvane
