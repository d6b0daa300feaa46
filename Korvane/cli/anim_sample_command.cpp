// anim sample: where the bones of a skeleton are, in the bind pose or at times of an animation.

#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/anim_json.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/posing/anim_text.h"
#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

struct sample_options
{
    std::string anim;
    std::string skeleton;
    std::vector<double> times;
    std::uint64_t frame = 0;
    float fraction = 0;
    bool has_frame = false;
};

// A pose that was asked for.
struct wanted_pose
{
    playback_position position;
    std::optional<double> time; // when it was asked for by its time
};

json poseJson(const skeleton_pose& pose, const wanted_pose& wanted)
{
    json bones = json::array();
    for (const skeleton_node& node : pose.tree().nodes())
        bones.push_back({{"name", displayText(node.name())},
                         {"translation", arrayJson(node.translation())},
                         {"rotation", arrayJson(node.rotation())},
                         {"world_translation", arrayJson(node.worldTranslation())},
                         {"world_rotation", arrayJson(node.worldRotation())}});
    json result = {{"frame", wanted.position.frame}, {"fraction", jsonNumber(wanted.position.fraction)}};
    if (wanted.time)
        result["time"] = *wanted.time;
    result["bones"] = std::move(bones);
    return result;
}

std::string poseText(const skeleton_pose& pose)
{
    const std::vector<tree_row> rows = treeRows(pose.tree());
    const std::size_t width = labelWidth(rows, "bone");
    std::string text = padded("bone", width) +
                       "  translation, m             rotation, degrees       in the world, m\n" + padded("", width) +
                       "        x        y        z     roll   pitch     yaw        x        y        z\n";
    for (const tree_row& row : rows)
        text += padded(row.label, width) + columns(row.node->translation(), 8, 3) + " " +
                columns(eulerDegrees(row.node->rotation()), 7, 1) + columns(row.node->worldTranslation(), 8, 3) + "\n";
    return text;
}

// Frames beyond the last one are shown as that, on its way to the first one.
std::string placeText(const playback_position& position, std::uint32_t frame_count)
{
    if (frame_count == 0)
        return "bind pose, for there are no frames";
    const std::uint32_t last = frame_count - 1;
    std::string text = "frame " + std::to_string(std::min(position.frame, last));
    const double fraction = std::round(static_cast<double>(position.fraction) * 1e4) / 1e4;
    if (fraction > 0)
        text += " + " + number(fraction);
    text += " of 0 to " + std::to_string(last);
    return text + (position.frame > last ? " (" + std::to_string(position.frame) + " is behind the last)" : "");
}

std::string headText(const skeleton_pose& pose, const wanted_pose& wanted)
{
    if (!pose.hasAnimation())
        return "bind pose\n";
    const animation& shown = pose.shownAnimation();
    std::string text = placeText(wanted.position, shown.frameCount());
    if (wanted.time)
        text += ", at " + number(*wanted.time) + " s of " + number(shown.endTime()) + " s";
    return text + ", " + number(shown.frameRate()) + " frames a second\n";
}

void printPoses(cli_context& context, skeleton_pose& pose, const std::vector<wanted_pose>& list)
{
    json document = json::array();
    bool is_first = true;
    for (const wanted_pose& wanted : list)
    {
        pose.show(wanted.position.frame, wanted.position.fraction);
        if (context.is_json)
            document.push_back(poseJson(pose, wanted));
        else
            context.print((is_first ? "" : "\n") + headText(pose, wanted) + poseText(pose));
        is_first = false;
    }
    if (context.is_json)
        context.printJson(document);
}

// The skeleton that was named, or that of the animation out of the archives.
std::shared_ptr<const anim_data> loadSkeletonFor(cli_context& context, const sample_options& options,
                                                 const anim_data* moves, failure& why)
{
    if (!options.skeleton.empty())
        return loadAnim(context.game(), options.skeleton, anim_depth::skeleton, why);
    const std::string path = "animations\\skeletons\\" + toLower(moves->skeleton_name) + ".anim";
    failure found;
    std::shared_ptr<const anim_data> skeleton;
    if (moves->skeleton_name.empty())
        fail(why, failure_kind::not_found, "it names no skeleton, give --skeleton SKEL", options.anim);
    else if (!(skeleton = loadAnim(context.game(), "pack:" + path, anim_depth::skeleton, found)))
    {
        if (found.kind == failure_kind::not_found)
            fail(why, failure_kind::not_found,
                 "its skeleton " + path + " is not at hand, give --skeleton SKEL (" + found.what + ")", options.anim);
        else
            why = found;
    }
    return skeleton;
}

void noteMismatch(cli_context& context, const anim_data& moves, const anim_data& skeleton)
{
    if (moves.skeleton_name == skeleton.skeleton_name)
        return;
    const auto named = [](const anim_data& data) {
        return data.skeleton_name.empty() ? "a skeleton without a name" : terminalText(data.skeleton_name);
    };
    context.note("note: the animation is made for " + named(moves) + ", not for " + named(skeleton));
}

bool listPoses(const sample_options& options, const animation& shown, std::vector<wanted_pose>& list, failure& why)
{
    const std::uint32_t frames = shown.frameCount();
    for (const double time : options.times)
        list.push_back({positionAt(time, {shown.frameRate(), shown.endTime(), frames}), time});
    if (options.has_frame && options.frame >= std::max(frames, 1u))
        return fail(why, failure_kind::refused,
                    "there is no frame " + std::to_string(options.frame) +
                        (frames > 0
                             ? ": the last of its " + std::to_string(frames) + " is " + std::to_string(frames - 1)
                             : ": it has none"),
                    options.anim);
    if (options.has_frame || list.empty())
        list.push_back({{static_cast<std::uint32_t>(options.frame), options.fraction}, std::nullopt});
    return true;
}

void runSample(cli_context& context, const sample_options& options)
{
    failure why;
    std::shared_ptr<const anim_data> moves;
    if (!options.anim.empty() && !(moves = loadAnim(context.game(), options.anim, anim_depth::animation, why)))
        return context.fail(why);
    const std::shared_ptr<const anim_data> skeleton = loadSkeletonFor(context, options, moves.get(), why);
    if (!skeleton)
        return context.fail(why);
    skeleton_pose pose;
    if (!pose.setSkeleton(*skeleton))
        context.note("note: the skeleton's bones do not make one tree; those without a usable parent stand alone");
    std::vector<wanted_pose> list(1); // the bind pose
    if (moves)
    {
        noteMismatch(context, *moves, *skeleton);
        list.clear();
        if (!pose.setAnimation(moves, why) || !listPoses(options, pose.shownAnimation(), list, why))
            return context.fail(why);
    }
    printPoses(context, pose, list);
}

} // namespace

void addAnimSampleCommand(CLI::App& anim, cli_context& context)
{
    const auto options = std::make_shared<sample_options>();
    CLI::App* command = anim.add_subcommand("sample", "Where a skeleton's bones are at times of an animation");
    CLI::Option* const file =
        command->add_option("ANIM", options->anim, "The animation: a path on disk, or pack: and an internal path")
            ->check(notEmpty());
    command
        ->add_option("--skeleton", options->skeleton,
                     "The skeleton; without it the one that the animation names, out of the archives")
        ->type_name("SKEL")
        ->check(notEmpty());
    CLI::Option* const bind =
        command->add_flag("--bind")->description("The bind pose of the skeleton, without an animation");
    bind->excludes(file);
    command->add_option("--time", options->times, "A time in seconds; may be given more than once, and goes round")
        ->type_name("T")
        ->check(finiteNumber())
        ->allow_extra_args(false)
        ->needs(file);
    CLI::Option* const frame = command->add_option("--frame", options->frame, "A frame, counted from 0")
                                   ->type_name("I")
                                   ->check(wholeNumber())
                                   ->needs(file);
    command
        ->add_option("--fraction", options->fraction,
                     "How far from that frame to the next, 0 to 1; behind the last comes the first")
        ->type_name("F")
        ->check(finiteNumber())
        ->check(CLI::Range(0.0, 1.0))
        ->needs(frame);
    context.addJsonOption(*command);
    command->callback([options, frame, &context] {
        if (options->anim.empty() && options->skeleton.empty())
            throw CLI::RequiredError("ANIM or --skeleton");
        options->has_frame = frame->count() > 0;
        runSample(context, *options);
    });
}

} // namespace korvane
