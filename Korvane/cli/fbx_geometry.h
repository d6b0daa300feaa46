#pragma once

// What the meshes of an FBX scene consist of, for `korvane fbx --geometry`: control points with their weights,
// polygons with their materials, and of each corner of a polygon the normals and texture coordinates, whichever way the
// file stores them.

#include "Korvane/cli/json_stream.h"
#include "Korvane/fbx/scene/fbx_scene.h"

namespace korvane
{

// One object.
void printGeometry(json_stream& out, const fbx_scene& scene, const fbx_mesh& mesh);
// All meshes, a line for each thing.
void printGeometryText(cli_context& context, const fbx_scene& scene);

} // namespace korvane
