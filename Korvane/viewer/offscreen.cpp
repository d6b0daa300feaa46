#include "Korvane/viewer/offscreen.h"

#include "D3D11_RENDER_LIB/model_texture_source.h"
#include "Korvane/viewer/model_scene.h"

#include <chrono>

namespace korvane
{

namespace
{

constexpr std::uint32_t largest_picture = 8192;

bool check(const RMV2_FILE_DATA& model, const render_options& options, failure& why)
{
    const auto bad = [](std::uint32_t size)
    {
        return size == 0 || size > largest_picture;
    };
    if (bad(options.width) || bad(options.height))
        return fail(why, failure_kind::refused,
                    "the picture must be 1 to " + std::to_string(largest_picture) + " pixels wide and high");
    if (options.lod >= model.lods.size())
        return fail(why, failure_kind::refused,
                    "the model has no LOD " + std::to_string(options.lod) + ": it has " +
                        std::to_string(model.lods.size()));
    return true;
}

} // namespace

bool renderToImage(const RMV2_FILE_DATA& model, const std::string& model_path, const render_options& options,
                   render_result& result, failure& why)
{
    lib3d library;
    if (!check(model, options, why) || !library.createDevice(options.log, why))
        return false;
    library.createAll();

    const model_texture_source textures(model_path, options.log);
    model_scene scene(options.log);
    scene.setModel(library.device(),
                   {&model, model_path, options.lod, options.textures ? options.textures : &textures});
    scene_targets targets;
    targets.create(library.device(), options.width, options.height);
    picture_target picture;
    picture.create(library.device(), options.width, options.height);

    view_state view = options.view;
    view.eye.yaw = options.yaw;
    view.eye.pitch = options.pitch;
    view.eye.frame(scene.model().bounds(), static_cast<float>(options.width) / static_cast<float>(options.height));
    scene.draw(library, targets, picture.view(), view);
    picture.read(library, result.rgba);
    const auto start = std::chrono::steady_clock::now();
    for (std::uint32_t frame = 1; frame < options.frames; ++frame)
    {
        scene.draw(library, targets, picture.view(), view);
        picture.read(library, result.rgba);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    result.seconds_per_frame = options.frames > 1 ? taken.count() / (options.frames - 1) : 0;
    result.eye = view.eye;
    return true;
}

} // namespace korvane
