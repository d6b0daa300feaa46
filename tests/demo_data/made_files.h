#pragma once

// The demo data, made once per test program and kept in memory.

#include "tools/demo_data/demo_data.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace korvane::demo
{

// At most as many files as limit says.
inline std::vector<file> makeSome(const options& wanted, std::size_t limit)
{
    std::vector<file> files;
    failure why;
    const auto keep = [&](file made) {
        files.push_back(std::move(made));
        return files.size() < limit;
    };
    if (!makeFiles(wanted, keep, why) && files.size() < limit)
        files.clear();
    return files;
}

inline const std::vector<file>& allFiles()
{
    static const std::vector<file> files = makeSome({}, 100000);
    return files;
}

inline const file* fileNamed(std::string_view ending)
{
    for (const file& each : allFiles())
        if (each.path.ends_with(ending))
            return &each;
    return nullptr;
}

// A value at a byte position; zero past the end, which no test takes for right.
template <class type>
type valueAt(std::span<const std::byte> bytes, std::size_t position)
{
    type value{};
    if (position + sizeof value <= bytes.size())
        std::memcpy(&value, bytes.data() + position, sizeof value);
    return value;
}

} // namespace korvane::demo
