#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/textures/png.h"
#include "Korvane/viewer/offscreen.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace korvane
{

namespace
{

constexpr float radians_per_degree = 0.017453292f;

struct render_arguments
{
    std::string model;
    std::string output;
    std::string size = "1280x720";
    std::size_t lod = 0;
    float yaw_degrees = 0; // from the view at the start
    float pitch_degrees = 0;
    std::uint32_t frames = 1;
    bool is_wireframe = false;
    bool shows_floor = false;
};

// "WIDTHxHEIGHT" in pixels.
bool readSize(const std::string& text, std::uint32_t& width, std::uint32_t& height)
{
    unsigned parsed_width = 0;
    unsigned parsed_height = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%5ux%5u%c", &parsed_width, &parsed_height, &rest) != 2)
        return false;
    width = parsed_width;
    height = parsed_height;
    return width > 0 && height > 0 && width <= largest_picture && height <= largest_picture;
}

CLI::Validator pictureSize()
{
    return CLI::Validator(
        [](const std::string& text) {
            std::uint32_t width = 0;
            std::uint32_t height = 0;
            return readSize(text, width, height)
                       ? std::string()
                       : "the size must be WIDTHxHEIGHT, as in 1280x720, and at most " +
                             std::to_string(largest_picture) + " pixels each, not \"" + text + "\"";
        },
        "");
}

bool writePicture(const std::string& path, const render_options& options, const render_result& result, failure& why)
{
    picture drawn(options.width, options.height);
    std::memcpy(drawn.pixels().data(), result.rgba.data(), result.rgba.size());
    png_bytes png;
    if (writePng(drawn, png, why))
        return writeWholeFile(path, png.bytes(), why);
    why.path = path;
    return false;
}

scene_loader sceneLoader(cli_context& context, const game_data& game)
{
    work_port work;
    work.log = [&context](const std::string& line) { context.note(line); };
    return scene_loader(game, std::move(work));
}

// All models of a definition, out of the archives.
scene_pointer loadDefinition(const std::string& path, std::size_t lod, cli_context& context, failure& why)
{
    open_definition definition;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game || !definition.open(path, why, *game))
        return nullptr;
    for (const std::string& problem : definition.problems())
        context.note(problem);
    const std::vector<figure_model> models = definition.figure();
    const std::size_t count = models.size();
    scene_pointer scene = sceneLoader(context, *game).loadFigure(models, path, lod);
    if (count == 0)
        fail(why, failure_kind::refused, "the definition names no models", path);
    else if (scene->parts.empty())
        fail(why, failure_kind::not_found, "none of the definition's " + std::to_string(count) + " models can be drawn",
             path);
    return why ? nullptr : scene;
}

scene_pointer loadModel(const std::string& path, std::size_t lod, cli_context& context, failure& why)
{
    // Archives that were named serve the textures of a model on the disk, too.
    const std::shared_ptr<const game_data> game =
        context.data_folders.empty() ? context.game().gameFor(path, why) : context.game().archives(why);
    const auto file = std::make_shared<rmv2_file>();
    if (!game || !openModel(context.game(), path, *file, context.notePort(), why))
        return nullptr;
    if (const std::size_t count = file->data().lods.size(); lod >= count)
        return fail(why, failure_kind::refused,
                    "the model has no LOD " + std::to_string(lod) + ": it has " + std::to_string(count)),
               nullptr;
    return sceneLoader(context, *game).loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), path, lod);
}

bool render(const render_arguments& arguments, cli_context& context, failure& why)
{
    render_options options;
    static_cast<void>(readSize(arguments.size, options.width, options.height)); // checked with the command line
    options.frames = arguments.frames;
    options.yaw += arguments.yaw_degrees * radians_per_degree;
    options.pitch += arguments.pitch_degrees * radians_per_degree;
    options.view.is_wireframe = arguments.is_wireframe;
    options.view.shows_floor = arguments.shows_floor;
    options.log = [&context](const std::string& line) { context.note(line); };

    render_result result;
    const auto load = isDefinitionPath(arguments.model) ? &loadDefinition : &loadModel;
    const scene_pointer scene = load(arguments.model, arguments.lod, context, why);
    if (!scene || !renderToImage(scene, options, result, why) || !writePicture(arguments.output, options, result, why))
        return false;
    if (options.frames > 1)
    {
        char text[64];
        std::snprintf(text, sizeof text, "%.1f ms per frame", result.seconds_per_frame * 1000);
        context.note(text);
    }
    return true;
}

} // namespace

void addRenderCommand(CLI::App& app, cli_context& context)
{
    auto arguments = std::make_shared<render_arguments>();
    CLI::App* command =
        app.add_subcommand("render", "Draws a model, or all models of a definition, into a PNG picture");
    command
        ->add_option("MODEL", arguments->model,
                     "A rigid_model_v2 or variantmeshdefinition file, or pack: and an internal path")
        ->required()
        ->check(notEmpty());
    command->add_option("-o,--output", arguments->output, "The picture to write")
        ->required()
        ->check(notEmpty())
        ->check(endingIn(".png"))
        ->type_name("OUT.png");
    command->add_option("--size", arguments->size, "Width and height in pixels (default: 1280x720)")
        ->check(pictureSize())
        ->type_name("WxH");
    command->add_option("--lod", arguments->lod, "The level of detail, 0 is the finest (default: 0)")
        ->check(CLI::Range(0, 254))
        ->type_name("N");
    command->add_option("--yaw", arguments->yaw_degrees, "Turns the model, in degrees")
        ->check(finiteNumber())
        ->type_name("DEGREES");
    command->add_option("--pitch", arguments->pitch_degrees, "Tilts the model, in degrees")
        ->check(finiteNumber())
        ->type_name("DEGREES");
    command->add_option("--frames", arguments->frames, "Draws so many frames and says what one took")
        ->type_name("N")
        ->check(CLI::Range(1, 10000));
    command->add_flag("--wireframe", arguments->is_wireframe, "Draws the edges of the triangles");
    command->add_flag("--floor", arguments->shows_floor, "Draws a grid below the model");
    command->callback([arguments, &context] {
        failure why;
        if (!render(*arguments, context, why))
        {
            if (why.path.empty())
                why.path = arguments->model;
            context.fail(why);
        }
    });
}

} // namespace korvane
