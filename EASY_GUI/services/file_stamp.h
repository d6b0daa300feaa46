#pragma once

// Size and modification time of a file, for noticing that somebody has changed it. The file is not opened, so that
// looking never gets in the way of a program that is about to replace it. Any thread.

#include <cstdint>
#include <string>

namespace korvane
{

struct file_stamp
{
    bool is_there = false; // false: there is no such file, or it is a folder or cannot be looked at
    std::uint64_t size = 0;
    std::int64_t modification_time = 0; // in the platform's own unit; only equality means something

    friend bool operator==(const file_stamp&, const file_stamp&) = default;
};

[[nodiscard]] file_stamp stampOf(const std::string& path);

} // namespace korvane
