#pragma once

// Writes small .pack archives field by field for tests, from docs/formats/pack.md; shares no code with the reader.

#include "tests/support/model_builder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvane::test
{

struct test_entry
{
    std::string path;
    std::string data;
    unsigned compression = 0; // PFH5 only
};

struct test_pack
{
    std::string magic = "PFH4";
    std::uint32_t flags = 0;
    std::vector<std::string> names;
    std::vector<test_entry> entries;

    std::size_t headerSize() const { return magic == "PFH0" ? 24 : magic == "PFH2" || magic == "PFH3" ? 32 : 28; }

    std::string bytes() const
    {
        bytes_out list, index, out;
        for (const std::string& name : names)
            list.text(name + '\0');
        for (const test_entry& entry : entries)
        {
            index.u32(static_cast<std::uint32_t>(entry.data.size()));
            if (magic == "PFH5")
                index.u8(entry.compression);
            if ((flags & 0x40) != 0)
                index.u32(0x5a5a5a5a);
            index.text(entry.path + '\0');
        }
        out.text(magic);
        out.u32(flags);
        out.u32(static_cast<std::uint32_t>(names.size()));
        out.u32(static_cast<std::uint32_t>(list.size()));
        out.u32(static_cast<std::uint32_t>(entries.size()));
        out.u32(static_cast<std::uint32_t>(index.size()));
        out.text(std::string(headerSize() - 24, '\x77'));
        out.text(list.str() + index.str());
        for (const test_entry& entry : entries)
            out.text(entry.data);
        return out.str();
    }
};

} // namespace korvane::test
