#pragma once

// A file's bytes, read wholly into memory and owned. Movable, not copyable: a model's image may be hundreds of MiB.
// The bytes are not cleared before they are read, and nothing is allocated before the file's size is known.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/large_memory.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

class memory_file
{
public:
    memory_file() = default;

    // An uninitialised buffer of that many bytes.
    explicit memory_file(std::size_t size_bytes);
    // A copy of the bytes.
    explicit memory_file(std::span<const std::byte> bytes);
    explicit memory_file(std::string_view bytes);

    // Reads the file at a UTF-8 path. On failure the present content stays.
    [[nodiscard]] bool read(const std::string& path, failure& why);
    // Reads not more than its first bytes, to look at before the rest is read, and says how many it has.
    [[nodiscard]] bool readStart(const std::string& path, std::size_t most_bytes, std::uint64_t& file_bytes,
                                 failure& why);

    std::span<const std::byte> bytes() const { return {m_bytes.get(), m_size}; }
    std::span<std::byte> mutableBytes() { return {m_bytes.get(), m_size}; }
    std::string_view text() const { return {reinterpret_cast<const char*>(m_bytes.get()), m_size}; }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

private:
    large_memory m_bytes;
    std::size_t m_size = 0;
};

} // namespace korvane
