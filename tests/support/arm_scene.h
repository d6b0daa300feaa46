#pragma once

// A scene of one skeleton: an arm of two bones, a square that is skinned to it and one that hangs on it.

#include "Korvane/scene/scene_rigs.h"
#include "tests/posing/pose_builder.h"
#include "tests/support/mesh_builder.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane::test
{

// A root one metre up, and a bone one metre beside it.
inline anim_data arm()
{
    anim_data data = skeleton({{0, -1, {0, 1, 0}}, {1, 0, {1, 0, 0}}});
    data.skeleton_name = "arm";
    return data;
}

// Turns the root by a quarter, so that the bone comes to stand at (0, 2, 0), and then leaves it there.
inline std::shared_ptr<anim_data> quarterTurn(const std::string& skeleton_name = "arm")
{
    auto data = std::make_shared<anim_data>(arm());
    data->skeleton_name = skeleton_name;
    data->animated_rotations = {0};
    data->rotation_count = 1;
    data->frame_count = 2;
    data->frame_rate = 10;
    data->end_time = 0.2f;
    data->rotations = {about_z_90, about_z_90};
    return data;
}

inline std::shared_ptr<scene_model> squareModel(const glm::vec3& centre, std::uint32_t bone)
{
    static std::vector<std::shared_ptr<RMV2_FILE_DATA>> kept;
    group_data group = squareGroup(0.1f);
    for (vertex_record& vertex : group.store.vertices.records())
    {
        vertex.position += centre;
        vertex.bones = {bone, bone, 0, 0};
        vertex.weights = {0.5f, 0.5f, 0, 0};
    }
    group.header.vertex_format = 4;
    kept.push_back(std::make_shared<RMV2_FILE_DATA>(modelOf(std::move(group))));
    auto model = std::make_shared<scene_model>();
    model->data = kept.back();
    model->has_skeleton = true;
    scene_group shown;
    shown.store = &kept.back()->lods[0].groups[0].store;
    shown.has_weights = true;
    model->lods = {{shown}};
    return model;
}

// A square skinned to the bone, and one that hangs on it, a metre before the model.
inline std::shared_ptr<loaded_scene> armScene(const anim_data& bones = arm())
{
    auto scene = std::make_shared<loaded_scene>();
    scene->rigs = {rigOf(bones, "arm", "arm.anim")};
    scene_part skinned;
    skinned.model = squareModel({1, 1, 0}, 1);
    skinned.rig = 0;
    skinned.textures.resize(1);
    scene_part weapon;
    weapon.model = squareModel({0, 0, 0}, 0);
    weapon.rig = 0;
    weapon.textures.resize(1);
    weapon.bone = 1;
    weapon.weapon[3] = {1, 1, -1, 1};
    scene->parts = {skinned, weapon};
    return scene;
}

} // namespace korvane::test
