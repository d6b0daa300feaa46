#include "Korvane/viewer/model_scene.h"

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
        lines.push_back({{at, bounds.least.y, -far_end}, color});
        lines.push_back({{at, bounds.least.y, far_end}, color});
        lines.push_back({{-far_end, bounds.least.y, at}, color});
        lines.push_back({{far_end, bounds.least.y, at}, color});
    }
    return lines;
}

} // namespace

void model_scene::setModel(ID3D11Device& device, const rigid_model_source& source)
{
    m_variant.release();
    if (!m_model.create(device, source, -1))
        m_model.release();
    m_floor.create(device, floorGrid(bounds()));
}

variant_outcome model_scene::setVariant(ID3D11Device& device, const variant_source& source)
{
    m_model.release();
    const variant_outcome outcome = m_variant.create(device, source);
    m_floor.create(device, floorGrid(bounds()));
    return outcome;
}

void model_scene::release()
{
    m_model.release();
    m_variant.release();
    m_floor.release();
}

model_bounds model_scene::bounds() const
{
    return m_model.bounds().isEmpty() ? m_variant.bounds() : m_model.bounds();
}

void model_scene::draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output,
                       const view_state& view)
{
    view.fill(static_cast<float>(targets.width()) / static_cast<float>(targets.height()), library.vs_constants,
              library.ps_constants);
    targets.begin(library, output, view.background());
    library.beginScene();
    m_model.setWireframe(view.is_wireframe);
    m_variant.setWireframe(view.is_wireframe);
    m_model.draw(library); // one of the two is empty
    m_variant.draw(library);
    if (view.shows_floor)
        m_floor.draw(library);
    targets.finish(library, output,
                   view.shows_normals ? shown_target::normals
                   : view.shows_plain ? shown_target::plain
                                      : shown_target::lit);
}

} // namespace korvane
