#pragma once

// Writes a synthetic game data folder: models of every version and vertex format with their textures, definitions that
// put a figure together from several models, and three archives that override each other (demo_archives.h). Everything
// is generated; the same options give the same bytes on every system. Files lie below the folder by their internal
// path, so a viewer finds a model's textures in the folders around the model; the archives lie in the folder itself.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace korvane::demo
{

struct options
{
    std::uint32_t seed = 1;
    double scale = 1; // triangles, about; 1/16 to max_scale
};

inline constexpr double min_scale = 1.0 / 16, max_scale = 64;

struct file
{
    std::string path;  // internal path, with '/'
    std::string about; // one line for people
    std::vector<std::byte> bytes;
};

// Receives one file after the other; false stops.
using file_sink = std::function<bool(file made)>;

// Makes everything, in a fixed order. False when the options are out of range (refused) or the sink has stopped; then
// why is the sink's business.
[[nodiscard]] bool makeFiles(const options& wanted, const file_sink& sink, failure& why);

// The same, written below a folder, which is created; files that are there are replaced. written is called with each
// file after it was written; its bytes are gone by then, their number is given.
[[nodiscard]] bool writeFolder(const std::string& folder, const options& wanted,
                               const std::function<void(const file& made, std::size_t size_bytes)>& written,
                               failure& why);

} // namespace korvane::demo
