#include "Korvane/viewer/model_scene.h"

#include "Korvane/viewer/view_overlay.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace korvane
{

namespace
{

constexpr std::chrono::milliseconds textures_of_frame{8}; // what they may take of it
constexpr std::size_t most_shaded_groups = 255;           // the values of a stencil but for 0

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

// The twelve edges of the box around the model.
std::vector<gpu_line_vertex> boundsLines(const model_bounds& bounds)
{
    constexpr gpu_float4 color{0.75f, 0.60f, 0.15f, 1};
    std::vector<gpu_line_vertex> lines;
    if (bounds.isEmpty())
        return lines;
    const auto corner = [&bounds](int number) {
        return gpu_float3{(number & 1) != 0 ? bounds.max.x : bounds.min.x,
                          (number & 2) != 0 ? bounds.max.y : bounds.min.y,
                          (number & 4) != 0 ? bounds.max.z : bounds.min.z};
    };
    for (int from = 0; from < 8; ++from)
        for (int axis = 1; axis < 8; axis *= 2)
            if ((from & axis) == 0)
            {
                lines.push_back({corner(from), color});
                lines.push_back({corner(from | axis), color});
            }
    return lines;
}

shown_target targetOf(view_channel channel)
{
    return channel == view_channel::lit       ? shown_target::lit
           : channel == view_channel::normals ? shown_target::normals
                                              : shown_target::plain;
}

bool isOfSurface(view_channel channel) // drawn by the shader of light
{
    return channel == view_channel::lit || channel == view_channel::normals || channel == view_channel::base;
}

// Through the pixels of the picture, in the world: ViewI holds the axes of the view as columns.
void setRays(const mvp_buffer& constants, const scene_targets& targets, shading_buffer& rays)
{
    const float half_width = 1 / constants.Projection[0][0], half_height = 1 / constants.Projection[1][1];
    for (std::size_t i = 0; i < 3; ++i)
    {
        const float right = constants.ViewI[i][0], up = constants.ViewI[i][1], ahead = constants.ViewI[i][2];
        rays.ray[i] = ahead - right * half_width + up * half_height;
        rays.ray_x[i] = 2 * right * half_width / static_cast<float>(targets.width());
        rays.ray_y[i] = -2 * up * half_height / static_cast<float>(targets.height());
    }
}

int smoothnessChannel(const frame_constants& frame) // of the gloss map, 0..3
{
    return std::clamp(frame.ps.debug_flags[0], 1, 4) - 1;
}

// What shading_usual_ps is made for.
bool hasUsualLights(const light_buffer& constants)
{
    const auto isDirectional = [](const gpu_light& light) { return light.lightDirection != gpu_float3{}; };
    return isDirectional(constants.light[0]) && constants.light[0].point_range <= 0 &&
           !isDirectional(constants.light[1]);
}

bool castsShadows(const lib3d& library, const view_state& view)
{
    return view.shownChannel() == view_channel::lit && !view.is_wireframe &&
           (view.shadows == shadow_choice::on || (view.shadows == shadow_choice::automatic && !library.isSoftware()));
}

void fillConstants(const view_state& view, const scene_targets& targets, frame_constants& frame)
{
    const picture_part& part = targets.part();
    const auto width = static_cast<float>(part.width);
    const auto height = static_cast<float>(part.height);
    view.fill(targets.aspect(), frame.vs, frame.ps);
    // What the distance, by which all is divided, adds to both directions.
    frame.vs.Projection[0][2] += 2 * part.shift_x / width;
    frame.vs.Projection[1][2] -= 2 * part.shift_y / height;
}

} // namespace

bool model_scene::create(lib3d& library, scene_pointer scene)
{
    static const scene_pointer nothing = std::make_shared<const loaded_scene>();
    const scene_pointer& shown = scene ? scene : nothing;
    m_po_figure.reset(); // the former textures stay until the new scene has taken over those that it shares
    m_po_floor.reset();
    m_po_bounds.reset();
    m_po_pose.reset();
    auto textures = std::make_unique<gpu_textures>(m_log, m_reading, m_po_textures.get());
    auto figure = std::make_unique<render_variant>();
    if (!figure->create(library, *shown, *textures) || !createFloor(library, shown->bounds))
        return false;
    textures->forgetFormer();
    if (!textures->load(library))
        return false;
    m_po_textures = std::move(textures);
    m_po_figure = std::move(figure);
    m_po_pose = std::make_unique<posed_scene>(shown);
    m_poses.resize(shown->parts.size());
    m_group_count = 0;
    for (const scene_part& part : shown->parts)
        m_group_count += part.groups().size();
    m_lines.resize(line_vertex_capacity);
    if (!m_po_frame)
        m_po_frame = std::make_unique<frame_constants>();
    return true;
}

bool model_scene::createFloor(lib3d& library, const model_bounds& bounds)
{
    auto floor = std::make_unique<d3d_drawable_geometry>();
    auto box = std::make_unique<d3d_drawable_geometry>();
    if (!floor->create(library, floorGrid(bounds)) || !box->create(library, boundsLines(bounds)))
        return false;
    m_po_floor = std::move(floor);
    m_po_bounds = std::move(box);
    m_po_shadow.reset(); // its floor has the height of this model's feet
    return true;
}

bool model_scene::createOverlay(lib3d& library, unsigned dpi)
{
    auto layer = std::make_unique<overlay_layer>();
    if (!layer->create(library, dpi))
        return false;
    m_po_overlay_text.reset();
    m_po_overlay = std::move(layer);
    m_overlay_scale = static_cast<float>(dpi) / 96;
    m_po_overlay_text = std::make_unique<overlay_text>(m_po_overlay->font());
    return true;
}

void model_scene::release()
{
    m_po_figure.reset();
    m_po_floor.reset();
    m_po_bounds.reset();
    m_po_shadow.reset();
    m_po_marker.reset();
    m_po_textures.reset();
    m_po_pose.reset();
    m_po_overlay_text.reset();
    m_po_overlay.reset();
}

bool model_scene::loadTextures(lib3d& library)
{
    return !m_po_textures || m_po_textures->goOn(library, textures_of_frame);
}

bool model_scene::finishTextures(lib3d& library)
{
    return !m_po_textures || m_po_textures->finish(library);
}

void model_scene::takePoses(const view_state& view)
{
    const std::vector<scene_part>& parts = m_po_pose->scene().parts;
    for (std::size_t i = 0; i < parts.size(); ++i)
        m_poses[i] = {m_po_pose->inverse(parts[i].rig), m_po_pose->transforms(parts[i].rig),
                      view.heat_rig < 0 || view.heat_rig == parts[i].rig ? static_cast<int>(view.heat_bone) : -1};
}

void model_scene::drawFigure(lib3d& library, const scene_targets& targets, const view_state& view,
                             const shown_frame& shown, frame_constants& frame)
{
    const view_channel channel = view.shownChannel();
    frame.pass = view.is_wireframe      ? model_pass::wireframe
                 : isOfSurface(channel) ? model_pass::lit
                                        : model_pass::channel;
    if (castsShadows(library, view))
    {
        const model_bounds& bounds = m_po_pose->scene().bounds;
        const glm::vec3 extent = bounds.extent();
        if (!m_po_shadow)
        {
            auto made = std::make_unique<shadow_map>();
            if (made->create(library) &&
                made->createFloor(library, bounds.centre(), std::max({extent.x, extent.y, extent.z}) * 1.2f,
                                  bounds.isEmpty() ? 0 : bounds.min.y))
                m_po_shadow = std::move(made);
        }
        if (m_po_shadow)
        {
            const gpu_float3& way = frame.ps.light[0].lightDirection;
            m_po_shadow->draw(library, *m_po_figure, frame, {way[0], way[1], way[2]});
            targets.bind(library, shown);
            frame.pass = model_pass::lit_with_shadow;
        }
    }
    if (frame.pass == model_pass::lit && hasSurfaces(targets))
        shadeSurfaces(library, targets, shown, frame);
    else
        m_po_figure->draw(library, frame);
    if (frame.pass == model_pass::lit_with_shadow)
    {
        if (view.shows_floor || view.is_background_clear)
            m_po_shadow->drawFloor(library, frame);
        m_po_shadow->release(library);
    }
    if (view.shows_wire_over && !view.is_wireframe)
    {
        frame.pass = model_pass::wire_over;
        frame.ps.debug_flags[3] |= draw_wire_over;
        m_po_figure->draw(library, frame);
    }
}

// The same picture as of model_pass::lit; see scene_targets.
void model_scene::shadeSurfaces(lib3d& library, const scene_targets& targets, const shown_frame& shown,
                                frame_constants& frame)
{
    setRays(frame.vs, targets, library.shading());
    targets.bindSurfaces(library);
    frame.pass = model_pass::surfaces;
    m_po_figure->draw(library, frame);
    targets.bindShading(library, shown);
    frame.pass = model_pass::shading;
    frame.group = 0;
    m_po_figure->draw(library, frame);
    targets.endShading(library);
    frame.pass = model_pass::lit;
}

void model_scene::drawLightMarker(lib3d& library, const view_state& view, frame_constants& frame)
{
    if (!m_po_marker)
    {
        m_po_marker = std::make_unique<drawable_cube>();
        if (!m_po_marker->create(library, m_log)) // lost: found when the frame is presented
            return;
    }
    m_po_marker->moveTo(view.lights[1].point.position);
    m_po_marker->draw(library, frame);
}

void model_scene::drawLines(lib3d& library, const view_state& view, frame_constants& frame)
{
    if (view.shows_floor)
        m_po_floor->draw(library, frame);
    if (view.shows_bounds)
        m_po_bounds->draw(library, frame);
    if (view.shows_light)
        drawLightMarker(library, view, frame);
    const auto over = [&](std::size_t count) {
        frame.vs.color = {1, 1, 1, 1};
        library.uploadConstants(frame.vs, frame.ps);
        library.useLineShaders(line_depth::ignored);
        library.drawLines(std::span(m_lines).first(count));
    };
    if (view.shows_skeleton)
        over(m_po_pose->fillSkeleton(m_lines));
    if (view.shows_attachments)
        over(m_po_pose->fillPoints(m_lines));
}

void model_scene::drawOverlay(lib3d& library, const scene_targets& targets, const view_state& view)
{
    if (!m_po_overlay)
        return;
    const picture_part seen = targets.shownPart();
    writeOverlay(
        {view, m_po_pose.get(), static_cast<float>(seen.width), static_cast<float>(seen.height), m_overlay_scale},
        *m_po_overlay_text);
    targets.usePicturePixels(library);
    m_po_overlay->draw(library, *m_po_overlay_text);
}

// What the final pass has to look at.
screen_area model_scene::drawnArea(const lib3d& library, const scene_targets& targets, const view_state& view) const
{
    constexpr std::int32_t outline_and_edges = 4; // pixels beside the figure
    const bool has_lines = view.shows_floor || view.shows_bounds || view.shows_light || view.shows_skeleton ||
                           view.shows_attachments || view.is_background_clear;
    if (!library.isSoftware() || has_lines || !m_po_pose || !targets.isWhole())
        return targets.whole();
    const screen_area whole = targets.whole();
    return m_po_frame->reached.grown(outline_and_edges, whole.right, whole.bottom);
}

bool model_scene::hasSurfaces(const scene_targets& targets) const
{
    return targets.hasSurfaces() && m_group_count <= most_shaded_groups;
}

// Of the constants of the frame: nothing but what has shaders for it.
bool model_scene::isEncoded(const lib3d& library, const scene_targets& targets, const view_state& view) const
{
    return m_po_pose && hasSurfaces(targets) && view.shownChannel() == view_channel::lit && !view.is_wireframe &&
           !castsShadows(library, view) && !view.is_background_clear && !view.shows_light &&
           hasUsualLights(m_po_frame->ps);
}

void model_scene::draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output,
                       const view_state& view)
{
    const view_channel channel = view.shownChannel();
    if (m_po_pose)
        fillConstants(view, targets, *m_po_frame);
    const shown_frame shown{targetOf(channel), view.background(), view.is_background_clear,
                            view.selected.has_value() && m_po_pose, isEncoded(library, targets, view)};
    // Lost: found when the frame is presented.
    if (shown.is_encoded && !m_po_textures->packer().update(library, smoothnessChannel(*m_po_frame)))
        return;
    targets.begin(library, output, shown);
    if (m_po_pose)
    {
        frame_constants& frame = *m_po_frame;
        frame.ps.debug_flags[3] = (view.uses_occlusion ? draw_occluded : 0) | static_cast<std::int32_t>(channel)
                                                                                  << draw_channel_shift;
        frame.selected = view.selected;
        frame.hidden = view.hidden.get();
        takePoses(view);
        frame.poses = m_poses;
        frame.width = static_cast<std::int32_t>(targets.width());
        frame.height = static_cast<std::int32_t>(targets.height());
        frame.group = 0;
        frame.reached = {};
        drawFigure(library, targets, view, shown, frame);
        drawLines(library, view, frame);
    }
    targets.finish(library, output, shown, drawnArea(library, targets, view));
    drawOverlay(library, targets, view);
}

} // namespace korvane
