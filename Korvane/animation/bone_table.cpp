#include "Korvane/animation/bone_table.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr std::string_view face_words[] = {"mouth",  "brow", "nose",  "tongue",  "lip", "eye",
                                           "socket", "jaw",  "cheek", "nostril", "ear"};
constexpr std::string_view hand_words[] = {"finger", "thumb", "index", "ring", "pinky", "middle"};

// Parts of longer words count: a forearm is part of the face, and a spring is part of a hand.
template <std::size_t count>
bool containsAny(std::string_view name, const std::string_view (&words)[count])
{
    return std::any_of(std::begin(words), std::end(words),
                       [name](std::string_view word) { return name.find(word) != std::string_view::npos; });
}

std::string padded(std::string_view text, std::size_t width)
{
    std::string result(text);
    result.resize(std::max(width, text.size()), ' ');
    return result;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

} // namespace

std::string_view boneType(const anim_bone& bone)
{
    if (bone.index == 0)
        return "BT_ROOT,";
    if (bone.parent == 0 && bone.index == 1)
        return "BT_CORE,";
    if (bone.parent == -1)
        return "BT_FLOATING,";
    const std::string name = toLower(bone.name);
    if (containsAny(name, face_words))
        return "BT_FACE,";
    if (!containsAny(name, hand_words))
        return "BT_CORE,";
    if (name.find("left") != std::string::npos)
        return "BT_LEFT_HAND,";
    if (name.find("right") != std::string::npos)
        return "BT_RIGHT_HAND,";
    return "BT_CORE,";
}

std::string boneTable(const anim_data& skeleton, std::string_view line_end)
{
    constexpr std::size_t type_width = 25;
    std::size_t name_width = 0; // with the comma, and at least three blanks behind it
    for (const anim_bone& bone : skeleton.bones)
        name_width = std::max(name_width, bone.name.size() + 4);

    std::string text;
    const auto line = [&text, line_end](std::string_view content) { (text += content) += line_end; };
    constexpr std::string_view rule = "// *******************************************************";
    line(rule);
    line("// Korvane 0.7 Bone Table Export");
    line(rule);
    line("");
    line("// Skeleton:\"" + skeleton.skeleton_name + '"');
    line("// Bones Defintion");
    line("");
    line("// version info");
    line("version=1");
    line("reference_skeleton=true");
    line("cinematic=true");
    line("");
    line("// <bone_name>\t\t\t\t<bone_type>\t\t\t\t<sort_order>\t\t\t\t<optional flags>");
    for (const anim_bone& bone : skeleton.bones)
        line(padded(bone.name + ',', name_width) + padded(boneType(bone), type_width) + "\t\t\t" +
             std::to_string(bone.index));
    return text;
}

bool readBoneTable(std::string_view text, std::vector<std::string>& names, failure& why)
{
    constexpr std::string_view mark = "\xef\xbb\xbf"; // some editors put it before UTF-8
    if (text.starts_with(mark))
        text.remove_prefix(mark.size());
    std::vector<std::string> found;
    std::size_t offset = 0;
    for (std::size_t number = 1; offset < text.size(); ++number)
    {
        const std::size_t end = std::min(text.find('\n', offset), text.size());
        const std::string_view line = trimmed(text.substr(offset, end - offset));
        const std::size_t comma = line.find(',');
        if (comma != std::string_view::npos && !line.starts_with("//"))
            found.emplace_back(trimmed(line.substr(0, comma)));
        else if (!line.empty() && !line.starts_with("//") && line.find('=') == std::string_view::npos)
        {
            if (!why)
                why = {failure_kind::malformed, "neither a bone with its type nor a setting nor a comment", "", offset,
                       "line " + std::to_string(number)};
            return false;
        }
        offset = end + 1;
    }
    if (found.empty())
        return fail(why, failure_kind::malformed, "there is no bone in the table");
    names = std::move(found);
    return true;
}

bool writeBoneTable(const anim_data& skeleton, const std::string& path, failure& why)
{
    return writeWholeFile(path, boneTable(skeleton), why);
}

} // namespace korvane
