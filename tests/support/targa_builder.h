#pragma once

// Writes small Targa files byte by byte for tests, from docs/formats/targa.md; shares no code with the reader.

#include <string>

namespace korvane::test
{

struct test_targa
{
    unsigned width = 2, height = 2;
    unsigned image_type = 2;
    unsigned depth = 32;
    unsigned descriptor = 8;
    std::string id = {};
    unsigned map_type = 0, map_first = 0, map_length = 0, map_depth = 0;
    std::string map = {};
    std::string pixels = {};

    std::string bytes() const
    {
        std::string out;
        const auto byte = [&out](unsigned value) { out += static_cast<char>(static_cast<unsigned char>(value)); };
        const auto word = [&byte](unsigned value) {
            byte(value & 255);
            byte(value >> 8);
        };
        byte(static_cast<unsigned>(id.size()));
        byte(map_type);
        byte(image_type);
        word(map_first);
        word(map_length);
        byte(map_depth);
        word(0); // origin
        word(0);
        word(width);
        word(height);
        byte(depth);
        byte(descriptor);
        return out + id + map + pixels;
    }
};

} // namespace korvane::test
