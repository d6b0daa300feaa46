#include "Korvane/animation/anim_reader.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_block_order.h"

#include <algorithm>
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

bool checkVersion(byte_reader& in, std::uint32_t version)
{
    return !in.ok() || version == 5 || version == 7 ||
           in.fail(failure_kind::unsupported, "version " + std::to_string(version) + " instead of 5 or 7",
                   version_field);
}

// docs/formats/anim.md, "The file". Every function leaves its errors in the byte_reader.
class anim_reader
{
public:
    anim_reader(const anim_source& source, anim_depth depth, anim_data& data)
        : m_in(source.start)
        , m_source(source)
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
            checkFrames();
        if (!m_in.finish(why))
            return false;
        return m_depth != anim_depth::animation || decodeFrames(m_source, position(), m_data, why);
    }

private:
    void readHeader();
    void readBones();
    void readMap(std::vector<std::uint32_t>& map, std::string_view field);
    void checkBlockOrder();
    void readStaticBlock();
    void goOnBehindStart(std::uint64_t wanted);
    void readCounts();
    void readBindPose();
    void checkFrames();
    // In the whole file.
    std::uint64_t position() const { return m_in_begin + m_in.position(); }
    std::uint64_t left() const { return m_source.size() - position(); }

    byte_reader m_in;
    std::uint64_t m_in_begin = 0;
    memory_file m_behind_start; // what m_in reads when that is no longer the source's start
    anim_source m_source;
    anim_depth m_depth;
    anim_data& m_data;
};

void anim_reader::readHeader()
{
    m_data.version = m_in.u32(version_field);
    if (!checkVersion(m_in, m_data.version))
        return;
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
        m_data.bones[i].parent_offset = m_in.position();
        m_data.bones[i].parent = static_cast<std::int32_t>(m_in.u32("parent"));
        m_data.bones[i].index = i;
    }
    m_in.enter({});
    if (m_in.ok() && m_data.version == 7)
        checkBlockOrder();
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

void anim_reader::checkBlockOrder()
{
    const auto rest = m_source.start.subspan(static_cast<std::size_t>(m_in.position()));
    if (const auto counts = findEarlyCounts(rest, m_data.bones.size()))
        m_in.failAt(m_in.position() + *counts, failure_kind::malformed,
                    "the static values stand behind the track counts instead of before them, so that the frames cannot "
                    "be told apart from them",
                    "static block");
}

void anim_reader::readStaticBlock()
{
    const std::uint64_t begin = m_in.position();
    const auto readCount = [this](std::uint64_t record_size, std::string_view field) -> std::uint32_t {
        const std::uint32_t count = m_in.u32(field);
        if (m_in.ok() && count > left() / record_size)
            m_in.fail(failure_kind::truncated,
                      std::to_string(count) + " values do not fit into the " + std::to_string(left()) +
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
    constexpr std::uint64_t counts_bytes = 12;
    const std::uint64_t translation_size = translations * anim_bytes::translation;
    const std::uint64_t rotation_size = rotations * anim_bytes::rotation;
    goOnBehindStart(translation_size + rotation_size + counts_bytes);
    const auto translation_bytes = m_in.bytes(translation_size, "static translations");
    const auto rotation_bytes = m_in.bytes(rotation_size, "static rotations");
    if (!m_in.ok())
        return;
    m_data.static_translations.resize(translations);
    m_data.static_rotations.resize(rotations);
    decodeTranslations(translation_bytes, anim_space::of_the_file, m_data.static_translations);
    decodeRotations(rotation_bytes, anim_space::of_the_file, m_data.static_rotations);
}

// Static values are all that may be larger than a source's start. Fetches so many bytes, or those that are left.
void anim_reader::goOnBehindStart(std::uint64_t wanted)
{
    if (!m_in.ok() || !m_source.file || wanted <= m_in.left())
        return;
    const std::uint64_t begin = position();
    m_behind_start = memory_file(static_cast<std::size_t>(std::min(wanted, left())));
    if (!m_source.file->readAt(begin, m_behind_start.mutableBytes()))
    {
        m_in.failAt(m_in.position(), failure_kind::unreadable, "the file cannot be read (was it changed?)",
                    "static block");
        return;
    }
    m_in = byte_reader(m_behind_start.bytes(), begin);
    m_in_begin = begin;
}

void anim_reader::readCounts()
{
    const auto readTrackCount = [this](std::string_view field) {
        const std::uint32_t count = m_in.u32(field);
        // A skeleton's track i is bone i; other files may have values that belong to nobody.
        if (m_in.ok() && m_depth == anim_depth::skeleton && count > m_data.bones.size())
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
    m_data.animated_translations = trackBones(m_data.translation_map, m_data.translation_count);
    m_data.animated_rotations = trackBones(m_data.rotation_map, m_data.rotation_count);
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

void anim_reader::checkFrames()
{
    const std::uint64_t frame_bytes =
        m_data.translation_count * anim_bytes::translation + m_data.rotation_count * anim_bytes::rotation;
    if (frame_bytes == 0 && m_data.frame_count > anim_file::max_trackless_frames)
        m_in.fail(failure_kind::malformed,
                  std::to_string(m_data.frame_count) + " frames without any track, but at most " +
                      std::to_string(anim_file::max_trackless_frames) + " are possible",
                  "frame count");
    else if (frame_bytes != 0 && m_data.frame_count > left() / frame_bytes)
        m_in.fail(failure_kind::truncated,
                  counted(m_data.frame_count, "frame") + " of " + counted(frame_bytes, "byte") +
                      " do not fit into the " + counted(left(), "byte") + " that are left",
                  "frame count");
}

} // namespace

bool readAnim(const anim_source& source, anim_depth depth, anim_data& data, failure& why)
{
    return anim_reader(source, depth, data).read(why);
}

bool readAnimName(std::span<const std::byte> start, name_of_version wanted, std::string& name, failure& why)
{
    byte_reader in(start);
    const std::uint32_t version = in.u32(version_field);
    if (wanted == name_of_version::known)
        static_cast<void>(checkVersion(in, version));
    in.skip(8, "header word and frame rate");
    std::string found = shortText(in, "skeleton name length", "skeleton name");
    if (!in.finish(why))
        return false;
    name = std::move(found);
    return true;
}

bool isUnknownVersion(const failure& why)
{
    return why.kind == failure_kind::unsupported && why.field == version_field;
}

} // namespace korvane
