#pragma once

// What a file of the archives looks like, whatever it is: a picture, or a text about it. A worker makes it.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_file.h"
#include "Korvane/textures/picture.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace korvane
{

struct file_preview
{
    picture pixels;      // straight alpha; empty: there is none
    std::string text;    // instead of it; lines end in "\r\n"
    std::string caption; // "2048 x 2048, BC3_UNORM, 12 mip maps", "Text, UTF-8", or why there is nothing to show
    bool is_fixed_width = false; // columns of the text stand below each other
    bool is_stopped = false;
};

// Of large files no more is read than is shown.
[[nodiscard]] file_preview previewFile(const game_file& file, const work_port& work, std::uint32_t most_pixels = 512);

// "1f 8b 08": two digits for each byte; and what they are as characters, with a dot for what is none.
[[nodiscard]] std::string hexText(std::span<const std::byte> bytes);
[[nodiscard]] std::string characterText(std::span<const std::byte> bytes);
// The bytes as lines of sixteen with their positions and characters.
[[nodiscard]] std::string hexLines(std::span<const std::byte> bytes);

// A text as UTF-8 with lines that end in "\r\n", and what it was: "UTF-8", "UTF-16", "Latin-1". False: these bytes are
// no text.
[[nodiscard]] bool readText(std::span<const std::byte> bytes, std::string& text, std::string& encoding);

} // namespace korvane
