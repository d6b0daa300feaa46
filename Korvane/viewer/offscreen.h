#pragma once

// Pictures of a scene without a window: the same device set-up, drawing and shaders as the window's. A session makes
// its device and the scene's objects once, for one picture or for all of a film. Large pictures are drawn in parts, so
// that what a device holds does not depend on their size; several samples a pixel are so many pictures, each moved by a
// fraction of a pixel, whose average is taken. A session belongs to one thread at a time.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/textures/picture.h"
#include "Korvane/viewer/posed_scene.h"
#include "Korvane/viewer/view_state.h"

#include <array>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace korvane
{

class device_faults;
class sample_average;

inline constexpr std::uint32_t largest_picture = 8192; // pixels in each direction
inline constexpr std::array<std::uint32_t, 4> sample_choices{1, 4, 9, 16};

struct render_options
{
    std::uint32_t width = 1280; // pixels, 1 to largest_picture
    std::uint32_t height = 720;
    std::uint32_t samples = 1;     // a pixel: one of the choices
    view_state view;               // lights and display flags
    bool frames_scene = true;      // the camera is framed on the scene, with yaw and pitch; false: it is that of view
    float yaw = camera::start_yaw; // radians
    float pitch = camera::start_pitch;
    // In the order in which they were chosen; what of them fits the scene moves it.
    std::vector<std::shared_ptr<const anim_data>> animations;
    log_port log;
    device_faults* faults = nullptr;   // for tests (device_faults.h)
    std::uint32_t largest_part = 2048; // pixels in each direction that are drawn at once
};

// How the scene stands: in its bind pose, or at a time (seconds) or a place of the animation that was chosen last.
using picture_moment = std::variant<std::monostate, double, playback_position>;

struct picture_wish
{
    picture_moment moment;
    float turned = 0; // radians of yaw beyond the camera's
};

class picture_session
{
public:
    picture_session(scene_pointer scene, render_options options);
    ~picture_session();
    picture_session(const picture_session&) = delete;
    picture_session& operator=(const picture_session&) = delete;

    // What of the animations does not fit, a line each.
    const std::vector<std::string>& problems() const { return m_problems; }
    // The animation that leads, null: none fits.
    const anim_data* leading() const { return m_fits.empty() ? nullptr : m_fits.back().animation.get(); }
    const camera& eye() const { return m_options.view.eye; } // that is used, as framed

    // Progress counts what is drawn of this picture. False without a device, when it was lost twice in a row, for a
    // size or a number of samples out of range, and, with an empty failure, when the work was to stop.
    [[nodiscard]] bool draw(const picture_wish& wish, const work_port& work, picture& made, failure& why);

private:
    struct device_half;
    struct strip // of one direction: what is drawn, and what of that is kept
    {
        std::uint32_t origin = 0; // of what is drawn
        std::uint32_t begin = 0;  // of what is kept
        std::uint32_t size = 0;
    };

    [[nodiscard]] bool makeDevice(failure& why);
    void takePose(const picture_moment& moment);
    [[nodiscard]] bool drawParts(const picture_wish& wish, const work_port& work, picture& made);
    [[nodiscard]] bool drawPart(const view_state& view, std::uint32_t left, std::uint32_t top, std::uint32_t sample);
    [[nodiscard]] std::vector<strip> strips(std::uint32_t size) const;
    [[nodiscard]] std::uint32_t drawnSize(std::uint32_t size) const;

    scene_pointer m_scene;
    render_options m_options;
    std::vector<animation_fit> m_fits;
    std::vector<std::string> m_problems;
    std::unique_ptr<device_half> m_po_device; // null before the first picture, and when it was lost
    std::unique_ptr<sample_average> m_po_average;
    std::vector<std::uint8_t> m_drawn; // a part
};

} // namespace korvane
