#include "Korvane/models/description.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/models/catalogue.h"

#include <algorithm>
#include <cstdio>

namespace korvane
{

namespace
{

std::string line(int indent, const std::string& label, const std::string& value)
{
    constexpr std::size_t label_width = 18;
    std::string text(static_cast<std::size_t>(indent), ' ');
    text += label;
    text.resize(std::max(text.size() + 1, static_cast<std::size_t>(indent) + label_width), ' ');
    return text + value + "\n";
}

std::string vec3Text(const glm::vec3& value)
{
    return "(" + floatText(value.x) + ", " + floatText(value.y) + ", " + floatText(value.z) + ")";
}

std::string hexText(std::uint32_t value)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08X", value);
    return buffer;
}

std::string formatText(const group_data& group)
{
    std::string text = std::to_string(group.header.vertex_format);
    if (const auto label = vertexFormatLongLabel(group.header.vertex_format))
        text += " " + std::string(*label);
    if (group.store.vertex_size >= 0)
        text += ", " + counted(static_cast<std::size_t>(group.store.vertex_size), "byte", "bytes") + " per vertex";
    if (group.header.vertex_count > 0 && group.store.vertices.size() == 0)
        text += ", not decoded";
    return text;
}

std::string alphaText(std::uint32_t alpha_mode)
{
    return std::string(alphaModes()[alphaModeIndex(alpha_mode)].label) + " (" + hexText(alpha_mode) + ")";
}

std::string describeTextures(const group_data& group)
{
    std::string text = line(4, "Textures", group.textures.empty() ? "none" : "");
    for (std::size_t i = 0; i < group.textures.size(); ++i)
    {
        const texture_entry& texture = group.textures[i];
        text += line(6, std::to_string(i) + "  " + std::string(textureTypeName(texture.type)),
                     std::to_string(texture.type) + "  " + terminalText(texture.currentPath()));
    }
    return text;
}

void printVertices(const vertex_store& store, const std::function<void(const std::string&)>& print)
{
    const auto vertices = store.vertices.records();
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        const vertex_record& vertex = vertices[i];
        std::string text = line(6, "v" + std::to_string(i),
                                vec3Text(vertex.position) + "  normal " + vec3Text(vertex.normal) + "  uv (" +
                                    floatText(vertex.uv.x) + ", " + floatText(vertex.uv.y) + ")");
        text.pop_back();
        for (std::size_t j = 0; j < vertex.weights.size(); ++j)
            if (vertex.weights[j] != 0)
                text += "  bone " + std::to_string(vertex.bones[j]) + ": " + floatText(vertex.weights[j]);
        print(text + "\n");
    }
    for (std::size_t i = 0; i + 2 < store.indices.size(); i += 3)
        print(line(6, "t" + std::to_string(i / 3),
                   std::to_string(store.indices[i]) + " " + std::to_string(store.indices[i + 1]) + " " +
                       std::to_string(store.indices[i + 2])));
}

struct totals
{
    std::size_t groups = 0;
    std::size_t vertices = 0;
    std::size_t triangles = 0;
};

totals totalsOf(const lod_data& lod)
{
    totals sum;
    sum.groups = lod.groups.size();
    for (const group_data& group : lod.groups)
    {
        sum.vertices += group.header.vertex_count;
        sum.triangles += group.header.index_count / 3;
    }
    return sum;
}

} // namespace

std::string describeGroup(const group_data& group, std::size_t index)
{
    const group_header& header = group.header;
    std::string text = "\n  Group " + std::to_string(index) + "  \"" + terminalText(header.group_name) + "\"\n";
    text += line(4, "Material",
                 std::to_string(header.material_id) + " " + std::string(materialName(header.material_id)) + ", flags " +
                     std::to_string(group.material_flags));
    text += line(4, "Shader", terminalText(header.shader_name));
    text += line(4, "Alpha mode",
                 alphaText(group.alpha_mode_field.isEdited() ? group.alpha_mode_field.u32() : group.alpha_mode));
    text += line(4, "Vertex format", formatText(group));
    text += line(4, "Mesh",
                 counted(header.vertex_count, "vertex", "vertices") + ", " +
                     counted(header.index_count / 3, "triangle", "triangles"));
    if (group.store.indices_out_of_range > 0)
        text += line(4, "Warning",
                     counted(group.store.indices_out_of_range, "index names", "indices name") +
                         " a vertex that is not there");
    text += line(4, "Box", vec3Text(header.bbox_min) + " to " + vec3Text(header.bbox_max));
    if (header.pivot != glm::vec3(0.0f))
        text += line(4, "Pivot", vec3Text(header.pivot));
    text += line(4, "Place in file",
                 "byte " + grouped(static_cast<std::size_t>(group.file_offset)) + ", " + grouped(header.group_size) +
                     " bytes");
    text += line(4, "Texture folder", terminalText(header.texture_directory));
    text += describeTextures(group);
    if (!group.attachments.empty())
    {
        text += line(4, "Attachment points", "");
        for (std::size_t i = 0; i < group.attachments.size(); ++i)
        {
            const attachment_point& point = group.attachments[i];
            text += line(6, std::to_string(i) + "  " + terminalText(point.name),
                         "at " + vec3Text({point.matrix[3], point.matrix[7], point.matrix[11]}));
        }
    }
    return text;
}

void describeModel(const rmv2_file& model, bool with_vertices, const std::function<void(const std::string&)>& print)
{
    const RMV2_FILE_DATA& data = model.data();
    print(line(0, "Model", terminalText(model.path())) +
          line(0, "Format",
               "rigid_model_v2, version " + std::to_string(data.version) + ", " +
                   std::string(versionLabel(data.version))) +
          line(0, "Skeleton", data.skeleton_id.empty() ? "none (static model)" : terminalText(data.skeleton_id)) +
          line(0, "Levels of detail", std::to_string(data.lods.size())) +
          line(0, "Size", grouped(model.image().size()) + " bytes"));
    for (std::size_t i = 0; i < data.lods.size(); ++i)
    {
        const lod_data& lod = data.lods[i];
        const totals sum = totalsOf(lod);
        print("\nLOD " + std::to_string(i) + "  " + counted(sum.groups, "group", "groups") + ", " +
              counted(sum.vertices, "vertex", "vertices") + ", " + counted(sum.triangles, "triangle", "triangles") +
              ", distance " + floatText(lod.header.lod_distance) + "\n");
        for (std::size_t j = 0; j < lod.groups.size(); ++j)
        {
            print(describeGroup(lod.groups[j], j));
            if (with_vertices)
                printVertices(lod.groups[j].store, print);
        }
    }
}

} // namespace korvane
