#pragma once

// All that a view, a picture or an export shows, as one value: decoded models, where they hang, their textures, bounds,
// counts, and what was missing. One model, a definition's figure and a model that hangs on a bone are the same kind of
// value with one or more parts. Made by scene_loader, never changed afterwards, handed between threads as a shared
// pointer to const. Another level of detail, another device and an off-screen picture are made from the value that was
// kept. Of a decoded model only what edits never touch (the vertex stores) is referred to; the rest is copied, so that
// a document may be edited while its scene is drawn.

#include "Korvane/animation/anim_file.h"
#include "Korvane/models/rmv2_data.h"
#include "Korvane/scene/file_place.h"
#include "Korvane/scene/group_boxes.h"
#include "Korvane/scene/scene_geometry.h"
#include "Korvane/scene/scene_texture.h"

#include <glm/mat4x4.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

inline constexpr std::size_t texture_slot_count = 5;
enum texture_slot : std::size_t
{
    diffuse_slot,
    normal_slot,
    specular_slot,
    mask_slot,
    gloss_slot
};
// The texture type number of each slot.
inline constexpr std::array<std::uint32_t, texture_slot_count> texture_slot_types{0, 1, 11, 3, 12};

// A mesh group of a model.
struct scene_group
{
    const vertex_store* store = nullptr;                       // lives as long as the scene_model
    bool has_alpha = false;                                    // alpha mode 1: alpha tested, seen from both sides
    bool has_weights = false;                                  // the vertex format carries bone weights
    std::array<std::string, texture_slot_count> texture_paths; // empty: the group has none for the slot
};

// A place on a model to which other models are fixed: an attachment point of its first level that has any.
struct scene_point
{
    std::string name;         // the file's own bytes
    glm::mat4 place{1};       // from a fixed model's space into this model's, in the bind pose; always usable numbers
    bool is_damaged = false;  // the file's matrix had none: place is the identity
    std::uint32_t number = 0; // the bone, where no bone has the point's name
};

// A decoded model with all its levels of detail.
struct scene_model
{
    std::string path; // UTF-8, on the disk or internal; for messages
    bool has_skeleton = false;
    std::string skeleton_id;         // empty: none
    std::vector<scene_point> points; // each name once
    std::vector<std::vector<scene_group>> lods;
    std::shared_ptr<const RMV2_FILE_DATA> data; // owns the vertex stores; edits change the rest of it
};

// Null: the group has no texture there, or it was not found. Whether one can be read is known by who reads it.
using group_textures = std::array<std::shared_ptr<const scene_texture>, texture_slot_count>;

// A skeleton, and what it hangs on itself. Parts refer to it by its index in the scene.
struct scene_rig
{
    std::string id;   // as the models name it
    std::string path; // where the skeleton was found: internal, or on the disk; empty: nowhere
    file_place place; // the same, before it was read
    // Its bind pose in usable numbers: what was none in the file is replaced. Null: there is none, or it is damaged.
    std::shared_ptr<const anim_data> skeleton;
    std::string problem; // why there is no skeleton, or what is wrong with it; empty: all is well

    // A figure that hangs on another one, as a rider on a horse.
    int mount = -1;           // the rig on which all of this one hangs, an earlier one; below zero: it stands by itself
    int mount_bone = -1;      // of that rig
    glm::mat4 mount_place{1}; // from this rig's space into the other's, in the bind pose
};

// A model as it is shown.
struct scene_part
{
    std::shared_ptr<const scene_model> model;
    std::size_t lod = 0; // the level that is shown; the model's last one when the wanted one is missing
    int rig = -1;        // that moves it, in the scene's rigs; below zero: it stands as its file puts it
    int bone = -1;       // of the rig: the whole model hangs on this one; below zero: on its own bones
    // Of a model that hangs on a bone: from its space into that of the rig's bind pose, out of the attachment point;
    // the identity without one. What the shader calls mWeapon.
    glm::mat4 weapon{1};
    std::string slot;                     // of a figure: the path of its innermost slot (figure.h); empty: none
    std::vector<group_textures> textures; // of each group of that level
    std::size_t triangles = 0;            // of that level that can be drawn
    // Of each group of that level; null: a click looks at every vertex.
    std::shared_ptr<const std::vector<group_boxes>> boxes;

    // Empty for a model without levels.
    const std::vector<scene_group>& groups() const
    {
        static const std::vector<scene_group> none;
        return lod < model->lods.size() ? model->lods[lod] : none;
    }
};

struct loaded_scene
{
    std::string path; // of the model or the definition, UTF-8
    std::vector<scene_part> parts;
    std::vector<scene_rig> rigs;
    model_bounds bounds; // of all parts as they stand in the bind pose
    std::size_t triangles = 0;
    std::size_t failed = 0;                    // models that are not among the parts
    std::vector<std::string> problems;         // what was missing or damaged, a line each, as the log has them
    std::vector<std::string> missing_textures; // that were looked for and are nowhere; internal paths
    texture_finder find_texture;               // null: looked for by reading
    texture_reader read_texture;               // kept for another level of detail and for a new device
};

// From a part's own space to where it stands in the scene while all skeletons are in their bind pose.
[[nodiscard]] glm::mat4 bindPlace(const loaded_scene& scene, const scene_part& part);

using scene_pointer = std::shared_ptr<const loaded_scene>;

} // namespace korvane
