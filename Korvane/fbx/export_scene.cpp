#include "Korvane/fbx/export_scene.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/euler_keys.h"
#include "Korvane/fbx/export_space.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane
{

namespace
{

glm::dvec3 limbColour(const export_bone& bone)
{
    const auto contains = [&bone](std::string_view word)
    {
        return bone.name.find(word) != std::string::npos;
    };
    if (bone.is_root)
        return {0, 1, 1};
    if (contains("left")) // a name with both words is of the left
        return {0, 0, 1};
    return contains("right") ? glm::dvec3(1, 0, 0) : glm::dvec3(1, 1, 0);
}

bool boneFailure(failure& why, std::size_t bone, const std::string& name, const std::string& text)
{
    return fail(why, failure_kind::malformed, "bone " + std::to_string(bone) + " (" + displayText(name) + ") " + text);
}

// Parents before children; empty, with the reason, when the bones make no trees.
std::vector<std::size_t> parentsFirst(const std::vector<export_bone>& bones, failure& why)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> chain;
    std::vector<bool> is_placed(bones.size());
    for (std::size_t i = 0; i < bones.size(); ++i)
    {
        for (std::size_t bone = i; !is_placed[bone]; bone = static_cast<std::size_t>(bones[bone].parent))
        {
            if (chain.size() == bones.size())
            {
                boneFailure(why, i, bones[i].name, "is among its own descendants");
                return {};
            }
            chain.push_back(bone);
            if (bones[bone].parent < 0)
                break;
        }
        for (; !chain.empty(); chain.pop_back())
        {
            is_placed[chain.back()] = true;
            order.push_back(chain.back());
        }
    }
    return order;
}

bool makeBone(const anim_bone& source, std::size_t index, std::size_t count, export_bone& bone, failure& why)
{
    bone.name = displayText(source.name);
    bone.parent = std::max(source.parent, -1);
    if (bone.parent >= static_cast<std::int32_t>(count))
        return boneFailure(why, index, source.name,
                           "has the parent " + std::to_string(source.parent) + ", but there are " +
                               std::to_string(count) + " bones");
    if (!isExportable(source.translation) || !isFinite(source.rotation))
        return boneFailure(why, index, source.name, "has a bind pose that is no number, or too large");
    bone.is_root = index == 0 && bone.parent < 0;
    bone.translation = exportedTranslation(source.translation);
    bone.euler_degrees = principalAngles(exportedRotation(source.rotation));
    bone.limb_colour = limbColour(bone);
    return true;
}

} // namespace

bool addBones(const anim_data& skeleton, export_scene& scene, failure& why)
{
    std::vector<export_bone> bones(skeleton.bones.size());
    if (bones.empty())
        return fail(why, failure_kind::malformed, "the skeleton has no bones");
    for (std::size_t i = 0; i < bones.size(); ++i)
        if (!makeBone(skeleton.bones[i], i, bones.size(), bones[i], why))
            return false;
    const std::vector<std::size_t> order = parentsFirst(bones, why);
    if (order.empty())
        return false;
    for (const std::size_t i : order)
    {
        export_bone& bone = bones[i];
        glm::dmat4 local = glm::mat4_cast(exportedRotation(skeleton.bones[i].rotation));
        local[3] = glm::dvec4(bone.translation, 1);
        bone.global = bone.parent < 0 ? local : bones[static_cast<std::size_t>(bone.parent)].global * local;
    }
    scene.bones = std::move(bones);
    return true;
}

} // namespace korvane
