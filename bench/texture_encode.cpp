// Encoding the painted diffuse textures of the demo data, which are known uncompressed. A line for each format: signal
// to noise against what was painted (of all textures together, and of the worst), and the speed without mip maps on all
// cores, in megapixels a second and against decoding the same file in the same run. Expected on two cores: BC1 and BC3
// at least 20 megapixels a second and BC1 34 dB, BC7 at least 5 and 44 dB, also of
// a grainy picture. Colours are compared where alpha shows them.

#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/dds_encoder.h"
#include "tools/demo_data/materials.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

namespace
{

using namespace korvane;

picture pictureOf(const demo::image& source)
{
    picture result(static_cast<std::uint32_t>(source.width), static_cast<std::uint32_t>(source.height));
    std::memcpy(result.pixels().data(), source.pixels.data(), source.pixels.size());
    return result;
}

// All textures beside and below each other: 2048 x 2048 pixels.
picture tiled(const std::vector<picture>& textures)
{
    constexpr std::uint32_t size = 2048, tile = 256;
    picture result(size, size);
    for (std::uint32_t y = 0; y < size; ++y)
        for (std::uint32_t x = 0; x < size; x += tile)
        {
            const picture& source = textures[(y / tile * (size / tile) + x / tile) % textures.size()];
            std::memcpy(result.row(y).data() + x, source.row(y % tile).data(), tile * sizeof(rgba_pixel));
        }
    return result;
}

// The first 512 rows of a texture at four times its size, with grains of their own in each colour, as a camera makes
// them: there no form of block is close enough to stop early.
picture grainy(const picture& source)
{
    constexpr std::uint32_t times = 4, rows = 512;
    picture result(source.width() * times, rows);
    std::mt19937 random(7);
    const auto grain = [&random] { // normal, about, and the same everywhere; standard deviation 2
        int sum = 0;
        for (int i = 0; i < 12; ++i)
            sum += static_cast<int>(random() >> 22);
        return (sum - 6 * 1024) / 512.0;
    };
    for (std::uint32_t y = 0; y < rows; ++y)
        for (std::uint32_t x = 0; x < result.width(); ++x)
        {
            rgba_pixel pixel = 0xff000000;
            const std::uint32_t left = x / times, top = y / times, right = std::min(left + 1, source.width() - 1);
            const double to_right = x % times / static_cast<double>(times),
                         down = y % times / static_cast<double>(times);
            for (unsigned c = 0; c < 3; ++c)
            {
                const auto at = [&](std::uint32_t column, std::uint32_t row) {
                    return static_cast<double>(source.row(row)[column] >> (8 * c) & 255);
                };
                const double upper = std::lerp(at(left, top), at(right, top), to_right);
                const double lower = std::lerp(at(left, top + 1), at(right, top + 1), to_right);
                const double value = std::clamp(std::lerp(upper, lower, down) + grain(), 0.0, 255.0);
                pixel |= static_cast<rgba_pixel>(std::lround(value)) << (8 * c);
            }
            result.row(y)[x] = pixel;
        }
    return result;
}

bool roundTrip(const picture& source, const dds_encoding& encoding, picture& decoded)
{
    memory_file file;
    dds_image image;
    failure why;
    return encodeDds(source, encoding, file, why) && readDds(file.bytes(), image, why) &&
           decodeDds(image, decoded, why);
}

double meanSquare(const picture& source, const picture& decoded, unsigned channels)
{
    double sum = 0, count = 0;
    for (std::size_t i = 0; i < source.pixelCount(); ++i)
        if (source.pixels()[i] >> 31 != 0)
        {
            for (unsigned c = 0; c < channels; ++c)
            {
                const auto byte = [c](rgba_pixel pixel) { return static_cast<double>(pixel >> (8 * c) & 255); };
                const double off = byte(source.pixels()[i]) - byte(decoded.pixels()[i]);
                sum += off * off;
            }
            count += channels;
        }
    return sum / count;
}

double decibels(double mean_square)
{
    return 10 * std::log10(255.0 * 255.0 / mean_square);
}

// The least seconds of several runs.
template <class operation>
double secondsOf(const operation& work)
{
    double best = 1e9;
    for (int run = 0; run < 5; ++run)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        benchmark::ClobberMemory();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return best;
}

void measure(const char* name, const std::vector<picture>& textures, const picture& large, dds_encoding encoding,
             unsigned channels)
{
    encoding.mip_count = 1;
    double all = 0, worst = 0;
    for (const picture& texture : textures)
    {
        picture decoded;
        if (!roundTrip(texture, encoding, decoded))
            return;
        const double error = meanSquare(texture, decoded, channels);
        all += error / static_cast<double>(textures.size());
        worst = std::max(worst, error);
    }
    memory_file file;
    dds_image image;
    picture decoded;
    failure why;
    const double seconds = secondsOf([&] { benchmark::DoNotOptimize(encodeDds(large, encoding, file, why)); });
    if (!readDds(file.bytes(), image, why))
        return;
    const double decoding = secondsOf([&] { benchmark::DoNotOptimize(decodeDds(image, decoded, why)); });
    std::printf("%-10s %7.2f %7.2f %8.1f %8.1f\n", name, decibels(all), decibels(worst),
                static_cast<double>(large.pixelCount()) / seconds / 1e6, seconds / decoding);
}

} // namespace

int main()
{
    std::vector<picture> textures;
    for (const demo::material& each : demo::materials())
        textures.push_back(pictureOf(demo::paintMaterial(each, 1).front().pixels));
    const picture large = tiled(textures);
    std::printf("format        dB   worst     MP/s  / decode\n");
    const auto best = encoding_effort::best;
    measure("bc1", textures, large, {.format = dds_format::bc1}, 3);
    measure("bc1 best", textures, large, {.format = dds_format::bc1, .effort = best}, 3);
    measure("bc3", textures, large, {.format = dds_format::bc3}, 4);
    measure("bc3 best", textures, large, {.format = dds_format::bc3, .effort = best}, 4);
    measure("bc4", textures, large, {.format = dds_format::bc4}, 1);
    measure("bc5", textures, large, {.format = dds_format::bc5}, 2);
    measure("bc7", textures, large, {.format = dds_format::bc7}, 4);
    std::vector<picture> grains;
    grains.push_back(grainy(textures.front()));
    measure("bc7 grainy", grains, grains.front(), {.format = dds_format::bc7}, 4);
    const double mips = secondsOf([&] {
        mip_maps smaller(large, mip_content::light);
        while (smaller.next().pixelCount() > 1)
        {
        }
    });
    std::printf("mip maps in linear light: %.1f MP/s\n", static_cast<double>(large.pixelCount()) / mips / 1e6);
    return 0;
}
