#pragma once

// An export_scene as a Collada 1.4.1 document (docs/formats/fbx.md, "Collada"): the same nodes, meshes, skins,
// materials and keys as in FBX, in inches, with Y up. What does not depend on the take is made once, for any number of
// documents. One thread at a time.

#include "Korvane/fbx/export/dae_nodes.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/fbx_export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace korvane
{

class dae_export
{
public:
    // The scene must outlive the object and stay as it is.
    dae_export(const export_scene& scene, const export_options& options);

    // The document's text in UTF-8, of the scene with a take, or in bind pose (null). The same scene and take give the
    // same text.
    [[nodiscard]] std::string text(const export_take* take) const;

private:
    const export_scene& m_scene;
    dae_nodes::id_list m_ids;
    std::vector<std::string> m_bones; // ids of the bones' nodes
    std::string m_text;               // in bind pose
    std::size_t m_take_position = 0;  // in that text
};

// The elements that a take adds below the document's root, indented for there; empty when it moves nothing. Ids other
// than those given are the document's own.
[[nodiscard]] std::string daeTake(const export_take& take, const export_scene& scene,
                                  const std::vector<std::string>& bones, dae_nodes::id_list ids);

} // namespace korvane
