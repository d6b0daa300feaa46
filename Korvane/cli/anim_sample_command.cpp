// anim sample: where the bones of a skeleton are, in the bind pose or at times of an animation.

#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

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
    bool is_bind = false;
};

// A pose that was asked for.
struct wanted_pose
{
    playback_position position;
    std::optional<double> time; // when it was asked for by its time
};

json arrayJson(const glm::vec3& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z)};
}

json arrayJson(const glm::quat& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z), jsonNumber(value.w)};
}

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

std::string column(float value, int width, int decimals)
{
    char text[32];
    const double wide = static_cast<double>(value);
    const char* const form = std::abs(wide) < 1e5 ? "%*.*f" : "%*.*g";
    std::snprintf(text, sizeof text, form, width, std::abs(wide) < 1e5 ? decimals : 3, wide);
    std::string result = text;
    if (result.find_first_of("123456789nai") == std::string::npos) // no minus in front of a zero
        std::replace(result.begin(), result.end(), '-', ' ');
    return result;
}

std::string columns(const glm::vec3& value, int width, int decimals)
{
    return column(value.x, width, decimals) + column(value.y, width, decimals) + column(value.z, width, decimals);
}

// A bone's line begins with its name, moved to the right by its depth in the tree.
struct tree_row
{
    const skeleton_node* node;
    std::string label;
};

std::vector<tree_row> treeRows(const skeleton_tree& tree)
{
    struct place
    {
        const skeleton_node* node;
        std::size_t depth;
    };
    std::vector<place> open; // the next one last
    const auto nodes = tree.nodes();
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        if (!node->parent() && &*node != tree.root())
            open.push_back({&*node, 0});
    if (tree.root())
        open.push_back({tree.root(), 0});
    std::vector<tree_row> rows;
    while (!open.empty())
    {
        const place next = open.back();
        open.pop_back();
        rows.push_back({next.node, std::string(2 * next.depth, ' ') + terminalText(next.node->name())});
        const auto children = next.node->children();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            open.push_back({*child, next.depth + 1});
    }
    return rows;
}

// In characters; a byte that goes on with one takes no room.
std::size_t shownWidth(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
                                                  [](char byte)
                                                  {
                                                      return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
                                                  }));
}

std::string poseText(const skeleton_pose& pose)
{
    const std::vector<tree_row> rows = treeRows(pose.tree());
    std::size_t width = 4;
    for (const tree_row& row : rows)
        width = std::max(width, shownWidth(row.label));
    const auto padded = [width](const std::string& text)
    {
        return text + std::string(width - shownWidth(text), ' ');
    };
    std::string text = padded("bone") + "  translation, m             rotation, degrees       in the world, m\n" +
                       padded("") + "        x        y        z     roll   pitch     yaw        x        y        z\n";
    for (const tree_row& row : rows)
        text += padded(row.label) + columns(row.node->translation(), 9, 3) + " " +
                columns(eulerDegrees(row.node->rotation()), 8, 1) + columns(row.node->worldTranslation(), 9, 3) + "\n";
    return text;
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string headText(const skeleton_pose& pose, const wanted_pose& wanted)
{
    if (!pose.hasAnimation())
        return "bind pose\n";
    const animation& shown = pose.shownAnimation();
    std::string text = "frame " + std::to_string(wanted.position.frame);
    if (wanted.position.fraction > 0)
        text += " + " + number(static_cast<double>(wanted.position.fraction));
    text += " of " + std::to_string(shown.frameCount());
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
        return loadAnim(context, options.skeleton, anim_depth::skeleton, why);
    const std::string path = "animations\\skeletons\\" + toLower(moves->skeleton_name) + ".anim";
    failure found;
    auto skeleton = loadAnim(context, "pack:" + path, anim_depth::skeleton, found);
    if (!skeleton && found.kind == failure_kind::not_found)
        fail(why, failure_kind::not_found,
             "its skeleton " + path + " is not at hand, give --skeleton SKEL (" + found.what + ")", options.anim);
    else if (!skeleton)
        why = found;
    return skeleton;
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
    if (!options.anim.empty() && !(moves = loadAnim(context, options.anim, anim_depth::animation, why)))
        return context.fail(why);
    const std::shared_ptr<const anim_data> skeleton = loadSkeletonFor(context, options, moves.get(), why);
    if (!skeleton)
        return context.fail(why);
    skeleton_pose pose;
    if (!pose.setSkeleton(*skeleton))
        context.note("note: the skeleton's bones do not make one tree; those without a usable parent stand alone");
    std::vector<wanted_pose> list = {{}};
    if (moves)
    {
        if (moves->skeleton_name != skeleton->skeleton_name)
            context.note("note: the animation is made for " + displayText(moves->skeleton_name) + ", not for " +
                         displayText(skeleton->skeleton_name));
        list.clear();
        if (!pose.setAnimation(moves, why) || !listPoses(options, pose.shownAnimation(), list, why))
            return context.fail(why);
    }
    printPoses(context, pose, list);
}

CLI::Validator wholeNumber()
{
    return CLI::Validator(
        [](const std::string& text)
        {
            const bool is_one = text.size() <= 10 && text.find_first_not_of("0123456789") == std::string::npos;
            return is_one ? std::string() : "\"" + text + "\" is no whole number from 0 on";
        },
        "");
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
        command->add_flag("--bind", options->is_bind, "The bind pose of the skeleton, without an animation");
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
    command->callback(
        [options, frame, &context]
        {
            if (options->anim.empty() && options->skeleton.empty())
                throw CLI::RequiredError("ANIM or --skeleton");
            options->has_frame = frame->count() > 0;
            runSample(context, *options);
        });
}

} // namespace korvane
