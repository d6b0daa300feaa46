#pragma once

// A file's bytes at any position, for those who look at parts of one that may be large: on the disk and in archives
// they are read where they lie; what is compressed is unpacked into memory once.

#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/positioned_file.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_file.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace korvane
{

class file_bytes
{
public:
    // The path is UTF-8 or internal, for messages. Opened once; then any number of threads may read.
    [[nodiscard]] bool open(const game_file& file, failure& why);

    std::uint64_t size() const { return m_size; }
    // Fills target; false when the file has become shorter or cannot be read any more.
    [[nodiscard]] bool readAt(std::uint64_t position, std::span<std::byte> target) const;

private:
    game_file m_file; // keeps its archive open
    positioned_file m_disk;
    memory_file m_unpacked;
    std::uint64_t m_size = 0;
};

// Where these bytes stand next, from a position on. Nothing: nowhere, or it was stopped, or what follows cannot be
// read.
[[nodiscard]] std::optional<std::uint64_t> findBytes(const file_bytes& in, std::span<const std::byte> wanted,
                                                     std::uint64_t from, const work_port& work);

} // namespace korvane
