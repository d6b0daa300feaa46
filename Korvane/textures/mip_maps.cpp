#include "Korvane/textures/mip_maps.h"

#include "EASY_GUI/services/parallel.h"
#include "Korvane/textures/channel_bytes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace korvane
{

namespace
{

using deep_pixel = std::array<std::uint16_t, 4>;
using pixel_value = std::array<float, 4>; // of a pixel; 0 to 65535, of vectors -1 to 1

constexpr float wide_most = 65535;

std::uint16_t wide(float number)
{
    return static_cast<std::uint16_t>(static_cast<int>(std::clamp(number, 0.0f, wide_most) + 0.5f));
}

struct light_tables
{
    std::array<std::uint16_t, 256> of_byte;
    std::array<std::uint8_t, 65536> to_byte;
};

const light_tables& lightTables()
{
    static const light_tables tables = [] {
        light_tables made;
        for (std::size_t i = 0; i < 256; ++i)
        {
            const double curved = static_cast<double>(i) / 255;
            const double light = curved <= 0.04045 ? curved / 12.92 : std::pow((curved + 0.055) / 1.055, 2.4);
            made.of_byte[i] = static_cast<std::uint16_t>(light * 65535 + 0.5);
        }
        for (std::size_t i = 0; i < 65536; ++i)
            made.to_byte[i] = byteOfLight(static_cast<double>(i) / 65535);
        return made;
    }();
    return tables;
}

bool isNormals(mip_content content)
{
    return content == mip_content::blue_normals || content == mip_content::orange_normals;
}

void normalise(pixel_value& vector)
{
    const float length = std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
    if (length < 1e-4f)
        vector[0] = vector[1] = 0, vector[2] = 1;
    else
        for (std::size_t c = 0; c < 3; ++c)
            vector[c] /= length;
}

deep_pixel wideVector(const pixel_value& vector)
{
    return {wide((vector[0] * 0.5f + 0.5f) * wide_most), wide((vector[1] * 0.5f + 0.5f) * wide_most),
            wide((vector[2] * 0.5f + 0.5f) * wide_most), wide(vector[3])};
}

deep_pixel wideNormal(rgba_pixel pixel, mip_content content)
{
    const auto channel = [pixel](unsigned shift) {
        return static_cast<float>(static_cast<int>(pixel >> shift & 255)) / 255;
    };
    pixel_value vector = {channel(0) * 2 - 1, channel(8) * 2 - 1, channel(16) * 2 - 1, channel(24) * wide_most};
    if (content == mip_content::orange_normals)
    {
        vector[0] = channel(0) * channel(24) * 2 - 1;
        vector[2] = std::sqrt(std::max(1 - vector[0] * vector[0] - vector[1] * vector[1], 0.0f));
    }
    normalise(vector);
    return wideVector(vector);
}

deep_pixel widePixel(rgba_pixel pixel, mip_content content)
{
    if (isNormals(content))
        return wideNormal(pixel, content);
    deep_pixel result;
    for (unsigned c = 0; c < 4; ++c)
    {
        const std::size_t byte = pixel >> (8 * c) & 255;
        result[c] = content == mip_content::light && c < 3 ? lightTables().of_byte[byte]
                                                           : static_cast<std::uint16_t>(byte * 257);
    }
    return result;
}

unsigned byteOfWide(std::uint16_t number)
{
    return (number + 128u) / 257;
}

rgba_pixel narrow(const deep_pixel& pixel, mip_content content)
{
    const auto byte = [&pixel, content](std::size_t c) -> unsigned {
        return content == mip_content::light ? lightTables().to_byte[pixel[c]] : byteOfWide(pixel[c]);
    };
    if (content == mip_content::orange_normals)
        return rgba(255, byte(1), 0, byte(0));
    return rgba(byte(0), byte(1), byte(2), byteOfWide(pixel[3]));
}

// The pixels of the larger level that one of the smaller one covers, with how much of each.
struct covered
{
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::array<float, 3> parts{};
};

covered coveredBy(std::uint32_t place, std::uint32_t small, std::uint32_t large)
{
    if (large == 1)
        return {0, 1, {1}};
    if (large % 2 == 0)
        return {place * 2, 2, {0.5f, 0.5f}};
    const auto of = [large](std::uint32_t part) { return static_cast<float>(part) / static_cast<float>(large); };
    return {place * 2, 3, {of(small - place), of(small), of(place + 1)}}; // large is 2 x small + 1
}

class pixel_average
{
public:
    explicit pixel_average(mip_content content) : m_content(content) {}

    void add(const deep_pixel& pixel, float part)
    {
        const auto number = [&pixel](std::size_t c) { return static_cast<float>(static_cast<int>(pixel[c])); };
        // Of what is transparent everywhere the colours are averaged all the same.
        const float weight = m_content == mip_content::light ? part * (number(3) + 64) : part;
        for (std::size_t c = 0; c < 3; ++c)
            m_sum[c] += weight * number(c);
        m_sum[3] += part * number(3);
        m_weight += weight;
    }
    deep_pixel result() const
    {
        pixel_value mean = {m_sum[0] / m_weight, m_sum[1] / m_weight, m_sum[2] / m_weight, m_sum[3]};
        if (!isNormals(m_content))
            return {wide(mean[0]), wide(mean[1]), wide(mean[2]), wide(mean[3])};
        for (std::size_t c = 0; c < 3; ++c)
            mean[c] = mean[c] * (2 / wide_most) - 1;
        normalise(mean);
        return wideVector(mean);
    }

private:
    mip_content m_content;
    pixel_value m_sum{};
    float m_weight = 0;
};

} // namespace

mip_maps::mip_maps(const picture& largest, mip_content content) : m_largest(largest), m_content(content) {}

void mip_maps::makeRow(std::uint32_t y, std::span<deep_pixel> target) const
{
    const bool is_first = m_level.pixels.empty();
    const std::uint32_t width = is_first ? m_largest.width() : m_level.width;
    const std::uint32_t height = is_first ? m_largest.height() : m_level.height;
    const covered rows = coveredBy(y, std::max(height / 2, 1u), height);
    std::vector<deep_pixel> widened(is_first ? std::size_t{rows.count} * width : 0);
    std::array<const deep_pixel*, 3> sources{};
    for (std::uint32_t i = 0; i < rows.count; ++i)
    {
        if (!is_first)
        {
            sources[i] = &m_level.pixels[std::size_t{rows.first + i} * width];
            continue;
        }
        deep_pixel* const row = widened.data() + std::size_t{i} * width;
        const auto pixels = m_largest.row(rows.first + i);
        std::transform(pixels.begin(), pixels.end(), row,
                       [this](rgba_pixel pixel) { return widePixel(pixel, m_content); });
        sources[i] = row;
    }
    for (std::uint32_t x = 0; x < target.size(); ++x)
    {
        const covered columns = coveredBy(x, static_cast<std::uint32_t>(target.size()), width);
        pixel_average average(m_content);
        for (std::uint32_t i = 0; i < rows.count; ++i)
            for (std::uint32_t k = 0; k < columns.count; ++k)
                average.add(sources[i][columns.first + k], rows.parts[i] * columns.parts[k]);
        target[x] = average.result();
    }
}

picture mip_maps::next()
{
    constexpr std::uint64_t pixels_worth_a_thread = 1 << 14;
    const bool is_first = m_level.pixels.empty();
    deep_level smaller;
    smaller.width = std::max((is_first ? m_largest.width() : m_level.width) / 2, 1u);
    smaller.height = std::max((is_first ? m_largest.height() : m_level.height) / 2, 1u);
    smaller.pixels.resize(std::size_t{smaller.width} * smaller.height);
    picture result(smaller.width, smaller.height);
    const auto work = [&](std::size_t row) {
        const auto y = static_cast<std::uint32_t>(row);
        const std::span<deep_pixel> target(smaller.pixels.data() + row * smaller.width, smaller.width);
        makeRow(y, target);
        std::transform(target.begin(), target.end(), result.row(y).begin(),
                       [this](const deep_pixel& pixel) { return narrow(pixel, m_content); });
    };
    parallelFor(smaller.height, threadsFor(smaller.pixels.size() / pixels_worth_a_thread), work, 8);
    m_level = std::move(smaller);
    return result;
}

double alphaCoverage(const picture& source)
{
    const auto pixels = source.pixels();
    const auto passed = std::count_if(pixels.begin(), pixels.end(), [](rgba_pixel pixel) { return pixel >> 31 != 0; });
    return static_cast<double>(passed) / static_cast<double>(std::max<std::size_t>(pixels.size(), 1));
}

void keepAlphaCoverage(picture& level, double coverage)
{
    if (coverage <= 0 || coverage >= 1)
        return;
    std::array<std::size_t, 256> counts{};
    for (const rgba_pixel pixel : level.pixels())
        ++counts[pixel >> 24];
    // The alpha at which as many pixels lie above as did in the largest level.
    const double wanted = coverage * static_cast<double>(level.pixelCount());
    double above = 0, least = static_cast<double>(level.pixelCount()) + 1;
    rgba_pixel threshold = 128;
    for (rgba_pixel alpha = 255; alpha > 0; --alpha)
    {
        above += static_cast<double>(counts[alpha]);
        if (std::abs(above - wanted) < least && counts[alpha] > 0)
        {
            least = std::abs(above - wanted);
            threshold = alpha;
        }
    }
    for (rgba_pixel& pixel : level.pixels())
        pixel = (pixel & 0xffffff) | std::min((pixel >> 24) * 128 / threshold, rgba_pixel{255}) << 24;
}

} // namespace korvane
