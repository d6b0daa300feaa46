#include "tools/demo_data/animations.h"

#include "tools/demo_data/animation_file.h"
#include "tools/demo_data/beast.h"
#include "tools/demo_data/clips.h"

#include <utility>

namespace korvane::demo
{

namespace
{

constexpr const char* skeleton_folder = "animations/skeletons/";

std::string skeletonPath(const rig_skeleton& skeleton)
{
    return skeleton_folder + skeleton.name + ".anim";
}

made_animation skeletonFile(const rig_skeleton& skeleton, std::uint32_t version)
{
    return {skeletonPath(skeleton),
            "skeleton: version " + std::to_string(version) + ", " + std::to_string(skeleton.bones.size()) + " bones",
            skeletonBytes(skeleton, version)};
}

std::string pathOf(const rig_skeleton& skeleton, const clip& source, const char* ending)
{
    return "animations/battle/" + skeleton.name + "/" + std::string(source.name) + ending;
}

made_animation animationFile(const rig_skeleton& skeleton, const clip& source, const std::vector<rig_pose>& frames,
                             std::uint32_t version, still_bones still)
{
    const std::string tracks = still == still_bones::tracks     ? ", a track for every bone"
                               : still == still_bones::constant ? ", static values"
                                                                : "";
    return {pathOf(skeleton, source, version == 5 ? "_v5.anim" : ".anim"),
            std::string(source.about) + ": version " + std::to_string(version) + tracks,
            animationBytes({version, source.frame_rate, still, &skeleton, frames})};
}

bool makeClips(const rig_skeleton& skeleton, std::span<const clip> clips,
               const std::function<bool(made_animation made)>& sink)
{
    std::size_t number = 0;
    for (const clip& each : clips)
    {
        const std::vector<rig_pose> frames = framesOf(each);
        // By turns: with static values, without, and with all tracks there can be.
        const still_bones kinds[] = {still_bones::constant, still_bones::nothing, still_bones::constant,
                                     still_bones::tracks};
        const still_bones newer = kinds[number % std::size(kinds)];
        const still_bones older = number % 5 == 0 ? still_bones::tracks : still_bones::nothing;
        if (!sink(animationFile(skeleton, each, frames, 7, newer)) ||
            !sink(animationFile(skeleton, each, frames, 5, older)))
            return false;
        ++number;
    }
    return true;
}

} // namespace

std::vector<rig_pose> framesOf(const clip& source)
{
    std::vector<rig_pose> frames;
    for (int i = 0; i <= source.intervals; ++i)
        frames.push_back(i > 0 && i == source.intervals && source.is_loop ? frames.front()
                                                                          : source.motion(i / source.frame_rate));
    return frames;
}

bool makeAnimations(const std::function<bool(made_animation made)>& sink)
{
    return sink(skeletonFile(humanoidRig(), 7)) && sink(skeletonFile(beastRig(), 5)) &&
           makeClips(humanoidRig(), standClips(), sink) && makeClips(humanoidRig(), gaitClips(), sink) &&
           makeClips(humanoidRig(), combatClips(), sink) && makeClips(humanoidRig(), rideClips(), sink) &&
           makeClips(beastRig(), beastClips(), sink);
}

made_animation olderSkeleton()
{
    return skeletonFile(humanoidRig(), 5);
}

made_animation moddedAnimation()
{
    const clip& source = moddedWave();
    return animationFile(humanoidRig(), source, framesOf(source), 7, still_bones::nothing);
}

} // namespace korvane::demo
