#pragma once

// Small skeletons, animations and models for tests of what is exported, as the readers hand them over.

#include "Korvane/animation/anim_file.h"
#include "Korvane/models/rmv2_data.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

inline anim_bone bone(std::string name, std::int32_t parent, const glm::vec3& translation,
                      const glm::quat& rotation = {1, 0, 0, 0})
{
    anim_bone result;
    result.name = std::move(name);
    result.parent = parent;
    result.translation = translation;
    result.rotation = rotation;
    return result;
}

inline anim_data skeletonOf(std::vector<anim_bone> bones)
{
    anim_data data;
    data.skeleton_name = "rig";
    data.bones = std::move(bones);
    for (std::size_t i = 0; i < data.bones.size(); ++i)
        data.bones[i].index = static_cast<std::uint32_t>(i);
    return data;
}

// Four bones in a row along y, 1 m apart; the third one is turned by 90 degrees about the world's z.
inline anim_data smallSkeleton()
{
    const float half = 0.70710678f;
    return skeletonOf({bone("animroot", -1, {0, 0, 0}), bone("spine", 0, {0.5f, 1, 0}),
                       bone("arm_left", 1, {0, 1, 0}, {half, 0, 0, half}), bone("arm_right", 1, {0, 1, 0})});
}

// Bone 1 moves, bone 2 turns about y by so many degrees a frame.
inline std::shared_ptr<anim_data> smallAnimation(std::uint32_t frames, float rate, float degrees_a_frame = 1)
{
    auto data = std::make_shared<anim_data>(smallSkeleton());
    data->frame_rate = rate;
    data->frame_count = frames;
    data->translation_count = data->rotation_count = 1;
    data->animated_translations = {1};
    data->animated_rotations = {2};
    for (std::uint32_t i = 0; i < frames; ++i)
    {
        const float half = glm::radians(degrees_a_frame * static_cast<float>(i)) / 2;
        data->translations.push_back({static_cast<float>(i), 2, 3});
        data->rotations.push_back(glm::quat(std::cos(half), 0, std::sin(half), 0));
    }
    return data;
}

struct test_vertex
{
    glm::vec3 position;
    std::vector<std::pair<std::uint32_t, float>> weights; // bone and weight
};

// A group of those vertices, whose normals are +x, with the triangles' indices as the reader hands them over.
inline group_data groupOf(std::string name, const std::vector<test_vertex>& vertices,
                          std::vector<std::uint16_t> indices)
{
    group_data group;
    group.header.group_name = std::move(name);
    group.store.vertices = vertex_array(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        vertex_record& record = group.store.vertices.records()[i];
        record = vertex_record();
        record.position = vertices[i].position;
        record.normal = {1, 0, 0};
        record.uv = {0.25f, 0.75f};
        for (std::size_t j = 0; j < vertices[i].weights.size(); ++j)
        {
            record.bones[j] = vertices[i].weights[j].first;
            record.weights[j] = vertices[i].weights[j].second;
        }
    }
    group.store.indices = std::move(indices);
    return group;
}

inline group_data triangleGroup(std::string name = "body")
{
    return groupOf(std::move(name), {{{1, 2, 3}, {{1, 1.0f}}}, {{0, 1, 0}, {{2, 1.0f}}}, {{0, 0, 1}, {{3, 1.0f}}}},
                   {0, 1, 2});
}

inline RMV2_FILE_DATA modelOfGroups(std::vector<group_data> groups)
{
    RMV2_FILE_DATA data;
    data.version = 7;
    data.lods.resize(1);
    data.lods[0].groups = std::move(groups);
    return data;
}

} // namespace korvane::test
