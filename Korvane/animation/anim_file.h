#pragma once

// Reads .anim files, which hold skeletons and animations alike (docs/formats/anim.md), from the disk or from memory. A
// skeleton is a file whose first frame is the bind pose; an animation moves bones of the skeleton that it names. Three
// depths: a skeleton's bind pose, a whole animation, and a template, which ends before the frames.
//
// Space: the files are mirrored in X against the program. Translations of frames and of the bind pose have their x
// negated, rotations (x, y, z, w) become (x, -y, -z, w). Static values stay as the file has them. Units: metres,
// seconds. One thread at a time; what is read may then be read from any.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/notice.h"
#include "EASY_GUI/services/positioned_file.h"
#include "Korvane/animation/frame_vector.h"

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

struct anim_bone
{
    std::string name;
    std::uint32_t index = 0; // position in the file
    std::int32_t parent = -1;
    // The bind pose in the program's space; only after a skeleton was loaded.
    glm::vec3 translation{0};
    glm::quat rotation{1, 0, 0, 0};  // (w, x, y, z) as GLM constructs it
    std::uint64_t parent_offset = 0; // where the parent stands in the file; 0: made, not read
};

// What a file holds. Tracks: translation j of a frame belongs to the bone animated_translations[j].
struct anim_data
{
    std::uint32_t version = 0;
    std::uint32_t header_word = 0; // kept, not interpreted
    float frame_rate = 0;          // frames a second
    std::string skeleton_name;
    std::uint32_t sub_name_flag = 0; // version 7
    std::string sub_name;            // there when the flag is not zero
    float end_time = 0;              // seconds
    std::vector<anim_bone> bones;
    std::vector<std::uint32_t> translation_map; // for each bone its track, or none: see hasTrack()
    std::vector<std::uint32_t> rotation_map;
    std::vector<std::uint32_t> animated_translations; // bones, ascending; at most as many as a frame has translations
    std::vector<std::uint32_t> animated_rotations;
    std::vector<glm::vec3> static_translations; // version 7, as the file has them
    std::vector<glm::quat> static_rotations;
    std::uint32_t translation_count = 0; // of each frame, as the header says (T)
    std::uint32_t rotation_count = 0;    // (R)
    std::uint32_t frame_count = 0;       // (F)
    // Frame after frame: translation_count and rotation_count each; only after an animation was loaded.
    frame_vector<glm::vec3> translations;
    frame_vector<glm::quat> rotations;
    std::vector<std::uint64_t> first_bone_offsets; // where bone 0's translation begins in the file, for each frame

    std::span<const glm::vec3> frameTranslations(std::size_t frame) const
    {
        return std::span(translations).subspan(frame * translation_count, translation_count);
    }
    std::span<const glm::quat> frameRotations(std::size_t frame) const
    {
        return std::span(rotations).subspan(frame * rotation_count, rotation_count);
    }
};

// How much of a file is read.
enum class anim_depth
{
    skeleton,  // header, bones, maps and the first frame, as bind pose
    animation, // header, bones, maps, static values and all frames
    bones_only // header, bones, maps and static values: a template
};

// True for a map entry that names a track: not 0xffffffff, and below 9000 as a signed number.
[[nodiscard]] constexpr bool hasTrack(std::uint32_t map_entry)
{
    return map_entry != 0xffffffffu && static_cast<std::int32_t>(map_entry) < 9000;
}

// Roll, pitch, yaw of a rotation in degrees: computed in double, kept as float. Straight up and down is a pitch of 90
// and -90 degrees, whatever the rotation's length.
[[nodiscard]] glm::vec3 eulerDegrees(const glm::quat& rotation);

// The bones that a map gives a track, ascending: all of them, or the first ones where a frame has fewer values.
[[nodiscard]] std::vector<std::uint32_t> trackBones(std::span<const std::uint32_t> map, std::size_t value_count);

// False, with the place in the file, when a bone's parent is no bone or its own descendant.
[[nodiscard]] bool checkParents(const anim_data& data, failure& why);

// The frames of a take: frame_rate * end_time + 1, truncated; a product within 1e-6 of the next whole number is that.
// 0 for products below -1 and for what is no number; never more than a u32 holds.
[[nodiscard]] std::uint32_t frameCount(double frame_rate, double end_time_seconds);

class anim_file
{
public:
    static constexpr std::size_t max_bones = 256;
    static constexpr std::size_t max_name = 256; // bytes of a bone's name
    // Frames without any track take no bytes, so that their number says nothing about the file.
    static constexpr std::uint32_t max_trackless_frames = 65536;

    // For loads with an empty path: the bytes of an archive's entry, and its name for messages. They serve any number
    // of loads, until one of them fails, or reset().
    void openFromMemory(memory_file bytes, std::string name);

    // Each reads the file at a UTF-8 path, or with an empty path what openFromMemory() took. False, with the reason and
    // nothing kept, when the file is missing or does not fit its own numbers (docs/formats/anim.md, "Limits"): that a
    // person is to be told as well (lastNotice()), and so they are when memory does not suffice. False without a notice
    // when it is not one of version 5 or 7. A skeleton of version 7 must not have static values.
    [[nodiscard]] bool loadSkeleton(const std::string& path, failure& why);
    [[nodiscard]] bool loadAnimation(const std::string& path, failure& why);
    [[nodiscard]] bool loadTemplate(const std::string& path, failure& why);
    // Forgets what was loaded and what openFromMemory() took.
    void reset();

    // What a person is to be told of the last load: one "Fatal Error!", or nothing.
    const std::optional<notice>& lastNotice() const { return m_notice; }

    const anim_data& data() const { return m_data; }
    // What was loaded, for others to keep; then nothing is loaded.
    [[nodiscard]] anim_data takeData();
    const std::string& path() const { return m_path; } // of the disk, or the name in memory; empty: nothing is loaded

    // The skeleton's name from a file's first bytes, whatever its version; false when they are too few.
    [[nodiscard]] static bool readSkeletonName(std::span<const std::byte> start, std::string& name, failure& why);
    // The same, but only for versions 5 and 7.
    [[nodiscard]] static bool readHeaderName(std::span<const std::byte> start, std::string& name, failure& why);

private:
    bool load(const std::string& path, anim_depth depth, failure& why);
    bool read(const positioned_file& file, anim_depth depth, failure& why);

    std::optional<notice> m_notice;
    memory_file m_bytes;
    std::string m_memory_name;
    std::string m_path;
    anim_data m_data;
};

} // namespace korvane
