#pragma once

// Where the triangles of a mesh group can be, in boxes: so that a click on a large model looks at few vertices although
// animations move them all. A skinned vertex lies between the places to which its bones take it. Made once with the
// scene, in any thread.

#include "Korvane/scene/scene_geometry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvane
{

// The bind pose's vertices that hang on a bone, if only in part. Of groups without weights all have bone 0.
struct bone_box
{
    std::uint32_t bone = 0;
    model_bounds box;
};

// Triangles that stand one after the other in the group's indices, among them such as cannot be drawn.
struct triangle_run
{
    std::size_t first_index = 0, end_index = 0; // multiples of three
    std::vector<bone_box> boxes;
    bool is_unbounded = false; // weights that do not sum to one, or below zero: the vertices may be anywhere
};

struct group_boxes
{
    std::vector<bone_box> all; // of all runs
    std::vector<triangle_run> runs;
    bool is_unbounded = false; // one of the runs is
};

[[nodiscard]] group_boxes boxesOf(const vertex_store& store, bool has_weights);

} // namespace korvane
