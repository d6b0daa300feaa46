#pragma once

// An export_scene as glTF 2.0 (docs/formats/gltf.md): a ".glb" file, or a ".gltf" text with its ".bin" file. Metres,
// right-handed, Y up. All takes go into one file as its animations. What does not depend on the takes is made once, for
// any number of files; the same scene and takes give the same bytes. One thread at a time.

#include "Korvane/fbx/export/export_scene.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct gltf_image
{
    std::string name;
    std::string path;           // relative to the file, with '/'; empty: within the file
    std::vector<std::byte> png; // then its bytes
};

// The pictures of a material, by their numbers in the list; below zero: there is none.
struct gltf_material_images
{
    int base_colour = -1;
    int metal_roughness = -1;
    int normal = -1;
};

struct gltf_pictures
{
    std::vector<gltf_image> images;
    std::vector<gltf_material_images> materials; // one for each of the scene's, or none at all
    double roughness = 0.6;                      // of materials without a picture of it
};

struct gltf_take
{
    std::string name;
    export_take take;
};

class gltf_export
{
public:
    // The scene must outlive the object and stay as it is.
    gltf_export(const export_scene& scene, const gltf_pictures& pictures, bool with_materials);
    ~gltf_export();
    gltf_export(const gltf_export&) = delete;
    gltf_export& operator=(const gltf_export&) = delete;

    // The bytes of a ".glb" file; empty when they are too many for one (4 GiB).
    [[nodiscard]] std::vector<std::byte> glb(std::span<const gltf_take> takes) const;
    // The text of a ".gltf" file, and the bytes of the file beside it whose name stands in it.
    [[nodiscard]] std::string gltf(std::span<const gltf_take> takes, std::string_view bin_name,
                                   std::vector<std::byte>& bin) const;

private:
    struct parts;
    std::unique_ptr<const parts> m_parts; // in bind pose
};

} // namespace korvane
