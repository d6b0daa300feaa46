#include "Korvane/jobs/model_check.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/document/texture_path_fault.h"
#include "Korvane/models/catalogue.h"
#include "Korvane/models/vertex_decoder.h"

#include <glm/common.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t header_text = 128;    // bytes of the skeleton's id, and in version 5 of the text behind it
constexpr std::size_t attachment_text = 32; // of the name of an attachment point
constexpr std::size_t shader_text = 12;     // characters
constexpr std::uint16_t weighted_format = 3, cinematic_format = 4;

std::string inQuotes(std::string_view text)
{
    return "\"" + displayText(text) + "\"";
}

// A texture's part in the group: its type as a name, else its number.
std::string typeText(std::uint32_t type)
{
    const std::string_view name = textureTypeName(type);
    return name.front() == '[' ? "type " + std::to_string(type) : std::string(name);
}

// True for a text that fills its field: one of 8 bits per character, or in wide ones of 16 bits with small codes.
bool fillsField(std::span<const std::byte> field, bool may_be_wide)
{
    if (field.empty())
        return false;
    if (untilZero(field).size() == field.size())
        return true;
    bool is_full = may_be_wide;
    for (std::size_t i = 0; i + 1 < field.size() && is_full; i += 2)
        is_full = field[i] != std::byte{0} && field[i + 1] == std::byte{0};
    return is_full;
}

bool hasWeights(const group_data& group)
{
    return group.header.vertex_format == weighted_format || group.header.vertex_format == cinematic_format;
}

std::string shownLength(float metres)
{
    const double rounded = std::round(static_cast<double>(metres) * 1000) / 1000;
    return floatText(static_cast<float>(rounded)) + " m";
}

// The smallest box around a group's vertices, in the decoded model's space.
struct extent
{
    glm::vec3 low{std::numeric_limits<float>::infinity()};
    glm::vec3 high{-std::numeric_limits<float>::infinity()};
    std::size_t not_finite = 0;
};

extent extentOf(std::span<const vertex_record> vertices)
{
    extent result;
    for (const vertex_record& vertex : vertices)
    {
        const glm::vec3& at = vertex.position;
        if (!std::isfinite(at.x + at.y + at.z))
        {
            ++result.not_finite;
            continue;
        }
        result.low = glm::min(result.low, at);
        result.high = glm::max(result.high, at);
    }
    return result;
}

// The same box in the file's own axes, in which files store theirs: what decoding a format negates is undone.
extent inFileAxes(const extent& decoded, const group_data& group)
{
    extent result = decoded;
    const auto negate = [&](int axis, float offset) {
        result.low[axis] = offset - decoded.high[axis];
        result.high[axis] = offset - decoded.low[axis];
    };
    const std::uint16_t format = group.header.vertex_format;
    if (format == 1)
        negate(2, 0);
    else if (hasWeights(group)) // x = -h + pivot.x
        negate(0, 2 * group.header.pivot.x);
    else if (format != 5)
        negate(0, 0);
    return result;
}

// How far the vertices reach out of the box; positions are halves, which keep 11 bits.
float reachBeyond(const extent& vertices, const group_header& header)
{
    float beyond = 0;
    for (int axis = 0; axis < 3; ++axis)
    {
        const float size = std::max(std::abs(vertices.low[axis]), std::abs(vertices.high[axis]));
        const float tolerance = 0.001f + size / 512;
        const float reach =
            std::max(header.bbox_min[axis] - vertices.low[axis], vertices.high[axis] - header.bbox_max[axis]);
        if (!(reach <= tolerance)) // true for boxes that are no numbers
            beyond = std::isnan(reach) ? std::numeric_limits<float>::infinity() : std::max(beyond, reach);
    }
    return beyond;
}

} // namespace

model_check::model_check(const rmv2_file& model, known_files& known, std::string file)
    : m_model(model)
    , m_known(known)
    , m_file(std::move(file))
    , m_around(game_path(m_file).diskPath())
{
}

std::vector<finding> model_check::run()
{
    m_found.clear();
    m_place = {};
    checkHeader();
    checkLods();
    return std::move(m_found);
}

void model_check::add(finding_severity severity, const char* kind, std::string text)
{
    m_found.push_back({severity, m_file, m_place, kind, std::move(text)});
}

void model_check::checkEnd(std::span<const std::byte> field, const std::string& name, finding_severity severity)
{
    if (fillsField(field, m_model.version() == 5))
        add(severity, "no_terminator",
            name + " fills its field of " + std::to_string(field.size()) + " bytes and has no terminating zero");
}

void model_check::checkHeader()
{
    const RMV2_FILE_DATA& model = m_model.data();
    constexpr std::size_t first_text = 12; // docs/formats/rigid_model_v2.md
    const std::span<const std::byte> texts = m_model.image().bytes().subspan(first_text);
    checkEnd(texts.first(header_text), "the skeleton id", finding_severity::error);
    if (model.version == 5)
        checkEnd(texts.subspan(header_text, header_text), "the second text of the header", finding_severity::warning);
    if (model.lods.empty())
        add(finding_severity::error, "lod_empty", "the model has no LODs: nothing of it is drawn");
    checkSkeleton();
}

void model_check::checkSkeleton()
{
    const std::string& id = m_model.data().skeleton_id;
    m_bone_count = 0;
    if (id.empty())
    {
        const auto isWeighted = [](const lod_data& lod) {
            return std::any_of(lod.groups.begin(), lod.groups.end(), hasWeights);
        };
        if (std::any_of(m_model.data().lods.begin(), m_model.data().lods.end(), isWeighted))
            add(finding_severity::warning, "skeleton_missing",
                "vertices have weights, but the model names no skeleton: it does not move");
        return;
    }
    const known_files::skeleton_answer& answer = m_known.skeleton(id, m_around);
    m_bone_count = answer.bone_count;
    if (answer.path.empty())
        reportSkeletonMissing(id);
    else if (answer.bone_count == 0)
        add(finding_severity::error, "skeleton_damaged",
            "the skeleton " + inQuotes(answer.path) + " cannot be read: " + answer.problem);
}

void model_check::reportSkeletonMissing(const std::string& id)
{
    const std::string near = m_known.nearest("animations\\skeletons\\" + id + ".anim", "anim",
                                             m_known.hasArchives() ? std::string() : m_around);
    const std::string hint = near.empty() ? std::string() : "; did you mean " + inQuotes(near) + "?";
    if (m_known.hasArchives())
        add(finding_severity::error, "skeleton_missing", "no archive has the skeleton " + inQuotes(id) + hint);
    else
        add(finding_severity::note, "skeleton_missing",
            "the skeleton " + inQuotes(id) +
                " is not on the disk around the model; no archives were given, so it may be in them" + hint);
}

void model_check::checkLods()
{
    for (std::size_t lod = 0; lod < m_model.data().lods.size(); ++lod)
        checkLod(lod);
}

void model_check::checkLod(std::size_t lod)
{
    const std::vector<lod_data>& lods = m_model.data().lods;
    const lod_header& header = lods[lod].header;
    m_place = {lod, {}, {}};
    if (lods[lod].groups.empty())
        add(finding_severity::error, "lod_empty", "the LOD has no groups: at its distance nothing is drawn");
    if (m_model.version() >= 7 && header.lod_index != lod)
        add(finding_severity::warning, "lod_order",
            "the LOD says of itself that it is number " + std::to_string(header.lod_index) + " (from 0)");
    if (!std::isfinite(header.lod_distance))
        add(finding_severity::warning, "lod_order", "the LOD's distance is no number");
    if (lod > 0)
    {
        const lod_header& before = lods[lod - 1].header;
        if (header.lod_distance < before.lod_distance)
            add(finding_severity::warning, "lod_order",
                "the LOD is meant for nearer distances (" + floatText(header.lod_distance) + ") than the one before (" +
                    floatText(before.lod_distance) + ")");
        const auto triangles = [](const lod_data& of) {
            std::size_t count = 0;
            for (const group_data& group : of.groups)
                count += group.header.index_count / 3;
            return count;
        };
        if (triangles(lods[lod]) > triangles(lods[lod - 1]))
            add(finding_severity::warning, "lod_order",
                "the LOD has more triangles (" + std::to_string(triangles(lods[lod])) + ") than the one before (" +
                    std::to_string(triangles(lods[lod - 1])) + ")");
    }
    for (std::size_t group = 0; group < lods[lod].groups.size(); ++group)
    {
        m_place = {lod, group, {}};
        checkGroup(lods[lod].groups[group]);
    }
    m_place = {};
}

void model_check::checkGroup(const group_data& group)
{
    checkTexts(group);
    checkNumbers(group);
    checkTextures(group);
    m_place.texture.reset();
    checkIndices(group);
    checkPositions(group);
    checkWeights(group);
}

void model_check::checkTexts(const group_data& group)
{
    checkEnd(group.group_name_field.storedBytes(), "the group's name", finding_severity::warning);
    checkEnd(group.texture_directory_field.storedBytes(), "the texture directory", finding_severity::warning);
    const auto warn = [this](const std::string& name, std::size_t width) {
        add(finding_severity::warning, "no_terminator",
            name + " has no terminating zero in its field of " + std::to_string(width) + " characters");
    };
    if (group.header.shader_name.size() >= shader_text) // it is read up to its zero, wherever that is
        warn("the shader's name " + inQuotes(group.header.shader_name), shader_text);
    for (const attachment_point& point : group.attachments)
        if (point.name.size() >= attachment_text)
            warn("the name of the attachment point " + inQuotes(point.name), attachment_text);
}

void model_check::checkNumbers(const group_data& group)
{
    const group_header& header = group.header;
    if (!vertexLayout(header.vertex_format).is_decoded)
        add(finding_severity::warning, "vertex_format",
            "vertex format " + std::to_string(header.vertex_format) +
                " cannot be decoded: its vertices are neither shown nor exported");
    if (materialName(header.material_id) == "<UNKNOWN>")
        add(finding_severity::warning, "material", "material " + std::to_string(header.material_id) + " is not known");
    const auto modes = alphaModes();
    const bool is_known_mode = std::any_of(
        modes.begin(), modes.end(), [&](const alpha_mode_entry& mode) { return mode.value == group.alpha_mode; });
    if (!is_known_mode)
        add(finding_severity::note, "alpha_mode", "alpha mode " + std::to_string(group.alpha_mode) + " is not known");
}

void model_check::checkTextures(const group_data& group)
{
    std::vector<std::uint32_t> seen;
    for (std::size_t i = 0; i < group.textures.size(); ++i)
    {
        const texture_entry& texture = group.textures[i];
        m_place.texture = i;
        if (std::find(seen.begin(), seen.end(), texture.type) != seen.end())
            add(finding_severity::note, "texture_type",
                "the group has a second texture of the type " + typeText(texture.type));
        seen.push_back(texture.type);
        if (textureTypeName(texture.type).front() == '[')
            add(finding_severity::warning, "texture_type",
                "texture type " + std::to_string(texture.type) + " is not known");
        checkTexture(texture);
    }
}

void model_check::checkTexture(const texture_entry& texture)
{
    const std::size_t width = texture.path_field.width();
    if (texture.path.empty())
        return add(finding_severity::warning, "texture_empty",
                   "the " + typeText(texture.type) + " entry names no file");
    if (texture.path.size() >= (texture.path_field.isWide() ? width / 2 : width))
        add(finding_severity::warning, "no_terminator",
            "the texture's path fills its field and has no terminating zero");
    checkTexturePath(texture);
}

void model_check::checkTexturePath(const texture_entry& texture)
{
    const texture_path_fault fault = texturePathFault(texture.path);
    const known_files::texture_answer answer =
        fault.is_fatal ? known_files::texture_answer{} : m_known.texture(texture.path, m_around);
    const std::string near = answer.exists ? std::string() : m_known.nearest(texture.path, "dds", m_around);
    const std::string hint = near.empty() ? std::string() : "; did you mean " + inQuotes(near) + "?";
    if (!fault.text.empty())
        add(fault.is_fatal ? finding_severity::error : finding_severity::warning, "texture_path",
            fault.text + (fault.is_fatal ? hint : std::string()));
    if (fault.is_fatal)
        return;
    if (near.empty() && !endsWithIgnoringCase(texture.path, ".dds")) // else the hint shows it
        add(finding_severity::warning, "texture_path", inQuotes(texture.path) + " does not end in .dds");
    if (!answer.exists)
        reportTextureMissing(texture, hint);
    else if (!answer.is_dds)
        add(finding_severity::error, "texture_damaged",
            inQuotes(texture.path) + (answer.is_read ? " is not a DDS file" : " cannot be read"));
}

void model_check::reportTextureMissing(const texture_entry& texture, const std::string& hint)
{
    const std::string what = inQuotes(texture.path) + " (" + typeText(texture.type) + ") is ";
    if (m_known.hasArchives())
        return add(finding_severity::error, "texture_missing",
                   what + "in no archive" + (m_around.empty() ? "" : " and not beside the model") + hint);
    // Most textures of a mod are the game's own, also those whose names are near one of the mod's.
    add(finding_severity::note, "texture_missing",
        what + "not beside the model; no archives were given, so it may be in them" + hint);
}

void model_check::checkIndices(const group_data& group)
{
    const group_header& header = group.header;
    if (header.vertex_count == 0 || header.index_count == 0)
        return add(finding_severity::warning, "empty_group",
                   header.vertex_count == 0 ? "the group has no vertices" : "the group has no triangles");
    if (!vertexLayout(header.vertex_format).is_decoded)
        return;
    if (header.index_count % 3 != 0)
        add(finding_severity::warning, "index_count",
            std::to_string(header.index_count) + " indices are no whole number of triangles");
    if (group.store.indices_out_of_range > 0)
        add(finding_severity::error, "index_range",
            counted(group.store.indices_out_of_range, "index names", "indices name") +
                " a vertex that does not exist (there are " + std::to_string(header.vertex_count) + ")");
}

void model_check::checkPositions(const group_data& group)
{
    const std::span<const vertex_record> vertices = group.store.vertices.records();
    if (vertices.empty())
        return;
    const extent decoded = extentOf(vertices);
    if (decoded.not_finite > 0)
        add(finding_severity::error, "vertex_position",
            counted(decoded.not_finite, "vertex has", "vertices have") + " no position: a coordinate is no number");
    if (decoded.not_finite == vertices.size())
        return;
    // Files store boxes in their own axes; some writers store the mirrored ones.
    const float beyond =
        std::min(reachBeyond(inFileAxes(decoded, group), group.header), reachBeyond(decoded, group.header));
    if (std::isinf(beyond))
        add(finding_severity::warning, "bounding_box", "the bounding box is no box: a number of it is none");
    else if (beyond > 0)
        add(finding_severity::warning, "bounding_box",
            "vertices reach " + shownLength(beyond) +
                " out of the bounding box: the group may vanish at the edge of the screen");
}

void model_check::checkWeights(const group_data& group)
{
    if (!hasWeights(group))
        return;
    const std::span<const vertex_record> vertices = group.store.vertices.records();
    std::size_t odd_sums = 0, first_odd = 0, beyond = 0;
    long first_sum = 0;
    std::uint32_t last_bone = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        long sum = 0;
        std::uint32_t highest = 0;
        for (std::size_t k = 0; k < 4; ++k)
        {
            const long weight = std::lround(vertices[i].weights[k] * 255);
            sum += weight;
            if (weight != 0)
                highest = std::max(highest, vertices[i].bones[k]);
        }
        if (sum != 255 && odd_sums++ == 0)
        {
            first_odd = i;
            first_sum = sum;
        }
        if (m_bone_count > 0 && highest >= m_bone_count)
            ++beyond;
        last_bone = std::max(last_bone, highest);
    }
    if (odd_sums > 0)
        add(finding_severity::warning, "weights",
            counted(odd_sums, "vertex has", "vertices have") + " weights that do not sum to 255 (vertex " +
                std::to_string(first_odd) + ": " + std::to_string(first_sum) + ")");
    if (beyond > 0)
        add(finding_severity::error, "bones",
            counted(beyond, "vertex hangs", "vertices hang") + " on bones that the skeleton " +
                inQuotes(m_model.data().skeleton_id) + " does not have (bone " + std::to_string(last_bone) +
                "; it has " + std::to_string(m_bone_count) + ")");
}

} // namespace korvane
