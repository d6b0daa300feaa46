#pragma once

// Writes small DDS files byte by byte for tests; shares no code with the reader.

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane::test
{

struct test_dds
{
    std::uint32_t width = 4;
    std::uint32_t height = 4;
    std::uint32_t mips = 1;
    std::uint32_t pixel_flags = 0x41; // RGB with alpha
    std::string four_cc = std::string(4, '\0');
    std::uint32_t bits = 32;
    std::vector<std::uint32_t> masks = {0xff, 0xff00, 0xff0000, 0xff000000};
    std::uint32_t caps2 = 0;
    std::vector<std::uint32_t> extension; // five words of the DX10 header: format, dimension, misc, array size, misc 2
    std::string pixels = std::string(64, '\x80');

    std::string bytes() const
    {
        std::string out = "DDS ";
        const auto word = [&out](std::uint32_t value) {
            for (int shift = 0; shift < 32; shift += 8)
                out += static_cast<char>(static_cast<unsigned char>(value >> shift));
        };
        for (const std::uint32_t value : {124u, 0x1007u, height, width, 0u, 0u, mips})
            word(value);
        out.append(44, '\0');
        word(32);
        word(extension.empty() ? pixel_flags : 4);
        out += extension.empty() ? four_cc : "DX10";
        word(bits);
        for (const std::uint32_t mask : masks)
            word(mask);
        for (const std::uint32_t value : {0x1000u, caps2, 0u, 0u, 0u})
            word(value);
        for (const std::uint32_t value : extension)
            word(value);
        return out + pixels;
    }

    static test_dds coded(const std::string& code, std::size_t pixel_bytes)
    {
        test_dds file;
        file.pixel_flags = 4;
        file.four_cc = code;
        file.pixels = std::string(pixel_bytes, '\x11');
        return file;
    }
    static test_dds dx10(std::uint32_t format, std::size_t pixel_bytes, std::uint32_t misc = 0,
                         std::uint32_t array_size = 1)
    {
        test_dds file;
        file.extension = {format, 3, misc, array_size, 0};
        file.pixels = std::string(pixel_bytes, '\x22');
        return file;
    }
};

} // namespace korvane::test
