#pragma once

// Where a file of a scene lay when it was read, and which one that was: compared with what is there now to notice that
// somebody has changed it. A value.

#include "EASY_GUI/services/file_stamp.h"
#include "Korvane/game/game_file.h"

#include <string>

namespace korvane
{

struct file_place
{
    bool is_entry = false; // in the archives
    std::string disk_path; // on the disk
    file_stamp stamp;      // of the file on the disk

    static file_place of(const game_file& found)
    {
        return {found.entry() != nullptr, found.diskPath(),
                found.diskPath().empty() ? file_stamp() : stampOf(found.diskPath())};
    }
    bool isNowhere() const { return !is_entry && !stamp.is_there; }
    // Asks no more than for the stamp: another file, which comes before this one now, is not found by that.
    bool isUnchanged() const { return !stamp.is_there || stampOf(disk_path) == stamp; }

    friend bool operator==(const file_place&, const file_place&) = default;
};

} // namespace korvane
