#include "Korvane/animation/anim_dump.h"

#include "EASY_GUI/services/file_system.h"

#include <charconv>

namespace korvane
{

namespace
{

constexpr std::size_t name_width = 24;
constexpr std::size_t quaternion_width = 64; // holds the longest: 14 + 4 * 9 + 3 + 1

// As printf's "%f", but never with a comma for the point.
void addNumber(std::string& text, float value)
{
    char digits[64]; // the largest float has 39 before its point
    const auto end =
        std::to_chars(digits, digits + sizeof digits, static_cast<double>(value), std::chars_format::fixed, 6).ptr;
    text.append(digits, end);
}

void padFrom(std::string& text, std::size_t begin, std::size_t width)
{
    if (text.size() < begin + width)
        text.resize(begin + width, ' ');
}

void addRotation(std::string& text, std::string_view name, const glm::quat& rotation)
{
    text += "Name: ";
    const std::size_t name_begin = text.size();
    text += name;
    padFrom(text, name_begin, name_width);
    text += '\t';
    const std::size_t quaternion_begin = text.size();
    text += "Quaternnion: {";
    addNumber(text, rotation.x);
    text += ',';
    addNumber(text, rotation.y);
    text += ',';
    addNumber(text, rotation.z);
    text += ',';
    addNumber(text, rotation.w);
    text += '}';
    padFrom(text, quaternion_begin, quaternion_width);
    const glm::vec3 degrees = eulerDegrees(rotation);
    text += "\tEulers Degrees: (";
    addNumber(text, degrees.x);
    text += ", ";
    addNumber(text, degrees.y);
    text += ", ";
    addNumber(text, degrees.z);
    text += ')';
}

} // namespace

std::string animDump(const anim_data& animation, const anim_origin& origin, std::string_view line_end)
{
    constexpr std::size_t usual_line = 150;
    std::string text;
    text.reserve(1024 + animation.rotations.size() * usual_line);
    const auto line = [&text, line_end](std::string_view content) { (text += content) += line_end; };
    line("***** ANIM DATA Dump - Korvane v0.6  ******");
    line("Parent Pack File: " + origin.pack);
    line("File: " + origin.path);
    line("joint_count: " + std::to_string(animation.bones.size()));
    line("frame_count: " + std::to_string(animation.frame_count));
    line("");
    line("rotation_dump:");
    // A template has no frames, although it may speak of billions.
    const std::size_t frames = animation.frame_count;
    const bool has_tracks = animation.rotation_count > 0 || animation.translation_count > 0;
    const bool has_frames = animation.rotations.size() == frames * animation.rotation_count &&
                            animation.translations.size() == frames * animation.translation_count &&
                            (has_tracks || frames <= anim_file::max_trackless_frames);
    for (std::size_t frame = 0; has_frames && frame < frames; ++frame)
    {
        line("");
        line("");
        line("Frame Number: " + std::to_string(frame));
        std::size_t track = 0;
        for (const glm::quat& rotation : animation.frameRotations(frame))
        {
            const std::vector<std::uint32_t>& bones = animation.animated_rotations;
            addRotation(text, track < bones.size() ? std::string_view(animation.bones[bones[track]].name) : "",
                        rotation);
            text += line_end;
            ++track;
        }
    }
    return text;
}

bool writeAnimDump(const anim_data& animation, const anim_origin& origin, const std::string& path, failure& why)
{
    return writeWholeFile(path, animDump(animation, origin), why);
}

} // namespace korvane
