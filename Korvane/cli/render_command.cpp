#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/cli/render_scene.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"
#include "Korvane/viewer/offscreen.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numbers>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

constexpr float radians_per_degree = 0.017453292f;
constexpr std::size_t most_pictures = 10000; // their names have four digits

struct render_arguments
{
    render_subject subject;
    std::string output;
    std::string size = "1280x720";
    float yaw_degrees = 0; // from the view at the start
    float pitch_degrees = 0;
    std::uint32_t samples = 1;
    view_channel channel = view_channel::lit;
    double time = 0; // seconds
    bool is_bind = false;
    bool is_wireframe = false;
    bool shows_floor = false;
    bool is_transparent = false;
    std::uint32_t frames = 1;
    std::uint32_t turntable = 0; // pictures; 0: none
    double film_rate = 0;        // pictures a second; 0: none

    bool makesFolder() const { return turntable > 0 || film_rate > 0; }
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

render_options optionsOf(const render_arguments& arguments, cli_context& context)
{
    render_options options;
    static_cast<void>(readSize(arguments.size, options.width, options.height)); // checked with the command line
    options.samples = arguments.samples;
    options.yaw += arguments.yaw_degrees * radians_per_degree;
    options.pitch += arguments.pitch_degrees * radians_per_degree;
    options.view.is_wireframe = arguments.is_wireframe;
    options.view.shows_floor = arguments.shows_floor;
    options.view.is_background_clear = arguments.is_transparent;
    options.view.channel = arguments.channel;
    options.log = context.notePort();
    return options;
}

// The pictures of a film or a turntable, or the only one. A film ends before the time at which the animation begins
// anew, so that it can be shown round and round.
bool listWishes(const render_arguments& arguments, const picture_session& session, std::vector<picture_wish>& wishes,
                failure& why)
{
    const bool is_moved = session.leading() != nullptr && !arguments.is_bind;
    picture_wish wish;
    if (is_moved)
        wish.moment = arguments.time;
    const std::size_t turns = arguments.turntable;
    double count = turns > 0 ? static_cast<double>(turns) : 1;
    if (arguments.film_rate > 0)
        count = std::max(1.0, std::ceil(static_cast<double>(session.leading()->end_time) * arguments.film_rate - 1e-3));
    if (!(count <= most_pictures))
        return fail(why, failure_kind::refused,
                    "there would be more than " + std::to_string(most_pictures) + " pictures", arguments.output);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    {
        if (arguments.film_rate > 0)
            wish.moment = static_cast<double>(i) / arguments.film_rate;
        else if (turns > 0)
            wish.turned = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(turns);
        wishes.push_back(wish);
    }
    return true;
}

std::string numberedPath(const std::string& folder, std::size_t number)
{
    char name[16];
    std::snprintf(name, sizeof name, "%04u.png", static_cast<unsigned>(number));
    return folder + (folder.ends_with('/') || folder.ends_with('\\') ? "" : "/") + name;
}

bool isThere(const std::string& path)
{
    std::error_code unused;
    return std::filesystem::exists(toPath(path), unused);
}

// One after the other into the folder, each as soon as it is drawn.
bool drawFolder(const render_arguments& arguments, picture_session& session, const std::vector<picture_wish>& wishes,
                cli_context& context, failure& why)
{
    if (!createFolder(arguments.output, why))
        return false;
    for (std::size_t i = 0; i < wishes.size(); ++i)
    {
        context.progress("picture " + std::to_string(i + 1) + " of " + std::to_string(wishes.size()));
        picture drawn;
        if (!session.draw(wishes[i], {}, drawn, why) ||
            !writePictureFile(numberedPath(arguments.output, i), picture_kind::png, drawn, why))
            return false;
    }
    context.note(counted(wishes.size(), "picture") + " in " + arguments.output);
    if (wishes.size() < most_pictures && isThere(numberedPath(arguments.output, wishes.size())))
        context.note("note: the folder also holds pictures of an earlier film, from " +
                     numberedPath({}, wishes.size()).substr(1) + " on");
    return true;
}

bool drawOne(const render_arguments& arguments, picture_session& session, const picture_wish& wish,
             cli_context& context, failure& why)
{
    work_port work;
    work.progress = [&context](const work_progress& now) {
        context.progress("drawing, " + std::to_string(now.done * 100 / now.total) + " %");
    };
    picture drawn;
    if (!session.draw(wish, work, drawn, why))
        return false;
    const auto start = std::chrono::steady_clock::now();
    for (std::uint32_t frame = 1; frame < arguments.frames; ++frame)
        if (!session.draw(wish, {}, drawn, why))
            return false;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (!writePictureFile(arguments.output, picture_kind::png, drawn, why))
        return false;
    if (arguments.frames > 1)
    {
        char text[64];
        std::snprintf(text, sizeof text, "%.1f ms per frame", taken.count() * 1000 / (arguments.frames - 1));
        context.note(text);
    }
    return true;
}

bool render(const render_arguments& arguments, cli_context& context, failure& why)
{
    const scene_pointer scene = loadSubject(context, arguments.subject, why);
    if (!scene)
        return false;
    render_options options = optionsOf(arguments, context);
    if (const std::string& path = arguments.subject.animation; !path.empty())
    {
        options.animations.push_back(loadAnim(context.game(), path, anim_depth::animation, why));
        if (!options.animations.back())
            return false;
    }
    picture_session session(scene, std::move(options));
    if (!session.problems().empty() && session.leading() == nullptr)
        return fail(why, failure_kind::refused, session.problems().front(), arguments.subject.animation);
    for (const std::string& problem : session.problems())
        context.note("note: " + problem);
    std::vector<picture_wish> wishes;
    return listWishes(arguments, session, wishes, why) &&
           (arguments.makesFolder() ? drawFolder(arguments, session, wishes, context, why)
                                    : drawOne(arguments, session, wishes.front(), context, why));
}

void checkOutput(const render_arguments& arguments)
{
    if (arguments.makesFolder())
        requireFolder(arguments.output);
    else if (!endsWithIgnoringCase(arguments.output, ".png"))
        throw CLI::ValidationError("-o", "the name must end in .png: " + arguments.output);
}

const std::vector<std::pair<std::string, view_channel>> channel_names{
    {"lit", view_channel::lit},           {"base", view_channel::base},   {"normals", view_channel::normals},
    {"specular", view_channel::specular}, {"gloss", view_channel::gloss}, {"mask", view_channel::mask},
    {"alpha", view_channel::alpha},       {"uv", view_channel::uv}};

void addLook(CLI::App& command, render_arguments& arguments)
{
    command.add_option("--size", arguments.size, "Width and height in pixels (default: 1280x720)")
        ->check(pictureSize())
        ->type_name("WxH");
    command.add_option("--lod", arguments.subject.lod, "The level of detail, 0 is the finest (default: 0)")
        ->check(CLI::Range(0, 254))
        ->type_name("N");
    command.add_option("--yaw", arguments.yaw_degrees, "Turns the model, in degrees")
        ->check(finiteNumber())
        ->type_name("DEGREES");
    command.add_option("--pitch", arguments.pitch_degrees, "Tilts the model, in degrees")
        ->check(finiteNumber())
        ->type_name("DEGREES");
    command.add_option("--samples", arguments.samples, "Smooth edges: samples a pixel, 1, 4, 9 or 16 (default: 1)")
        ->check(CLI::IsMember({1, 4, 9, 16}))
        ->type_name("N");
    command
        .add_option("--channel", arguments.channel,
                    "What of the surface is shown: lit, base, normals, specular, gloss, mask, alpha or uv "
                    "(default: lit)")
        ->transform(CLI::CheckedTransformer(channel_names, CLI::ignore_case).description(""))
        ->type_name("NAME");
    command.add_flag("--wireframe", arguments.is_wireframe, "Draws the edges of the triangles");
    command.add_flag("--floor", arguments.shows_floor, "Draws a grid below the model");
    command.add_flag("--transparent", arguments.is_transparent, "Nothing behind the model: alpha is 0 there");
}

void addMotion(CLI::App& command, render_arguments& arguments)
{
    command
        .add_option("--skeleton", arguments.subject.skeleton, "The skeleton; without it the one that the model names")
        ->check(notEmpty())
        ->type_name("SKEL");
    CLI::Option* const anim = command
                                  .add_option("--anim", arguments.subject.animation,
                                              "The animation that moves it; shown is its beginning, or the --time")
                                  ->check(notEmpty())
                                  ->type_name("ANIM");
    CLI::Option* const time = command.add_option("--time", arguments.time, "A time in seconds; it goes round")
                                  ->check(finiteNumber())
                                  ->type_name("T")
                                  ->needs(anim);
    CLI::Option* const bind = command.add_flag("--bind", arguments.is_bind, "The bind pose of the skeleton");
    CLI::Option* const turntable =
        command.add_option("--turntable", arguments.turntable, "N pictures around the model: OUT is a folder")
            ->check(CLI::Range(1, static_cast<int>(most_pictures)))
            ->type_name("N");
    CLI::Option* const film =
        command.add_option("--film", arguments.film_rate, "The animation, RATE pictures a second: OUT is a folder")
            ->check(finiteNumber())
            ->check(CLI::Range(0.01, 1000.0))
            ->type_name("RATE")
            ->needs(anim);
    bind->excludes(time);
    film->excludes(time)->excludes(bind)->excludes(turntable);
    command.add_option("--frames", arguments.frames, "Draws so many frames and says what one took")
        ->type_name("N")
        ->check(CLI::Range(1, 10000))
        ->excludes(turntable)
        ->excludes(film);
}

} // namespace

void addRenderCommand(CLI::App& app, cli_context& context)
{
    auto arguments = std::make_shared<render_arguments>();
    CLI::App* command =
        app.add_subcommand("render", "Draws a model, or all models of a definition, into a PNG picture");
    command
        ->add_option("MODEL", arguments->subject.file,
                     "A rigid_model_v2 or variantmeshdefinition file, or pack: and an internal path")
        ->required()
        ->check(notEmpty());
    command
        ->add_option("-o,--output", arguments->output,
                     "The picture to write; with --turntable or --film the folder for 0000.png, 0001.png, ...")
        ->required()
        ->check(notEmpty())
        ->type_name("OUT");
    addLook(*command, *arguments);
    addMotion(*command, *arguments);
    command->footer("A film of the pictures in FOLDER, with the free program ffmpeg:\n"
                    "  ffmpeg -framerate RATE -i FOLDER/%04d.png -pix_fmt yuv420p film.mp4\n"
                    "and of transparent ones:\n"
                    "  ffmpeg -framerate RATE -i FOLDER/%04d.png -c:v prores_ks -pix_fmt yuva444p10le film.mov");
    command->callback([arguments, &context] {
        checkOutput(*arguments);
        render_subject& subject = arguments->subject;
        subject.needs_skeleton = arguments->is_bind || !subject.animation.empty() || !subject.skeleton.empty();
        failure why;
        if (!render(*arguments, context, why))
        {
            if (why.path.empty())
                why.path = subject.file;
            context.fail(why);
        }
    });
}

} // namespace korvane
