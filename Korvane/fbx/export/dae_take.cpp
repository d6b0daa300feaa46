// The keys of a Collada document: one matrix for each frame of each moved bone. Keys of single coordinates would be
// shorter, but a common reader takes them relative to the bone's rest pose, which matrices alone it does right.

#include "Korvane/fbx/export/dae_export.h"
#include "Korvane/fbx/export/euler_keys.h"

#include <string_view>

namespace korvane
{

using namespace dae_nodes;

namespace
{

struct bone_tracks // null: as in the bind pose
{
    const export_track* translation = nullptr;
    const export_track* rotation = nullptr;
};

std::vector<bone_tracks> tracksOfBones(const export_take& take, std::size_t bone_count)
{
    std::vector<bone_tracks> tracks(bone_count);
    for (const export_track& track : take.translations)
        tracks[track.bone].translation = &track;
    for (const export_track& track : take.rotations)
        tracks[track.bone].rotation = &track;
    return tracks;
}

std::vector<double> keysOf(const export_bone& bone, const bone_tracks& tracks, std::uint32_t frame_count)
{
    std::vector<double> keys;
    keys.reserve(std::size_t{16} * frame_count);
    for (std::uint32_t i = 0; i < frame_count; ++i)
        appendMatrix(keys, localMatrix(tracks.translation ? tracks.translation->keys[i] : bone.translation,
                                       tracks.rotation ? tracks.rotation->keys[i] : bone.euler_degrees));
    return keys;
}

void addTimes(pugi::xml_node animation, const export_take& take, const std::string& id)
{
    std::vector<double> times(take.frame_count);
    std::string kinds;
    for (std::size_t i = 0; i < times.size(); ++i)
    {
        times[i] = static_cast<double>(i) / take.frame_rate;
        kinds += i == 0 ? "LINEAR" : " LINEAR";
    }
    addSource(animation, id + "-times", times, "TIME");
    addNameSource(animation, id + "-kinds", kinds, times.size(), "INTERPOLATION", "name");
}

void addClip(pugi::xml_node root, const export_take& take, const std::string& animation, const std::string& id)
{
    pugi::xml_node clip = addElement(root.append_child("library_animation_clips"), "animation_clip", id, take_name);
    std::string stop;
    appendNumber(stop, take.stop_seconds);
    clip.append_attribute("start") = "0";
    clip.append_attribute("end") = stop.c_str();
    clip.append_child("instance_animation").append_attribute("url") = ("#" + animation).c_str();
}

} // namespace

std::string daeTake(const export_take& take, const export_scene& scene, const std::vector<std::string>& bones,
                    id_list ids)
{
    if (take.frame_count == 0 || (take.rotations.empty() && take.translations.empty()))
        return {};
    pugi::xml_document document;
    // One element for the whole take: readers make an animation out of each.
    const std::string id = ids.make("take");
    pugi::xml_node animation = addElement(document.append_child("library_animations"), "animation", id, take_name);
    addTimes(animation, take, id);
    const std::vector<bone_tracks> tracks = tracksOfBones(take, scene.bones.size());
    std::vector<std::pair<std::string, std::string>> channels; // sampler and target
    for (std::size_t i = 0; i < tracks.size(); ++i)
    {
        if (!tracks[i].translation && !tracks[i].rotation)
            continue;
        const std::string own = ids.make(bones[i] + "_keys");
        addSource(animation, own, keysOf(scene.bones[i], tracks[i], take.frame_count), "TRANSFORM", "float4x4");
        channels.emplace_back(ids.make(bones[i] + "_sampler"), bones[i] + "/" + bone_matrix);
        pugi::xml_node sampler = addElement(animation, "sampler", channels.back().first);
        addInput(sampler, "INPUT", id + "-times");
        addInput(sampler, "OUTPUT", own);
        addInput(sampler, "INTERPOLATION", id + "-kinds");
    }
    for (const auto& [sampler, target] : channels)
    {
        pugi::xml_node channel = animation.append_child("channel");
        channel.append_attribute("source") = ("#" + sampler).c_str();
        channel.append_attribute("target") = target.c_str();
    }
    addClip(document, take, id, ids.make("clip"));
    return elementTexts(document, 1);
}

} // namespace korvane
