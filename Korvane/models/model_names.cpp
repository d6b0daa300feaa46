#include "Korvane/models/model_names.h"

#include "Korvane/models/rmv2_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

// One read brings what stands close together: a model's first headers, or a group's header and its textures.
constexpr std::uint64_t least_read = 4096;

bool collect(rmv2_reader reader, RMV2_FILE_DATA& data, model_names& names, failure& why)
{
    bool is_wide = false;
    if (!reader.readHeader(is_wide, why) || !reader.readHeaders(why))
        return false;
    names.skeleton_id = std::move(data.skeleton_id);
    names.textures.clear();
    for (lod_data& lod : data.lods)
        for (group_data& group : lod.groups)
            for (texture_entry& texture : group.textures)
                names.textures.push_back({texture.type, std::move(texture.path)});
    std::sort(names.textures.begin(), names.textures.end());
    names.textures.erase(std::unique(names.textures.begin(), names.textures.end()), names.textures.end());
    return true;
}

} // namespace

bool model_name_reader::read(std::uint64_t size, const read_port& read, model_names& names, failure& why)
{
    if (size > std::numeric_limits<std::uint32_t>::max())
        return fail(why, failure_kind::unsupported, "it is larger than a model can be");
    if (size > m_capacity)
    {
        m_image = allocateLarge(static_cast<std::size_t>(size));
        m_capacity = static_cast<std::size_t>(size);
    }
    const std::span<std::byte> image(m_image.get(), static_cast<std::size_t>(size));
    std::uint64_t there = 0, there_end = 0; // what was read last
    const auto fetch = [&](std::uint64_t position, std::uint64_t wanted) {
        if (position >= there && position + wanted <= there_end)
            return true;
        const std::uint64_t count = std::min(std::max(wanted, least_read), size - position);
        there = position;
        there_end = position + count;
        return read(position, image.subspan(static_cast<std::size_t>(position), static_cast<std::size_t>(count)));
    };
    RMV2_FILE_DATA data;
    return collect({image, data, fetch}, data, names, why);
}

bool model_name_reader::read(std::span<const std::byte> image, model_names& names, failure& why)
{
    RMV2_FILE_DATA data;
    return collect({image, data}, data, names, why);
}

} // namespace korvane
