#pragma once

// Writes .anim files (docs/formats/anim.md, "Writing"), for the conversion from FBX. Everything given is in the file's
// space, mirrored in X against the program, and is written as it stands.
//
// Files of version 5 can be read again. Those of version 7 have, in the tools' layout, their static block where no
// reader expects it, and are refused by ours: the tools that take them want them so. In the games' layout they are as
// the games' own files are, and can be read again.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/notice.h"

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

enum class anim_layout // of version 7
{
    tools, // the static block behind the counts, always of the same size, and the maps point at it
    games  // the static block before the counts, with the values given; the maps stay as they are
};

struct anim_output
{
    struct bone
    {
        std::string name;
        std::int32_t parent = -1;
    };
    struct frame // by bone
    {
        std::map<std::uint32_t, glm::vec3> translations;
        std::map<std::uint32_t, glm::quat> rotations;
    };

    std::uint32_t header_word = 0;
    float frame_rate = 0; // frames a second
    std::string skeleton_name;
    float end_time = 0; // seconds
    std::vector<bone> bones;
    std::vector<std::uint32_t> translation_map; // an entry for each bone
    std::vector<std::uint32_t> rotation_map;
    // Each has values for the same bones: those of the map's tracks, or the first ones of these.
    std::vector<frame> frames;
    double translation_scale = 1.0; // of the frames' translations, but not of static values
    anim_layout layout = anim_layout::tools;
    std::vector<glm::vec3> static_translations; // of the games' layout
    std::vector<glm::quat> static_rotations;
    // The only frame is a pose, which the file holds twice; its own bones make the maps.
    bool is_single_pose = false;
};

// The bytes of a file of version 5 or 7. False when the output contradicts itself or a limit of the format.
[[nodiscard]] bool makeAnim(const anim_output& output, std::uint32_t version, std::vector<std::byte>& bytes,
                            failure& why);

// Writes them to a UTF-8 path. False when it cannot be written, of which a person is to be told ("Save Error!"), or
// when they cannot be made, without a notice.
[[nodiscard]] bool writeAnim(const anim_output& output, std::uint32_t version, const std::string& path,
                             std::optional<notice>& said, failure& why);

} // namespace korvane
