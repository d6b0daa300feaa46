#pragma once

// The numbers of frames as files hold them: translations of 3 f32, rotations of 4 i16, mirrored in X.

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvane
{

struct anim_data;

namespace anim_bytes
{
inline constexpr std::uint64_t translation = 12;
inline constexpr std::uint64_t rotation = 8;
} // namespace anim_bytes

enum class anim_space
{
    of_the_file,
    of_the_program // mirrored in X
};

// bytes holds exactly the targets' records.
void decodeTranslations(std::span<const std::byte> bytes, anim_space space, std::span<glm::vec3> targets);
void decodeRotations(std::span<const std::byte> bytes, anim_space space, std::span<glm::quat> targets);

// Decodes the frames of data, whose counts say how many: bytes holds exactly those. offset is where they begin in the
// file. Large ones keep several threads busy.
void decodeFrames(std::span<const std::byte> bytes, std::uint64_t offset, anim_data& data);

} // namespace korvane
