#pragma once

// Finds the archives of the data folders, puts them in their order and indexes them into one new tree, which then
// replaces pack_file::sm_poPathTree as a whole. For the user-interface thread.
//
// Order: by file name, byte by byte, descending; archives of equal names keep the order in which they were listed. A
// file that stands in several archives is taken from the one indexed last, so the lowest name wins.

#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/archives/path_tree.h"

#include <functional>
#include <memory>
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
};

class pack_reader
{
public:
    explicit pack_reader(load_ports ports) : m_ports(std::move(ports)) {}

    // Drops the present tree, then loads the archives of the folders, each ending in a separator. False when there are
    // no folders, or one of them has no archive (then nothing is indexed). Archives that cannot be read are reported
    // and left out; that is no failure.
    [[nodiscard]] bool loadAllArchives(const std::vector<std::string>& folders);

    // Adds the archives of one folder to the list; false, with its message, when there is none.
    [[nodiscard]] bool findValidPakFiles(const std::string& folder);

private:
    struct found_archive
    {
        std::string name;
        std::string path;
    };

    void log(const std::string& line) const;
    void sortArchives();
    void indexArchives();
    void reportDamaged(const std::vector<std::string>& lines) const;

    load_ports m_ports;
    std::vector<found_archive> m_archives;
    std::vector<std::string> m_damaged; // path and what is wrong
};

} // namespace korvane
