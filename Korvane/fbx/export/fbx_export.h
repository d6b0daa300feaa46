#pragma once

// An export_scene as an FBX document of version 7400 (docs/formats/fbx.md, "What is exported"). What does not depend on
// the take is made once, for any number of documents. The same scene and takes give the same documents. One thread at a
// time.

#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/export/export_scene.h"

#include <functional>
#include <optional>
#include <string>

namespace korvane
{

// Names of the records that scripts may look for.
inline constexpr const char* take_name = "Take 001 (Korvane)";
inline constexpr const char* layer_name = "Anim Layer 01";
inline constexpr const char* bind_pose_name = "BindPose01";
inline constexpr const char* uv_set_name = "DiffuseUV";

struct export_options
{
    bool with_materials = true;
    // From a texture's internal path to the path that stands in the file, relative to it, with '/'.
    std::function<std::string(const std::string& internal_path)> texture_path;
};

class fbx_export
{
public:
    // The scene must outlive the object and stay as it is.
    fbx_export(const export_scene& scene, const export_options& options);

    // The document of the scene with a take, or in bind pose (null). Good until the next call.
    const fbx_document& document(const export_take* take);

    // The bytes of that document as a file; empty when they are too many for one.
    [[nodiscard]] std::vector<std::byte> file(const export_take* take);

private:
    const export_scene& m_scene;
    fbx_document m_document;
    std::vector<std::int64_t> m_bone_ids;
    std::int64_t m_next_id = 0;     // the first one that a take may use
    std::size_t m_object_count = 0; // of the scene alone
    std::size_t m_connection_count = 0;
    std::optional<fbx_packed_arrays> m_packed; // of the scene alone; made for the first file
};

} // namespace korvane
