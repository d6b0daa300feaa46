#include "Korvane/animation/anim_file.h"

#include "Korvane/animation/anim_reader.h"

#include <cmath>
#include <limits>
#include <utility>

namespace korvane
{

void anim_file::openFromMemory(memory_file bytes, std::string name)
{
    m_bytes = std::move(bytes);
    m_memory_name = std::move(name);
}

bool anim_file::loadSkeleton(const std::string& path, failure& why)
{
    return load(path, anim_depth::skeleton, why);
}

bool anim_file::loadAnimation(const std::string& path, failure& why)
{
    return load(path, anim_depth::animation, why);
}

bool anim_file::loadTemplate(const std::string& path, failure& why)
{
    return load(path, anim_depth::bones_only, why);
}

bool anim_file::load(const std::string& path, anim_depth depth, failure& why)
{
    m_path.clear();
    m_data = {};
    memory_file from_disk;
    failure found;
    if (!path.empty() && !from_disk.read(path, found))
        m_prompt.show("Fatal Error!", "File: " + path + " is missing", prompt_icon::error);
    else
    {
        const std::string& name = path.empty() ? m_memory_name : path;
        if (readAnim(path.empty() ? m_bytes.bytes() : from_disk.bytes(), depth, m_data, found))
        {
            m_path = name;
            return true;
        }
        found.path = name;
        if (!isUnknownVersion(found))
            m_prompt.show("Fatal Error!", "File: " + describe(found), prompt_icon::error);
    }
    reset();
    if (!why)
        why = std::move(found);
    return false;
}

void anim_file::reset()
{
    m_path.clear();
    m_data = {};
    m_bytes = {};
    m_memory_name.clear();
}

bool anim_file::readSkeletonName(std::span<const std::byte> start, std::string& name, failure& why)
{
    std::uint32_t version = 0;
    return readAnimName(start, version, name, why);
}

bool anim_file::readHeaderName(std::span<const std::byte> start, std::string& name, failure& why)
{
    std::uint32_t version = 0;
    std::string found;
    if (!readAnimName(start, version, found, why))
        return false;
    if (version != 5 && version != 7)
    {
        why.field = why ? why.field : "version";
        return fail(why, failure_kind::unsupported, "version " + std::to_string(version) + " instead of 5 or 7");
    }
    name = std::move(found);
    return true;
}

glm::vec3 eulerDegrees(const glm::quat& rotation)
{
    constexpr double straight_up = 1.5707963705062866; // pi / 2 as binary32
    const double x = static_cast<double>(rotation.x), y = static_cast<double>(rotation.y);
    const double z = static_cast<double>(rotation.z), w = static_cast<double>(rotation.w);
    const double sine = 2.0 * (w * y - z * x);
    const double roll = std::atan2(2.0 * (z * y + w * x), 1.0 - 2.0 * (x * x + y * y));
    const double pitch = std::abs(sine) >= 1.0 ? std::copysign(straight_up, sine) : std::asin(sine);
    const double yaw = std::atan2(2.0 * (y * x + w * z), 1.0 - 2.0 * (z * z + y * y));
    const auto degrees = [](double angle)
    {
        return static_cast<float>(angle) / 3.1415927f * 180.0f;
    };
    return {degrees(roll), degrees(pitch), degrees(yaw)};
}

std::uint32_t frameCount(double frame_rate, double end_time_seconds)
{
    const double product = frame_rate * end_time_seconds;
    const double next = std::ceil(product);
    const double count = std::trunc((next - product <= 1e-6 ? next : product) + 1.0);
    if (!(count > 0.0)) // and what is no number
        return 0;
    constexpr auto most = std::numeric_limits<std::uint32_t>::max();
    return count < static_cast<double>(most) ? static_cast<std::uint32_t>(count) : most;
}

} // namespace korvane
