#include "tools/demo_data/animation_file.h"

#include "EASY_GUI/services/byte_writer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane::demo
{

namespace
{

constexpr std::uint32_t no_track = 0xFFFFFFFFu;
constexpr std::uint32_t first_static = 10000; // in a map: static value 0; readers take 9000 and more for no track

using stored_translation = std::array<float, 3>;
using stored_rotation = std::array<std::int16_t, 4>;

std::int16_t stored(double component)
{
    return static_cast<std::int16_t>(std::floor(std::clamp(component, -1.0, 1.0) * 32767 + 0.5));
}

// Of the two quaternions for one rotation the one nearer to another.
quaternion nearer(const quaternion& q, const quaternion& to)
{
    return q.x * to.x + q.y * to.y + q.z * to.z + q.w * to.w < 0 ? quaternion{-q.x, -q.y, -q.z, -q.w} : q;
}

// In the file's mirrored space.
stored_rotation stored(const quaternion& q)
{
    return {stored(q.x), stored(-q.y), stored(-q.z), stored(q.w)};
}
stored_translation stored(const vec3& v)
{
    return {static_cast<float>(-v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

class animation_writer
{
public:
    explicit animation_writer(const animation_source& source) : m_source(source)
    {
        const rig_pose rest = rig(*source.skeleton).pose();
        for (std::size_t i = 0; i < rest.size(); ++i)
            addBone(i, rest[i]);
    }

    std::vector<std::byte> write()
    {
        writeHeader();
        for (const auto* map : {&m_translation_map, &m_rotation_map})
            for (const std::uint32_t entry : *map)
                m_out.u32(entry);
        if (m_source.version == 7)
        {
            m_out.u32(static_cast<std::uint32_t>(m_static_translations.size()));
            m_out.u32(static_cast<std::uint32_t>(m_static_rotations.size()));
            for (const stored_translation& each : m_static_translations)
                write(each);
            for (const stored_rotation& each : m_static_rotations)
                write(each);
        }
        m_out.u32(static_cast<std::uint32_t>(m_translations.size()));
        m_out.u32(static_cast<std::uint32_t>(m_rotations.size()));
        m_out.u32(static_cast<std::uint32_t>(m_source.frames.size()));
        for (std::size_t frame = 0; frame < m_source.frames.size(); ++frame)
        {
            for (const auto& track : m_translations)
                write(track[frame]);
            for (const auto& track : m_rotations)
                write(track[frame]);
        }
        return m_out.take();
    }

private:
    void addBone(std::size_t bone, const rig_joint& rest)
    {
        std::vector<stored_translation> translations;
        std::vector<stored_rotation> rotations;
        quaternion before = rest.rotation;
        for (const rig_pose& pose : m_source.frames)
        {
            translations.push_back(stored(pose[bone].translation));
            before = nearer(pose[bone].rotation, before);
            rotations.push_back(stored(before));
        }
        add(std::move(translations), stored(rest.translation), m_translation_map, m_translations,
            m_static_translations);
        add(std::move(rotations), stored(rest.rotation), m_rotation_map, m_rotations, m_static_rotations);
    }

    template <class type>
    void add(std::vector<type> track, const type& rest, std::vector<std::uint32_t>& map,
             std::vector<std::vector<type>>& tracks, std::vector<type>& statics)
    {
        const bool is_still =
            std::all_of(track.begin(), track.end(), [&rest](const type& value) { return value == rest; });
        if (!is_still || m_source.still == still_bones::tracks)
        {
            map.push_back(static_cast<std::uint32_t>(tracks.size()));
            tracks.push_back(std::move(track));
        }
        else if (m_source.still == still_bones::constant)
        {
            map.push_back(first_static + static_cast<std::uint32_t>(statics.size()));
            statics.push_back(rest);
        }
        else
            map.push_back(no_track);
    }

    void writeHeader()
    {
        const rig_skeleton& skeleton = *m_source.skeleton;
        m_out.u32(m_source.version);
        m_out.u32(1);
        m_out.f32(static_cast<float>(m_source.frame_rate));
        writeText(skeleton.name);
        if (m_source.version == 7)
            m_out.u32(0); // no second name
        m_out.f32(endTime());
        m_out.u32(static_cast<std::uint32_t>(skeleton.bones.size()));
        for (const rig_bone& each : skeleton.bones)
        {
            writeText(each.name);
            m_out.u32(static_cast<std::uint32_t>(each.parent));
        }
    }
    // Rounded up, so that the frame rate times the end time reaches the last frame.
    float endTime() const
    {
        const auto intervals = static_cast<double>(m_source.frames.size() - 1);
        const auto end = static_cast<float>(intervals / m_source.frame_rate);
        return static_cast<double>(end) * m_source.frame_rate < intervals ? std::nextafter(end, 1e30f) : end;
    }
    void writeText(const std::string& text)
    {
        m_out.u16(static_cast<std::uint16_t>(text.size()));
        m_out.text(text);
    }
    void write(const stored_translation& value)
    {
        for (const float each : value)
            m_out.f32(each);
    }
    void write(const stored_rotation& value)
    {
        for (const std::int16_t each : value)
            m_out.u16(static_cast<std::uint16_t>(each));
    }

    const animation_source& m_source;
    byte_writer m_out;
    std::vector<std::uint32_t> m_translation_map, m_rotation_map;
    std::vector<std::vector<stored_translation>> m_translations; // track after track
    std::vector<std::vector<stored_rotation>> m_rotations;
    std::vector<stored_translation> m_static_translations;
    std::vector<stored_rotation> m_static_rotations;
};

} // namespace

std::vector<std::byte> animationBytes(const animation_source& source)
{
    return animation_writer(source).write();
}

std::vector<std::byte> skeletonBytes(const rig_skeleton& skeleton, std::uint32_t version)
{
    const rig_pose rest[] = {rig(skeleton).pose()};
    return animationBytes({version, 20, still_bones::tracks, &skeleton, rest});
}

} // namespace korvane::demo
