// anim info: what an .anim file holds.

#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/anim_json.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/posing/anim_text.h"
#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>

namespace korvane
{

namespace
{

struct info_options
{
    std::string anim;
    std::string depth = "animation"; // --as
    bool with_frames = false;
};

anim_depth depthOf(const info_options& options)
{
    return options.depth == "skeleton"   ? anim_depth::skeleton
           : options.depth == "template" ? anim_depth::bones_only
                                         : anim_depth::animation;
}

template <class range, class function>
json listJson(const range& values, const function& each)
{
    json list = json::array();
    for (const auto& value : values)
        list.push_back(each(value));
    return list;
}

template <class range>
json arraysJson(const range& values)
{
    return listJson(values, [](const auto& value) { return arrayJson(value); });
}

json eulersJson(std::span<const glm::quat> rotations)
{
    return listJson(rotations, [](const glm::quat& rotation) { return arrayJson(eulerDegrees(rotation)); });
}

json headJson(const anim_data& data, const info_options& options)
{
    json head = {{"path", displayText(options.anim)},
                 {"version", data.version},
                 {"header_word", data.header_word},
                 {"frame_rate", jsonNumber(data.frame_rate)},
                 {"skeleton_name", displayText(data.skeleton_name)}};
    if (data.version == 7)
    {
        head["sub_name_flag"] = data.sub_name_flag;
        head["sub_name"] = displayText(data.sub_name);
    }
    head["end_time"] = jsonNumber(data.end_time);
    head["bone_count"] = data.bones.size();
    head["bones"] = listJson(data.bones, [](const anim_bone& bone) {
        return json{{"index", bone.index}, {"name", displayText(bone.name)}, {"parent", bone.parent}};
    });
    head["translation_map"] = data.translation_map;
    head["rotation_map"] = data.rotation_map;
    head["animated_translations"] = data.animated_translations;
    head["animated_rotations"] = data.animated_rotations;
    head["static_translations"] = arraysJson(data.static_translations);
    head["static_rotations"] = arraysJson(data.static_rotations);
    head["translation_track_count"] = data.translation_count;
    head["rotation_track_count"] = data.rotation_count;
    head["frame_count"] = data.frame_count;
    if (depthOf(options) == anim_depth::skeleton)
        head["bind"] = listJson(data.bones, [](const anim_bone& bone) {
            return json{{"translation", arrayJson(bone.translation)},
                        {"rotation", arrayJson(bone.rotation)},
                        {"euler", arrayJson(eulerDegrees(bone.rotation))}};
        });
    return head;
}

// Frame after frame: as one document in memory they would take many times the file's size.
void printJsonWithFrames(cli_context& context, const anim_data& data, const info_options& options)
{
    std::string text = headJson(data, options).dump();
    text.pop_back(); // the closing brace: one more key follows
    text += ",\"frames\":[";
    for (std::size_t i = 0; i < data.frame_count; ++i)
    {
        const json frame = {{"translations", arraysJson(data.frameTranslations(i))},
                            {"rotations", arraysJson(data.frameRotations(i))},
                            {"eulers", eulersJson(data.frameRotations(i))}};
        text += (i > 0 ? "," : "") + frame.dump();
        if (text.size() >= 1u << 16)
        {
            context.print(text);
            text.clear();
        }
    }
    context.print(text + "]}\n");
}

std::string frameText(const anim_data& data, std::size_t frame)
{
    std::string text = "\nframe " + std::to_string(frame);
    if (data.frame_rate > 0)
        text += ", " + number(static_cast<double>(frame) / static_cast<double>(data.frame_rate)) + " s";
    text += "\n";
    const auto name = [&data](std::size_t bone) { return "  " + padded(terminalText(data.bones[bone].name), 24); };
    const auto translations = data.frameTranslations(frame);
    for (std::size_t i = 0; i < data.animated_translations.size(); ++i)
        text += name(data.animated_translations[i]) + " translation" + columns(translations[i], 9, 4) + "\n";
    const auto rotations = data.frameRotations(frame);
    for (std::size_t i = 0; i < data.animated_rotations.size(); ++i)
        text += name(data.animated_rotations[i]) + " rotation   " +
                columns({rotations[i].x, rotations[i].y, rotations[i].z}, 9, 5) + column(rotations[i].w, 9, 5) +
                "   degrees" + columns(eulerDegrees(rotations[i]), 8, 2) + "\n";
    return text;
}

void runInfo(cli_context& context, const info_options& options)
{
    failure why;
    const auto data = loadAnim(context.game(), options.anim, depthOf(options), why);
    if (!data)
        return context.fail(why);
    if (context.is_json)
        return options.with_frames ? printJsonWithFrames(context, *data, options)
                                   : context.printJson(headJson(*data, options));
    context.print(describeAnimation(*data, options.anim, depthOf(options) == anim_depth::skeleton));
    for (std::size_t i = 0; options.with_frames && i < data->frame_count; ++i)
        context.print(frameText(*data, i));
}

} // namespace

void addAnimInfoCommand(CLI::App& anim, cli_context& context)
{
    const auto options = std::make_shared<info_options>();
    CLI::App* command = anim.add_subcommand("info", "Describe a skeleton or an animation");
    command->add_option("ANIM", options->anim, "The file: a path on disk, or pack: and an internal path")
        ->required()
        ->check(notEmpty());
    command
        ->add_option("--as", options->depth,
                     "How it is read: as an animation (all frames), as a skeleton (the first frame, as bind pose), or "
                     "as a template (no frames); animation")
        ->type_name("KIND")
        ->check(CLI::IsMember({"skeleton", "animation", "template"}));
    command->add_flag("--frames", options->with_frames, "Add the frames");
    context.addJsonOption(*command);
    command->callback([options, &context] {
        if (options->with_frames && depthOf(*options) != anim_depth::animation)
            throw CLI::ValidationError("--frames", "only what is read as an animation has frames");
        runInfo(context, *options);
    });
}

} // namespace korvane
