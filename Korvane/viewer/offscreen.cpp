#include "Korvane/viewer/offscreen.h"

#include "D3D11_RENDER_LIB/model_texture_source.h"
#include "Korvane/viewer/model_scene.h"

#include <chrono>

namespace korvane
{

namespace
{

constexpr std::uint32_t largest_picture = 8192;

bool checkSize(const render_options& options, failure& why)
{
    const auto bad = [](std::uint32_t size) { return size == 0 || size > largest_picture; };
    return !(bad(options.width) || bad(options.height)) ||
           fail(why, failure_kind::refused,
                "the picture must be 1 to " + std::to_string(largest_picture) + " pixels wide and high");
}

// A device with everything on it, and the scene that fill puts something into; fill may give up with a reason.
bool renderScene(const render_options& options, const std::function<bool(model_scene&, ID3D11Device&)>& fill,
                 render_result& result, failure& why)
{
    lib3d library;
    if (!library.createDevice(options.log, why))
        return false;
    library.createAll();
    model_scene scene(options.log);
    if (!fill(scene, library.device()))
        return false;
    scene_targets targets;
    targets.create(library.device(), options.width, options.height);
    picture_target picture;
    picture.create(library.device(), options.width, options.height);

    view_state view = options.view;
    view.eye.yaw = options.yaw;
    view.eye.pitch = options.pitch;
    view.eye.frame(scene.bounds(), static_cast<float>(options.width) / static_cast<float>(options.height));
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

} // namespace

bool renderToImage(const RMV2_FILE_DATA& model, const std::string& model_path, const render_options& options,
                   render_result& result, failure& why)
{
    if (!checkSize(options, why))
        return false;
    if (options.lod >= model.lods.size())
        return fail(why, failure_kind::refused,
                    "the model has no LOD " + std::to_string(options.lod) + ": it has " +
                        std::to_string(model.lods.size()));
    const model_texture_source own(model_path, options.log);
    const auto fill = [&](model_scene& scene, ID3D11Device& device) {
        scene.setModel(device, {&model, model_path, options.lod, options.textures ? options.textures : &own});
        return true;
    };
    return renderScene(options, fill, result, why);
}

bool renderToImage(const std::vector<std::string>& models, const std::string& definition_path,
                   const render_options& options, render_result& result, failure& why)
{
    if (!checkSize(options, why))
        return false;
    if (models.empty())
        return fail(why, failure_kind::refused, "the definition names no models", definition_path);
    const model_texture_source own(definition_path, options.log);
    const auto fill = [&](model_scene& scene, ID3D11Device& device) {
        const texture_source* const textures = options.textures ? options.textures : &own;
        return scene.setVariant(device, {models, options.lod, textures}).parts > 0 ||
               fail(why, failure_kind::not_found,
                    "none of the definition's " + std::to_string(models.size()) + " models can be drawn",
                    definition_path);
    };
    return renderScene(options, fill, result, why);
}

} // namespace korvane
