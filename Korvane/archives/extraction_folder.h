#pragma once

// Where files of the archives come to lie on the disk: below a folder, by internal path or all in that folder, and
// never outside it. Two files never take the same place, as Windows compares names. One run, one thread.

#include "EASY_GUI/services/failure.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace korvane
{

enum class extraction_layout
{
    by_path,  // a second file for the same place is refused
    numbered, // by path; a second file for the same place becomes "name_2.dds", and so on
    flat      // by file name, numbered too
};

class extraction_folder
{
public:
    explicit extraction_folder(std::string folder, extraction_layout layout = extraction_layout::by_path)
        : m_folder(std::move(folder))
        , m_layout(layout)
    {
    }

    // The path on disk for an internal path, which is taken from then on; nothing is created.
    [[nodiscard]] bool locate(std::string_view internal_path, std::string& disk_path, failure& why);
    // The path on disk for an internal path; the folders above it are created. Refused are paths that could leave the
    // folder or that Windows could not store (relativeDiskPath).
    [[nodiscard]] bool place(std::string_view internal_path, std::string& disk_path, failure& why);

private:
    bool claim(std::string& relative);

    std::string m_folder;
    extraction_layout m_layout;
    std::unordered_set<std::string> m_taken; // in lower case
};

} // namespace korvane
