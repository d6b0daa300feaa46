#include "Korvane/viewer/offscreen.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "Korvane/viewer/model_scene.h"

#include <chrono>

namespace korvane
{

namespace
{

bool checkSize(const render_options& options, failure& why)
{
    const auto bad = [](std::uint32_t size) { return size == 0 || size > largest_picture; };
    return !(bad(options.width) || bad(options.height)) ||
           fail(why, failure_kind::refused,
                "the picture must be 1 to " + std::to_string(largest_picture) + " pixels wide and high");
}

// False when the device was lost on the way.
bool drawPictures(lib3d& library, const scene_pointer& scene, const render_options& options, render_result& result)
{
    model_scene drawn(options.log);
    scene_targets targets;
    picture_target picture;
    if (!library.createAll() || !drawn.create(library, scene) || !drawn.finishTextures(library) ||
        !targets.create(library, options.width, options.height) ||
        !picture.create(library, options.width, options.height))
        return false;

    view_state view = options.view;
    if (options.frames_scene)
    {
        view.eye.yaw = options.yaw;
        view.eye.pitch = options.pitch;
        view.eye.frame(scene->bounds, static_cast<float>(options.width) / static_cast<float>(options.height));
    }
    const auto draw = [&] {
        drawn.draw(library, targets, picture.view(), view);
        return picture.read(library, result.rgba);
    };
    if (!draw())
        return false;
    const auto start = std::chrono::steady_clock::now();
    for (std::uint32_t frame = 1; frame < options.frames; ++frame)
        if (!draw())
            return false;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    result.seconds_per_frame = options.frames > 1 ? taken.count() / (options.frames - 1) : 0;
    result.eye = view.eye;
    return true;
}

} // namespace

bool renderToImage(const scene_pointer& scene, const render_options& options, render_result& result, failure& why)
{
    if (!checkSize(options, why))
        return false;
    for (int attempt = 0;; ++attempt)
    {
        lib3d library(options.faults);
        if (!library.createDevice(device_kind::best, options.log, why))
            return false;
        if (drawPictures(library, scene, options, result))
            return true;
        const std::string what = "the graphics device was lost (" + resultText(library.loss()) + ")";
        if (attempt == 1)
            return fail(why, failure_kind::unsupported, what + " twice", scene->path);
        tell(options.log, what + "; the picture is drawn again");
    }
}

} // namespace korvane
