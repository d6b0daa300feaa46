#include "Korvane/viewer/sample_average.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace korvane
{

namespace
{

float lightOf(float encoded)
{
    return encoded <= 0.04045f ? encoded / 12.92f : std::pow((encoded + 0.055f) / 1.055f, 2.4f);
}

float encodedOf(float light)
{
    return light <= 0.0031308f ? light * 12.92f : 1.055f * std::pow(light, 1 / 2.4f) - 0.055f;
}

std::uint8_t byteOf(float value) // 0 to 1
{
    return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255 + 0.5f);
}

using light_table = std::array<float, 256>; // by the byte

const light_table& lightTable(sample_content content)
{
    static const std::array<light_table, 2> tables = [] {
        std::array<light_table, 2> made{};
        for (std::size_t i = 0; i < 256; ++i)
        {
            const float value = static_cast<float>(i) / 255;
            made[0][i] = lightOf(value);
            made[1][i] = value;
        }
        return made;
    }();
    return tables[content == sample_content::data ? 1 : 0];
}

// Fine enough for the steepest part, near black, where a byte is 0.0003 of light.
constexpr std::size_t code_steps = 1u << 15;
using code_table = std::array<std::uint8_t, code_steps + 1>;

std::uint8_t encodedByte(float light)
{
    static const code_table codes = [] {
        code_table made{};
        for (std::size_t i = 0; i <= code_steps; ++i)
            made[i] = byteOf(encodedOf(static_cast<float>(i) / code_steps));
        return made;
    }();
    return codes[static_cast<std::size_t>(std::clamp(light, 0.0f, 1.0f) * code_steps + 0.5f)];
}

} // namespace

void sample_average::begin(std::size_t pixels, sample_content content)
{
    m_sums.assign(pixels * 4, 0.0f);
    m_added = 0;
    m_content = content;
}

void sample_average::add(std::span<const std::uint8_t> rgba)
{
    assert(rgba.size() == m_sums.size());
    const light_table& light = lightTable(m_content);
    for (std::size_t i = 0; i < m_sums.size(); i += 4)
    {
        const float alpha = static_cast<float>(rgba[i + 3]) / 255;
        for (std::size_t channel = 0; channel < 3; ++channel)
            m_sums[i + channel] += light[rgba[i + channel]] * alpha;
        m_sums[i + 3] += alpha;
    }
    ++m_added;
}

void sample_average::finish(std::span<std::uint8_t> rgba) const
{
    assert(rgba.size() == m_sums.size() && m_added > 0);
    for (std::size_t i = 0; i < m_sums.size(); i += 4)
    {
        const float alpha = m_sums[i + 3];
        const float share = alpha > 0 ? 1 / alpha : 0;
        for (std::size_t channel = 0; channel < 3; ++channel)
        {
            const float value = m_sums[i + channel] * share;
            rgba[i + channel] = m_content == sample_content::data ? byteOf(value) : encodedByte(value);
        }
        rgba[i + 3] = byteOf(alpha / static_cast<float>(m_added));
    }
}

} // namespace korvane
