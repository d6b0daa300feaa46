#pragma once

// The hash of the shader sources that is kept beside the compiled shaders, so that a forgotten compilation shows.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace korvane
{

// FNV-1a, 64 bits, over name and content of every .hlsl and .hlsli file of the folder in the order of their names.
// Carriage returns do not count, so a checkout with other line ends has the same hash.
inline std::string shaderSourceHash(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".hlsl" || entry.path().extension() == ".hlsli")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());

    std::uint64_t hash = 0xcbf29ce484222325u;
    const auto add = [&hash](const std::string& text) {
        for (const char character : text)
            if (character != '\r')
                hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3u;
        hash *= 0x100000001b3u; // separates the texts, as a zero byte would
    };
    for (const std::filesystem::path& file : files)
    {
        std::ifstream stream(file, std::ios::binary);
        add(file.filename().string());
        add(std::string(std::istreambuf_iterator<char>(stream), {}));
    }
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += "0123456789abcdef"[hash >> shift & 15];
    return text;
}

} // namespace korvane
