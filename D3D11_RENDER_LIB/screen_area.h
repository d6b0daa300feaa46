#pragma once

// Which part of the picture a group can reach, however its bones stand: so that software devices leave the rest of the
// picture alone. Portable, no allocation once it is made.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/scene/scene_geometry.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

// Whole pixels; right and bottom are not part of it.
struct screen_area
{
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;

    bool isEmpty() const { return left >= right || top >= bottom; }
    std::uint64_t pixels() const
    {
        return isEmpty() ? 0 : static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
    }
    void add(const screen_area& other);
    // Wider by so many pixels on each side, but not beyond the picture.
    screen_area grown(std::int32_t by, std::int32_t width, std::int32_t height) const;
};

// The boxes around the vertices that each bone moves: what weights mix of them lies between them.
class mesh_reach
{
public:
    void add(std::span<const gpu_vertex> vertices);

    // With the constants of a draw; everything for a group whose weights do not mix, or that comes behind the eye.
    screen_area onScreen(const mvp_buffer& constants, std::int32_t width, std::int32_t height) const;

private:
    struct bone_box
    {
        std::uint32_t bone;
        model_bounds box;
    };

    model_bounds& boxOf(std::uint32_t bone);

    model_bounds m_box; // of all vertices, as they are stored
    std::vector<bone_box> m_bones;
    // Of each bone in m_bones, plus one; 0: it is not there. The last for all that a palette does not hold: those stay.
    std::vector<std::uint32_t> m_places;
    bool m_is_mixed = true; // the weights of every vertex are positive and sum to one
};

} // namespace korvane
