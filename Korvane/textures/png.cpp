#include "Korvane/textures/png.h"

#include <lodepng.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

const unsigned char* asBytes(std::span<const std::byte> file)
{
    return reinterpret_cast<const unsigned char*>(file.data());
}

struct png_chunk
{
    std::size_t offset; // of its length word
    std::string name;
    std::span<const std::byte> bytes; // with length, name and checksum
};

// Goes from chunk to chunk, as far as they are whole.
class chunk_walk
{
public:
    explicit chunk_walk(std::span<const std::byte> file) : m_file(file) {}

    // Nothing at the end and where a chunk is cut.
    std::optional<png_chunk> next()
    {
        const std::size_t left = m_file.size() - std::min(m_at, m_file.size());
        if (left < around)
            return std::nullopt;
        const unsigned char* const chunk = asBytes(m_file) + m_at;
        m_wanted = std::size_t{lodepng_chunk_length(chunk)} + around;
        char name[5];
        lodepng_chunk_type(name, chunk);
        m_name = name;
        if (!std::all_of(m_name.begin(), m_name.end(),
                         [](unsigned char letter) { return letter < 128 && std::isalpha(letter); }))
            m_name = "without a name";
        if (m_wanted > left)
            return std::nullopt;
        png_chunk found{m_at, m_name, m_file.subspan(m_at, m_wanted)};
        m_at += m_wanted;
        m_wanted = 0;
        return found;
    }

    std::size_t position() const { return m_at; }
    std::size_t wanted() const { return m_wanted; } // by a chunk that is cut
    const std::string& name() const { return m_name; }

private:
    static constexpr std::size_t around = 12; // bytes of a chunk without contents

    std::span<const std::byte> m_file;
    std::size_t m_at = png_signature.size();
    std::size_t m_wanted = 0;
    std::string m_name;
};

bool failAt(failure& why, failure_kind kind, std::size_t offset, std::string what, std::string field)
{
    if (!why)
        why = {kind, std::move(what), "", offset, std::move(field)};
    return false;
}

// The first chunk that is damaged; without one, what LodePNG says.
bool failPng(std::span<const std::byte> file, failure& why, unsigned error)
{
    chunk_walk walk(file);
    while (const std::optional<png_chunk> chunk = walk.next())
    {
        if (lodepng_chunk_check_crc(asBytes(chunk->bytes)) != 0)
            return failAt(why, failure_kind::malformed, chunk->offset, "the checksum of a PNG chunk is wrong",
                          "chunk " + chunk->name);
        if (chunk->name == "IEND")
        {
            const std::string text = lodepng_error_text(error);
            return fail(why, failure_kind::malformed, "as a PNG file: " + text.substr(0, text.find(" (")));
        }
    }
    const std::size_t left = file.size() - std::min(walk.position(), file.size());
    return failAt(why, failure_kind::truncated, walk.position(),
                  walk.wanted() == 0 ? "the PNG file ends too early: there is no last chunk"
                                     : "the PNG file ends too early: expected " + std::to_string(walk.wanted()) +
                                           " bytes but " + std::to_string(left) + " are left",
                  walk.wanted() == 0 ? "chunk IEND" : "chunk " + walk.name());
}

struct png_size
{
    unsigned width = 0, height = 0;
    std::uint64_t bytes = 0; // of the pixels, unpacked
};

bool inspect(std::span<const std::byte> file, lodepng::State& state, png_size& size, failure& why)
{
    state.decoder.ignore_crc = 1; // a size that cannot be is said first
    const unsigned error = lodepng_inspect(&size.width, &size.height, &state, asBytes(file), file.size());
    state.decoder.ignore_crc = 0;
    if (error != 0)
    {
        const std::string text = lodepng_error_text(error);
        return failAt(why, failure_kind::malformed, png_signature.size(),
                      "as a PNG file: " + text.substr(0, text.find(" (")), "chunk IHDR");
    }
    const std::uint64_t pixels = std::uint64_t{size.width} * size.height;
    if (pixels > max_picture_pixels)
        return failAt(why, failure_kind::unsupported, 16,
                      std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels are more than " +
                          std::to_string(max_picture_pixels),
                      "width");
    size.bytes = pixels * lodepng_get_bpp(&state.info_png.color) / 8;
    return true;
}

// LodePNG unpacks profiles although nobody wants them, and refuses the file for one that is damaged or too large.
// Empty when there is none.
std::vector<std::byte> withoutProfiles(std::span<const std::byte> file)
{
    std::vector<std::byte> rest;
    std::size_t kept = 0; // so far
    const auto keepUpTo = [&](std::size_t end) {
        rest.insert(rest.end(), file.begin() + static_cast<std::ptrdiff_t>(kept),
                    file.begin() + static_cast<std::ptrdiff_t>(end));
    };
    chunk_walk walk(file);
    while (const std::optional<png_chunk> chunk = walk.next())
        if (chunk->name == "iCCP")
        {
            keepUpTo(chunk->offset);
            kept = chunk->offset + chunk->bytes.size();
        }
    if (kept > 0)
        keepUpTo(file.size());
    return rest;
}

unsigned decode(std::span<const std::byte> file, lodepng::State& state, png_memory& pixels)
{
    unsigned char* decoded = nullptr;
    unsigned width = 0, height = 0;
    const unsigned error = lodepng_decode(&decoded, &width, &height, &state, asBytes(file), file.size());
    pixels.reset(decoded);
    return error;
}

} // namespace

bool readPng(std::span<const std::byte> file, picture& target, failure& why)
{
    lodepng::State state;
    state.decoder.read_text_chunks = 0; // what is not shown is not unpacked
    state.decoder.remember_unknown_chunks = 0;
    png_size size;
    if (!inspect(file, state, size, why))
        return false;
    // The decoder takes memory for the whole picture first; a byte of a file unpacks to at most 1032.
    if (size.bytes / 1032 > file.size())
        return failAt(why, failure_kind::malformed, 16,
                      std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels do not fit into " +
                          std::to_string(file.size()) + " bytes",
                      "width");
    png_memory pixels;
    unsigned error = decode(file, state, pixels);
    if (error != 0)
        if (const std::vector<std::byte> rest = withoutProfiles(file); !rest.empty())
            error = decode(rest, state, pixels);
    if (error != 0)
        return failPng(file, why, error);
    picture result(size.width, size.height);
    std::memcpy(result.pixels().data(), pixels.get(), result.pixels().size_bytes());
    target = std::move(result);
    return true;
}

bool pngFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why)
{
    lodepng::State state;
    png_size pixels;
    if (!inspect(start, state, pixels, why))
        return false;
    // Rows have a byte more; pixels that do not pack well take a little more than they are, chunks 12 bytes each.
    constexpr std::uint64_t room_beside = std::uint64_t{64} << 20;
    size = 2 * (pixels.bytes + 8 * std::uint64_t{pixels.height}) + room_beside;
    return true;
}

bool writePng(const picture& source, png_bytes& file, failure& why)
{
    const bool is_opaque = std::all_of(source.pixels().begin(), source.pixels().end(),
                                       [](rgba_pixel pixel) { return pixel >> 24 == 255; });
    lodepng::State state;
    state.encoder.auto_convert = 0; // palettes and grey are what game tools stumble over
    state.info_png.color.colortype = is_opaque ? LCT_RGB : LCT_RGBA;
    state.encoder.zlibsettings.windowsize = 1024; // 6 to 10 times as fast as the largest, for 2 to 8 % more bytes
    unsigned char* encoded = nullptr;
    std::size_t size = 0;
    const unsigned error =
        lodepng_encode(&encoded, &size, reinterpret_cast<const unsigned char*>(source.pixels().data()), source.width(),
                       source.height(), &state);
    file.m_memory.reset(encoded);
    file.m_size = size;
    return error == 0 ||
           fail(why, failure_kind::unwritable, std::string("as a PNG file: ") + lodepng_error_text(error));
}

} // namespace korvane
