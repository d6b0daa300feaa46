#pragma once

// A small cube in the world, the marker of a light. Its shaders are compiled when it is made: where the system has no
// compiler library there is no cube.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "EASY_GUI/services/log_port.h"

#include <glm/vec3.hpp>

namespace korvane
{

class drawable_cube : public id3d_drawable_object
{
public:
    // False when the device was lost. Without a compiler the log gets a line, and nothing is drawn.
    [[nodiscard]] bool create(lib3d& library, const log_port& log);
    void moveTo(const glm::vec3& place) { m_place = place; } // in the world of the view
    void draw(lib3d& library, frame_constants& frame) const override;

private:
    glm::vec3 m_place{0};
    com_ptr<ID3D11VertexShader> m_vs;
    com_ptr<ID3D11PixelShader> m_ps;
    com_ptr<ID3D11InputLayout> m_layout;
    com_ptr<ID3D11Buffer> m_vertices;
};

} // namespace korvane
