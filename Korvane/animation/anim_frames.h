#pragma once

// The numbers of frames as files hold them: translations of 3 f32, rotations of 4 i16, mirrored in X.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/positioned_file.h"

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

// A file's bytes: all of them, or those of its beginning while the rest is still on the disk.
struct anim_source
{
    std::span<const std::byte> start;
    const positioned_file* file = nullptr; // null: start is everything

    std::uint64_t size() const { return file ? file->size() : start.size(); }
};

// Decodes the frames of data, whose counts say how many; they begin at offset, and the source has them all. False when
// the file cannot be read.
[[nodiscard]] bool decodeFrames(const anim_source& source, std::uint64_t offset, anim_data& data, failure& why);

} // namespace korvane
