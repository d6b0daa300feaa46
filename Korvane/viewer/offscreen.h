#pragma once

// Pictures of models without a window: the same device set-up, scene and shaders as the window's. Each call makes its
// own device, so a batch costs a little more per picture than a window per frame.

#include "D3D11_RENDER_LIB/texture_source.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/models/rmv2_data.h"
#include "Korvane/viewer/view_state.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace korvane
{

struct render_options
{
    std::uint32_t width = 1280; // pixels, 1 to 8192
    std::uint32_t height = 720;
    std::size_t lod = 0;           // refused when the model has no such level
    float yaw = camera::start_yaw; // radians
    float pitch = camera::start_pitch;
    view_state view;          // lights and display flags; its camera is framed on the model
    std::uint32_t frames = 1; // drawn one after the other; more than one only to measure
    std::function<void(const std::string&)> log;
    const texture_source* textures = nullptr; // null: the archives, else the disk around the model or definition
};

struct render_result
{
    std::vector<std::uint8_t> rgba; // rows from the top, width * height * 4
    camera eye;                     // the framed camera that was used
    double seconds_per_frame = 0;   // of the frames after the first one; 0 for one frame
};

// Draws a level of a model. False without a device, for a level that does not exist or a size out of range.
[[nodiscard]] bool renderToImage(const RMV2_FILE_DATA& model, const std::string& model_path,
                                 const render_options& options, render_result& result, failure& why);
// Draws the models of a definition, named by internal paths, out of the archives; a model without such a level shows
// its last one. Models that cannot be drawn are named in the log. False, too, when none can be drawn.
[[nodiscard]] bool renderToImage(const std::vector<std::string>& models, const std::string& definition_path,
                                 const render_options& options, render_result& result, failure& why);

} // namespace korvane
