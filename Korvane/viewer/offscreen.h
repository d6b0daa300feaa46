#pragma once

// Pictures of scenes without a window: the same device set-up, drawing and shaders as the window's. Each call makes its
// own device, so a batch costs a little more per picture than a window per frame.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/viewer/view_state.h"

#include <cstdint>
#include <vector>

namespace korvane
{

class device_faults;

inline constexpr std::uint32_t largest_picture = 8192; // pixels in each direction

struct render_options
{
    std::uint32_t width = 1280; // pixels, 1 to largest_picture
    std::uint32_t height = 720;
    float yaw = camera::start_yaw; // radians
    float pitch = camera::start_pitch;
    view_state view;          // lights and display flags
    bool frames_scene = true; // the camera is framed on the scene, with yaw and pitch; false: it is that of view
    std::uint32_t frames = 1; // drawn one after the other; more than one only to measure
    log_port log;
    device_faults* faults = nullptr; // for tests (device_faults.h)
};

struct render_result
{
    std::vector<std::uint8_t> rgba; // rows from the top, width * height * 4
    camera eye;                     // the framed camera that was used
    double seconds_per_frame = 0;   // of the frames after the first one; 0 for one frame
};

// False without a device, when it was lost twice in a row, or for a size out of range.
[[nodiscard]] bool renderToImage(const scene_pointer& scene, const render_options& options, render_result& result,
                                 failure& why);

} // namespace korvane
