#include "D3D11_RENDER_LIB/render_variant.h"

#include "D3D11_RENDER_LIB/rigid_model.h"

namespace korvane
{

bool render_variant::create(lib3d& library, const loaded_scene& scene, gpu_textures& views)
{
    for (const scene_part& part : scene.parts)
    {
        auto model = std::make_unique<rigid_model>();
        if (!model->create(library, part, views))
            return false;
        m_parts.push_back(std::move(model));
    }
    return true;
}

void render_variant::draw(lib3d& library, frame_constants& frame) const
{
    for (std::size_t i = 0; i < m_parts.size(); ++i)
    {
        frame.part = static_cast<std::uint32_t>(i);
        m_parts[i]->draw(library, frame);
    }
}

} // namespace korvane
