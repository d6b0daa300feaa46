#include "DDSTextureLoader/dds_formats.h"

#include <algorithm>
#include <bit>

namespace korvane
{

namespace
{

constexpr std::uint32_t ddpf_alpha_pixels = 0x1; // beside colours
constexpr std::uint32_t ddpf_alpha = 0x2;        // nothing else
constexpr std::uint32_t ddpf_palette = 0x20;
constexpr std::uint32_t ddpf_rgb = 0x40;
constexpr std::uint32_t ddpf_luminance = 0x20000;
constexpr std::uint32_t ddpf_bump = 0x80000; // signed

using enum dds_number;

constexpr dds_layout blocksOf(std::uint32_t bytes)
{
    return {blocks, bytes, {}};
}

// Channels of these bits one after the other from the lowest bit: red, green, blue, alpha.
constexpr dds_layout rgbaOf(dds_number number, unsigned red, unsigned green = 0, unsigned blue = 0, unsigned alpha = 0)
{
    dds_layout layout{number, (red + green + blue + alpha + 7) / 8, {}};
    unsigned first = 0, index = 0;
    for (const unsigned bits : {red, green, blue, alpha})
    {
        if (bits > 0)
            layout.channels[index] = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(bits)};
        first += bits;
        ++index;
    }
    return layout;
}

// With blue in the lowest bits.
constexpr dds_layout bgraOf(unsigned blue, unsigned green, unsigned red, unsigned alpha)
{
    dds_layout layout = rgbaOf(unorm, blue, green, red, alpha);
    std::swap(layout.channels[0], layout.channels[2]);
    return layout;
}

constexpr dds_layout without_alpha = [] {
    dds_layout layout = bgraOf(8, 8, 8, 8);
    layout.channels[3] = {};
    return layout;
}();

constexpr dds_layout alpha_only{unorm, 1, {{{}, {}, {}, {0, 8}}}};
constexpr dds_layout exponent_layout{shared_exponent, 4, {{{0, 9}, {9, 9}, {18, 9}, {}}}};

// Two pixels in four bytes, by the byte of each channel.
constexpr dds_layout pairOf(dds_number number, unsigned both, unsigned first, unsigned both_again, unsigned second)
{
    dds_layout layout{number, 4, {}};
    unsigned index = 0;
    for (const unsigned byte : {both, first, both_again, second})
        layout.channels[index++] = {static_cast<std::uint8_t>(byte * 8), 8};
    return layout;
}

constexpr dds_layout red_first = pairOf(pair_of_colours, 0, 1, 2, 3), green_first = pairOf(pair_of_colours, 1, 0, 3, 2);
constexpr dds_layout bright_first = pairOf(pair_of_video, 1, 0, 3, 2), bright_last = pairOf(pair_of_video, 0, 1, 2, 3);

constexpr dds_format dxgi(std::uint32_t number)
{
    return static_cast<dds_format>(number);
}

// A typeless one is taken for its usual type; those of 16 bits have none. Integers count as parts of the largest one.
// Of formats with the same layout the first one stands for the masks.
constexpr dds_format_traits known_formats[] = {
    {1, dxgi(2), "R32G32B32A32_TYPELESS", rgbaOf(floating, 32, 32, 32, 32)},
    {2, dxgi(2), "R32G32B32A32_FLOAT", rgbaOf(floating, 32, 32, 32, 32)},
    {5, dxgi(6), "R32G32B32_TYPELESS", rgbaOf(floating, 32, 32, 32)},
    {6, dxgi(6), "R32G32B32_FLOAT", rgbaOf(floating, 32, 32, 32)},
    {10, dxgi(10), "R16G16B16A16_FLOAT", rgbaOf(floating, 16, 16, 16, 16)},
    {11, dxgi(11), "R16G16B16A16_UNORM", rgbaOf(unorm, 16, 16, 16, 16)},
    {13, dxgi(13), "R16G16B16A16_SNORM", rgbaOf(snorm, 16, 16, 16, 16)},
    {15, dxgi(16), "R32G32_TYPELESS", rgbaOf(floating, 32, 32)},
    {16, dxgi(16), "R32G32_FLOAT", rgbaOf(floating, 32, 32)},
    {23, dxgi(24), "R10G10B10A2_TYPELESS", rgbaOf(unorm, 10, 10, 10, 2)},
    {24, dxgi(24), "R10G10B10A2_UNORM", rgbaOf(unorm, 10, 10, 10, 2)},
    {26, dxgi(26), "R11G11B10_FLOAT", rgbaOf(floating, 11, 11, 10)},
    {27, dxgi(28), "R8G8B8A8_TYPELESS", rgbaOf(unorm, 8, 8, 8, 8)},
    {28, dxgi(28), "R8G8B8A8_UNORM", rgbaOf(unorm, 8, 8, 8, 8)},
    {29, dxgi(29), "R8G8B8A8_UNORM_SRGB", rgbaOf(unorm, 8, 8, 8, 8), true},
    {31, dxgi(31), "R8G8B8A8_SNORM", rgbaOf(snorm, 8, 8, 8, 8)},
    {34, dxgi(34), "R16G16_FLOAT", rgbaOf(floating, 16, 16)},
    {35, dxgi(35), "R16G16_UNORM", rgbaOf(unorm, 16, 16)},
    {37, dxgi(37), "R16G16_SNORM", rgbaOf(snorm, 16, 16)},
    {39, dxgi(41), "R32_TYPELESS", rgbaOf(floating, 32)},
    {41, dxgi(41), "R32_FLOAT", rgbaOf(floating, 32)},
    {48, dxgi(49), "R8G8_TYPELESS", rgbaOf(unorm, 8, 8)},
    {49, dxgi(49), "R8G8_UNORM", rgbaOf(unorm, 8, 8)},
    {51, dxgi(51), "R8G8_SNORM", rgbaOf(snorm, 8, 8)},
    {54, dxgi(54), "R16_FLOAT", rgbaOf(floating, 16)},
    {56, dxgi(56), "R16_UNORM", rgbaOf(unorm, 16)},
    {58, dxgi(58), "R16_SNORM", rgbaOf(snorm, 16)},
    {60, dxgi(61), "R8_TYPELESS", rgbaOf(unorm, 8)},
    {61, dxgi(61), "R8_UNORM", rgbaOf(unorm, 8)},
    {63, dxgi(63), "R8_SNORM", rgbaOf(snorm, 8)},
    {65, dxgi(65), "A8_UNORM", alpha_only},
    {67, dxgi(67), "R9G9B9E5_SHAREDEXP", exponent_layout},
    {70, dxgi(71), "BC1_TYPELESS", blocksOf(8)},
    {71, dxgi(71), "BC1_UNORM", blocksOf(8)},
    {72, dxgi(72), "BC1_UNORM_SRGB", blocksOf(8), true},
    {73, dxgi(74), "BC2_TYPELESS", blocksOf(16)},
    {74, dxgi(74), "BC2_UNORM", blocksOf(16)},
    {75, dxgi(75), "BC2_UNORM_SRGB", blocksOf(16), true},
    {76, dxgi(77), "BC3_TYPELESS", blocksOf(16)},
    {77, dxgi(77), "BC3_UNORM", blocksOf(16)},
    {78, dxgi(78), "BC3_UNORM_SRGB", blocksOf(16), true},
    {79, dxgi(80), "BC4_TYPELESS", blocksOf(8)},
    {80, dxgi(80), "BC4_UNORM", blocksOf(8)},
    {81, dxgi(81), "BC4_SNORM", blocksOf(8)},
    {82, dxgi(83), "BC5_TYPELESS", blocksOf(16)},
    {83, dxgi(83), "BC5_UNORM", blocksOf(16)},
    {84, dxgi(84), "BC5_SNORM", blocksOf(16)},
    {85, dxgi(85), "B5G6R5_UNORM", bgraOf(5, 6, 5, 0)},
    {86, dxgi(86), "B5G5R5A1_UNORM", bgraOf(5, 5, 5, 1)},
    {87, dxgi(87), "B8G8R8A8_UNORM", bgraOf(8, 8, 8, 8)},
    {88, dxgi(88), "B8G8R8X8_UNORM", without_alpha},
    {90, dxgi(87), "B8G8R8A8_TYPELESS", bgraOf(8, 8, 8, 8)},
    {91, dxgi(91), "B8G8R8A8_UNORM_SRGB", bgraOf(8, 8, 8, 8), true},
    {92, dxgi(88), "B8G8R8X8_TYPELESS", without_alpha},
    {93, dxgi(93), "B8G8R8X8_UNORM_SRGB", without_alpha, true},
    {94, dxgi(95), "BC6H_TYPELESS", blocksOf(16)},
    {95, dxgi(95), "BC6H_UF16", blocksOf(16)},
    {96, dxgi(96), "BC6H_SF16", blocksOf(16)},
    {97, dxgi(98), "BC7_TYPELESS", blocksOf(16)},
    {98, dxgi(98), "BC7_UNORM", blocksOf(16)},
    {99, dxgi(99), "BC7_UNORM_SRGB", blocksOf(16), true},
    {115, dxgi(115), "B4G4R4A4_UNORM", bgraOf(4, 4, 4, 4)},
    {68, dds_format::unknown, "R8G8_B8G8_UNORM", red_first},
    {69, dds_format::unknown, "G8R8_G8B8_UNORM", green_first},
    {107, dds_format::unknown, "YUY2", bright_first},
    {3, dds_format::unknown, "R32G32B32A32_UINT", rgbaOf(unorm, 32, 32, 32, 32)},
    {4, dds_format::unknown, "R32G32B32A32_SINT", rgbaOf(snorm, 32, 32, 32, 32)},
    {7, dds_format::unknown, "R32G32B32_UINT", rgbaOf(unorm, 32, 32, 32)},
    {8, dds_format::unknown, "R32G32B32_SINT", rgbaOf(snorm, 32, 32, 32)},
    {12, dxgi(11), "R16G16B16A16_UINT", rgbaOf(unorm, 16, 16, 16, 16)},
    {14, dxgi(13), "R16G16B16A16_SINT", rgbaOf(snorm, 16, 16, 16, 16)},
    {17, dds_format::unknown, "R32G32_UINT", rgbaOf(unorm, 32, 32)},
    {18, dds_format::unknown, "R32G32_SINT", rgbaOf(snorm, 32, 32)},
    {25, dxgi(24), "R10G10B10A2_UINT", rgbaOf(unorm, 10, 10, 10, 2)},
    {30, dxgi(28), "R8G8B8A8_UINT", rgbaOf(unorm, 8, 8, 8, 8)},
    {32, dxgi(31), "R8G8B8A8_SINT", rgbaOf(snorm, 8, 8, 8, 8)},
    {36, dxgi(35), "R16G16_UINT", rgbaOf(unorm, 16, 16)},
    {38, dxgi(37), "R16G16_SINT", rgbaOf(snorm, 16, 16)},
    {42, dds_format::unknown, "R32_UINT", rgbaOf(unorm, 32)},
    {43, dds_format::unknown, "R32_SINT", rgbaOf(snorm, 32)},
    {50, dxgi(49), "R8G8_UINT", rgbaOf(unorm, 8, 8)},
    {52, dxgi(51), "R8G8_SINT", rgbaOf(snorm, 8, 8)},
    {57, dxgi(56), "R16_UINT", rgbaOf(unorm, 16)},
    {59, dxgi(58), "R16_SINT", rgbaOf(snorm, 16)},
    {62, dxgi(61), "R8_UINT", rgbaOf(unorm, 8)},
    {64, dxgi(63), "R8_SINT", rgbaOf(snorm, 8)},
};

constexpr struct
{
    std::uint32_t code;
    std::uint32_t dxgi;
} four_codes[] = {
    {fourCc('D', 'X', 'T', '1'), 71},
    {fourCc('D', 'X', 'T', '2'), 74},
    {fourCc('D', 'X', 'T', '3'), 74},
    {fourCc('D', 'X', 'T', '4'), 77},
    {fourCc('D', 'X', 'T', '5'), 77},
    {fourCc('A', 'T', 'I', '1'), 80},
    {fourCc('B', 'C', '4', 'U'), 80},
    {fourCc('B', 'C', '4', 'S'), 81},
    {fourCc('A', 'T', 'I', '2'), 83},
    {fourCc('B', 'C', '5', 'U'), 83},
    {fourCc('B', 'C', '5', 'S'), 84},
    {36, 11},
    {110, 13}, // numbers of the older Direct3D
    {111, 54},
    {112, 34},
    {113, 10},
    {114, 41},
    {115, 16},
    {116, 2},
    {fourCc('R', 'G', 'B', 'G'), 68},
    {fourCc('G', 'R', 'G', 'B'), 69},
    {fourCc('Y', 'U', 'Y', '2'), 107},
};

// False for a mask with gaps and for one beyond the pixel.
bool channelOf(std::uint32_t mask, std::uint32_t pixel_bits, dds_channel& channel)
{
    if (mask == 0)
        return true;
    const auto first = static_cast<unsigned>(std::countr_zero(mask)), bits = static_cast<unsigned>(std::popcount(mask));
    channel = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(bits)};
    return first + bits <= pixel_bits && static_cast<unsigned>(std::bit_width(mask)) == first + bits;
}

bool readMasks(const dds_pixel_format& pixels, dds_layout& layout)
{
    const bool is_grey = (pixels.flags & ddpf_luminance) != 0, is_signed = (pixels.flags & ddpf_bump) != 0;
    const bool has_colours = (pixels.flags & (ddpf_rgb | ddpf_luminance | ddpf_bump)) != 0;
    const bool has_alpha = (pixels.flags & (ddpf_alpha_pixels | ddpf_alpha)) != 0 || is_signed;
    if ((pixels.flags & ddpf_palette) != 0 || pixels.bits == 0 || pixels.bits % 8 != 0 || pixels.bits > 32 ||
        (!has_colours && !has_alpha))
        return false;
    layout = {is_signed ? snorm : unorm, pixels.bits / 8, {}};
    const std::array<std::uint32_t, 4> masks = {
        has_colours ? pixels.red : 0, has_colours && !is_grey ? pixels.green : 0,
        has_colours && !is_grey ? pixels.blue : 0, has_alpha ? pixels.alpha : 0};
    for (std::size_t i = 0; i < 4; ++i)
        if (!channelOf(masks[i], pixels.bits, layout.channels[i]) || (is_signed && layout.channels[i].bits == 1))
            return false;
    return std::any_of(masks.begin(), masks.end(), [](std::uint32_t mask) { return mask != 0; });
}

std::string hex(std::uint32_t value)
{
    std::string digits;
    do
        digits.insert(digits.begin(), "0123456789abcdef"[value & 15]);
    while ((value >>= 4) != 0);
    return digits;
}

std::string codeText(std::uint32_t code)
{
    std::string text;
    for (int shift = 0; shift < 32; shift += 8)
        if (const auto letter = static_cast<char>(code >> shift & 0x7f); letter > ' ' && letter < 0x7f)
            text += letter;
    return text.size() == 4 ? '"' + text + '"' : std::to_string(code);
}

const dds_format_traits* traitsOf(dds_format format)
{
    return ddsTraits(static_cast<std::uint32_t>(format));
}

} // namespace

const dds_format_traits* ddsTraits(std::uint32_t dxgi)
{
    const auto* found = std::find_if(std::begin(known_formats), std::end(known_formats),
                                     [dxgi](const dds_format_traits& known) { return known.dxgi == dxgi; });
    return found == std::end(known_formats) ? nullptr : found;
}

dds_subresource levelSizes(const dds_layout& layout, std::uint32_t width, std::uint32_t height, std::uint32_t mip)
{
    const bool is_block = layout.number == blocks;
    dds_subresource part;
    part.width = std::max(width >> mip, 1u);
    part.height = std::max(height >> mip, 1u);
    // At most 16,384 pixels of 16 bytes in a row: 32 bits are enough for a row, not for a surface.
    const std::uint32_t units = is_block ? (part.width + 3) / 4 : isPaired(layout) ? (part.width + 1) / 2 : part.width;
    part.row_pitch = units * layout.bytes;
    part.rows = is_block ? (part.height + 3) / 4 : part.height;
    return part;
}

bool readLegacyFormat(const dds_pixel_format& pixels, dds_format& format, dds_layout& layout, std::string& reason)
{
    if (pixels.flags & ddpf_four_cc)
    {
        for (const auto& known : four_codes)
            if (known.code == pixels.four_cc)
            {
                const dds_format_traits* const traits = ddsTraits(known.dxgi);
                format = traits->format;
                layout = traits->layout;
                return true;
            }
        if (pixels.four_cc == fourCc('U', 'Y', 'V', 'Y')) // has no DXGI number
        {
            format = dds_format::unknown;
            layout = bright_last;
            return true;
        }
        reason = "the pixel format with the code " + codeText(pixels.four_cc) + " is not supported";
        return false;
    }
    if (!readMasks(pixels, layout))
    {
        reason = "the pixel format of " + std::to_string(pixels.bits) + " bits with the flags " + hex(pixels.flags) +
                 " and the masks " + hex(pixels.red) + ", " + hex(pixels.green) + ", " + hex(pixels.blue) + ", " +
                 hex(pixels.alpha) + " (hexadecimal) is not supported";
        return false;
    }
    const auto* found = std::find_if(std::begin(known_formats), std::end(known_formats),
                                     [&layout](const dds_format_traits& known) { return known.layout == layout; });
    format = found == std::end(known_formats) ? dds_format::unknown : found->format;
    // A device has no such format without alpha: it shows what stands there.
    dds_layout with_alpha = layout;
    with_alpha.channels[3] = {24, 8};
    if (format == dds_format::unknown && with_alpha == rgbaOf(unorm, 8, 8, 8, 8))
        format = dds_format::rgba8;
    return true;
}

bool isSrgb(dds_format format)
{
    const dds_format_traits* traits = traitsOf(format);
    return traits && traits->is_srgb;
}

bool isBlockCompressed(dds_format format)
{
    const dds_format_traits* traits = traitsOf(format);
    return traits && traits->layout.number == blocks;
}

const char* formatName(dds_format format)
{
    const dds_format_traits* traits = traitsOf(format);
    return traits ? traits->name : nullptr;
}

} // namespace korvane
