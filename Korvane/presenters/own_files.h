#pragma once

// What of the page of the archives is a person's own, in a mod folder, and may be changed; and what is asked and said
// when files are put there. Without a window.

#include "Korvane/jobs/extract_job.h"
#include "Korvane/jobs/mod_folder_job.h"
#include "Korvane/presenters/archive_browser.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

// Of rows of the browser, folders with all that is below them.
[[nodiscard]] std::vector<const pack_file_node*> filesOf(const archive_browser& browser,
                                                         std::span<const std::size_t> rows);

struct own_choice
{
    std::string mod_folder;          // in which all of them lie
    std::vector<std::string> places; // on the disk
    std::string reason;              // why they cannot be changed, for the person; empty: they can
};
// A folder counts when no archive has anything in it.
[[nodiscard]] own_choice ownRows(const archive_browser& browser, std::span<const std::size_t> rows);

[[nodiscard]] std::string putQuestion(const put_plan& plan, const std::string& mod_folder, std::string_view folder);
// What was left out and why, in lines that end in "\r\n"; empty: nothing.
[[nodiscard]] std::string leftOutReport(const std::vector<failure>& refused, const std::vector<failure>& failed);
// The row's path below the folder that is shown, in which the file stands.
[[nodiscard]] std::string rowPathOf(std::string_view folder, std::string_view internal_path);

} // namespace korvane
