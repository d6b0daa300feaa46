// The take of an export_scene: an animation fitted to the skeleton, as keys.

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/export_space.h"
#include "Korvane/posing/animation.h"
#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

// The fastest and the slowest take whose times a file can count.
constexpr double slowest_rate = 1e-3, fastest_rate = 1e6;
constexpr double longest_seconds = 1e8; // three years; the ticks of a file end at six

// The bones of the skeleton among those that have a track.
std::vector<std::uint32_t> movedBones(const std::vector<std::uint32_t>& bones, std::size_t tracks, std::size_t count)
{
    std::vector<std::uint32_t> moved(bones.begin(),
                                     bones.begin() + static_cast<std::ptrdiff_t>(std::min(bones.size(), tracks)));
    std::erase_if(moved, [count](std::uint32_t bone) { return bone >= count; });
    return moved;
}

bool areNumbers(const anim_data& source, std::uint32_t frame, failure& why)
{
    const auto translations = source.frameTranslations(frame);
    for (std::size_t i = 0; i < translations.size(); ++i)
        if (!isExportable(translations[i]))
            return fail(why, failure_kind::malformed,
                        "frame " + std::to_string(frame) + ", translation " + std::to_string(i) +
                            " is no number, or too large");
    return true;
}

} // namespace

bool makeTake(std::shared_ptr<const anim_data> animation_data, const anim_data& skeleton, take_span span,
              export_take& take, failure& why, std::size_t first_bone)
{
    std::vector<joint> pose = bindPose(skeleton);
    animation frames;
    const std::shared_ptr<const anim_data> source = animation_data;
    if (!frames.expand(std::move(animation_data), pose, why))
        return false;
    export_take made;
    made.frame_rate = frames.frameRate();
    made.frame_count = frames.frameCount();
    if (!(made.frame_rate >= slowest_rate && made.frame_rate <= fastest_rate))
        return fail(why, failure_kind::malformed,
                    "a frame rate of " + floatText(source->frame_rate) + " frames a second cannot be exported");
    if (made.frame_count / made.frame_rate > longest_seconds)
        return fail(why, failure_kind::malformed,
                    counted(made.frame_count, "frame") + " at " + floatText(source->frame_rate) +
                        " a second are too long for a file");
    made.stop_seconds =
        span == take_span::half ? made.frame_count * 0.5 / made.frame_rate : std::max(made.frame_count, 1u) - 1.0;
    if (span == take_span::full)
        made.stop_seconds /= made.frame_rate;

    for (const std::uint32_t bone : movedBones(source->animated_translations, source->translation_count, pose.size()))
        made.translations.push_back({bone, std::vector<glm::dvec3>(made.frame_count)});
    const auto turned = movedBones(source->animated_rotations, source->rotation_count, pose.size());
    std::vector<std::vector<glm::dquat>> rotations(turned.size(), std::vector<glm::dquat>(made.frame_count));
    for (std::uint32_t frame = 0; frame < made.frame_count; ++frame)
        if (!areNumbers(*source, frame, why))
            return false;
    for (std::uint32_t frame = 0; frame < made.frame_count; ++frame)
    {
        frames.sample(frame, 0, pose);
        for (export_track& track : made.translations)
            track.keys[frame] = exportedTranslation(pose[track.bone].translation);
        for (std::size_t i = 0; i < turned.size(); ++i)
            rotations[i][frame] = exportedRotation(pose[turned[i]].rotation);
    }
    for (std::size_t i = 0; i < turned.size(); ++i)
        made.rotations.push_back({turned[i], unrolledAngles(rotations[i])});
    for (std::vector<export_track>* tracks : {&made.translations, &made.rotations})
        for (export_track& track : *tracks)
            track.bone += static_cast<std::uint32_t>(first_bone);
    take = std::move(made);
    return true;
}

} // namespace korvane
