#include "tools/demo_data/painters.h"

namespace korvane::demo
{

namespace
{

struct weave
{
    double height, shade;
};

// Over and under, threads across and along.
weave wovenAt(double u, double v, int threads)
{
    const double x = u * threads, y = v * threads;
    const int column = static_cast<int>(x), row = static_cast<int>(y);
    const double s = fraction(x) - 0.5, t = fraction(y) - 0.5;
    const bool over = (column + row) % 2 == 0;
    const double across = over ? s : t, along = over ? t : s;
    const double roundness = 1 - across * across * 3;
    return {roundness * (1 - 1.2 * along * along), 0.86 + 0.14 * roundness};
}

// A band that bends at right angles (1) on ground (0); x in units of one repeat, y 0..1 over its height.
double meander(double x, double y)
{
    static constexpr const char* rows[] = {"111111111", "100000001", "101111101", "101000101", "101101101",
                                           "100001101", "111111101", "000000001", "111111111"};
    const int column = std::min(8, static_cast<int>(fraction(x) * 9)), row = std::clamp(static_cast<int>(y * 9), 0, 8);
    return rows[row][column] == '1' ? 1 : 0;
}

surface cloth(double u, double v, int threads, vec3 colour, std::uint32_t seed)
{
    const weave thread = wovenAt(u, v, threads);
    const double cloud = cloudy(u, v, 4, 4, 4, seed + 1);
    surface s;
    s.colour = colour * (thread.shade * (0.78 + 0.40 * cloud));
    s.specular = {0.07, 0.07, 0.07};
    s.gloss = 0.16;
    s.height = 0.0016 * thread.height;
    return s;
}

void gild(surface& s, double amount, vec3 colour)
{
    const double shade = 0.75 + 0.3 * clamp01(s.height / 0.0016);
    s.colour = mix(s.colour, colour * shade, amount);
    s.specular = mix(s.specular, {0.22, 0.18, 0.10}, amount);
    s.gloss = mix(s.gloss, 0.34, amount);
    s.height += 0.0010 * amount;
}

} // namespace

surface paintTunic(double u, double v, std::uint32_t seed)
{
    surface s = cloth(u, v, 128, {0.15, 0.225, 0.40}, seed);
    const double stripe = v > 0.72 && v < 0.745 ? 1 : v > 0.93 && v < 0.955 ? 1 : 0;
    const double key = v > 0.765 && v < 0.91 ? meander(u * 5, (v - 0.765) / 0.145) : 0;
    const double gold = std::max(stripe, key);
    gild(s, gold, {0.80, 0.64, 0.30});
    s.mask = {1 - gold, gold, 0};
    s.colour = s.colour * (1 - 0.35 * smoothStep(0.97, 1.0, v) * cloudy(u, v, 16, 4, 2, seed + 9));
    return s;
}

surface paintCape(double u, double v, std::uint32_t seed)
{
    surface s = cloth(u, v, 128, {0.47, 0.065, 0.075}, seed);
    const double side = std::min(u, 1 - u) * 0.75, hem = 1 - v; // the cape is longer than wide
    const double edge = std::min(side, hem);
    const double line = edge > 0.012 && edge < 0.020 ? 1 : edge > 0.078 && edge < 0.086 ? 1 : 0;
    double key = 0;
    if (edge > 0.026 && edge < 0.072)
        key = hem < side ? meander(u * 16, (edge - 0.026) / 0.046) : meander(v * 21, (edge - 0.026) / 0.046);
    // The emblem between the shoulders: a sun.
    const double x = (u - 0.5) * 0.62, y = (v - 0.34) * 1.0;
    const double r = std::sqrt(x * x + y * y);
    double sun = r < 0.042 ? 1 : r > 0.052 && r < 0.060 ? 1 : 0;
    for (int i = 0; i < 12; ++i)
    {
        const double along = x * cosineOfTurns(i / 12.0) + y * sineOfTurns(i / 12.0);
        const double off = x * sineOfTurns(i / 12.0) - y * cosineOfTurns(i / 12.0);
        const double reach = i % 2 == 0 ? 0.125 : 0.100;
        if (along > 0.066 && along < reach && off * off < 0.00018 * (1 - along / reach) / 0.45)
            sun = 1;
    }
    const double gold = std::max({line, key, sun});
    gild(s, gold, {0.84, 0.66, 0.28});
    const double dirt = smoothStep(0.80, 1.0, v) * cloudy(u, v, 8, 8, 4, seed + 7);
    s.colour = mix(s.colour, {0.26, 0.20, 0.14}, 0.7 * dirt);
    s.mask = {1 - gold, gold, 0};
    return s;
}

surface paintWool(double u, double v, std::uint32_t seed)
{
    surface s = cloth(u, v, 64, {0.27, 0.235, 0.19}, seed);
    const double fuzz = cloudy(u, v, 32, 32, 2, seed + 5);
    s.colour = s.colour * (0.85 + 0.3 * fuzz);
    s.height += 0.004 * fuzz;
    s.mask = {0, 0, 1};
    return s;
}

surface paintPlume(double u, double v, std::uint32_t seed)
{
    // Bristles stand across the arc: they are drawn along u.
    const double bristle = noise(u, v, 4, 128, seed + 1) * 0.6 + noise(u, v, 8, 64, seed + 2) * 0.4;
    const double tuft = noise(u, v, 2, 24, seed + 3);
    surface s;
    s.colour = vec3{0.60, 0.055, 0.05} * (0.55 + 0.75 * bristle) * (0.8 + 0.35 * tuft);
    s.specular = vec3{0.14, 0.11, 0.10} * (0.5 + bristle);
    s.gloss = 0.32;
    s.height = 0.008 * bristle + 0.004 * tuft;
    s.mask = {1, 0, 0};
    return s;
}

surface paintBanner(double u, double v, std::uint32_t seed)
{
    surface s = cloth(u, v, 128, {0.13, 0.20, 0.38}, seed);
    const double x = (u - 0.5) * 1.5, y = (v - 0.45) * 2.6; // the cloth is longer than wide
    const double ax = x < 0 ? -x : x;
    // A tower with three battlements, within a bordered field.
    const bool body = ax < 0.26 && y > -0.22 && y < 0.50;
    const bool head = ax < 0.36 && y > -0.46 && y < -0.22;
    const bool gap = y < -0.34 && ((ax > 0.09 && ax < 0.20));
    const bool gate = ax < 0.095 && y > 0.22 && y < 0.50;
    const bool loop = ax < 0.035 && y > -0.14 && y < 0.06;
    const bool ground = ax < 0.42 && y > 0.50 && y < 0.58;
    double gold = ((body || (head && !gap) || ground) && !gate && !loop) ? 1 : 0;
    const double edge = std::min(std::min(u, 1 - u), std::min(v, 1 - v));
    if (edge > 0.03 && edge < 0.045)
        gold = 1;
    if (edge > 0.055 && edge < 0.105 && (v < 0.11 || v > 0.89))
        gold = meander(u * 9, (edge - 0.055) / 0.05);
    gild(s, gold, {0.84, 0.68, 0.32});
    s.mask = {1 - gold, gold, 0};
    return s;
}

} // namespace korvane::demo
