#pragma once

// PNG files in memory, through LodePNG. Colour profiles, texts and what else stands beside the pixels are ignored.

#include "EASY_GUI/services/failure.h"
#include "Korvane/textures/picture.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

namespace korvane
{

inline constexpr std::string_view png_signature = "\x89PNG\r\n\x1a\n";

// On failure target stays as it is, and the reason names the chunk that is damaged, where that can be seen.
[[nodiscard]] bool readPng(std::span<const std::byte> file, picture& target, failure& why);

// More bytes than a file of its size in pixels has, even with a lot beside the pixels, by its start (33 bytes are
// enough).
[[nodiscard]] bool pngFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why);

struct png_freer
{
    void operator()(unsigned char* memory) const { std::free(memory); }
};
using png_memory = std::unique_ptr<unsigned char, png_freer>; // what LodePNG allocates

class png_bytes // of a file; owned
{
public:
    std::span<const std::byte> bytes() const { return std::as_bytes(std::span(m_memory.get(), m_size)); }

private:
    friend bool writePng(const picture& source, png_bytes& file, failure& why);

    png_memory m_memory;
    std::size_t m_size = 0;
};

// True colour of 8 bits always, with alpha where a pixel is not opaque.
[[nodiscard]] bool writePng(const picture& source, png_bytes& file, failure& why);

} // namespace korvane
