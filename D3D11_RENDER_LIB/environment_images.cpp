#include "D3D11_RENDER_LIB/environment_images.h"

#include "Korvane/textures/block_encoder.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <new>
#include <numbers>
#include <system_error>

namespace korvane
{

namespace
{

// A row of pixels, four of which make a row of blocks: the bits of 16-bit floats as numbers.
using light_row = std::array<std::vector<float>, 3>;
using four_rows = std::array<light_row, 4>;

// Where a float lies among the 16-bit floats: their bits are the upper ones of a float's, but for the exponent's bias.
// Of 2^-14 and more.
float halfCode(float value)
{
    return static_cast<float>(std::bit_cast<std::int32_t>(value) - (112 << 23)) * (1.0f / 8192);
}

// e^x for x of 0 down to -80, to six digits: without calls and branches, so that a row is computed four pixels at once.
float powerOfE(float x)
{
    constexpr float rounding = 12582912; // 1.5 * 2^23: what is added to it loses its fraction
    const float power = (x > -80 ? x : -80) * std::numbers::log2e_v<float>;
    const float rounded = power + rounding;
    const float t = (power - (rounded - rounding)) * std::numbers::ln2_v<float>; // -0.35 to 0.35
    const float fraction = 1 + t * (1 + t * (0.5f + t * (0.166666f + t * (0.0416635f + t * 0.00836f))));
    return std::bit_cast<float>(std::bit_cast<std::int32_t>(fraction) + (std::bit_cast<std::int32_t>(rounded) << 23));
}

// So many pixels of a row at once: loops of a length that the compiler knows become four pixels an instruction.
constexpr std::uint32_t pixels_at_once = 16;
using lanes = std::array<float, pixels_at_once>;

// The pixels from begin on, along a row of directions that are not a unit long: start + step * pixel.
void lightOfPixels(const environment_light& light, const glm::vec3& start, const glm::vec3& step, std::uint32_t begin,
                   std::array<lanes, 3>& sums)
{
    lanes place, scale, above, below;
    for (std::uint32_t i = 0; i < pixels_at_once; ++i)
    {
        place[i] = static_cast<float>(static_cast<std::int32_t>(begin + i));
        const float x = start.x + step.x * place[i], y = start.y + step.y * place[i], z = start.z + step.z * place[i];
        scale[i] = 1 / std::sqrt(x * x + y * y + z * z);
        above[i] = y > 0 ? y * scale[i] : 0;
        below[i] = y > 0 ? 0 : -y * scale[i];
    }
    for (int channel = 0; channel < 3; ++channel)
        for (std::uint32_t i = 0; i < pixels_at_once; ++i)
            sums[static_cast<std::size_t>(channel)][i] =
                light.middle[channel] + light.above[channel] * above[i] + light.below[channel] * below[i];
    for (const environment_light::lobe& lobe : light.lobes)
    {
        const float first = glm::dot(start, lobe.direction), each = glm::dot(step, lobe.direction);
        const glm::vec3 amplitude = lobe.amplitude;
        for (std::uint32_t i = 0; i < pixels_at_once; ++i)
        {
            const float seen = powerOfE(lobe.sharpness * ((first + each * place[i]) * scale[i] - 1));
            sums[0][i] += amplitude.r * seen;
            sums[1][i] += amplitude.g * seen;
            sums[2][i] += amplitude.b * seen;
        }
    }
}

void lightOfRow(const environment_light& light, std::uint32_t face, std::uint32_t y, std::uint32_t size, light_row& row)
{
    const glm::vec3 start = cubePoint(face, 0, y, size);
    const glm::vec3 step = cubePoint(face, 1, y, size) - start;
    for (std::uint32_t begin = 0; begin < size; begin += pixels_at_once)
    {
        std::array<lanes, 3> light_there;
        lightOfPixels(light, start, step, begin, light_there);
        for (std::size_t channel = 0; channel < 3; ++channel)
        {
            lanes codes;
            for (std::uint32_t i = 0; i < pixels_at_once; ++i)
                codes[i] = halfCode(light_there[channel][i]);
            std::copy_n(codes.begin(), std::min(size - begin, pixels_at_once), row[channel].begin() + begin);
        }
    }
}

// Levels of less than four pixels are one block, filled up with what stands at the edge.
void encodeRows(const four_rows& rows, std::uint32_t size, std::byte* blocks)
{
    for (std::uint32_t left = 0; left < size; left += 4, blocks += 16)
    {
        light_block block;
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (std::uint32_t i = 0; i < 16; ++i)
                block[channel][i] = rows[i / 4][channel][std::min(left + i % 4, size - 1)];
        encodeBc6hUnsigned(block, blocks);
    }
}

// fill(face, y, row) gives the light of a row.
template <typename fill_row>
bool encodeLevel(block_image& image, std::uint32_t size, const std::atomic<bool>& must_stop, const fill_row& fill)
{
    const std::uint32_t blocks = std::max(size / 4, 1u);
    std::vector<std::byte>& level = image.levels.emplace_back(std::size_t{image.faces} * blocks * blocks * 16);
    std::byte* target = level.data();
    four_rows rows;
    for (light_row& row : rows)
        row.fill(std::vector<float>(size));
    for (std::uint32_t face = 0; face < image.faces; ++face)
        for (std::uint32_t top = 0; top < size; top += 4, target += std::size_t{blocks} * 16)
        {
            if (must_stop.load())
                return false;
            for (std::uint32_t y = 0; y < 4; ++y)
                fill(face, std::min(top + y, size - 1), rows[y]);
            encodeRows(rows, size, target);
        }
    return true;
}

template <typename level_light>
bool makeCube(block_image& cube, const std::atomic<bool>& must_stop, const level_light& lightOf)
{
    cube.size = whole_cube_size;
    cube.faces = 6;
    for (std::uint32_t size = cube.size; size > 0; size /= 2)
    {
        const environment_light light = lightOf(cube.levels.size());
        if (!encodeLevel(cube, size, must_stop, [&](std::uint32_t face, std::uint32_t y, light_row& row) {
                lightOfRow(light, face, y, size, row);
            }))
            return false;
    }
    return true;
}

bool makeTable(block_image& table, const std::atomic<bool>& must_stop)
{
    table.size = reflectance_table_size;
    for (std::uint32_t size = table.size; size > 0; size /= 2)
        if (!encodeLevel(table, size, must_stop, [size](std::uint32_t, std::uint32_t y, light_row& row) {
                const auto place = [size](std::uint32_t i) {
                    return (static_cast<float>(i) + 0.5f) / static_cast<float>(size);
                };
                for (std::uint32_t x = 0; x < size; ++x)
                {
                    const glm::vec2 value = environmentReflectance(place(x), place(y));
                    row[0][x] = std::max(halfCode(value.x), 0.0f);
                    row[1][x] = std::max(halfCode(value.y), 0.0f);
                    row[2][x] = 0;
                }
            }))
            return false;
    return true;
}

} // namespace

glm::vec2 environmentReflectance(float cosine, float roughness)
{
    constexpr int samples = 16; // in each of two directions
    const float alpha = roughness * roughness, k = alpha * 0.5f;
    const glm::vec3 view(std::sqrt(1 - cosine * cosine), 0, cosine);
    const auto shadowed = [k](float n) { return n / (n * (1 - k) + k); };
    glm::vec2 sum(0);
    for (int i = 0; i < samples; ++i)
        for (int j = 0; j < samples; ++j)
        {
            const float place = (static_cast<float>(i) + 0.5f) / samples;
            const float angle = (static_cast<float>(j) + 0.5f) / samples * std::numbers::pi_v<float>;
            const float n_h = std::sqrt((1 - place) / (1 + (alpha * alpha - 1) * place));
            const float across = std::sqrt(1 - n_h * n_h);
            const glm::vec3 half_way(across * std::cos(angle), across * std::sin(angle), n_h);
            const float v_h = glm::dot(view, half_way);
            const float n_l = 2 * v_h * n_h - view.z;
            if (n_l <= 0 || v_h <= 0)
                continue;
            const float seen = shadowed(n_l) * shadowed(cosine) * v_h / (n_h * cosine);
            const float rest = 1 - v_h;
            const float edge = rest * rest * (rest * rest) * rest;
            sum += glm::vec2(1 - edge, edge) * seen;
        }
    return sum / static_cast<float>(samples * samples);
}

std::unique_ptr<environment_images> makeEnvironmentImages(const std::atomic<bool>& must_stop)
{
    auto made = std::make_unique<environment_images>();
    const bool is_whole =
        makeCube(made->specular, must_stop,
                 [](std::size_t level) { return specularLight(static_cast<float>(level) / 10.0f); }) &&
        makeCube(made->diffuse, must_stop, [](std::size_t) { return diffuseLight(); }) &&
        makeTable(made->reflectance, must_stop);
    return is_whole ? std::move(made) : nullptr;
}

environment_making::~environment_making()
{
    m_must_stop = true;
    if (m_thread.joinable())
        m_thread.join();
}

std::unique_ptr<environment_images> environment_making::take()
{
    if (!m_thread.joinable())
        try
        {
            m_thread = std::thread([this] { run(); });
        }
        catch (const std::system_error&) // no thread is to be had: what is shown stays
        {
        }
    const std::lock_guard held(m_mutex);
    if (m_made)
        m_thread.join();
    return std::move(m_made);
}

void environment_making::run()
{
    try
    {
        auto made = makeEnvironmentImages(m_must_stop);
        if (!made)
            return;
        const std::lock_guard held(m_mutex);
        m_made = std::move(made);
    }
    catch (const std::bad_alloc&) // what is shown stays
    {
        return;
    }
    m_has_news();
}

} // namespace korvane
