#include "Korvane/animation/anim_frames.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/animation/anim_file.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <vector>

namespace korvane
{

namespace
{

// The file's component c is c / 32767, in binary32.
float component(const std::byte* bytes, float divisor)
{
    return static_cast<float>(static_cast<std::int16_t>(littleEndian<std::uint16_t>(bytes))) / divisor;
}

// Mirroring turns the signs of y and z: dividing by the negative number does that, for zeros as well.
template <anim_space space>
void decodeRotationsIn(std::span<const std::byte> bytes, std::span<glm::quat> targets)
{
    constexpr float divisor = 32767.0f;
    constexpr float turned = space == anim_space::of_the_program ? -divisor : divisor;
    const std::byte* source = bytes.data();
    for (glm::quat& target : targets)
    {
        target.x = component(source, divisor);
        target.y = component(source + 2, turned);
        target.z = component(source + 4, turned);
        target.w = component(source + 6, divisor);
        source += anim_bytes::rotation;
    }
}

template <anim_space space>
void decodeTranslationsIn(std::span<const std::byte> bytes, std::span<glm::vec3> targets)
{
    static_assert(sizeof(glm::vec3) == anim_bytes::translation);
    if (!targets.empty())
        std::memcpy(targets.data(), bytes.data(), bytes.size());
    if constexpr (space == anim_space::of_the_program)
        for (glm::vec3& target : targets)
            target.x = -target.x;
}

} // namespace

void decodeTranslations(std::span<const std::byte> bytes, anim_space space, std::span<glm::vec3> targets)
{
    assert(bytes.size() == targets.size() * anim_bytes::translation);
    if (space == anim_space::of_the_program)
        decodeTranslationsIn<anim_space::of_the_program>(bytes, targets);
    else
        decodeTranslationsIn<anim_space::of_the_file>(bytes, targets);
}

void decodeRotations(std::span<const std::byte> bytes, anim_space space, std::span<glm::quat> targets)
{
    assert(bytes.size() == targets.size() * anim_bytes::rotation);
    if (space == anim_space::of_the_program)
        decodeRotationsIn<anim_space::of_the_program>(bytes, targets);
    else
        decodeRotationsIn<anim_space::of_the_file>(bytes, targets);
}

// One thread: the disk and the memory are what takes the time, and waiting for a second one costs more than it brings
// where other programs are at work.
bool decodeFrames(const anim_source& source, std::uint64_t offset, anim_data& data, failure& why)
{
    const std::size_t frames = data.frame_count;
    const std::size_t translations = data.translation_count, rotations = data.rotation_count;
    const std::size_t translation_bytes = translations * anim_bytes::translation;
    const std::size_t frame_bytes = translation_bytes + rotations * anim_bytes::rotation;
    data.translations.resize(frames * translations);
    data.rotations.resize(frames * rotations);
    if (!data.animated_translations.empty() && data.animated_translations.front() == 0)
        data.first_bone_offsets.resize(frames);
    for (std::size_t frame = 0; frame < data.first_bone_offsets.size(); ++frame)
        data.first_bone_offsets[frame] = offset + std::uint64_t{frame} * frame_bytes;
    if (frame_bytes == 0)
        return true;

    // What is fetched from the disk at a time stays in the cache until it is decoded.
    constexpr std::size_t chunk_bytes = std::size_t{256} << 10;
    const std::size_t chunk_frames = std::min(std::max<std::size_t>(chunk_bytes / frame_bytes, 1), frames);
    std::vector<std::byte> buffer(source.file ? chunk_frames * frame_bytes : 0);
    for (std::size_t first = 0, count = 0; first < frames; first += count)
    {
        count = std::min(chunk_frames, frames - first);
        const std::uint64_t position = offset + std::uint64_t{first} * frame_bytes;
        const std::size_t size = count * frame_bytes;
        if (source.file && !source.file->readAt(position, std::span(buffer).first(size)))
        {
            why.offset = position;
            why.field = "frames";
            return fail(why, failure_kind::unreadable, "the frames cannot be read (was the file changed?)");
        }
        const auto bytes = source.file ? std::span<const std::byte>(buffer).first(size)
                                       : source.start.subspan(static_cast<std::size_t>(position), size);
        for (std::size_t i = 0; i < count; ++i)
        {
            const auto frame = bytes.subspan(i * frame_bytes, frame_bytes);
            decodeTranslationsIn<anim_space::of_the_program>(
                frame.first(translation_bytes),
                std::span(data.translations).subspan((first + i) * translations, translations));
            decodeRotationsIn<anim_space::of_the_program>(
                frame.subspan(translation_bytes),
                std::span(data.rotations).subspan((first + i) * rotations, rotations));
        }
    }
    return true;
}

} // namespace korvane
