#include "Korvane/viewer/posed_scene.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/scene/scene_geometry.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

std::string quoted(std::string_view text)
{
    return "\"" + displayText(text) + "\"";
}

// "1 bone is", "3 bones are"
std::string bonesAre(std::size_t count)
{
    return counted(count, "bone") + (count == 1 ? " is" : " are");
}

std::string noSkeletonFor(const loaded_scene& scene, const anim_data& animation)
{
    std::string text = "the animation is made for the skeleton " + quoted(animation.skeleton_name);
    std::string shown;
    for (const scene_rig& rig : scene.rigs)
    {
        if (rig.id == animation.skeleton_name)
            return rig.problem.empty() ? text + ", which has no bones" : rig.problem;
        if (shown.find(quoted(rig.id)) == std::string::npos)
            shown += (shown.empty() ? ", but the model has " : " and ") + quoted(rig.id);
    }
    return text + (shown.empty() ? ", but the model has none" : shown);
}

// Bones are told apart by their numbers alone, so those of another name may move what they are not meant for.
void compareBones(const anim_data& animation, const anim_data& skeleton, std::vector<std::string>& problems)
{
    std::size_t renamed = 0, beyond = 0;
    std::string first_renamed, first_beyond;
    const auto look = [&](std::uint32_t bone) {
        const std::string name = bone < animation.bones.size() ? animation.bones[bone].name : std::string();
        if (bone >= skeleton.bones.size())
        {
            if (beyond++ == 0)
                first_beyond = "number " + std::to_string(bone) + (name.empty() ? "" : ", " + quoted(name));
        }
        else if (bone < animation.bones.size() && name != skeleton.bones[bone].name)
            if (renamed++ == 0)
                first_renamed = quoted(name) + " moves " + quoted(skeleton.bones[bone].name);
    };
    std::vector<std::uint32_t> moved = animation.animated_translations;
    moved.insert(moved.end(), animation.animated_rotations.begin(), animation.animated_rotations.end());
    std::sort(moved.begin(), moved.end());
    moved.erase(std::unique(moved.begin(), moved.end()), moved.end());
    std::for_each(moved.begin(), moved.end(), look);
    if (beyond > 0)
        problems.push_back(bonesAre(beyond) + " moved that the skeleton does not have (" + first_beyond + ")");
    if (renamed > 0)
        problems.push_back(bonesAre(renamed) + " called otherwise in the skeleton (" + first_renamed +
                           "): the pose may be wrong");
}

// Puts what the bone has in the bind pose where a key is no number; how many there were.
template <class value>
std::size_t repair(std::span<value> keys, const std::vector<std::uint32_t>& bones, std::uint32_t tracks,
                   const std::vector<anim_bone>& bind, value anim_bone::*member)
{
    std::size_t repaired = 0;
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (!isUsable(keys[i]))
        {
            const std::size_t track = tracks == 0 ? 0 : i % tracks;
            const std::size_t bone = track < bones.size() ? bones[track] : bind.size();
            keys[i] = bone < bind.size() ? bind[bone].*member : anim_bone().*member;
            ++repaired;
        }
    return repaired;
}

bool isWhole(const anim_data& data)
{
    const auto isFine = [](const auto& key) { return isUsable(key); };
    const std::span translations(data.translations);
    const std::span rotations(data.rotations);
    return std::all_of(translations.begin(), translations.end(), isFine) &&
           std::all_of(rotations.begin(), rotations.end(), isFine);
}

} // namespace

animation_fit fitAnimation(const loaded_scene& scene, std::shared_ptr<const anim_data> source)
{
    animation_fit fit;
    fit.animation = std::move(source);
    if (!fit.animation)
    {
        fit.problems.push_back("there is no animation to show");
        return fit;
    }
    const anim_data& data = *fit.animation;
    failure why;
    if (animation probe; !probe.expand(fit.animation, {}, why))
    {
        fit.problems.push_back(why.what);
        return fit;
    }
    for (std::size_t i = 0; i < scene.rigs.size(); ++i)
        if (const scene_rig& rig = scene.rigs[i]; rig.skeleton && rig.id == data.skeleton_name)
            fit.rigs.push_back(i);
    if (fit.rigs.empty())
    {
        fit.problems.push_back(noSkeletonFor(scene, data));
        return fit;
    }
    const anim_data& skeleton = *scene.rigs[fit.rigs.front()].skeleton;
    compareBones(data, skeleton, fit.problems);
    if (isWhole(data))
        return fit;
    auto repaired = std::make_shared<anim_data>(data);
    const std::size_t count = repair(std::span<glm::vec3>(repaired->translations), data.animated_translations,
                                     data.translation_count, skeleton.bones, &anim_bone::translation) +
                              repair(std::span<glm::quat>(repaired->rotations), data.animated_rotations,
                                     data.rotation_count, skeleton.bones, &anim_bone::rotation);
    fit.animation = std::move(repaired);
    fit.problems.push_back(counted(count, "key holds no usable number", "keys hold no usable numbers") +
                           ": the bones keep the bind pose there");
    return fit;
}

} // namespace korvane
