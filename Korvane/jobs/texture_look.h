#pragma once

// A texture that is looked at closely: read once, of which then any mip level of any surface is shown, in any channels.
// A worker opens it and decodes; the texture is a value that may go from thread to thread.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_file.h"
#include "Korvane/jobs/texture_preview.h"
#include "Korvane/textures/picture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// By the ending of the name.
[[nodiscard]] bool isTexturePath(std::string_view path);

class looked_texture
{
public:
    // A DDS file, or a picture of another kind.
    [[nodiscard]] bool open(const game_file& file, failure& why);

    const std::string& text() const { return m_text; } // format and sizes
    std::vector<std::string> levels() const;           // "0: 2048 x 2048"; a picture has one
    std::vector<std::string> surfaces() const;         // "+X", "Layer 2", "Layer 2, -Y"; one that has a name of its own
                                                       // only where there are several
    // Straight alpha. Empty, with the reason: it takes more memory than there is.
    [[nodiscard]] std::shared_ptr<const picture> decode(std::size_t surface, std::size_t level, failure& why) const;

private:
    memory_file m_file;
    dds_image m_image; // of it; without subresources: it is a picture
    std::shared_ptr<const picture> m_po_picture;
    std::string m_text;
};

// "at 12, 7: red 255, green 0, blue 128, alpha 64"; empty outside of the picture.
[[nodiscard]] std::string pixelText(const picture& of, std::int64_t x, std::int64_t y);

} // namespace korvane
