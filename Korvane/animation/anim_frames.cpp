#include "Korvane/animation/anim_frames.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/animation/anim_file.h"

#include <algorithm>
#include <cassert>
#include <system_error>
#include <thread>
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

struct frame_job
{
    std::span<const std::byte> bytes;
    anim_data& data;
    std::uint64_t offset;

    void run(std::size_t first, std::size_t end) const
    {
        const std::size_t translations = data.translation_count, rotations = data.rotation_count;
        const std::size_t translation_bytes = translations * anim_bytes::translation;
        const std::size_t frame_bytes = translation_bytes + rotations * anim_bytes::rotation;
        for (std::size_t frame = first; frame < end; ++frame)
        {
            const auto source = bytes.subspan(frame * frame_bytes, frame_bytes);
            decodeTranslationsIn<anim_space::of_the_program>(
                source.first(translation_bytes),
                std::span(data.translations).subspan(frame * translations, translations));
            decodeRotationsIn<anim_space::of_the_program>(
                source.subspan(translation_bytes), std::span(data.rotations).subspan(frame * rotations, rotations));
        }
    }
};

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

void decodeFrames(std::span<const std::byte> bytes, std::uint64_t offset, anim_data& data)
{
    const std::size_t frames = data.frame_count;
    // All memory is fetched here: what remains to be done by several threads cannot fail.
    data.translations.resize(frames * data.translation_count);
    data.rotations.resize(frames * data.rotation_count);
    if (!data.animated_translations.empty() && data.animated_translations.front() == 0)
        data.first_bone_offsets.resize(frames);
    const std::uint64_t frame_bytes = frames > 0 ? bytes.size() / frames : 0;
    for (std::size_t frame = 0; frame < data.first_bone_offsets.size(); ++frame)
        data.first_bone_offsets[frame] = offset + frame * frame_bytes;

    constexpr std::size_t worth_a_thread = 1u << 20; // bytes
    const std::size_t parts = std::min<std::size_t>(
        {std::max(std::thread::hardware_concurrency(), 1u), 4, 1 + bytes.size() / worth_a_thread});
    const frame_job job = {bytes, data, offset};
    const auto runPart = [&job, frames, parts](std::size_t part)
    {
        job.run(frames * part / parts, frames * (part + 1) / parts);
    };
    std::vector<std::jthread> helpers;
    std::size_t part = 1;
    try
    {
        for (; part < parts; ++part)
            helpers.emplace_back(runPart, part);
    }
    catch (const std::system_error&) // no more threads: what is left is done here
    {
    }
    for (; part < parts; ++part)
        runPart(part);
    runPart(0);
}

} // namespace korvane
