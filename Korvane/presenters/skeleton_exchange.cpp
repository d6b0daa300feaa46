#include "Korvane/presenters/skeleton_exchange.h"

#include "Korvane/archives/pack_entry.h"
#include "Korvane/scene/scene_rigs.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

// The bone of the same name, or the first one, and its name is among the lost ones; below zero stays so.
int sameBone(int bone, const scene_rig& former, const scene_rig& fresh, std::vector<std::string>& lost)
{
    if (bone < 0 || !former.skeleton || static_cast<std::size_t>(bone) >= former.skeleton->bones.size())
        return bone;
    const std::string& name = former.skeleton->bones[static_cast<std::size_t>(bone)].name;
    const int found = findBone(*fresh.skeleton, name);
    if (found < 0 && std::find(lost.begin(), lost.end(), name) == lost.end())
        lost.push_back(name);
    return std::max(found, 0);
}

} // namespace

bool readSkeleton(const pack_file_node& entry, const std::string& id, scene_rig& rig, failure& why)
{
    memory_file bytes;
    anim_file file;
    if (!readEntry(entry, bytes, why))
        return false;
    file.openFromMemory(std::move(bytes), placeOf(entry));
    if (!file.loadSkeleton({}, why))
        return why ? false
                   : fail(why, failure_kind::unsupported, "this is no skeleton of version 5 or 7", placeOf(entry));
    rig = rigOf(file.takeData(), id, std::string(entry.internalPath()));
    rig.place.is_entry = true;
    return true;
}

scene_pointer exchangeSkeleton(const loaded_scene& scene, const scene_rig& by, std::vector<std::string>& lost)
{
    auto changed = std::make_shared<loaded_scene>(scene);
    for (scene_rig& rig : changed->rigs)
        if (rig.id == by.id)
        {
            rig.skeleton = by.skeleton;
            rig.path = by.path;
            rig.place = by.place;
            rig.problem = by.problem;
        }
    for (std::size_t i = 0; i < scene.rigs.size(); ++i)
    {
        const int number = static_cast<int>(i);
        for (scene_part& part : changed->parts)
            if (part.rig == number && scene.rigs[i].id == by.id)
                part.bone = sameBone(part.bone, scene.rigs[i], by, lost);
        for (scene_rig& rig : changed->rigs)
            if (rig.mount == number && scene.rigs[i].id == by.id)
                rig.mount_bone = sameBone(rig.mount_bone, scene.rigs[i], by, lost);
    }
    return changed;
}

} // namespace korvane
