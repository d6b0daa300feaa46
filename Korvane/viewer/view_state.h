#pragma once

// Everything about the view that keys and mouse change: camera, lights and display flags. A plain value: the window
// thread owns one, changes it, and hands whole copies to the render thread. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/viewer/camera.h"

#include <array>
#include <cstdint>

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

// Virtual-key codes, as Windows numbers them.
namespace key_code
{
inline constexpr unsigned escape = 27, space = 32, page_up = 33, page_down = 34, end = 35, home = 36, left = 37,
                          up = 38, right = 39, down = 40, first = 27, last = 104, numpad1 = 97, numpad2 = 98,
                          numpad4 = 100, numpad6 = 102, numpad7 = 103, numpad8 = 104;
}

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
    bool shows_normals = false;            // F: the surface's normals as colours
    bool shows_plain = false;              // O: the colour without light
    bool shows_floor = false;              // W: a grid below the model
    bool shows_skeleton = false;           // S
    bool is_wireframe = false;             // C: the draw mode
    std::uint32_t frame_limit = unlimited; // frames a second while the picture changes by itself

    // The point lights as a newly handed-over model gets them; the other settings stay as the person has left them.
    void setLightDefaults();
    // Applies a key of the table; false when the key means nothing to the view (Escape, Space and V are the window's).
    bool onKey(unsigned virtual_key);
    void onWheel(float notches);                                         // away from the person: closer
    void onDrag(float dx_pixels, float dy_pixels);                       // turns
    void onShift(float dx_pixels, float dy_pixels, float height_pixels); // moves the picture with the mouse

    // (c, c, 1.3 c) is the background; linear.
    float background() const { return is_background_dark ? 0.003f : 0.03876f; }

    // Fills both constant buffers but for what belongs to a drawable.
    void fill(float aspect, mvp_buffer& vs, light_buffer& ps) const;

private:
    bool onLightKey(unsigned virtual_key);
    bool onToggleKey(unsigned virtual_key);
};

} // namespace korvane
