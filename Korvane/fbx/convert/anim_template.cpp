#include "Korvane/fbx/convert/anim_template.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <unordered_map>

namespace korvane
{

namespace
{

constexpr std::uint32_t no_track = 0xffffffff;
constexpr std::uint32_t first_static = 10000; // docs/formats/anim.md, "Static block"

// The place of a bone's track in a frame.
std::optional<std::size_t> trackOf(const std::vector<std::uint32_t>& animated, std::uint32_t bone)
{
    const auto found = std::lower_bound(animated.begin(), animated.end(), bone);
    if (found == animated.end() || *found != bone)
        return std::nullopt;
    return static_cast<std::size_t>(found - animated.begin());
}

bool isStatic(std::uint32_t entry, std::size_t count)
{
    return entry >= first_static && entry - first_static < count;
}

anim_template::bone boneOf(const anim_data& data, std::uint32_t index)
{
    anim_template::bone bone;
    bone.name = data.bones[index].name;
    bone.parent = data.bones[index].parent;
    const auto translation_track = trackOf(data.animated_translations, index);
    const auto rotation_track = trackOf(data.animated_rotations, index);
    bone.has_translations = translation_track.has_value();
    bone.has_rotations = rotation_track.has_value();
    const std::uint32_t moved = data.translation_map[index];
    const std::uint32_t turned = data.rotation_map[index];
    const bool has_frames = data.frame_count > 0 && (!data.translations.empty() || !data.rotations.empty());
    if (translation_track && has_frames) // frames are in the program's space, static values in the file's
    {
        const glm::vec3& value = data.translations[*translation_track];
        bone.translation = glm::dvec3(-value.x, value.y, value.z);
    }
    else if (isStatic(moved, data.static_translations.size()))
        bone.translation = data.static_translations[moved - first_static];
    if (rotation_track && has_frames)
    {
        const glm::quat& value = data.rotations[*rotation_track];
        bone.rotation = glm::dquat(value.w, value.x, -value.y, -value.z);
    }
    else if (isStatic(turned, data.static_rotations.size()))
        bone.rotation = data.static_rotations[turned - first_static];
    bone.has_static_value =
        isStatic(moved, data.static_translations.size()) || isStatic(turned, data.static_rotations.size());
    return bone;
}

// Indices into the template; names that stand there twice mean the first bone.
std::vector<std::uint32_t> selected(const anim_data& data, const std::vector<std::string>& names,
                                    std::vector<std::string>& unknown)
{
    std::unordered_map<std::string, std::uint32_t> by_name;
    for (std::uint32_t i = 0; i < data.bones.size(); ++i)
        by_name.emplace(displayText(data.bones[i].name), i);
    std::vector<std::uint32_t> result;
    std::vector<bool> is_taken(data.bones.size(), false);
    for (const std::string& name : names)
    {
        const auto found = by_name.find(displayText(name));
        if (found == by_name.end())
            unknown.push_back(name);
        else if (!is_taken[found->second])
        {
            is_taken[found->second] = true;
            result.push_back(found->second);
        }
    }
    return result;
}

// A ring of parents ends after as many steps as there are bones.
std::int32_t nearestSelected(const anim_data& data, const std::unordered_map<std::int32_t, std::int32_t>& places,
                             std::int32_t parent)
{
    for (std::size_t step = 0; step < data.bones.size(); ++step)
    {
        if (parent < 0 || static_cast<std::size_t>(parent) >= data.bones.size())
            return -1;
        const auto found = places.find(parent);
        if (found != places.end())
            return found->second;
        parent = data.bones[static_cast<std::size_t>(parent)].parent;
    }
    return -1;
}

// The same tracks, numbered in the new order.
std::vector<std::uint32_t> renumbered(const std::vector<std::uint32_t>& map, const std::vector<std::uint32_t>& bones,
                                      const std::vector<std::uint32_t>& animated)
{
    std::vector<std::uint32_t> result;
    std::uint32_t next = 0;
    for (const std::uint32_t bone : bones)
    {
        if (trackOf(animated, bone))
            result.push_back(next++);
        else
            result.push_back(hasTrack(map[bone]) ? no_track : map[bone]);
    }
    return result;
}

} // namespace

std::size_t anim_template::translationCount() const
{
    return static_cast<std::size_t>(
        std::count_if(bones.begin(), bones.end(), [](const bone& each) { return each.has_translations; }));
}

std::size_t anim_template::rotationCount() const
{
    return static_cast<std::size_t>(
        std::count_if(bones.begin(), bones.end(), [](const bone& each) { return each.has_rotations; }));
}

anim_template makeTemplate(const anim_data& data, const std::optional<std::vector<std::string>>& selection)
{
    anim_template result;
    if (!selection)
    {
        for (std::uint32_t i = 0; i < data.bones.size(); ++i)
            result.bones.push_back(boneOf(data, i));
        result.translation_map = data.translation_map;
        result.rotation_map = data.rotation_map;
        return result;
    }
    const std::vector<std::uint32_t> bones = selected(data, *selection, result.unknown);
    std::unordered_map<std::int32_t, std::int32_t> places;
    for (std::size_t i = 0; i < bones.size(); ++i)
        places.emplace(static_cast<std::int32_t>(bones[i]), static_cast<std::int32_t>(i));
    for (const std::uint32_t bone : bones)
    {
        result.bones.push_back(boneOf(data, bone));
        result.bones.back().parent = nearestSelected(data, places, result.bones.back().parent);
    }
    result.translation_map = renumbered(data.translation_map, bones, data.animated_translations);
    result.rotation_map = renumbered(data.rotation_map, bones, data.animated_rotations);
    return result;
}

} // namespace korvane
