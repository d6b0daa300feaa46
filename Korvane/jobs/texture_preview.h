#pragma once

// A small picture of a texture, out of the game or from the disk, and what the file is in words. A worker makes it; its
// channels are then switched without reading the file again.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"
#include "Korvane/textures/picture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace korvane
{

struct texture_preview_request
{
    std::shared_ptr<const game_data> game; // never null
    std::string path;                      // internal; found around the model, too
    std::string model_path;                // on the disk or with "pack:"
    std::uint32_t most_pixels = 512;       // wide and high
};

struct texture_preview
{
    std::string path;
    picture pixels;   // straight alpha; empty: there is none to show
    std::string text; // textureText(), or why there is no picture
    bool is_stopped = false;
};
// "2048 x 2048, BC3_UNORM, 12 mip maps".
[[nodiscard]] std::string textureText(const dds_image& image);
// Of a DDS file the mip map that is wanted is decoded, no more. Of an array or a cube the first surface.
[[nodiscard]] texture_preview makeTexturePreview(const texture_preview_request& request, const work_port& work);
// Of a file that was found already.
[[nodiscard]] texture_preview makeTexturePreview(const game_file& texture, std::uint32_t most_pixels,
                                                 const work_port& work);

enum class preview_channels
{
    all, // with alpha
    red,
    green,
    blue,
    alpha,
    colour // as if all were opaque
};
inline constexpr std::pair<std::string_view, preview_channels> channel_choices[] = {
    {"All channels", preview_channels::all}, {"Red", preview_channels::red},
    {"Green", preview_channels::green},      {"Blue", preview_channels::blue},
    {"Alpha", preview_channels::alpha},      {"Colour without alpha", preview_channels::colour},
};

// Of all channels the picture itself, of the others an opaque one.
[[nodiscard]] picture showChannels(const picture& source, preview_channels channels);

} // namespace korvane
