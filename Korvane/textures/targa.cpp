#include "Korvane/textures/targa.h"

#include "EASY_GUI/services/byte_reader.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::string_view written_id = "written with libtarga";
constexpr std::size_t header_size = 18;
constexpr unsigned longest_packet = 128; // pixels

struct targa_header
{
    std::uint8_t id_length, map_type, image_type;
    std::uint16_t map_first, map_length;
    std::uint8_t map_depth;
    std::uint16_t width, height;
    std::uint8_t depth, descriptor;

    bool isEncoded() const { return (image_type & 8) != 0; }
    unsigned kind() const { return image_type & 7u; } // 1 colour-mapped, 2 true-colour, 3 grey
    unsigned alphaBits() const { return descriptor & 15u; }
    bool isFromRight() const { return (descriptor & 16) != 0; }
    bool isFromTop() const { return (descriptor & 32) != 0; }
    unsigned pixelBytes() const { return (depth + 7u) / 8; }
    std::size_t pixelCount() const { return std::size_t{width} * height; }
};

enum class pixel_layout
{
    grey8,
    grey8_alpha8,
    bgr555,   // 16 bits, the top one unused
    bgra5551, // the top one is alpha
    bgr888,
    bgra8888
};

unsigned byteAt(const std::byte* bytes, std::size_t index)
{
    return std::to_integer<unsigned>(bytes[index]);
}

rgba_pixel swapRedAndBlue(rgba_pixel pixel)
{
    return (pixel & 0xff00ff00) | (pixel & 0xff) << 16 | (pixel >> 16 & 0xff);
}

unsigned from5Bits(unsigned value)
{
    return value << 3 | value >> 2;
}

template <class converter>
void convertEach(const std::byte* source, std::size_t step, std::span<rgba_pixel> target, const converter& convert)
{
    for (std::size_t i = 0; i < target.size(); ++i)
        target[i] = convert(source + i * step);
}

void convertPixels(pixel_layout layout, const std::byte* source, std::span<rgba_pixel> target)
{
    switch (layout)
    {
    case pixel_layout::grey8:
        return convertEach(source, 1, target,
                           [](const std::byte* at) { return byteAt(at, 0) * 0x010101 | 0xff000000; });
    case pixel_layout::grey8_alpha8:
        return convertEach(source, 2, target,
                           [](const std::byte* at) { return byteAt(at, 0) * 0x010101 | byteAt(at, 1) << 24; });
    case pixel_layout::bgr888:
        return convertEach(source, 3, target,
                           [](const std::byte* at) { return rgba(byteAt(at, 2), byteAt(at, 1), byteAt(at, 0), 255); });
    case pixel_layout::bgra8888:
        return convertEach(source, 4, target,
                           [](const std::byte* at) { return swapRedAndBlue(littleEndian<std::uint32_t>(at)); });
    case pixel_layout::bgr555:
    case pixel_layout::bgra5551:
        const unsigned opaque = layout == pixel_layout::bgr555 ? 0x8000 : 0;
        return convertEach(source, 2, target, [opaque](const std::byte* at) {
            const unsigned value = littleEndian<std::uint16_t>(at) | opaque;
            return rgba(from5Bits(value >> 10 & 31), from5Bits(value >> 5 & 31), from5Bits(value & 31),
                        (value >> 15) * 255);
        });
    }
}

// Of 15, 16, 24 or 32 bits: pixels of a true-colour picture, or entries of a colour map.
pixel_layout colourLayout(unsigned depth, unsigned alpha_bits)
{
    if (depth == 24)
        return pixel_layout::bgr888;
    if (depth == 32)
        return pixel_layout::bgra8888;
    return depth == 16 && alpha_bits > 0 ? pixel_layout::bgra5551 : pixel_layout::bgr555;
}

bool isColourDepth(unsigned depth)
{
    return depth == 15 || depth == 16 || depth == 24 || depth == 32;
}

class targa_reader
{
public:
    explicit targa_reader(std::span<const std::byte> file) : m_in(file) {}

    bool read(picture& target, failure& why);
    bool size(std::uint64_t& most, failure& why);

private:
    void readHeader();
    void checkHeader();
    void checkDepth();
    void readMap();
    bool hasRoom();
    std::span<const std::byte> pixelBytes(large_vector<std::byte>& unpacked);
    void unpack(large_vector<std::byte>& pixels);
    void fillRow(std::uint32_t y, const std::byte* source, std::span<rgba_pixel> row);
    void mapRow(std::uint32_t y, const std::byte* source, std::span<rgba_pixel> row);

    byte_reader m_in;
    targa_header m_header{};
    std::uint64_t m_pixels_at = 0; // in the file
    std::vector<rgba_pixel> m_map;
};

void targa_reader::readHeader()
{
    m_header.id_length = m_in.u8("ID length");
    m_header.map_type = m_in.u8("colour map type");
    m_header.image_type = m_in.u8("image type");
    m_header.map_first = m_in.u16("first colour map entry");
    m_header.map_length = m_in.u16("colour map length");
    m_header.map_depth = m_in.u8("colour map entry size");
    m_in.skip(4, "origin");
    m_header.width = m_in.u16("width");
    m_header.height = m_in.u16("height");
    m_header.depth = m_in.u8("pixel depth");
    m_header.descriptor = m_in.u8("image descriptor");
    if (m_in.ok())
        checkHeader();
}

void targa_reader::checkHeader()
{
    const auto refuse = [this](std::uint64_t position, std::string what, std::string_view field) {
        m_in.failAt(position, failure_kind::unsupported, std::move(what), field);
    };
    if (m_header.map_type > 1)
        refuse(1, "colour map type " + std::to_string(m_header.map_type) + " is not known: is this a Targa file?",
               "colour map type");
    else if ((m_header.image_type & ~8u) == 0 || (m_header.image_type & ~8u) > 3)
        refuse(
            2,
            "image type " + std::to_string(m_header.image_type) +
                " cannot be read, only 1, 2, 3 (colour-mapped, true-colour, grey) and 9, 10, 11 (run-length encoded)",
            "image type");
    else if (m_header.width == 0 || m_header.height == 0)
        m_in.failAt(12, failure_kind::malformed,
                    "the picture has " + std::to_string(m_header.width) + " x " + std::to_string(m_header.height) +
                        " pixels",
                    "width");
    else if ((m_header.descriptor & 0xc0) != 0)
        refuse(17, "interleaved rows cannot be read", "image descriptor");
    else if (m_header.pixelCount() > max_picture_pixels)
        refuse(12,
               std::to_string(m_header.width) + " x " + std::to_string(m_header.height) + " pixels are more than " +
                   std::to_string(max_picture_pixels),
               "width");
    else
        checkDepth();
}

void targa_reader::checkDepth()
{
    const unsigned depth = m_header.depth, kind = m_header.kind();
    const bool is_grey_or_index = depth == 8 || depth == 16;
    if (kind == 2 ? !isColourDepth(depth) : !is_grey_or_index)
        m_in.failAt(16, failure_kind::unsupported,
                    (kind == 1   ? "a colour-mapped"
                     : kind == 2 ? "a true-colour"
                                 : "a grey") +
                        std::string(" picture of ") + std::to_string(depth) + " bits a pixel cannot be read, only of " +
                        (kind == 2 ? "15, 16, 24 and 32" : "8 and 16"),
                    "pixel depth");
    else if (kind == 1 && m_header.map_type != 1)
        m_in.failAt(1, failure_kind::malformed, "a colour-mapped picture without a colour map", "colour map type");
    else if (m_header.map_type == 1 && kind == 1 && !isColourDepth(m_header.map_depth))
        m_in.failAt(7, failure_kind::unsupported,
                    "colour map entries of " + std::to_string(m_header.map_depth) +
                        " bits cannot be read, only of 15, 16, 24 and 32",
                    "colour map entry size");
}

// A colour map that no pixel refers to is passed over.
void targa_reader::readMap()
{
    if (m_header.map_type != 1)
        return;
    const std::uint64_t entry_bytes = (m_header.map_depth + 7u) / 8;
    const std::span<const std::byte> bytes = m_in.bytes(m_header.map_length * entry_bytes, "colour map");
    if (!m_in.ok() || m_header.kind() != 1)
        return;
    m_map.resize(m_header.map_length);
    convertPixels(colourLayout(m_header.map_depth, m_header.alphaBits()), bytes.data(), m_map);
}

// Before memory is taken: a packet of one pixel and a byte stands for at most 128 pixels.
bool targa_reader::hasRoom()
{
    m_pixels_at = m_in.position();
    const std::uint64_t bytes = m_header.pixelBytes();
    const std::uint64_t most = m_header.isEncoded() ? m_in.left() / (bytes + 1) * longest_packet : m_in.left() / bytes;
    if (m_header.pixelCount() <= most)
        return true;
    return m_in.failAt(m_pixels_at, failure_kind::truncated,
                       std::to_string(m_header.width) + " x " + std::to_string(m_header.height) + " pixels of " +
                           std::to_string(bytes) + " bytes do not fit into the " + std::to_string(m_in.left()) +
                           (m_header.isEncoded() ? " encoded" : "") + " bytes that are left",
                       "pixels");
}

void targa_reader::unpack(large_vector<std::byte>& pixels)
{
    const std::size_t pixel_bytes = m_header.pixelBytes();
    for (std::size_t at = 0; at < pixels.size() && m_in.ok();)
    {
        const std::uint64_t packet_at = m_in.position();
        const unsigned packet = m_in.u8("packet");
        const std::size_t size = ((packet & 127) + 1) * pixel_bytes;
        if (size > pixels.size() - at)
        {
            m_in.failAt(packet_at, failure_kind::malformed,
                        "a packet of " + std::to_string(size / pixel_bytes) + " pixels where " +
                            std::to_string((pixels.size() - at) / pixel_bytes) + " are left",
                        "packet");
            return;
        }
        const bool is_run = (packet & 128) != 0;
        const std::span<const std::byte> bytes = m_in.bytes(is_run ? pixel_bytes : size, "pixels of a packet");
        if (!m_in.ok())
            return;
        for (std::size_t end = at + size; at < end; at += bytes.size())
            std::memcpy(pixels.data() + at, bytes.data(), bytes.size());
    }
}

std::span<const std::byte> targa_reader::pixelBytes(large_vector<std::byte>& unpacked)
{
    const std::size_t size = m_header.pixelCount() * m_header.pixelBytes();
    if (!m_header.isEncoded())
        return m_in.bytes(size, "pixels");
    unpacked.resize(size);
    unpack(unpacked);
    return unpacked;
}

void targa_reader::mapRow(std::uint32_t y, const std::byte* source, std::span<rgba_pixel> row)
{
    const std::size_t index_bytes = m_header.pixelBytes();
    for (std::size_t x = 0; x < row.size(); ++x)
    {
        const std::byte* const at = source + x * index_bytes;
        const unsigned index = index_bytes == 1 ? byteAt(at, 0) : littleEndian<std::uint16_t>(at);
        if (index < m_header.map_first || index - m_header.map_first >= m_map.size())
        {
            m_in.failAt(m_pixels_at, failure_kind::malformed,
                        "row " + std::to_string(y) + ", pixel " + std::to_string(x) + " of the file has colour " +
                            std::to_string(index) + ", but the colour map holds " + std::to_string(m_map.size()) +
                            " colours from " + std::to_string(m_header.map_first),
                        "pixels");
            return;
        }
        row[x] = m_map[index - m_header.map_first];
    }
}

void targa_reader::fillRow(std::uint32_t y, const std::byte* source, std::span<rgba_pixel> row)
{
    if (m_header.kind() == 1)
        mapRow(y, source, row);
    else if (m_header.kind() == 3)
        convertPixels(m_header.depth == 8 ? pixel_layout::grey8 : pixel_layout::grey8_alpha8, source, row);
    else
        convertPixels(colourLayout(m_header.depth, m_header.alphaBits()), source, row);
    if (m_header.isFromRight())
        std::reverse(row.begin(), row.end());
}

// A packet has at least a pixel.
bool targa_reader::size(std::uint64_t& most, failure& why)
{
    readHeader();
    if (!m_in.finish(why))
        return false;
    most = header_size + m_header.id_length + m_header.map_length * ((m_header.map_depth + 7u) / 8) +
           std::uint64_t{m_header.pixelCount()} * (m_header.pixelBytes() + (m_header.isEncoded() ? 1u : 0u));
    return true;
}

bool targa_reader::read(picture& target, failure& why)
{
    readHeader();
    m_in.skip(m_header.id_length, "image ID");
    readMap();
    if (!m_in.ok() || !hasRoom())
        return m_in.finish(why);
    large_vector<std::byte> unpacked;
    const std::span<const std::byte> bytes = pixelBytes(unpacked);
    if (!m_in.ok())
        return m_in.finish(why);
    picture result(m_header.width, m_header.height);
    const std::size_t row_bytes = std::size_t{m_header.width} * m_header.pixelBytes();
    for (std::uint32_t y = 0; y < m_header.height && m_in.ok(); ++y)
        fillRow(y, bytes.data() + y * row_bytes, result.row(m_header.isFromTop() ? y : m_header.height - 1u - y));
    if (!m_in.finish(why))
        return false;
    target = std::move(result);
    return true;
}

} // namespace

bool readTarga(std::span<const std::byte> file, picture& target, failure& why)
{
    return targa_reader(file).read(target, why);
}

bool targaFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why)
{
    return targa_reader(start).size(size, why);
}

bool writeTarga(const picture& source, memory_file& file, failure& why)
{
    if (source.pixelCount() == 0 || source.width() > targa_max_size || source.height() > targa_max_size)
        return fail(why, failure_kind::refused,
                    "a Targa file has 1 to " + std::to_string(targa_max_size) + " pixels in each direction, not " +
                        std::to_string(source.width()) + " x " + std::to_string(source.height()));
    const auto low = [](std::uint32_t value) { return static_cast<unsigned char>(value); };
    const unsigned char header[header_size] = {low(written_id.size()),
                                               0, // no colour map
                                               2, // true-colour
                                               0,
                                               0,
                                               0,
                                               0,
                                               0,
                                               0,
                                               0,
                                               0,
                                               0,
                                               low(source.width()),
                                               low(source.width() >> 8),
                                               low(source.height()),
                                               low(source.height() >> 8),
                                               32,
                                               8}; // bits of alpha; rows from the bottom
    const std::size_t pixels_at = header_size + written_id.size();
    memory_file result(pixels_at + source.pixelCount() * sizeof(rgba_pixel));
    std::byte* at = result.mutableBytes().data();
    std::memcpy(at, header, header_size);
    std::memcpy(at + header_size, written_id.data(), written_id.size());
    at += pixels_at;
    for (std::uint32_t y = source.height(); y-- > 0;)
        for (const rgba_pixel pixel : source.row(y))
        {
            const rgba_pixel swapped = swapRedAndBlue(pixel);
            std::memcpy(at, &swapped, sizeof swapped);
            at += sizeof swapped;
        }
    file = std::move(result);
    return true;
}

} // namespace korvane
