#pragma once

// An export_scene as a Collada 1.4.1 document (docs/formats/fbx.md, "Collada"): the same nodes, meshes, skins,
// materials and keys as in FBX, in inches, with Y up. One thread at a time.

#include "Korvane/fbx/export_scene.h"
#include "Korvane/fbx/fbx_export.h"

#include <string>

namespace korvane
{

// The document's text in UTF-8, of the scene with a take, or in bind pose (null). The same scene and take give the same
// text.
[[nodiscard]] std::string daeText(const export_scene& scene, const export_options& options, const export_take* take);

} // namespace korvane
