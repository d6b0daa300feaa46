#pragma once

// Files that are not on the disk, or not yet, as other programs are to get them: by the clipboard or by drag and drop.
// The bytes are asked for when somebody wants them. Lives as long as a program holds what it was given.

#include "EASY_GUI/services/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace korvane
{

class virtual_files
{
public:
    static constexpr std::size_t longest_path = 259; // UTF-16 units

    virtual ~virtual_files() = default;

    virtual std::size_t count() const = 0;
    // Relative to where they are put, '\' between folders and name; UTF-8.
    virtual std::string path(std::size_t number) const = 0;
    virtual std::optional<std::uint64_t> size(std::size_t number) const = 0; // nothing: known when it is read
    virtual byte_source open(std::size_t number) const = 0;
};

} // namespace korvane
