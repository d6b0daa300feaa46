#include "Korvane/fbx/export/export_scene.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/export_space.h"
#include "Korvane/fbx/export/rigid_place.h"

#include <glm/matrix.hpp>

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

bool addBones(const anim_data& skeleton, export_scene& scene, failure& why, std::int32_t mount)
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
    if (root != bones.end() && mount < 0)
        root->is_root = true;
    for (export_bone& bone : bones)
        bone.limb_colour = limbColour(bone);
    const glm::dmat4 ground = mount < 0 ? glm::dmat4(1) : scene.bones[static_cast<std::size_t>(mount)].global;
    for (const std::size_t i : parentsFirst(bones))
    {
        export_bone& bone = bones[i];
        glm::dmat4 local = glm::mat4_cast(exportedRotation(skeleton.bones[i].rotation));
        local[3] = glm::dvec4(bone.translation, 1);
        bone.global = (bone.parent < 0 ? ground : bones[static_cast<std::size_t>(bone.parent)].global) * local;
    }
    const auto first = static_cast<std::int32_t>(scene.bones.size());
    scene.skeletons.push_back(scene.bones.size());
    for (export_bone& bone : bones)
    {
        bone.parent = bone.parent < 0 ? mount : bone.parent + first;
        scene.bones.push_back(std::move(bone));
    }
    return true;
}

std::int32_t addMount(const std::string& name, std::int32_t parent, const glm::mat4& place, export_scene& scene)
{
    const glm::dmat4& ground = scene.bones[static_cast<std::size_t>(parent)].global;
    const rigid_place local(glm::inverse(ground) * exportedPlace(place));
    if (!local.isWhole())
        scene.warnings.push_back(name + ": what hangs here stands without the scale of its attachment point");
    export_bone bone;
    bone.name = displayText(name);
    bone.parent = parent;
    bone.translation = local.translation;
    bone.euler_degrees = principalAngles(local.rotation);
    bone.global = ground * local.matrix();
    bone.limb_colour = limbColour(bone);
    scene.bones.push_back(std::move(bone));
    return static_cast<std::int32_t>(scene.bones.size() - 1);
}

} // namespace korvane
