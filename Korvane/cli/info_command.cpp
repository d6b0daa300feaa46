#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/catalogue.h"
#include "Korvane/models/description.h"
#include "Korvane/models/rmv2_file.h"

#include <span>

namespace korvane
{

namespace
{

json vectorJson(std::span<const float> values)
{
    json array = json::array();
    for (const float value : values)
        array.push_back(jsonNumber(value));
    return array;
}

json vectorJson(const glm::vec3& value)
{
    return vectorJson(std::span(&value.x, 3));
}

json labelJson(const std::optional<std::string_view>& label)
{
    return label ? json(std::string(*label)) : json(nullptr);
}

json groupJson(const group_data& group, std::size_t index)
{
    const group_header& header = group.header;
    json attachments = json::array();
    for (const attachment_point& point : group.attachments)
        attachments.push_back({{"name", displayText(point.name)}, {"matrix", vectorJson(point.matrix)}});
    json textures = json::array();
    for (const texture_entry& texture : group.textures)
        textures.push_back({{"type", texture.type},
                            {"type_name", std::string(textureTypeName(texture.type))},
                            {"path", displayText(texture.path)}});
    return {{"index", index},
            {"material_id", header.material_id},
            {"material_name", std::string(materialName(header.material_id))},
            {"group_size", header.group_size},
            {"vertex_offset", header.vertex_offset},
            {"vertex_count", header.vertex_count},
            {"index_offset", header.index_offset},
            {"index_count", header.index_count},
            {"bbox_min", vectorJson(header.bbox_min)},
            {"bbox_max", vectorJson(header.bbox_max)},
            {"shader_name", displayText(header.shader_name)},
            {"group_name", displayText(header.group_name)},
            {"texture_directory", displayText(header.texture_directory)},
            {"vertex_format", header.vertex_format},
            {"vertex_format_short", labelJson(vertexFormatShortLabel(header.vertex_format))},
            {"vertex_format_long", labelJson(vertexFormatLongLabel(header.vertex_format))},
            {"vertex_size", group.store.vertex_size},
            {"pivot", vectorJson(header.pivot)},
            {"attachments", std::move(attachments)},
            {"textures", std::move(textures)},
            {"material_flags", group.material_flags},
            {"alpha_mode", group.alpha_mode},
            {"alpha_label", std::string(alphaModes()[alphaModeIndex(group.alpha_mode)].label)},
            {"indices_out_of_range", group.store.indices_out_of_range}};
}

// Vertices are written as they are visited: as a document in memory they would take many times the model's size.
class vertex_printer
{
public:
    explicit vertex_printer(cli_context& context) : m_context(context) {}
    ~vertex_printer() { m_context.print(m_text); }

    void append(std::string_view text)
    {
        m_text += text;
        if (m_text.size() >= 1u << 16)
        {
            m_context.print(m_text);
            m_text.clear();
        }
    }

    void vertex(const vertex_record& vertex)
    {
        floats("{\"position\":", {&vertex.position.x, 3});
        floats(",\"uv\":", {&vertex.uv.x, 2});
        append(",\"bones\":[");
        for (std::size_t i = 0; i < 4; ++i)
            append((i > 0 ? "," : "") + std::to_string(vertex.bones[i]));
        floats("],\"weights\":", vertex.weights);
        floats(",\"normal\":", {&vertex.normal.x, 3});
        floats(",\"bitangent\":", {&vertex.bitangent.x, 3});
        floats(",\"tangent\":", {&vertex.tangent.x, 3});
        append("}");
    }

private:
    void floats(std::string_view label, std::span<const float> values)
    {
        append(label);
        for (std::size_t i = 0; i < values.size(); ++i)
            append((i > 0 ? "," : "[") + jsonNumber(values[i]).dump());
        append("]");
    }

    cli_context& m_context;
    std::string m_text;
};

void printGroup(vertex_printer& out, const group_data& group, std::size_t index, bool with_vertices)
{
    std::string text = groupJson(group, index).dump();
    if (!with_vertices)
        return out.append(text);
    text.pop_back(); // the closing brace: more keys follow
    out.append(text + ",\"vertices\":[");
    const auto vertices = group.store.vertices.records();
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        if (i > 0)
            out.append(",");
        out.vertex(vertices[i]);
    }
    out.append("],\"indices\":[");
    for (std::size_t i = 0; i < group.store.indices.size(); ++i)
        out.append((i > 0 ? "," : "") + std::to_string(group.store.indices[i]));
    out.append("]}");
}

void printModelJson(cli_context& context, const rmv2_file& model, bool with_vertices)
{
    const RMV2_FILE_DATA& data = model.data();
    const json head = {{"path", displayText(model.path())},
                       {"magic", displayText(data.magic)},
                       {"version", data.version},
                       {"game", std::string(versionLabel(data.version))},
                       {"skeleton_id", displayText(data.skeleton_id)},
                       {"lod_count", data.lod_count}};
    vertex_printer out(context);
    std::string text = head.dump();
    text.pop_back();
    out.append(text + ",\"lods\":[");
    for (std::size_t i = 0; i < data.lods.size(); ++i)
    {
        const lod_data& lod = data.lods[i];
        text = json{{"index", i},
                    {"group_count", lod.header.group_count},
                    {"start_offset", lod.header.start_offset},
                    {"lod_distance", jsonNumber(lod.header.lod_distance)}}
                   .dump();
        text.pop_back();
        out.append((i > 0 ? "," : "") + text + ",\"groups\":[");
        for (std::size_t j = 0; j < lod.groups.size(); ++j)
        {
            if (j > 0)
                out.append(",");
            printGroup(out, lod.groups[j], j, with_vertices);
        }
        out.append("]}");
    }
    out.append("]}");
}

struct info_options
{
    std::vector<std::string> operands;
    bool with_vertices = false;
};

bool printModel(cli_context& context, const std::string& path, bool with_vertices, const char* before, failure& why)
{
    rmv2_file model;
    if (!openModel(context.game(), path, model, context.notePort(), why))
        return false;
    context.print(before);
    if (context.is_json)
        printModelJson(context, model, with_vertices);
    else
        describeModel(model, with_vertices, [&context](const std::string& text) { context.print(text); });
    return true;
}

// A list in JSON, else one description below the other; one that cannot be read is named.
void printModels(cli_context& context, const operand_list& list, bool with_vertices)
{
    std::size_t failed = 0;
    const char* before = context.is_json ? "[" : "";
    for (const operand_file& model : list.files())
    {
        failure why;
        if (printModel(context, model.path, with_vertices, before, why))
        {
            before = context.is_json ? "," : "\n";
            continue;
        }
        ++failed;
        context.nameFailure(why);
    }
    if (context.is_json)
        context.print(failed == list.files().size() ? "[]\n" : "]\n");
    if (failed > 0)
        context.fail({failure_kind::refused,
                      std::to_string(failed) + " of " + std::to_string(list.files().size()) + " models failed", "", 0,
                      ""});
}

void runInfo(cli_context& context, const info_options& options)
{
    operand_list list(modelOperands());
    if (!listOperands(context, options.operands, list))
        return;
    if (!list.isOneFile())
        return printModels(context, list, options.with_vertices);
    failure why;
    if (!printModel(context, list.files().front().path, options.with_vertices, "", why))
        return context.fail(why);
    if (context.is_json)
        context.print("\n");
}

} // namespace

void addInfoCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<info_options>();
    CLI::App* command = app.add_subcommand("info", "Describe rigid_model_v2 files");
    command->add_option("MODEL", options->operands, model_operands_help)->required();
    command->add_flag("--vertices", options->with_vertices, "Add vertices and indices");
    context.addJsonOption(*command);
    command->callback([options, &context] { runInfo(context, *options); });
}

} // namespace korvane
