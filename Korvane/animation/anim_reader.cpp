#include "Korvane/animation/anim_reader.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/animation/anim_frames.h"

#include <string_view>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view version_field = "version";

std::string textFrom(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string shortText(byte_reader& in, std::string_view length_field, std::string_view field)
{
    const std::uint16_t length = in.u16(length_field);
    return textFrom(in.bytes(length, field));
}

// docs/formats/anim.md, "The file". Every function leaves its errors in the byte_reader.
class anim_reader
{
public:
    anim_reader(std::span<const std::byte> bytes, anim_depth depth, anim_data& data)
        : m_in(bytes)
        , m_depth(depth)
        , m_data(data)
    {
    }

    bool read(failure& why)
    {
        readHeader();
        if (m_in.ok())
            readBones();
        if (m_in.ok() && m_data.version == 7)
            readStaticBlock();
        if (m_in.ok())
            readCounts();
        if (m_in.ok() && m_depth == anim_depth::skeleton)
            readBindPose();
        if (m_in.ok() && m_depth == anim_depth::animation)
            readFrames();
        return m_in.finish(why);
    }

private:
    void readHeader();
    void readBones();
    void readMap(std::vector<std::uint32_t>& map, std::string_view field);
    void readStaticBlock();
    bool hasStaticBlockBehindCounts() const;
    void readCounts();
    void listTracks(const std::vector<std::uint32_t>& map, std::uint32_t count, std::vector<std::uint32_t>& bones);
    void readBindPose();
    void readFrames();

    byte_reader m_in;
    anim_depth m_depth;
    anim_data& m_data;
};

void anim_reader::readHeader()
{
    m_data.version = m_in.u32(version_field);
    if (m_in.ok() && m_data.version != 5 && m_data.version != 7)
    {
        m_in.fail(failure_kind::unsupported, "version " + std::to_string(m_data.version) + " instead of 5 or 7",
                  version_field);
        return;
    }
    m_data.header_word = m_in.u32("header word");
    m_data.frame_rate = m_in.f32("frame rate");
    m_data.skeleton_name = shortText(m_in, "skeleton name length", "skeleton name");
    if (m_data.version == 7)
    {
        m_data.sub_name_flag = m_in.u32("sub-name flag");
        if (m_data.sub_name_flag != 0)
            m_data.sub_name = shortText(m_in, "sub-name length", "sub-name");
    }
    m_data.end_time = m_in.f32("end time");
}

void anim_reader::readBones()
{
    constexpr std::uint64_t smallest_record = 2 + 4 + 4 + 4; // name length, parent, an entry in each map
    const std::uint32_t count = m_in.u32("bone count");
    if (m_in.ok() && count > anim_file::max_bones)
        m_in.fail(failure_kind::malformed,
                  std::to_string(count) + " bones, but at most " + std::to_string(anim_file::max_bones) +
                      " are possible",
                  "bone count");
    else if (!m_in.fits(count, smallest_record))
        m_in.fail(failure_kind::truncated,
                  std::to_string(count) + " bones do not fit into the " + std::to_string(m_in.left()) +
                      " bytes that are left",
                  "bone count");
    if (!m_in.ok())
        return;
    m_data.bones.resize(count);
    for (std::uint32_t i = 0; i < count && m_in.ok(); ++i)
    {
        m_in.enter("bone table, bone " + std::to_string(i));
        const std::uint16_t length = m_in.u16("name length");
        if (length > anim_file::max_name)
            m_in.fail(failure_kind::malformed,
                      "a name of " + std::to_string(length) + " bytes, but at most " +
                          std::to_string(anim_file::max_name) + " are possible",
                      "name length");
        m_data.bones[i].name = textFrom(m_in.bytes(length, "name"));
        m_data.bones[i].parent = static_cast<std::int32_t>(m_in.u32("parent"));
        m_data.bones[i].index = i;
    }
    m_in.enter({});
    readMap(m_data.translation_map, "translation map");
    readMap(m_data.rotation_map, "rotation map");
}

void anim_reader::readMap(std::vector<std::uint32_t>& map, std::string_view field)
{
    const std::span<const std::byte> bytes = m_in.bytes(m_data.bones.size() * 4, field);
    map.resize(bytes.size() / 4);
    for (std::size_t i = 0; i < map.size(); ++i)
        map[i] = littleEndian<std::uint32_t>(bytes.data() + i * 4);
}

void anim_reader::readStaticBlock()
{
    const std::uint64_t begin = m_in.position();
    if (hasStaticBlockBehindCounts())
    {
        m_in.failAt(begin, failure_kind::malformed,
                    "the static values stand behind the track counts instead of before them, so that the frames cannot "
                    "be told apart from them",
                    "static block");
        return;
    }
    const auto readCount = [this](std::uint64_t record_size, std::string_view field) -> std::uint32_t
    {
        const std::uint32_t count = m_in.u32(field);
        if (m_in.ok() && !m_in.fits(count, record_size))
            m_in.fail(failure_kind::truncated,
                      std::to_string(count) + " values do not fit into the " + std::to_string(m_in.left()) +
                          " bytes that are left",
                      field);
        return m_in.ok() ? count : 0;
    };
    const std::uint32_t translations = readCount(anim_bytes::translation, "static translation count");
    const std::uint32_t rotations = readCount(anim_bytes::rotation, "static rotation count");
    if (m_in.ok() && m_depth == anim_depth::skeleton && (translations != 0 || rotations != 0))
        m_in.failAt(begin, failure_kind::malformed,
                    std::to_string(translations) + " static translations and " + std::to_string(rotations) +
                        " static rotations, but a skeleton has none",
                    "static block");
    const auto translation_bytes =
        m_in.bytes(std::uint64_t{translations} * anim_bytes::translation, "static translations");
    const auto rotation_bytes = m_in.bytes(std::uint64_t{rotations} * anim_bytes::rotation, "static rotations");
    if (!m_in.ok())
        return;
    m_data.static_translations.resize(translations);
    m_data.static_rotations.resize(rotations);
    decodeTranslations(translation_bytes, anim_space::of_the_file, m_data.static_translations);
    decodeRotations(rotation_bytes, anim_space::of_the_file, m_data.static_rotations);
}

// Files that were written with the static block behind T, R and F would often be readable, as nonsense. They are known
// by this: in that order everything fits to the byte. No file in the right order does, unless made to.
bool anim_reader::hasStaticBlockBehindCounts() const
{
    byte_reader in = m_in;
    const std::uint64_t translations = in.u32({}), rotations = in.u32({}), frames = in.u32({});
    const std::uint32_t static_translations = in.u32({}), static_rotations = in.u32({});
    const bool is_take = static_translations == 12 && static_rotations == 2;
    const bool is_pose = static_translations == 0 && static_rotations == 0 && (translations != 0 || rotations != 0);
    if (!in.ok() || (!is_take && !is_pose) || translations > m_data.bones.size() || rotations > m_data.bones.size())
        return false;
    const std::uint64_t frame_bytes = translations * anim_bytes::translation + rotations * anim_bytes::rotation;
    return static_translations * anim_bytes::translation + static_rotations * anim_bytes::rotation +
               frames * frame_bytes ==
           in.left();
}

void anim_reader::readCounts()
{
    const auto readTrackCount = [this](std::string_view field)
    {
        const std::uint32_t count = m_in.u32(field);
        if (m_in.ok() && count > m_data.bones.size())
            m_in.fail(failure_kind::malformed,
                      std::to_string(count) + " tracks, but only " + std::to_string(m_data.bones.size()) + " bones",
                      field);
        return count;
    };
    m_data.translation_count = readTrackCount("translation track count");
    m_data.rotation_count = readTrackCount("rotation track count");
    m_data.frame_count = m_in.u32("frame count");
    if (!m_in.ok())
        return;
    listTracks(m_data.translation_map, m_data.translation_count, m_data.animated_translations);
    listTracks(m_data.rotation_map, m_data.rotation_count, m_data.animated_rotations);
}

// More bones with tracks than a frame has values: the last ones have none.
void anim_reader::listTracks(const std::vector<std::uint32_t>& map, std::uint32_t count,
                             std::vector<std::uint32_t>& bones)
{
    for (std::uint32_t bone = 0; bone < map.size() && bones.size() < count; ++bone)
        if (hasTrack(map[bone]))
            bones.push_back(bone);
}

// Track i is bone i, whatever the maps say, and the first frame is there, whatever the frame count says.
void anim_reader::readBindPose()
{
    std::vector<glm::vec3> translations(m_data.translation_count);
    std::vector<glm::quat> rotations(m_data.rotation_count);
    const auto translation_bytes = m_in.bytes(translations.size() * anim_bytes::translation, "bind translations");
    const auto rotation_bytes = m_in.bytes(rotations.size() * anim_bytes::rotation, "bind rotations");
    if (!m_in.ok())
        return;
    decodeTranslations(translation_bytes, anim_space::of_the_program, translations);
    decodeRotations(rotation_bytes, anim_space::of_the_program, rotations);
    for (std::size_t i = 0; i < translations.size(); ++i)
        m_data.bones[i].translation = translations[i];
    for (std::size_t i = 0; i < rotations.size(); ++i)
        m_data.bones[i].rotation = rotations[i];
}

void anim_reader::readFrames()
{
    const std::uint64_t frame_bytes =
        m_data.translation_count * anim_bytes::translation + m_data.rotation_count * anim_bytes::rotation;
    if (frame_bytes == 0 && m_data.frame_count > anim_file::max_trackless_frames)
        m_in.fail(failure_kind::malformed,
                  std::to_string(m_data.frame_count) + " frames without any track, but at most " +
                      std::to_string(anim_file::max_trackless_frames) + " are possible",
                  "frame count");
    else if (frame_bytes != 0 && !m_in.fits(m_data.frame_count, frame_bytes))
        m_in.fail(failure_kind::truncated,
                  std::to_string(m_data.frame_count) + " frames of " + std::to_string(frame_bytes) +
                      " bytes do not fit into the " + std::to_string(m_in.left()) + " bytes that are left",
                  "frame count");
    if (!m_in.ok())
        return;
    const std::uint64_t offset = m_in.position();
    decodeFrames(m_in.bytes(m_data.frame_count * frame_bytes, "frames"), offset, m_data);
}

} // namespace

bool readAnim(std::span<const std::byte> bytes, anim_depth depth, anim_data& data, failure& why)
{
    return anim_reader(bytes, depth, data).read(why);
}

bool readAnimName(std::span<const std::byte> start, std::uint32_t& version, std::string& name, failure& why)
{
    byte_reader in(start);
    const std::uint32_t found_version = in.u32(version_field);
    in.skip(8, "header word and frame rate");
    std::string found = shortText(in, "skeleton name length", "skeleton name");
    if (!in.finish(why))
        return false;
    version = found_version;
    name = std::move(found);
    return true;
}

bool isUnknownVersion(const failure& why)
{
    return why.kind == failure_kind::unsupported && why.field == version_field;
}

} // namespace korvane
