#pragma once

// The key light's shadow: a map of the depth that the light sees first, and the floor that shows it. On the thread that
// draws. The world is that of the view: models lie around its origin, scaled to the same size
// (Korvane/viewer/camera.h), so that one map fits all.

#include "D3D11_RENDER_LIB/d3d_drawable.h"

#include <glm/vec3.hpp>

namespace korvane
{

class shadow_map
{
public:
    // False when the device was lost.
    [[nodiscard]] bool create(lib3d& library);
    // The floor: a square in the model's space, at that height.
    [[nodiscard]] bool createFloor(lib3d& library, const glm::vec3& centre, float half_width, float height);

    // Draws what casts shadows; afterwards the caller's targets are to be bound again, and the map is there for
    // model_pass::lit_with_shadow and for the floor. The direction is the way of the light in the world.
    void draw(lib3d& library, const id3d_drawable_object& figure, frame_constants& frame,
              const glm::vec3& direction) const;
    void drawFloor(lib3d& library, frame_constants& frame) const;
    void release(lib3d& library) const; // unbinds the map: the next frame draws into it

private:
    com_ptr<ID3D11DepthStencilView> m_depth;
    com_ptr<ID3D11ShaderResourceView> m_view;
    com_ptr<ID3D11SamplerState> m_sampler;
    com_ptr<ID3D11Buffer> m_constants;
    com_ptr<ID3D11Buffer> m_floor_vertices;
};

} // namespace korvane
