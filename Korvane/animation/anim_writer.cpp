#include "Korvane/animation/anim_writer.h"

#include "EASY_GUI/services/byte_writer.h"
#include "EASY_GUI/services/file_system.h"
#include "Korvane/animation/anim_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint32_t no_track = 0xffffffff;

// The static block of a take, whatever it holds.
constexpr std::size_t static_translation_count = 12;
constexpr std::size_t static_rotation_count = 2;

void writeTranslation(byte_writer& out, const glm::vec3& value)
{
    out.f32(value.x);
    out.f32(value.y);
    out.f32(value.z);
}

void writeRotation(byte_writer& out, const glm::quat& value)
{
    // In binary32, towards zero: what a reader made of a file's numbers becomes the same numbers again. Too long a
    // rotation ends at the ends of the type.
    const auto component = [&out](float part) {
        const float scaled = std::clamp(std::isnan(part) ? 0.0f : part * 32767.0f, -32768.0f, 32767.0f);
        out.u16(static_cast<std::uint16_t>(static_cast<std::int16_t>(scaled)));
    };
    component(value.x);
    component(value.y);
    component(value.z);
    component(value.w);
}

template <typename value>
std::vector<std::uint32_t> bonesOf(const std::map<std::uint32_t, value>& values)
{
    std::vector<std::uint32_t> bones;
    for (const auto& [bone, unused] : values)
        bones.push_back(bone);
    return bones;
}

class anim_writer
{
public:
    anim_writer(const anim_output& output, std::uint32_t version) : m_source(output), m_version(version) {}

    bool check(failure& why) const;
    std::vector<std::byte> write();

private:
    bool checkTake(failure& why) const;
    bool hasGamesLayout() const { return m_version == 7 && m_source.layout == anim_layout::games; }
    void writeHeader();
    void writeMaps();
    void writePoseMaps();
    void writeCounts();
    void writeGivenStaticBlock();
    void writeStaticBlock();
    void writeFrame(const anim_output::frame& frame);
    template <typename value>
    value valueOfFirstBone(std::map<std::uint32_t, value> anim_output::frame::*values, std::size_t frame,
                           value otherwise) const;

    const anim_output& m_source;
    std::uint32_t m_version;
    byte_writer m_out;
};

bool anim_writer::check(failure& why) const
{
    const auto refuse = [&why](std::string what) { return fail(why, failure_kind::refused, std::move(what)); };
    constexpr std::size_t longest_name = std::numeric_limits<std::uint16_t>::max();
    if (m_version != 5 && m_version != 7)
        return refuse("version " + std::to_string(m_version) + " cannot be written, only 5 and 7");
    if (m_source.skeleton_name.size() > longest_name)
        return refuse("the skeleton's name is longer than " + std::to_string(longest_name) + " bytes");
    if (m_source.bones.size() > anim_file::max_bones)
        return refuse(std::to_string(m_source.bones.size()) + " bones, but at most " +
                      std::to_string(anim_file::max_bones) + " are possible");
    for (const anim_output::bone& bone : m_source.bones)
        if (bone.name.size() > anim_file::max_name)
            return refuse("a bone's name is longer than " + std::to_string(anim_file::max_name) + " bytes");
    if (m_source.frames.size() > std::numeric_limits<std::uint32_t>::max())
        return refuse("there are too many frames");
    for (const anim_output::frame& frame : m_source.frames)
        for (const auto& bones : {bonesOf(frame.translations), bonesOf(frame.rotations)})
            if (!bones.empty() && bones.back() >= m_source.bones.size())
                return refuse("a frame has a value for bone " + std::to_string(bones.back()) + ", but there are only " +
                              std::to_string(m_source.bones.size()) + " bones");
    if (m_source.is_single_pose)
        return m_source.frames.size() == 1 ||
               refuse(std::to_string(m_source.frames.size()) + " frames instead of a single pose");
    return checkTake(why);
}

// What readers would take for something else.
bool anim_writer::checkTake(failure& why) const
{
    if (m_source.translation_map.size() != m_source.bones.size() ||
        m_source.rotation_map.size() != m_source.bones.size())
        return fail(why, failure_kind::refused, "a track map does not have an entry for each bone");
    for (std::size_t i = 0; i < m_source.frames.size(); ++i)
    {
        const anim_output::frame& frame = m_source.frames[i];
        const std::vector<std::uint32_t> translations = bonesOf(frame.translations);
        const std::vector<std::uint32_t> rotations = bonesOf(frame.rotations);
        if (translations.size() != m_source.frames[0].translations.size() ||
            rotations.size() != m_source.frames[0].rotations.size() ||
            translations != trackBones(m_source.translation_map, translations.size()) ||
            rotations != trackBones(m_source.rotation_map, rotations.size()))
            return fail(why, failure_kind::refused,
                        "frame " + std::to_string(i) + " does not have a value for each of the bones with a track");
    }
    return true;
}

std::vector<std::byte> anim_writer::write()
{
    writeHeader();
    if (m_source.is_single_pose)
        writePoseMaps();
    else
        writeMaps();
    if (hasGamesLayout())
        writeGivenStaticBlock();
    writeCounts();
    if (m_version == 7 && !hasGamesLayout())
        writeStaticBlock();
    for (const anim_output::frame& frame : m_source.frames)
        writeFrame(frame);
    if (m_source.is_single_pose)
        writeFrame(m_source.frames.front());
    return m_out.take();
}

void anim_writer::writeHeader()
{
    m_out.u32(m_version);
    m_out.u32(m_source.header_word);
    m_out.f32(m_source.frame_rate);
    m_out.u16(static_cast<std::uint16_t>(m_source.skeleton_name.size()));
    m_out.text(m_source.skeleton_name);
    if (m_version == 7)
        m_out.u32(0); // no sub-name
    m_out.f32(m_source.end_time);
    m_out.u32(static_cast<std::uint32_t>(m_source.bones.size()));
    for (const anim_output::bone& bone : m_source.bones)
    {
        m_out.u16(static_cast<std::uint16_t>(bone.name.size()));
        m_out.text(bone.name);
        m_out.u32(static_cast<std::uint32_t>(bone.parent));
    }
}

void anim_writer::writeMaps()
{
    std::vector<std::uint32_t> translations = m_source.translation_map;
    std::vector<std::uint32_t> rotations = m_source.rotation_map;
    if (m_version == 7 && !hasGamesLayout()) // bones that take their values from the static block
    {
        constexpr std::uint32_t first_static = 1000;
        constexpr std::size_t bones_for_rotation = 11;
        std::uint32_t next = first_static;
        for (std::uint32_t& entry : translations)
            if (entry == no_track && next < first_static + static_translation_count)
                entry = next++;
        const auto end =
            rotations.begin() + static_cast<std::ptrdiff_t>(std::min(rotations.size(), bones_for_rotation));
        const auto entry = std::find(rotations.begin(), end, no_track);
        if (entry != end)
            *entry = first_static;
    }
    for (const std::uint32_t entry : translations)
        m_out.u32(entry);
    for (const std::uint32_t entry : rotations)
        m_out.u32(entry);
}

// Each map ends after as many entries as the pose has bones, which only leads to a readable file when it has all.
void anim_writer::writePoseMaps()
{
    const auto writeMap = [this](const std::vector<std::uint32_t>& bones) {
        std::vector<std::uint32_t> map(m_source.bones.size(), no_track);
        for (const std::uint32_t bone : bones)
            map[bone] = bone;
        for (std::size_t i = 0; i < bones.size(); ++i)
            m_out.u32(map[i]);
    };
    writeMap(bonesOf(m_source.frames.front().translations));
    writeMap(bonesOf(m_source.frames.front().rotations));
}

void anim_writer::writeCounts()
{
    const std::vector<anim_output::frame>& frames = m_source.frames;
    const std::size_t all = m_source.bones.size();
    m_out.u32(static_cast<std::uint32_t>(frames.empty() ? trackBones(m_source.translation_map, all).size()
                                                        : frames.front().translations.size()));
    m_out.u32(static_cast<std::uint32_t>(frames.empty() ? trackBones(m_source.rotation_map, all).size()
                                                        : frames.front().rotations.size()));
    m_out.u32(m_source.is_single_pose ? 2 : static_cast<std::uint32_t>(frames.size()));
}

void anim_writer::writeGivenStaticBlock()
{
    const bool is_pose = m_source.is_single_pose; // whose maps name no static values
    m_out.u32(is_pose ? 0 : static_cast<std::uint32_t>(m_source.static_translations.size()));
    m_out.u32(is_pose ? 0 : static_cast<std::uint32_t>(m_source.static_rotations.size()));
    if (is_pose)
        return;
    for (const glm::vec3& value : m_source.static_translations)
        writeTranslation(m_out, value);
    for (const glm::quat& value : m_source.static_rotations)
        writeRotation(m_out, value);
}

// Behind the counts, where readers look for frames: the order that the tools expect which take these files.
void anim_writer::writeStaticBlock()
{
    if (m_source.is_single_pose)
    {
        m_out.u32(0);
        m_out.u32(0);
        return;
    }
    m_out.u32(static_translation_count);
    m_out.u32(static_rotation_count);
    for (std::size_t i = 0; i < static_translation_count; ++i)
        writeTranslation(m_out, valueOfFirstBone(&anim_output::frame::translations, i, glm::vec3(0)));
    for (std::size_t i = 0; i < static_rotation_count; ++i)
        writeRotation(m_out, valueOfFirstBone(&anim_output::frame::rotations, i, glm::quat(1, 0, 0, 0)));
}

// Bone 0's value in a frame, or in the last one when there are fewer.
template <typename value>
value anim_writer::valueOfFirstBone(std::map<std::uint32_t, value> anim_output::frame::*values, std::size_t frame,
                                    value otherwise) const
{
    if (m_source.frames.empty())
        return otherwise;
    const auto& of_frame = m_source.frames[std::min(frame, m_source.frames.size() - 1)].*values;
    const auto found = of_frame.find(0);
    return found != of_frame.end() ? found->second : otherwise;
}

void anim_writer::writeFrame(const anim_output::frame& frame)
{
    const auto scaled = [this](float part) {
        return static_cast<float>(static_cast<double>(part) * m_source.translation_scale);
    };
    for (const auto& [bone, value] : frame.translations)
        writeTranslation(m_out, {scaled(value.x), scaled(value.y), scaled(value.z)});
    for (const auto& [bone, value] : frame.rotations)
        writeRotation(m_out, value);
}

} // namespace

bool makeAnim(const anim_output& output, std::uint32_t version, std::vector<std::byte>& bytes, failure& why)
{
    anim_writer writer(output, version);
    if (!writer.check(why))
        return false;
    bytes = writer.write();
    return true;
}

bool writeAnim(const anim_output& output, std::uint32_t version, const std::string& path, std::optional<notice>& said,
               failure& why)
{
    failure found;
    std::vector<std::byte> bytes;
    if (makeAnim(output, version, bytes, found) && writeWholeFile(path, bytes, found))
        return true;
    if (found.kind != failure_kind::refused)
        said = notice{"Save Error!", "Cannot create: " + path};
    found.path = path;
    if (!why)
        why = std::move(found);
    return false;
}

} // namespace korvane
