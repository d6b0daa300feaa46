#pragma once

// Where a job writes: a file, or files in a folder.

#include "EASY_GUI/services/byte_source.h"
#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// True when a path means a folder: there is one, or it ends in a separator.
[[nodiscard]] bool isFolder(const std::string& path);
[[nodiscard]] bool createFolder(const std::string& path, failure& why); // with those above it

// What createFolder() and then writing into the folder would run into; nothing is created.
[[nodiscard]] bool canWriteBelow(const std::string& folder, failure& why);
// True for a name that ends as files do that this program or others know: hardly meant as a folder's.
[[nodiscard]] bool isNamedLikeFile(const std::string& path);

// What became of a file below an output folder, where painted work may lie under the name that a picture had.
enum class output_outcome
{
    written,
    unchanged, // the very bytes are there already
    kept       // other bytes are there: the file is left as it is
};
// Writes the file as a whole, unless it stands there with other bytes and may not be written over. One with the same
// bytes is not touched. The source is made anew for each time that the bytes are read.
[[nodiscard]] bool writeOutput(const std::string& path, const std::function<byte_source()>& bytes, bool overwrites,
                               output_outcome& outcome, failure& why);
[[nodiscard]] bool writeOutput(const std::string& path, std::span<const std::byte> bytes, bool overwrites,
                               output_outcome& outcome, failure& why);
// What is to be said of a file that was kept.
[[nodiscard]] failure keptFailure(const std::string& path);
// "; 2 files that differ were left as they are (--overwrite writes over them)", for the end; empty for none.
[[nodiscard]] std::string keptText(std::size_t count);

// The files that something is made of, for those who write many: each is looked at once.
class input_files
{
public:
    explicit input_files(const std::vector<std::string>& paths); // those that are no files of the disk are left out
    // False, with the reason, when the output would replace one of them.
    [[nodiscard]] bool isFreeToWrite(const std::string& output, failure& why) const;

private:
    using look = std::pair<std::uintmax_t, std::filesystem::file_time_type>; // size and time: of one file the same
    std::multimap<look, std::filesystem::path> m_files;
};

// The same for one output.
[[nodiscard]] bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why);

} // namespace korvane
