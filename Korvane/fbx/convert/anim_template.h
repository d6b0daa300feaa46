#pragma once

// What a conversion takes from its template, an .anim file of the skeleton: the bones, which of them have tracks, and
// where those stand that nothing else is known of. Values are the files' own: metres, mirrored in X against the
// program.

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"

#include <glm/gtc/quaternion.hpp>
#include <glm/vec3.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

struct anim_template
{
    struct bone
    {
        std::string name;
        std::int32_t parent = -1; // as the template has it, or among the selected bones
        bool has_translations = false;
        bool has_rotations = false;
        bool has_static_value = false; // at least one, which goes for all frames
        // The first frame's, or the static one; none: the template was loaded without frames, or has nothing.
        std::optional<glm::dvec3> translation;
        std::optional<glm::dquat> rotation;
    };

    std::vector<bone> bones;
    std::vector<std::uint32_t> translation_map; // an entry for each bone
    std::vector<std::uint32_t> rotation_map;
    std::vector<std::string> unknown; // selected, but no bones of the template

    std::size_t translationCount() const;
    std::size_t rotationCount() const;
};

// All bones in the template's order, its maps untouched; or those selected, in that order, their tracks numbered anew
// and their parents the nearest ones selected. What is selected twice counts once.
[[nodiscard]] anim_template makeTemplate(const anim_data& data,
                                         const std::optional<std::vector<std::string>>& selection);

} // namespace korvane
