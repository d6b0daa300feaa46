#pragma once

// The objects of an exported FBX document and their connections: those of a scene, and those of a take on top of them.

#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/fbx_export.h"

#include <cstdint>
#include <vector>

namespace korvane
{

struct export_target
{
    fbx_record& objects;
    fbx_record& connections;
    std::int64_t& next_id;
};

// Fills bone_ids with the ids of the bones' nodes.
void addSceneObjects(const export_scene& scene, const export_options& options, const export_target& target,
                     std::vector<std::int64_t>& bone_ids);

void addTakeObjects(const export_take& take, const export_scene& scene, const std::vector<std::int64_t>& bone_ids,
                    const export_target& target);

} // namespace korvane
