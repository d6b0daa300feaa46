#include "Korvane/fbx/export/export_scene.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/export_space.h"

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
    const auto contains = [&bone](std::string_view word) { return bone.name.find(word) != std::string::npos; };
    if (bone.is_root)
        return {0, 1, 1};
    if (contains("left")) // a name with both words is of the left
        return {0, 0, 1};
    return contains("right") ? glm::dvec3(1, 0, 0) : glm::dvec3(1, 1, 0);
}

// Of bones that make trees.
std::vector<std::size_t> parentsFirst(const std::vector<export_bone>& bones)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> chain;
    std::vector<bool> is_placed(bones.size());
    for (std::size_t i = 0; i < bones.size(); ++i)
    {
        for (std::size_t bone = i; !is_placed[bone]; bone = static_cast<std::size_t>(bones[bone].parent))
        {
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

bool makeBone(const anim_bone& source, std::size_t index, export_bone& bone, failure& why)
{
    bone.name = displayText(source.name);
    bone.parent = std::max(source.parent, -1);
    if (!isExportable(source.translation) || !isFinite(source.rotation))
        return fail(why, failure_kind::malformed,
                    "bone " + std::to_string(index) + " (" + bone.name +
                        ") has a bind pose that is no number, or too large");
    bone.translation = exportedTranslation(source.translation);
    bone.euler_degrees = principalAngles(exportedRotation(source.rotation));
    return true;
}

} // namespace

bool addBones(const anim_data& skeleton, export_scene& scene, failure& why)
{
    std::vector<export_bone> bones(skeleton.bones.size());
    if (bones.empty())
        return fail(why, failure_kind::malformed, "the skeleton has no bones");
    if (!checkParents(skeleton, why))
        return false;
    for (std::size_t i = 0; i < bones.size(); ++i)
        if (!makeBone(skeleton.bones[i], i, bones[i], why))
            return false;
    const auto root = std::find_if(bones.begin(), bones.end(), [](const export_bone& bone) { return bone.parent < 0; });
    if (root != bones.end())
        root->is_root = true;
    for (export_bone& bone : bones)
        bone.limb_colour = limbColour(bone);
    const std::vector<std::size_t> order = parentsFirst(bones);
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
