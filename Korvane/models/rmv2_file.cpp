#include "Korvane/models/rmv2_file.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/models/rmv2_reader.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view model_magic = "RMV2";

std::atomic<bool> has_failed_validation{false}; // by any thread that reads a model

struct influence_layout
{
    std::size_t count = 0; // recorded influences
    std::size_t bones = 8; // offsets in the raw vertex
    std::size_t weights = 0;
};

influence_layout influenceLayout(std::uint16_t format)
{
    if (format == 3)
        return {2, 8, 10};
    if (format == 4)
        return {3, 8, 12}; // the fourth influence is decoded into the vertex but not recorded
    return {};
}

} // namespace

bool readModelFile(const std::string& path, memory_file& image, failure& why)
{
    constexpr std::size_t longest_header = 12 + 2 * 128;
    memory_file start;
    std::uint64_t size = 0;
    if (!start.readStart(path, longest_header, size, why))
        return false;
    if (start.text().starts_with(model_magic) && size > std::numeric_limits<std::uint32_t>::max())
        return fail(why, failure_kind::malformed,
                    std::to_string(size) + " bytes are more than the " +
                        std::to_string(std::numeric_limits<std::uint32_t>::max()) + " that a model may have",
                    path);
    if (start.text().starts_with(model_magic) && size > longest_header)
        return image.read(path, why);
    image = std::move(start);
    return true;
}

bool isVersion7OverVersion6(std::span<const std::byte> image)
{
    constexpr std::uint64_t table = 140; // of LOD headers
    byte_reader in(image);
    const bool is_version_7 = in.u32("magic") == 0x32564d52 && in.u32("version") == 7;
    const std::uint64_t lod_count = in.u32("lod_count") & 0xffffu;
    in.seek(table + 12, "start_offset");
    // In a file of version 7 the groups begin behind a table of 28 bytes per LOD; here they begin inside it.
    const std::uint64_t first_group = in.u32("start_offset");
    return in.ok() && is_version_7 && first_group >= table + 20 * lod_count && first_group < table + 28 * lod_count;
}

const std::string& lastModelError()
{
    static const std::string none, error = "ERROR: File is NOT a valid .rigid_model_v2 file!";
    return has_failed_validation ? error : none;
}

bool rmv2_file::open(const std::string& path, failure& why)
{
    m_is_loaded = false;
    m_error_code = 0;
    m_path = path;
    const std::string_view file = fileName(path);
    m_name = file.substr(0, file.find('.'));

    memory_file image;
    if (!readModelFile(path, image, why))
    {
        m_error_code = 4;
        return false;
    }
    m_image = std::move(image);
    return validateAndDecode(why);
}

bool rmv2_file::openFromMemory(memory_file image, const std::string& name, failure& why)
{
    m_is_loaded = false;
    m_error_code = 0;
    m_path = name;
    m_name.clear();
    m_image = std::move(image);
    return validateAndDecode(why);
}

bool rmv2_file::validateAndDecode(failure& why)
{
    m_data = {};
    m_model_scale = 1.0f;
    if (m_image.empty())
        return fail(why, failure_kind::truncated, "the file is empty", m_path);

    failure found;
    rmv2_reader reader(m_image.bytes(), m_data);
    bool is_good = reader.readHeader(m_wide_text, found);
    if (is_good)
    {
        m_status = "SUCCESS: File: is valid rigid_model_v2 file!";
        is_good = reader.readLayout(found);
    }
    else
    {
        m_status = "ERROR: " + found.what;
        has_failed_validation = true;
    }
    m_log += m_status + " \n";
    if (!is_good)
    {
        found.path = m_path;
        if (isVersion7OverVersion6(m_image.bytes()))
            found.what = "the version word says 7, but the LOD headers are those of version 6: this model was saved "
                         "again after it had been patched (korvane patch --repair makes a version 7 file of it)";
        m_data = {};
        if (!why)
            why = std::move(found);
        return false;
    }
    reader.decode();
    m_is_loaded = true;
    return true;
}

influence_table rmv2_file::influences(const group_data& group) const
{
    influence_table table;
    const influence_layout layout = influenceLayout(group.header.vertex_format);
    if (layout.count == 0)
        return table;
    const std::size_t vertex_count = group.store.vertices.size();
    const auto stride = static_cast<std::size_t>(std::max(group.store.vertex_size, 0));
    const auto raw = m_image.bytes().subspan(static_cast<std::size_t>(group.vertex_data_offset), stride * vertex_count);

    table.by_vertex.resize(vertex_count);
    for (std::size_t vertex = 0; vertex < vertex_count; ++vertex)
    {
        const std::byte* const bytes = raw.data() + vertex * stride;
        for (std::size_t i = 0; i < layout.count; ++i)
        {
            const auto bone = std::to_integer<std::uint32_t>(bytes[layout.bones + i]);
            auto weight = std::to_integer<unsigned>(bytes[layout.weights + i]);
            if (layout.count == 2 && i == 1) // two weights: the second is what the first leaves
                weight = 255 - std::to_integer<unsigned>(bytes[layout.weights]);
            if (weight == 0)
                continue;
            const auto number = static_cast<std::uint32_t>(vertex);
            table.by_vertex[vertex].push_back({bone, number});
            const auto [entry, is_new] = table.position_of_bone.try_emplace(bone, table.bones.size());
            if (is_new)
                table.bones.push_back({bone, {}, {}});
            table.bones[entry->second].weights.push_back(static_cast<float>(weight) / 255.0f);
            table.bones[entry->second].vertices.push_back(number);
        }
    }
    return table;
}

void rmv2_file::centre(std::size_t lod)
{
    if (lod >= m_data.lods.size() || m_data.lods[lod].groups.empty())
        return;
    std::vector<group_data>& groups = m_data.lods[lod].groups;
    glm::vec3 low = groups.front().header.bbox_min;
    glm::vec3 high = groups.front().header.bbox_max;
    for (const group_data& group : groups)
        for (int axis = 0; axis < 3; ++axis)
        {
            low[axis] = std::min(low[axis], group.header.bbox_min[axis]);
            high[axis] = std::max(high[axis], group.header.bbox_max[axis]);
        }
    const glm::vec3 extent = high - low;
    const glm::vec3 offset = -(extent / 2.0f) - low;
    for (group_data& group : groups)
        for (vertex_record& vertex : group.store.vertices.records())
            vertex.position += offset;
    const float largest = std::max({extent.x, extent.y, extent.z});
    m_model_scale = largest > 0.0f ? 1.8f / largest : 1.0f;
}

} // namespace korvane
