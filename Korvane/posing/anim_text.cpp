#include "Korvane/posing/anim_text.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace korvane
{

namespace
{

std::size_t shownWidth(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
                                                  [](char byte) // one that goes on with a character takes no room
                                                  { return (static_cast<unsigned char>(byte) & 0xc0) != 0x80; }));
}

std::string formatted(const char* format, int digits, double value)
{
    char text[400]; // the largest double with decimals
    std::snprintf(text, sizeof text, format, digits, value);
    return text;
}

// As deep as there are bones, which is at most 256.
void addRows(const skeleton_node& node, const std::string& branch, const std::string& below,
             std::vector<tree_row>& rows)
{
    rows.push_back({&node, branch + terminalText(node.name())});
    const auto children = node.children();
    for (const skeleton_node* child : children)
    {
        const bool is_last = child == children.back();
        addRows(*child, below + (is_last ? "└─ " : "├─ "), below + (is_last ? "   " : "│  "), rows);
    }
}

} // namespace

std::string number(double value)
{
    return std::isfinite(value) ? formatted("%.*g", 6, value) : floatText(static_cast<float>(value));
}

std::string column(float value, std::size_t width, int decimals)
{
    const double wide = static_cast<double>(value);
    std::string text = std::isfinite(wide) ? formatted("%.*f", decimals, wide) : floatText(value);
    for (int digits = 5; text.size() > width && digits > 0; --digits)
        text = formatted("%.*g", digits, wide);
    if (text.find_first_of("123456789naif") == std::string::npos && text.front() == '-') // no minus before a zero
        text.erase(0, 1);
    return std::string(text.size() < width ? width - text.size() + 1 : 1, ' ') + text;
}

std::string columns(const glm::vec3& value, std::size_t width, int decimals)
{
    return column(value.x, width, decimals) + column(value.y, width, decimals) + column(value.z, width, decimals);
}

std::string padded(const std::string& text, std::size_t width)
{
    const std::size_t shown = shownWidth(text);
    return text + std::string(shown < width ? width - shown : 0, ' ');
}

std::vector<tree_row> treeRows(const skeleton_tree& tree)
{
    std::vector<tree_row> rows;
    for (const skeleton_node& node : tree.nodes())
        if (!node.parent() && node.parentIndex() == -1)
            addRows(node, "", "", rows);
    for (const skeleton_node& node : tree.nodes())
        if (!node.parent() && node.parentIndex() != -1)
        {
            const std::size_t row = rows.size();
            addRows(node, "", "", rows);
            const bool is_there = node.parentIndex() >= 0 && tree.find(static_cast<std::uint32_t>(node.parentIndex()));
            rows[row].label += " (its parent " + std::to_string(node.parentIndex()) +
                               (is_there ? " leads back to it)" : " is none of the bones)");
        }
    return rows;
}

std::size_t labelWidth(const std::vector<tree_row>& rows, const std::string& heading)
{
    std::size_t width = shownWidth(heading);
    for (const tree_row& row : rows)
        width = std::max(width, shownWidth(row.label));
    return width;
}

namespace
{

// What the file says of one kind of a bone's values.
struct track_list
{
    const std::vector<std::uint32_t>& map;
    const std::vector<std::uint32_t>& bones; // that have a track, in the order of the tracks
    std::size_t static_count;
};

// The bone's track in a frame, the static value that the file names for it, or neither.
std::string trackText(const track_list& tracks, std::size_t bone)
{
    const auto found = std::find(tracks.bones.begin(), tracks.bones.end(), bone);
    if (found != tracks.bones.end())
        return std::to_string(found - tracks.bones.begin());
    const std::uint32_t entry = tracks.map[bone];
    if (entry == 0xffffffffu)
        return "-";
    if (hasTrack(entry))
        return "cut off"; // the frames have fewer values
    constexpr std::uint32_t first_static = 10000;
    return entry >= first_static && entry - first_static < tracks.static_count
               ? "static " + std::to_string(entry - first_static)
               : "no " + std::to_string(entry);
}

std::string treeText(const anim_data& data, bool is_skeleton)
{
    std::vector<joint> joints = bindPose(data);
    skeleton_tree tree;
    static_cast<void>(tree.build(joints)); // damaged ones say so themselves
    const std::vector<tree_row> rows = treeRows(tree);
    const std::size_t width = labelWidth(rows, "bone");
    std::string text = "\n  #  " + padded("bone", width) +
                       (is_skeleton ? "         x         y         z, metres    roll   pitch     yaw, degrees\n"
                                    : "  translation    rotation track\n");
    for (const tree_row& row : rows)
    {
        const auto index = static_cast<std::size_t>(row.node->index());
        const std::string shown = std::to_string(index);
        text += std::string(3 - std::min<std::size_t>(shown.size(), 3), ' ') + shown + "  " + padded(row.label, width);
        if (is_skeleton)
            text += columns(row.node->translation(), 9, 4) + "        " +
                    columns(eulerDegrees(row.node->rotation()), 7, 2) + "\n";
        else
            text +=
                "  " +
                padded(trackText({data.translation_map, data.animated_translations, data.static_translations.size()},
                                 index),
                       13) +
                "  " + trackText({data.rotation_map, data.animated_rotations, data.static_rotations.size()}, index) +
                "\n";
    }
    return text;
}

std::string trackCountText(std::size_t count, std::size_t with_bones, const std::string& kind)
{
    return counted(count, kind + " track") +
           (count > with_bones ? " (" + std::to_string(count - with_bones) + " of no bone)" : "");
}

std::string headText(const anim_data& data, const std::string& name, bool is_skeleton)
{
    std::string text = terminalText(name) + "\n  ";
    if (data.skeleton_name.empty())
        text += is_skeleton ? "skeleton without a name" : "names no skeleton";
    else
        text += (is_skeleton ? "skeleton " : "made for the skeleton ") + terminalText(data.skeleton_name);
    text += ", version " + std::to_string(data.version) + ", header word " + std::to_string(data.header_word) + "\n";
    if (data.sub_name_flag != 0)
        text += "  second name " + (data.sub_name.empty() ? "without a letter" : terminalText(data.sub_name)) + "\n";
    text += "  " + counted(data.frame_count, "frame") + ", " + number(static_cast<double>(data.frame_rate)) +
            " a second, " + number(static_cast<double>(data.end_time)) + " s\n";
    text += "  " + counted(data.bones.size(), "bone") + "; " +
            trackCountText(data.translation_count, data.animated_translations.size(), "translation") + ", " +
            trackCountText(data.rotation_count, data.animated_rotations.size(), "rotation") + "\n";
    if (!data.static_translations.empty() || !data.static_rotations.empty())
        text += "  static: " + counted(data.static_translations.size(), "translation") + ", " +
                counted(data.static_rotations.size(), "rotation") + " (poses leave such bones in the bind pose)\n";
    return text;
}

} // namespace

std::string describeAnimation(const anim_data& data, const std::string& name, bool is_skeleton)
{
    return headText(data, name, is_skeleton) + treeText(data, is_skeleton);
}

} // namespace korvane
