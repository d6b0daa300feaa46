#include "Korvane/gltf/gltf_buffer.h"

#include <algorithm>
#include <bit>

namespace korvane
{

namespace
{

static_assert(std::endian::native == std::endian::little);

constexpr int unsigned_short = 5123, unsigned_int = 5125, binary32 = 5126; // the format's numbers

const char* typeOf(std::size_t of_each)
{
    switch (of_each)
    {
    case 1:
        return "SCALAR";
    case 2:
        return "VEC2";
    case 3:
        return "VEC3";
    case 4:
        return "VEC4";
    default:
        return "MAT4";
    }
}

} // namespace

std::size_t gltf_buffer::addView(std::span<const std::byte> bytes, gltf_target target)
{
    gltf_json view{{"buffer", 0}, {"byteOffset", m_bytes.size()}, {"byteLength", bytes.size()}};
    if (target != gltf_target::none)
        view["target"] = static_cast<int>(target);
    m_views.push_back(std::move(view));
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    return m_views.size() - 1;
}

std::size_t gltf_buffer::addAccessor(std::size_t view, int component_type, std::size_t count, const char* type)
{
    m_accessors.push_back({{"bufferView", view}, {"componentType", component_type}, {"count", count}, {"type", type}});
    return m_accessors.size() - 1;
}

std::size_t gltf_buffer::addFloats(std::span<const float> values, std::size_t of_each, gltf_target target,
                                   bool has_bounds)
{
    const std::size_t accessor =
        addAccessor(addView(std::as_bytes(values), target), binary32, values.size() / of_each, typeOf(of_each));
    if (!has_bounds)
        return accessor;
    std::vector<float> lowest(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(of_each)), highest = lowest;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        lowest[i % of_each] = std::min(lowest[i % of_each], values[i]);
        highest[i % of_each] = std::max(highest[i % of_each], values[i]);
    }
    m_accessors.back()["min"] = lowest;
    m_accessors.back()["max"] = highest;
    return accessor;
}

// Short ones where they serve; the largest of their values means something else to some graphics cards.
std::size_t gltf_buffer::addIndices(std::span<const std::uint32_t> indices, std::size_t point_count)
{
    if (point_count > 0xffff)
        return addAccessor(addView(std::as_bytes(indices), gltf_target::indices), unsigned_int, indices.size(),
                           "SCALAR");
    std::vector<std::uint16_t> narrow(indices.size());
    std::transform(indices.begin(), indices.end(), narrow.begin(),
                   [](std::uint32_t index) { return static_cast<std::uint16_t>(index); });
    return addAccessor(addView(std::as_bytes(std::span(narrow)), gltf_target::indices), unsigned_short, narrow.size(),
                       "SCALAR");
}

std::size_t gltf_buffer::addJoints(std::span<const std::uint16_t> joints)
{
    return addAccessor(addView(std::as_bytes(joints), gltf_target::vertices), unsigned_short, joints.size() / 4,
                       "VEC4");
}

std::size_t gltf_buffer::addFile(std::span<const std::byte> bytes)
{
    return addView(bytes, gltf_target::none);
}

} // namespace korvane
