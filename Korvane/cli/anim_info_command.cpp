// anim info: what an .anim file holds.

#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <cstdio>

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

json arrayJson(const glm::vec3& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z)};
}

json arrayJson(const glm::quat& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z), jsonNumber(value.w)};
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
    return listJson(values,
                    [](const auto& value)
                    {
                        return arrayJson(value);
                    });
}

json eulersJson(std::span<const glm::quat> rotations)
{
    return listJson(rotations,
                    [](const glm::quat& rotation)
                    {
                        return arrayJson(eulerDegrees(rotation));
                    });
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
    head["bones"] =
        listJson(data.bones,
                 [](const anim_bone& bone)
                 {
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
        head["bind"] = listJson(data.bones,
                                [](const anim_bone& bone)
                                {
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

std::string counted(std::size_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

// Right-aligned, without a minus before a zero.
std::string column(float value, int width, int decimals)
{
    char text[64];
    const double wide = static_cast<double>(value);
    const bool is_large = !(wide > -1e6 && wide < 1e6);
    std::snprintf(text, sizeof text, is_large ? "%*.*g" : "%*.*f", width, is_large ? 4 : decimals, wide);
    std::string result = text;
    if (const std::size_t minus = result.find('-');
        minus != result.npos && result.find_first_not_of(" -0.") == result.npos)
        result[minus] = ' ';
    return result;
}

std::string columns(const glm::vec3& value, int width, int decimals)
{
    return column(value.x, width, decimals) + column(value.y, width, decimals) + column(value.z, width, decimals);
}

// A bone's line begins with the branches that lead to it.
struct tree_row
{
    std::size_t bone;
    std::string label;
    std::size_t width; // in characters
};

// The bones as a tree, children in the order of the file. Those whose parents lead to no root follow, each alone.
class bone_tree
{
public:
    explicit bone_tree(const anim_data& data) : m_data(data), m_children(data.bones.size()), m_seen(data.bones.size())
    {
        for (const anim_bone& bone : data.bones)
            if (hasParent(bone))
                m_children[static_cast<std::size_t>(bone.parent)].push_back(bone.index);
        for (const anim_bone& bone : data.bones)
            if (bone.parent == -1)
                add(bone.index, "", "", 0);
        for (const anim_bone& bone : data.bones)
            if (!m_seen[bone.index])
                addLine(bone.index, "", " (its parent " + std::to_string(bone.parent) + " leads nowhere)", 0);
    }

    const std::vector<tree_row>& rows() const { return m_rows; }

private:
    bool hasParent(const anim_bone& bone) const
    {
        return bone.parent >= 0 && static_cast<std::size_t>(bone.parent) < m_data.bones.size();
    }
    void addLine(std::size_t bone, const std::string& branches, const std::string& remark, std::size_t depth)
    {
        const std::string name = terminalText(m_data.bones[bone].name);
        const auto continued = std::count_if(name.begin(), name.end(),
                                             [](char byte)
                                             {
                                                 return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
                                             });
        m_rows.push_back({bone, branches + name + remark,
                          depth * 3 + name.size() - static_cast<std::size_t>(continued) + remark.size()});
        m_seen[bone] = true;
    }
    // As deep as there are bones, at most 256: a bone below itself is not reached from a root.
    void add(std::size_t bone, const std::string& branch, const std::string& below, std::size_t depth)
    {
        addLine(bone, branch, "", depth);
        const auto& children = m_children[bone];
        for (std::size_t i = 0; i < children.size(); ++i)
        {
            const bool is_last = i + 1 == children.size();
            add(children[i], below + (is_last ? "└─ " : "├─ "), below + (is_last ? "   " : "│  "), depth + 1);
        }
    }

    const anim_data& m_data;
    std::vector<std::vector<std::size_t>> m_children;
    std::vector<bool> m_seen;
    std::vector<tree_row> m_rows;
};

// "12", "static 3", or nothing for a bone that the file leaves alone. Entries from 10000 on count static values.
std::string trackText(std::uint32_t entry, std::size_t static_count)
{
    if (entry == 0xffffffffu)
        return "-";
    if (hasTrack(entry))
        return std::to_string(entry);
    const std::uint32_t number = entry - 10000;
    return entry >= 10000 && number < static_count ? "static " + std::to_string(number)
                                                   : "none (" + std::to_string(entry) + ")";
}

std::string treeText(const anim_data& data, bool is_skeleton)
{
    const bone_tree tree(data);
    std::size_t width = 4;
    for (const tree_row& row : tree.rows())
        width = std::max(width, row.width);
    const auto padded = [](std::string text, std::size_t shown, std::size_t to)
    {
        return text + std::string(to > shown ? to - shown : 0, ' ');
    };
    std::string text = "\n  #  " + padded("bone", 4, width) +
                       (is_skeleton ? "        x        y        z, metres    roll   pitch     yaw, degrees\n"
                                    : "  translation   rotation track\n");
    for (const tree_row& row : tree.rows())
    {
        const anim_bone& bone = data.bones[row.bone];
        char number[16];
        std::snprintf(number, sizeof number, "%3zu", row.bone);
        text += number + std::string("  ") + padded(row.label, row.width, width);
        if (is_skeleton)
            text += columns(bone.translation, 9, 4) + "        " + columns(eulerDegrees(bone.rotation), 8, 2) + "\n";
        else
        {
            const std::string move = trackText(data.translation_map[row.bone], data.static_translations.size());
            text += "  " + padded(move, move.size(), 12) + "  " +
                    trackText(data.rotation_map[row.bone], data.static_rotations.size()) + "\n";
        }
    }
    return text;
}

std::string headText(const anim_data& data, const info_options& options)
{
    const anim_depth depth = depthOf(options);
    const char* const kind = depth == anim_depth::skeleton ? "skeleton " : "made for the skeleton ";
    std::string text = terminalText(options.anim) + "\n  " + kind + terminalText(data.skeleton_name) + ", version " +
                       std::to_string(data.version) + ", header word " + std::to_string(data.header_word) + "\n";
    if (data.sub_name_flag != 0)
        text += "  second name " + terminalText(data.sub_name) + "\n";
    text += "  " + counted(data.frame_count, "frame") + ", " + floatText(data.frame_rate) + " a second, " +
            floatText(data.end_time) + " s\n";
    text += "  " + counted(data.bones.size(), "bone") + "; " + counted(data.translation_count, "translation track") +
            ", " + counted(data.rotation_count, "rotation track");
    if (!data.static_translations.empty() || !data.static_rotations.empty())
        text += "; static: " + counted(data.static_translations.size(), "translation") + ", " +
                counted(data.static_rotations.size(), "rotation");
    return text + "\n";
}

std::string frameText(const anim_data& data, std::size_t frame)
{
    char time[48];
    std::snprintf(time, sizeof time, "%.4f",
                  data.frame_rate > 0 ? static_cast<double>(frame) / static_cast<double>(data.frame_rate) : 0.0);
    std::string text = "\nframe " + std::to_string(frame) + ", " + time + " s\n";
    const auto name = [&data](std::size_t bone)
    {
        std::string shown = terminalText(data.bones[bone].name);
        shown.resize(std::max<std::size_t>(shown.size(), 24), ' ');
        return shown;
    };
    const auto translations = data.frameTranslations(frame);
    for (std::size_t i = 0; i < data.animated_translations.size(); ++i)
        text += "  " + name(data.animated_translations[i]) + " translation" + columns(translations[i], 10, 4) + "\n";
    const auto rotations = data.frameRotations(frame);
    for (std::size_t i = 0; i < data.animated_rotations.size(); ++i)
        text += "  " + name(data.animated_rotations[i]) + " rotation   " +
                columns({rotations[i].x, rotations[i].y, rotations[i].z}, 10, 5) + column(rotations[i].w, 10, 5) +
                "   degrees" + columns(eulerDegrees(rotations[i]), 9, 2) + "\n";
    return text;
}

void runInfo(cli_context& context, const info_options& options)
{
    failure why;
    const auto data = loadAnim(context, options.anim, depthOf(options), why);
    if (!data)
        return context.fail(why);
    if (context.is_json)
        return options.with_frames ? printJsonWithFrames(context, *data, options)
                                   : context.printJson(headJson(*data, options));
    context.print(headText(*data, options) + treeText(*data, depthOf(options) == anim_depth::skeleton));
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
    command->callback(
        [options, &context]
        {
            if (options->with_frames && depthOf(*options) != anim_depth::animation)
                throw CLI::ValidationError("--frames", "only what is read as an animation has frames");
            runInfo(context, *options);
        });
}

} // namespace korvane
