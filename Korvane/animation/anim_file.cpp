#include "Korvane/animation/anim_file.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
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
    m_notice.reset();
    positioned_file file;
    failure found;
    const bool is_there = path.empty() || file.open(path, found);
    if (is_there && read(file, depth, found))
    {
        m_path = path.empty() ? m_memory_name : path;
        return true;
    }
    found.path = path.empty() ? m_memory_name : path;
    reset();
    if (!is_there)
        m_notice = notice{"Fatal Error!", "File: " + path + " is missing"};
    else if (!isUnknownVersion(found))
        m_notice = notice{"Fatal Error!", "File: " + describe(found)};
    if (!why)
        why = std::move(found);
    return false;
}

// Of a file on the disk only the start is read at once. Frames are decoded piece by piece as they come from there, for
// memory of the file's size takes as long to get as to decode.
bool anim_file::read(const positioned_file& file, anim_depth depth, failure& why)
{
    try
    {
        if (!file.isOpen())
            return readAnim({m_bytes.bytes()}, depth, m_data, why);
        memory_file start(static_cast<std::size_t>(std::min(anim_start_bytes, file.size())));
        if (!file.readAt(0, start.mutableBytes()))
            return fail(why, failure_kind::unreadable, "the file cannot be read");
        return readAnim({start.bytes(), start.size() == file.size() ? nullptr : &file}, depth, m_data, why);
    }
    catch (const std::bad_alloc&)
    {
        why = {};
        return fail(why, failure_kind::unreadable, "there is not enough memory for it");
    }
}

anim_data anim_file::takeData()
{
    m_path.clear();
    return std::exchange(m_data, {});
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
    return readAnimName(start, name_of_version::any, name, why);
}

bool anim_file::readHeaderName(std::span<const std::byte> start, std::string& name, failure& why)
{
    return readAnimName(start, name_of_version::known, name, why);
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
    const auto degrees = [](double angle) { return static_cast<float>(angle) / 3.1415927f * 180.0f; };
    return {degrees(roll), degrees(pitch), degrees(yaw)};
}

std::vector<std::uint32_t> trackBones(std::span<const std::uint32_t> map, std::size_t value_count)
{
    std::vector<std::uint32_t> bones;
    for (std::uint32_t bone = 0; bone < map.size() && bones.size() < value_count; ++bone)
        if (hasTrack(map[bone]))
            bones.push_back(bone);
    return bones;
}

bool checkParents(const anim_data& data, failure& why)
{
    const auto count = static_cast<std::int32_t>(data.bones.size());
    const auto refuse = [&](std::size_t bone, const std::string& text) {
        why.offset = data.bones[bone].parent_offset;
        why.field = "bone table, bone " + std::to_string(bone) + ", parent";
        return fail(why, failure_kind::malformed,
                    "bone " + std::to_string(bone) + " (" + displayText(data.bones[bone].name) + ") " + text);
    };
    for (std::size_t i = 0; i < data.bones.size(); ++i)
        if (data.bones[i].parent >= count)
            return refuse(i, "has the parent " + std::to_string(data.bones[i].parent) + ", but there are " +
                                 std::to_string(count) + " bones");
    for (std::size_t i = 0; i < data.bones.size(); ++i)
    {
        std::int32_t above = data.bones[i].parent;
        for (std::int32_t step = 0; step < count && above >= 0; ++step)
        {
            if (static_cast<std::size_t>(above) == i)
                return refuse(i, "is among its own descendants");
            above = data.bones[static_cast<std::size_t>(above)].parent;
        }
    }
    return true;
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
