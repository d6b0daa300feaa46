#pragma once

// Unpacks the data of a compressed entry (docs/formats/pack.md, "Compression"), for those who want all of it and for
// those who want only its start.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace korvane
{

// What compressed data begins with; anything else is LZMA1.
inline constexpr std::uint32_t zstd_frame_magic = 0xfd2fb528;
inline constexpr std::uint32_t lz4_frame_magic = 0x184d2204;

class entry_decoder
{
public:
    virtual ~entry_decoder() = default;

    // For data that begins so: a Zstandard frame, an LZ4 frame, or LZMA1 behind 5 bytes of properties. No more than so
    // many bytes are wanted of what comes out, and no memory beyond that is taken for what lies before.
    [[nodiscard]] static std::unique_ptr<entry_decoder> make(std::span<const std::byte> data, std::size_t wanted);
    // What one byte of such data can unpack to at most.
    [[nodiscard]] static std::uint64_t largestRatio(std::span<const std::byte> data);

    // Unpacks as long as there is data and room; both move on over what was used. False when the data is damaged.
    [[nodiscard]] bool decode(std::span<const std::byte>& data, std::span<std::byte>& target);
    // The same when no more data is to come: what the decoder holds back comes out, too.
    [[nodiscard]] bool drain(std::span<const std::byte>& data, std::span<std::byte>& target);
    // With what decode() left of all the data and of a target of so many bytes: what is wrong when the two do not end
    // together. Empty: nothing is. further: bytes wanted behind the target, when that is only a piece.
    [[nodiscard]] std::string faultAtEnd(std::span<const std::byte> data, std::span<std::byte> target,
                                         std::uint64_t target_size, std::uint64_t further = 0);
    // After a false decode().
    const std::string& damage() const { return m_damage; }

protected:
    // One step. False when nothing more can be done, because of damage or at the end.
    virtual bool step(std::span<const std::byte>& data, std::span<std::byte>& target) = 0;
    // After the last step.
    virtual std::string endFault(std::uint64_t data_left, std::uint64_t target_left,
                                 std::uint64_t target_size) const = 0;

    std::string m_damage; // empty: none was met
};

} // namespace korvane
