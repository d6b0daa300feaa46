#include "Korvane/animation/anim_frames.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/animation/anim_file.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstring>
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

// What is fetched from the disk at a time: it stays in the cache until it is decoded.
constexpr std::size_t chunk_bytes = std::size_t{256} << 10;

// Threads take chunks of frames until there are none left.
class frame_decoder
{
public:
    frame_decoder(const anim_source& source, std::uint64_t offset, anim_data& data)
        : m_source(source)
        , m_offset(offset)
        , m_data(data)
        , m_translation_bytes(data.translation_count * anim_bytes::translation)
        , m_frame_bytes(m_translation_bytes + data.rotation_count * anim_bytes::rotation)
        , m_chunk_frames(std::max<std::size_t>(chunk_bytes / std::max<std::size_t>(m_frame_bytes, 1), 1))
    {
    }

    std::size_t bufferSize() const { return m_source.file ? m_chunk_frames * m_frame_bytes : 0; }
    std::uint64_t size() const { return std::uint64_t{m_data.frame_count} * m_frame_bytes; }
    bool hasFailed() const { return m_has_failed.load(); }

    void work(std::span<std::byte> buffer)
    {
        const std::size_t frames = m_data.frame_count;
        for (std::size_t first; !hasFailed() && (first = m_next.fetch_add(m_chunk_frames)) < frames;)
        {
            const std::size_t count = std::min(m_chunk_frames, frames - first);
            const std::uint64_t position = m_offset + std::uint64_t{first} * m_frame_bytes;
            std::span<const std::byte> bytes;
            if (!m_source.file)
                bytes = m_source.start.subspan(static_cast<std::size_t>(position), count * m_frame_bytes);
            else if (m_source.file->readAt(position, buffer.first(count * m_frame_bytes)))
                bytes = buffer.first(count * m_frame_bytes);
            else
                return m_has_failed.store(true);
            decode(bytes, first, count);
        }
    }

private:
    void decode(std::span<const std::byte> bytes, std::size_t first, std::size_t count)
    {
        const std::size_t translations = m_data.translation_count, rotations = m_data.rotation_count;
        for (std::size_t i = 0; i < count; ++i)
        {
            const auto frame = bytes.subspan(i * m_frame_bytes, m_frame_bytes);
            decodeTranslationsIn<anim_space::of_the_program>(
                frame.first(m_translation_bytes),
                std::span(m_data.translations).subspan((first + i) * translations, translations));
            decodeRotationsIn<anim_space::of_the_program>(
                frame.subspan(m_translation_bytes),
                std::span(m_data.rotations).subspan((first + i) * rotations, rotations));
        }
    }

    const anim_source& m_source;
    std::uint64_t m_offset;
    anim_data& m_data;
    std::size_t m_translation_bytes;
    std::size_t m_frame_bytes;
    std::size_t m_chunk_frames;
    std::atomic<std::size_t> m_next{0};
    std::atomic<bool> m_has_failed{false};
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

bool decodeFrames(const anim_source& source, std::uint64_t offset, anim_data& data, failure& why)
{
    const std::size_t frames = data.frame_count;
    frame_decoder decoder(source, offset, data);
    constexpr std::uint64_t worth_a_thread = 1u << 20; // bytes
    const auto threads = static_cast<std::size_t>(std::min<std::uint64_t>(
        {std::max(std::thread::hardware_concurrency(), 1u), 4, 1 + decoder.size() / worth_a_thread}));
    // All memory is fetched here: what remains to be done by several threads needs none.
    data.translations.resize(frames * data.translation_count);
    data.rotations.resize(frames * data.rotation_count);
    if (!data.animated_translations.empty() && data.animated_translations.front() == 0)
        data.first_bone_offsets.resize(frames);
    for (std::size_t frame = 0; frame < data.first_bone_offsets.size(); ++frame)
        data.first_bone_offsets[frame] = offset + frame * (decoder.size() / frames);
    if (decoder.size() == 0)
        return true;
    std::vector<std::byte> buffers(threads * decoder.bufferSize());
    const auto bufferOf = [&](std::size_t thread)
    {
        return std::span(buffers).subspan(thread * decoder.bufferSize(), decoder.bufferSize());
    };
    {
        std::vector<std::jthread> helpers;
        try
        {
            for (std::size_t i = 1; i < threads; ++i)
                helpers.emplace_back(&frame_decoder::work, &decoder, bufferOf(i));
        }
        catch (const std::system_error&) // no more threads: those that are there do it
        {
        }
        decoder.work(bufferOf(0));
    }
    if (!decoder.hasFailed())
        return true;
    why.offset = offset;
    why.field = "frames";
    return fail(why, failure_kind::unreadable, "the frames cannot be read (was the file changed?)");
}

} // namespace korvane
