#include "Korvane/viewer/model_scene.h"

#include "D3D11_RENDER_LIB/render_variant.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

// A square grid of about four times the model's extent in steps of a power of ten, at the height of its feet.
std::vector<gpu_line_vertex> floorGrid(const model_bounds& bounds)
{
    if (bounds.isEmpty())
        return {};
    const glm::vec3 extent = bounds.extent();
    const float largest = std::max({extent.x, extent.y, extent.z, 0.01f});
    const float step = std::pow(10.0f, std::floor(std::log10(largest * 0.3f)));
    const int reach = static_cast<int>(std::ceil(largest * 1.2f / step));
    const float far_end = static_cast<float>(reach) * step;
    std::vector<gpu_line_vertex> lines;
    for (int i = -reach; i <= reach; ++i)
    {
        const float at = static_cast<float>(i) * step;
        const gpu_float4 color = i == 0 ? gpu_float4{0.22f, 0.24f, 0.30f, 1} : gpu_float4{0.085f, 0.09f, 0.105f, 1};
        lines.push_back({{at, bounds.min.y, -far_end}, color});
        lines.push_back({{at, bounds.min.y, far_end}, color});
        lines.push_back({{-far_end, bounds.min.y, at}, color});
        lines.push_back({{far_end, bounds.min.y, at}, color});
    }
    return lines;
}

} // namespace

bool model_scene::create(lib3d& library, const loaded_scene* scene)
{
    static const loaded_scene nothing;
    const loaded_scene& shown = scene != nullptr ? *scene : nothing;
    m_po_figure.reset(); // the former textures stay until the new scene has taken over those that it shares
    m_po_floor.reset();
    auto textures = std::make_unique<gpu_textures>(m_log, m_po_textures.get());
    auto figure = std::make_unique<render_variant>();
    auto floor = std::make_unique<d3d_drawable_geometry>();
    if (!figure->create(library, shown, *textures) || !floor->create(library, floorGrid(shown.bounds)))
        return false;
    textures->forgetFormer();
    m_po_textures = std::move(textures);
    m_po_figure = std::move(figure);
    m_po_floor = std::move(floor);
    return true;
}

void model_scene::release()
{
    m_po_figure.reset();
    m_po_floor.reset();
    m_po_textures.reset();
}

void model_scene::draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output,
                       const view_state& view) const
{
    frame_constants frame;
    view.fill(static_cast<float>(targets.width()) / static_cast<float>(targets.height()), frame.vs, frame.ps);
    frame.is_wireframe = view.is_wireframe;
    targets.begin(library, output, view.background());
    library.beginScene();
    if (m_po_figure)
        m_po_figure->draw(library, frame);
    if (m_po_floor && view.shows_floor)
        m_po_floor->draw(library, frame);
    targets.finish(library, output,
                   view.shows_normals ? shown_target::normals
                   : view.shows_plain ? shown_target::plain
                                      : shown_target::lit);
}

} // namespace korvane
