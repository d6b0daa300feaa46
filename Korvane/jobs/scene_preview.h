#pragma once

// A small picture of a model or of a definition's figure, drawn for a preview, and what it shows in words. A worker
// makes it. Who draws is handed in: the window program's pictures come from the graphics device (viewer).

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/textures/picture.h"

#include <cstdint>
#include <memory>
#include <string>

namespace korvane
{

class scene_pictures
{
public:
    virtual ~scene_pictures() = default;
    // One thread at a time; what it needs for drawing is made when it is needed first. False with the reason, or
    // without one when the work was to stop.
    [[nodiscard]] virtual bool draw(const scene_pointer& scene, std::uint32_t width, std::uint32_t height,
                                    const work_port& work, picture& made, failure& why) = 0;
};

struct scene_preview
{
    picture pixels;   // empty: there is none
    std::string text; // "3 models, 25,811 triangles, 0.92 x 1.8 x 0.57", or why there is no picture
};

// What is larger is not drawn: it would take too long.
inline constexpr std::uint64_t most_drawn_bytes = std::uint64_t{256} << 20; // of all models
inline constexpr std::size_t most_drawn_triangles = 2'000'000;

[[nodiscard]] bool isDrawable(const game_file& file); // a model or a definition, by the ending of its name
// The game is the one that the file is of. Textures are taken no larger than the picture. Empty when it was stopped.
[[nodiscard]] scene_preview drawPreview(const game_file& file, const std::shared_ptr<const game_data>& game,
                                        scene_pictures& pictures, std::uint32_t width, std::uint32_t height,
                                        const work_port& work);

// A texture without the mip maps that are larger than that. Arrays, cubes and what is no DDS file stay as they are.
[[nodiscard]] memory_file withoutLargeLevels(memory_file dds, std::uint32_t most_pixels);

} // namespace korvane
