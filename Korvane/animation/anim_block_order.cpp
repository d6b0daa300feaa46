#include "Korvane/animation/anim_block_order.h"

#include "EASY_GUI/services/byte_reader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace korvane
{

namespace
{

// What a take without bone 0's values has in its static block: 12 zero translations, 2 rotations without effect.
constexpr std::size_t zero_bytes = 12 * 12;
constexpr std::string_view still_rotations("\0\0\0\0\0\0\xff\x7f\0\0\0\0\0\0\xff\x7f", 16);

class block_order
{
public:
    block_order(std::span<const std::byte> bytes, std::size_t bone_count) : m_bytes(bytes), m_bone_count(bone_count) {}

    std::optional<std::size_t> findEarlyCounts() const
    {
        const std::size_t behind_maps = 2 * m_bone_count;
        if (isTake(behind_maps))
            return behind_maps * 4;
        for (std::size_t at = 1; at <= behind_maps; ++at)
            if (isPose(at))
                return at * 4;
        return std::nullopt;
    }

private:
    bool has(std::size_t words) const { return words <= m_bytes.size() / 4; }
    std::uint32_t word(std::size_t index) const { return littleEndian<std::uint32_t>(m_bytes.data() + index * 4); }

    // T, R, F, 12, 2 and the static values. To a reader T and R are static counts, so that what follows are the first
    // static values: a translation (F, 12, 2) as the bits of floats, which is no length, or rotations of no length.
    bool isTake(std::size_t at) const
    {
        if (!has(at + 5) || word(at) > m_bone_count || word(at + 1) > m_bone_count || word(at + 3) != 12 ||
            word(at + 4) != 2)
            return false;
        if (word(at) > 0)
            return true;
        const auto rest = m_bytes.subspan((at + 5) * 4);
        if (!isStill(rest, word(at + 1) == 0))
            return false;
        // Without any track the words are no static counts, but F, 12 and 2 as T, R and F. Such a file has rotations of
        // no length again, but for one: 12 translations at the origin and 12 rotations, the first of them without
        // effect, in 2 frames.
        constexpr std::size_t frames = 2 * (12 * 12 + 12 * 8);
        return word(at + 1) > 0 || word(at + 2) != 12 || rest.size() < frames;
    }

    static bool isStill(std::span<const std::byte> rest, bool has_still_rotations)
    {
        const auto zeros = rest.first(std::min(rest.size(), zero_bytes));
        if (std::any_of(zeros.begin(), zeros.end(), [](std::byte byte) { return byte != std::byte{0}; }))
            return false;
        if (!has_still_rotations || rest.size() <= zero_bytes)
            return true;
        const auto rotations =
            rest.subspan(zero_bytes).first(std::min(rest.size() - zero_bytes, still_rotations.size()));
        return std::memcmp(rotations.data(), still_rotations.data(), rotations.size()) == 0;
    }

    // Maps with as many entries as the pose has bones, entry k being k or nothing, then T, R, 2, no static values, and
    // the pose twice. In the usual order all this would be maps and static values, which look otherwise.
    bool isPose(std::size_t at) const
    {
        if (!has(at + 5))
            return false;
        const std::size_t translations = word(at), rotations = word(at + 1);
        return translations <= m_bone_count && rotations <= m_bone_count && translations + rotations == at &&
               word(at + 2) == 2 && word(at + 3) == 0 && word(at + 4) == 0 && isPoseMap(0, translations) &&
               isPoseMap(translations, rotations) &&
               isTwice(m_bytes.subspan((at + 5) * 4), translations * 12 + rotations * 8);
    }

    // As far as the second one goes.
    static bool isTwice(std::span<const std::byte> frames, std::size_t frame_bytes)
    {
        return frames.size() <= frame_bytes || std::memcmp(frames.data(), frames.data() + frame_bytes,
                                                           std::min(frame_bytes, frames.size() - frame_bytes)) == 0;
    }

    bool isPoseMap(std::size_t at, std::size_t count) const
    {
        for (std::uint32_t i = 0; i < count; ++i)
            if (word(at + i) != i && word(at + i) != 0xffffffffu)
                return false;
        return true;
    }

    std::span<const std::byte> m_bytes;
    std::size_t m_bone_count;
};

} // namespace

std::optional<std::size_t> findEarlyCounts(std::span<const std::byte> start_of_maps, std::size_t bone_count)
{
    return block_order(start_of_maps, bone_count).findEarlyCounts();
}

} // namespace korvane
