#pragma once

// A person's work on a mod folder (archives/mod_folder.h): files are put into it, and get another name. What the
// archives hold is never touched. Each file is written whole or not at all; a run that is stopped keeps what it has
// done. Deleting is the front end's, which has the system's bin.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/jobs/output_paths.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// Where a file or folder of that internal path lies in the mod folder, as the disk spells it; empty when it does not.
[[nodiscard]] std::string placeInModFolder(const std::string& mod_folder, std::string_view internal_path);

struct put_file
{
    std::string source;        // on the disk
    std::string internal_path; // that it gets; as the person spells it
    std::string target = {};   // on the disk
};

struct put_plan
{
    std::vector<put_file> files;
    std::vector<std::string> replaced; // targets where a file is already, in the order of files
    std::vector<failure> refused;      // what cannot go into the mod folder, each with its path
    bool is_stopped = false;
};

// What files and folders of the disk, folders with all that is below them, would become below a folder of the archives
// (empty: at the top). Refused are names that no archive or disk holds, two files of one place, links, and more than an
// archive can hold. Nothing is written. A worker's.
[[nodiscard]] put_plan planPut(const std::string& mod_folder, std::span<const std::string> dropped,
                               std::string_view folder, const work_port& work);

struct put_result
{
    std::size_t written = 0; // with those that are there already
    std::vector<failure> failures;
};
[[nodiscard]] put_result putFiles(const put_plan& plan, const work_port& work);

// Gives a file or folder of the mod folder another name, in the folder where it is. False, with the reason, when the
// name is no name or taken, and when the disk refuses. renamed is the internal path that it has then.
[[nodiscard]] bool renameInModFolder(const std::string& mod_folder, std::string_view internal_path,
                                     const std::string& name, std::string& renamed, failure& why);

} // namespace korvane
