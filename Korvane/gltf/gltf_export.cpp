#include "Korvane/gltf/gltf_export.h"

#include "EASY_GUI/services/version.h"
#include "Korvane/fbx/export/uri_path.h"
#include "Korvane/gltf/gltf_nodes.h"

#include <limits>

namespace korvane
{

namespace
{

// "glTF", "JSON" and "BIN" in little-endian words.
constexpr std::uint32_t glb_magic = 0x46546c67, json_chunk = 0x4e4f534a, bin_chunk = 0x004e4942;
constexpr std::uint32_t glb_version = 2;
constexpr std::size_t glb_header_size = 12, chunk_header_size = 8;

void appendWord(std::vector<std::byte>& bytes, std::uint64_t word)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::byte>(word >> shift & 0xff));
}

std::string textOf(const gltf_json& document, int indent)
{
    return document.dump(indent, ' ', false, gltf_json::error_handler_t::replace);
}

} // namespace

struct gltf_export::parts
{
    gltf_json document;
    gltf_buffer buffer;
};

gltf_export::gltf_export(const export_scene& scene, const gltf_pictures& pictures, bool with_materials)
{
    auto made = std::make_unique<parts>();
    gltf_nodes::mesh_numbers numbers;
    std::vector<std::size_t> material_numbers;
    const gltf_json materials =
        with_materials ? gltf_nodes::materials(scene, pictures, material_numbers) : gltf_json::array();
    const gltf_json meshes = gltf_nodes::meshes(scene, material_numbers, with_materials, made->buffer, numbers);
    const gltf_json skins = gltf_nodes::skins(scene, made->buffer, numbers);
    gltf_json& document = made->document;
    document["asset"] = {{"version", "2.0"},
                         {"generator", std::string(program_name) + " glTF exchange " + std::string(program_version)}};
    document["scene"] = 0;
    document["scenes"] = gltf_json::array({{{"name", "My Scene"}}});
    if (const std::vector<std::size_t> roots = gltf_nodes::rootNodes(scene); !roots.empty())
        document["scenes"][0]["nodes"] = roots;
    if (!scene.bones.empty() || !scene.meshes.empty())
        document["nodes"] = gltf_nodes::nodes(scene, numbers);
    if (!meshes.empty())
        document["meshes"] = meshes;
    if (!skins.empty())
        document["skins"] = skins;
    if (!materials.empty())
        document["materials"] = materials;
    if (with_materials && !pictures.images.empty())
    {
        gltf_json textures = gltf_json::array();
        for (std::size_t i = 0; i < pictures.images.size(); ++i)
            textures.push_back({{"sampler", 0}, {"source", i}});
        document["textures"] = std::move(textures);
        document["images"] = gltf_nodes::images(pictures, made->buffer);
        // Linear, between mip maps too, and repeated: the format's numbers.
        document["samplers"] = gltf_json::array({{{"magFilter", 9729}, {"minFilter", 9987}}});
    }
    m_parts = std::move(made);
}

gltf_export::~gltf_export() = default;

std::string gltf_export::gltf(std::span<const gltf_take> takes, std::string_view bin_name,
                              std::vector<std::byte>& bin) const
{
    gltf_buffer buffer = m_parts->buffer;
    gltf_json document = m_parts->document;
    gltf_json animations = gltf_json::array();
    for (const gltf_take& take : takes)
        if (gltf_json one = gltf_nodes::animation(take, buffer); !one.is_null())
            animations.push_back(std::move(one));
    if (!animations.empty())
        document["animations"] = std::move(animations);
    if (!buffer.bytes().empty())
    {
        document["bufferViews"] = buffer.views();
        document["accessors"] = buffer.accessors();
        if (buffer.accessors().empty())
            document.erase("accessors");
        document["buffers"] = gltf_json::array({{{"byteLength", buffer.bytes().size()}}});
        if (!bin_name.empty())
            document["buffers"][0]["uri"] = uriOf(bin_name);
    }
    bin = buffer.bytes();
    return textOf(document, bin_name.empty() ? -1 : 1);
}

std::vector<std::byte> gltf_export::glb(std::span<const gltf_take> takes) const
{
    std::vector<std::byte> bin;
    std::string text = gltf(takes, {}, bin);
    text.resize((text.size() + 3) / 4 * 4, ' ');
    const std::uint64_t size = glb_header_size + chunk_header_size + std::uint64_t{text.size()} +
                               (bin.empty() ? 0 : chunk_header_size + std::uint64_t{bin.size()});
    std::vector<std::byte> file;
    if (size > std::numeric_limits<std::uint32_t>::max())
        return file;
    file.reserve(size);
    for (const std::uint64_t word : {std::uint64_t{glb_magic}, std::uint64_t{glb_version}, size,
                                     std::uint64_t{text.size()}, std::uint64_t{json_chunk}})
        appendWord(file, word);
    const auto characters = std::as_bytes(std::span(text));
    file.insert(file.end(), characters.begin(), characters.end());
    if (bin.empty())
        return file;
    appendWord(file, bin.size());
    appendWord(file, bin_chunk);
    file.insert(file.end(), bin.begin(), bin.end());
    return file;
}

} // namespace korvane
