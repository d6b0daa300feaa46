#pragma once

// All that a view, a picture or an export shows, as one value: decoded models, where they hang, their textures, bounds,
// counts, and what was missing. One model, a definition's figure and a model that hangs on a bone are the same kind of
// value with one or more parts. Made by scene_loader, never changed afterwards, handed between threads as a shared
// pointer to const. Another level of detail, another device and an off-screen picture are made from the value that was
// kept. Of a decoded model only what edits never touch (the vertex stores) is referred to; the rest is copied, so that
// a document may be edited while its scene is drawn.

#include "Korvane/models/rmv2_data.h"
#include "Korvane/scene/scene_geometry.h"
#include "Korvane/scene/scene_texture.h"

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

// A decoded model with all its levels of detail.
struct scene_model
{
    std::string path; // UTF-8, on the disk or internal; for messages
    bool has_skeleton = false;
    std::vector<std::vector<scene_group>> lods;
    std::shared_ptr<const RMV2_FILE_DATA> data; // owns the vertex stores; edits change the rest of it
};

// Null: the group has no texture there, or it was not found, or is damaged.
using group_textures = std::array<std::shared_ptr<const scene_texture>, texture_slot_count>;

// A model as it is shown.
struct scene_part
{
    std::shared_ptr<const scene_model> model;
    std::size_t lod = 0; // the level that is shown; the model's last one when the wanted one is missing
    int bone = -1;       // the whole model hangs on this one; below zero: on its own bones
    std::vector<group_textures> textures; // of each group of that level
    std::size_t triangles = 0;            // of that level that can be drawn

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
    model_bounds bounds; // of all parts
    std::size_t triangles = 0;
    std::size_t failed = 0;                    // models that are not among the parts
    std::vector<std::string> problems;         // what was missing or damaged, a line each, as the log has them
    std::vector<std::string> missing_textures; // that were looked for and are nowhere; internal paths
    texture_reader read_texture;               // kept for another level of detail and for a new device
};
using scene_pointer = std::shared_ptr<const loaded_scene>;

} // namespace korvane
