#pragma once

// A file on disk that stays open and is read at positions, without a cursor: several threads may read one file at a
// time. Movable; closes itself. Other programs may still write, rename or delete the file meanwhile.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace korvane
{

class positioned_file
{
public:
    positioned_file() = default;
    ~positioned_file() { close(); }
    positioned_file(positioned_file&& other) noexcept;
    positioned_file& operator=(positioned_file&& other) noexcept;

    // Opens the file at a UTF-8 path. A failure leaves the object closed.
    [[nodiscard]] bool open(const std::string& path, failure& why);
    void close();

    bool isOpen() const { return m_handle != no_handle; }
    std::uint64_t size() const { return m_size; }
    // In the platform's own unit; only equality means something.
    std::int64_t modificationTime() const { return m_modification_time; }

    // Fills target with the bytes from position on; false when the file has fewer, or reading fails.
    [[nodiscard]] bool readAt(std::uint64_t position, std::span<std::byte> target) const;

private:
    static constexpr std::intptr_t no_handle = -1;

    std::intptr_t m_handle = no_handle;
    std::uint64_t m_size = 0;
    std::int64_t m_modification_time = 0;
};

} // namespace korvane
