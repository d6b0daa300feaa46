#pragma once

// Finds the archives of the data folders, puts them in their order and indexes them into one new tree, which then
// replaces pack_file::sm_poPathTree as a whole. For the user-interface thread.
//
// Order: by file name, byte by byte, descending; archives of equal names keep the order in which they were listed. A
// file that stands in several archives is taken from the one indexed last, so the lowest name wins.
//
// With a cache nothing is indexed as long as the archives are those of which the cache was made; what is loaded, logged
// and reported is the same.

#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/archives/pack_cache.h"

#include <functional>
#include <string>
#include <vector>

namespace korvane
{

// Where the loading speaks to. Empty functions are silent.
struct load_ports
{
    user_prompt& prompt;
    std::function<void(const std::string&)> log; // a line without its end
    std::function<void(std::size_t done, std::size_t of, const std::string& path)> progress;
    const pack_cache* cache = nullptr; // null: the archives are always indexed
};

// What is said of a file that was left out: archive, reason, path.
[[nodiscard]] std::string describeLeftOut(const archive_listing& archive, const std::string& path);

class pack_reader
{
public:
    explicit pack_reader(load_ports ports) : m_ports(std::move(ports)) {}

    // Drops the present tree, then loads the archives of the folders, each ending in a separator. False when there are
    // no folders, or one of them has no archive (then nothing is indexed). Archives that cannot be read are reported
    // and left out; that is no failure.
    [[nodiscard]] bool loadAllArchives(const std::vector<std::string>& folders);

    // Every archive of the last load in its order, the damaged ones included.
    const std::vector<archive_listing>& listings() const { return m_listings; }

    // Whether the cache was written, so that it wants to be recorded (pack_cache::recordIn).
    bool hasWrittenCache() const { return m_has_written_cache; }

    // Adds the archives of one folder to the list; false, with its message, when there is none.
    [[nodiscard]] bool findValidPakFiles(const std::string& folder);

private:
    void log(const std::string& line) const;
    void sortArchives();
    bool loadFromCache(indexed_archives& indexed) const;
    void indexArchives(indexed_archives& indexed) const;
    void writeCache(const indexed_archives& indexed);
    void report(const std::vector<archive_listing>& archives) const;

    load_ports m_ports;
    std::vector<std::string> m_archives; // paths on disk
    std::vector<archive_listing> m_listings;
    bool m_has_written_cache = false;
};

} // namespace korvane
