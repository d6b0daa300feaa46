#pragma once

// Everything about the view that keys and mouse change: camera, lights and display flags. A plain value: the window
// thread owns one, changes it, and hands whole copies to the render thread. Copying allocates nothing. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/scene/shown_group.h"
#include "Korvane/viewer/camera.h"

#include <glm/vec2.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace korvane
{

struct point_light
{
    bool is_active = false;
    glm::vec3 position{0};
    glm::vec3 attenuation{0, 0.2f, 0}; // constant, linear, quadratic
    float range = 100;
    std::array<float, 4> color{1, 1, 1, 1};
};

struct view_light
{
    gpu_light base; // the point fields are filled from point
    point_light point;
};

// What of the surface is shown as its colour.
enum class view_channel : std::uint32_t
{
    lit,      // as the games show it
    base,     // the colour without light
    normals,  // in the world, value for value: 128 is 0
    specular, // the colour that is reflected
    gloss,    // in the channel that the keys 1 to 4 choose
    mask,
    alpha,
    uv,     // a checker of the texture coordinates
    weights // of one bone, from blue to red
};
inline constexpr std::size_t view_channel_count = 9;

enum class shadow_choice : std::uint32_t
{
    automatic, // where the device is a graphics card
    off,
    on
};

struct view_state
{
    static constexpr std::uint32_t unlimited = 0xFFFF000;

    view_state();

    camera eye;
    std::array<view_light, 2> lights;
    bool show_reflections = true;          // T
    bool scale_by_one_over_pi = false;     // P
    int smoothness_channel = 1;            // 1 to 4
    bool is_background_dark = false;       // B
    bool shows_normals = false;            // F: the surface's normals as colours; before all other channels
    bool shows_plain = false;              // O: the colour without light; before what is in channel
    bool shows_floor = false;              // W: a grid below the model
    bool shows_skeleton = false;           // S
    bool is_wireframe = false;             // C: the draw mode
    std::uint32_t frame_limit = unlimited; // frames a second while the picture changes by itself

    view_channel channel = view_channel::lit; // of the menu
    std::uint32_t heat_bone = 0;              // whose weights are shown
    int heat_rig = -1;                        // of the scene, that has it; below zero: any
    bool shows_wire_over = false;             // M: the edges over the surface
    bool shows_bounds = false;                // X
    bool shows_bone_names = false;            // N
    bool shows_attachments = false;           // Y
    bool shows_help = false;                  // H
    bool shows_counts = false;                // U
    bool shows_light = false;                 // a marker where the side light is, while keys move it
    bool is_turntable = false;                // G: the model turns by itself
    bool is_background_clear = false;         // for pictures: nothing is behind the model
    bool is_whole_while_moving = false;       // where the processor draws; else it may be drawn smaller then
    bool uses_occlusion = true;               // of the mask's alpha
    shadow_choice shadows = shadow_choice::automatic;
    float light_yaw = 0;            // radians, of the key light and the environment about the vertical
    float light_pitch = 0;          // of the key light
    std::optional<glm::vec2> mouse; // over the picture, pixels: for what is named there
    std::optional<shown_group> selected;
    std::shared_ptr<const shown_groups> hidden; // null: none; never changed, for views are copied between threads

    // The channel that is shown, by keys or by the menu.
    view_channel shownChannel() const
    {
        return shows_normals ? view_channel::normals : shows_plain ? view_channel::base : channel;
    }
    void showChannel(view_channel wanted); // whatever keys have chosen before
    bool isHidden(const shown_group& group) const;
    void setHidden(const shown_group& group, bool is_hidden);

    // The point lights as a newly handed-over model gets them; the other settings stay as the person has left them.
    void setLightDefaults();
    // Applies a key of the table (key_table.h); false when the key means nothing to the view.
    bool onKey(unsigned virtual_key);
    void onWheel(float notches);                                         // away from the person: closer
    void onDrag(float dx_pixels, float dy_pixels);                       // turns
    void onLightDrag(float dx_pixels, float dy_pixels);                  // turns the light
    void onShift(float dx_pixels, float dy_pixels, float height_pixels); // moves the picture with the mouse

    // (c, c, 1.3 c) is the background; linear.
    float background() const { return is_background_dark ? 0.003f : 0.03876f; }

    // Fills both constant buffers but for what belongs to a drawable.
    void fill(float aspect, mvp_buffer& vs, light_buffer& ps) const;
};

} // namespace korvane
