#include "tools/demo_data/painters.h"

namespace korvane::demo
{

namespace
{

// Long thin marks: 1 on a scratch. A row of cells holds one scratch each, slanted a little.
double scratches(double u, double v, int cells, std::uint32_t seed)
{
    double strongest = 0;
    for (int layer = 0; layer < 3; ++layer)
    {
        const double slant = layer - 1.0;
        const double across = fraction(v + slant * u) * cells;
        const int cell = static_cast<int>(across);
        const std::uint32_t key = seed + static_cast<std::uint32_t>(layer) * 77;
        const double place = hashOfCell(cell, layer, key), from = hashOfCell(cell, 9, key);
        const double along = fraction(u - from);
        const double size = 0.08 + 0.25 * hashOfCell(cell, 17, key);
        const double off = (across - cell - 0.2 - 0.6 * place) / 0.10;
        if (along < size)
            strongest = std::max(strongest, bump(off * off) * (1 - along / size) * hashOfCell(cell, 31, key));
    }
    return strongest;
}

// 1 in the border at the top and bottom of the texture, which width wide.
double border(double v, double width)
{
    const double edge = std::min(v, 1 - v);
    return 1 - smoothStep(width - 0.008, width + 0.004, edge);
}

} // namespace

surface paintSteel(double u, double v, std::uint32_t seed)
{
    const double cloud = cloudy(u, v, 4, 4, 5, seed + 1);
    const double grain = noise(u, v, 16, 256, seed + 2);
    const double scratch = scratches(u, v, 24, seed + 3);
    const double dents = bump(4 * (1 - cloudy(u, v, 6, 6, 2, seed + 4)));
    const double trim = border(v, 0.085);
    surface s;
    const double rust = smoothStep(0.58, 0.78, cloudy(u, v, 5, 5, 5, seed + 5)) * 0.55;
    const double shade = 0.34 + 0.16 * (cloud - 0.5) + 0.05 * (grain - 0.5) + 0.22 * scratch;
    s.colour = mix(vec3{0.98, 1.0, 1.05} * shade, {0.30, 0.20, 0.13}, rust);
    s.specular =
        mix(vec3{0.60, 0.61, 0.63} + vec3{1, 1, 1} * (0.18 * scratch + 0.14 * (cloud - 0.5)), {0.18, 0.14, 0.11}, rust);
    s.gloss = clamp01(0.62 + 0.20 * (cloud - 0.5) - 0.12 * grain + 0.1 * scratch - 0.30 * rust);
    s.height = -0.0025 * dents - 0.0010 * scratch + 0.0004 * grain - 0.0008 * rust;

    // Gilded trim with a row of beads.
    const double edge = std::min(v, 1 - v);
    const double bead_u = fraction(u * 24) - 0.5, bead_v = (edge - 0.045) * 24;
    const double bead = bump((bead_u * bead_u + bead_v * bead_v) * 7);
    const double groove =
        bump((edge - 0.078) * (edge - 0.078) / 0.00005) + bump((edge - 0.014) * (edge - 0.014) / 0.00005);
    const double wear = smoothStep(0.50, 0.75, cloudy(u, v, 12, 12, 4, seed + 6));
    surface gold;
    gold.colour = vec3{0.62, 0.44, 0.17} * (0.72 + 0.45 * cloud + 0.25 * bead - 0.5 * std::min(1.0, groove));
    gold.specular = vec3{0.85, 0.64, 0.30} * (0.85 + 0.2 * bead - 0.5 * std::min(1.0, groove));
    gold.gloss = 0.66 - 0.2 * groove;
    gold.height = 0.004 + 0.007 * bead - 0.004 * groove;
    const double gilt = trim * (1 - 0.5 * wear);
    s.colour = mix(s.colour, gold.colour, gilt);
    s.specular = mix(s.specular, gold.specular, gilt);
    s.gloss = mix(s.gloss, gold.gloss, gilt);
    s.height = mix(s.height, gold.height, trim);
    s.mask = {0, 0, trim};
    return s;
}

surface paintBlade(double u, double v, std::uint32_t seed)
{
    // u goes once around: the edges at 0 and 0.5, the flats between.
    const double from_edge = std::min(fraction(u * 2), 1 - fraction(u * 2)); // 0 edge, 0.5 middle of a flat
    const double fuller = bump((from_edge - 0.5) * (from_edge - 0.5) / 0.02) * smoothStep(0.30, 0.38, v);
    const double grain = noise(u, v, 128, 6, seed + 1), cloud = cloudy(u, v, 8, 8, 4, seed + 2);
    const double ground = 1 - smoothStep(0.10, 0.16, from_edge);
    const double scratch = scratches(v, u, 20, seed + 3);
    surface s;
    const double shade =
        0.42 + 0.12 * (cloud - 0.5) + 0.06 * (grain - 0.5) + 0.20 * ground - 0.14 * fuller + 0.1 * scratch;
    s.colour = vec3{0.97, 1.0, 1.04} * shade;
    s.specular = vec3{0.72, 0.73, 0.75} * (0.85 + 0.25 * ground - 0.1 * cloud);
    s.gloss = clamp01(0.74 + 0.12 * ground - 0.14 * grain);
    s.height = -0.008 * fuller - 0.001 * scratch;
    return s;
}

surface paintLeather(double u, double v, std::uint32_t seed)
{
    const double cloud = cloudy(u, v, 4, 4, 4, seed + 1);
    const double pores = cloudy(u, v, 40, 40, 2, seed + 2);
    const double crack =
        bump((cloudy(u, v, 10, 10, 3, seed + 3) - 0.5) * (cloudy(u, v, 10, 10, 3, seed + 3) - 0.5) / 0.0006);
    const double edge = std::min(v, 1 - v);
    const double seam = bump((edge - 0.06) * (edge - 0.06) / 0.0006);
    const double stitch = seam * smoothStep(0.25, 0.35, std::min(fraction(u * 18), 1 - fraction(u * 18)));
    const double rim = 1 - smoothStep(0.0, 0.022, edge);
    // Rivets of brass in the middle of every third of the width, near both ends.
    const double rivet_u = (fraction(u * 3.125) - 0.5) / 3.125, rivet_v = edge - 0.135;
    const double rivet = smoothStep(0, 0.35, bump((rivet_u * rivet_u + rivet_v * rivet_v) / 0.0007));
    surface s;
    const double worn = smoothStep(0.52, 0.75, cloud) * 0.35 + rim * 0.25;
    s.colour = mix(vec3{0.34, 0.195, 0.10}, {0.55, 0.36, 0.21}, worn) * (0.80 + 0.35 * pores - 0.30 * crack);
    s.colour = s.colour * (1 - 0.35 * seam);
    s.colour = mix(s.colour, {0.70, 0.60, 0.42}, stitch * 0.8);
    s.specular = vec3{0.13, 0.12, 0.11} * (0.7 + 0.6 * pores);
    s.gloss = 0.36 + 0.15 * (pores - 0.5) + 0.12 * worn;
    s.height = 0.0022 * pores - 0.003 * crack - 0.004 * seam + 0.005 * stitch - 0.004 * rim;
    s.colour = mix(s.colour, vec3{0.66, 0.48, 0.20} * (0.8 + 0.4 * cloud), rivet);
    s.specular = mix(s.specular, {0.80, 0.62, 0.32}, rivet);
    s.gloss = mix(s.gloss, 0.62, rivet);
    s.height += 0.010 * rivet;
    return s;
}

surface paintShield(double u, double v, std::uint32_t seed)
{
    const double x = (u - 0.5) * 2, y = (v - 0.5) * 2;
    const double r = std::sqrt(x * x + y * y);
    // A star of eight rays: between two circles, the place within the nearest ray decides.
    double ray = 0;
    for (int i = 0; i < 16; ++i)
    {
        const double c = cosineOfTurns(i / 16.0), sn = sineOfTurns(i / 16.0);
        const double along = x * c + y * sn, off = x * sn - y * c;
        const double reach = i % 2 == 0 ? 0.74 : 0.52, width = i % 2 == 0 ? 0.115 : 0.075;
        if (along > 0.1 && along < reach)
        {
            const double half = width * (1 - along / reach);
            ray = std::max(ray, 1 - smoothStep(half - 0.012, half, off < 0 ? -off : off));
        }
    }
    const double ring = bump((r - 0.86) * (r - 0.86) / 0.0022) > 0.15 ? 1 : 0;
    const double inner_ring = bump((r - 0.30) * (r - 0.30) / 0.0012) > 0.2 ? 1 : 0;
    const double gilt = std::max({ray, ring, inner_ring});
    const double planks = noise(u, v, 64, 5, seed + 1);
    const double seam = bump((fraction(u * 7) - 0.5) * (fraction(u * 7) - 0.5) / 0.0009);
    const double cloud = cloudy(u, v, 5, 5, 5, seed + 2);
    const double scratch = scratches(u, v, 22, seed + 3);
    const double flake =
        smoothStep(0.60, 0.66, cloudy(u, v, 9, 9, 5, seed + 4)) * smoothStep(0.25, 0.95, r + 0.5 * scratch);
    surface s;
    s.colour = vec3{0.56, 0.075, 0.065} * (0.75 + 0.45 * cloud);
    s.colour = mix(s.colour, vec3{0.86, 0.66, 0.26} * (0.75 + 0.45 * cloud), gilt);
    s.colour = mix(s.colour, vec3{0.42, 0.30, 0.19} * (0.7 + 0.5 * planks), std::min(1.0, flake + 0.7 * scratch));
    s.colour = s.colour * (1 - 0.30 * seam - 0.35 * smoothStep(0.90, 1.0, r));
    s.specular = mix(vec3{0.10, 0.10, 0.10}, {0.45, 0.34, 0.16}, gilt * (1 - flake));
    s.gloss = mix(0.42, 0.56, gilt) - 0.2 * flake;
    s.height = 0.0012 * gilt - 0.0020 * flake - 0.003 * scratch - 0.003 * seam + 0.0012 * planks;
    s.mask = {(1 - gilt) * (1 - flake), gilt * (1 - flake), 0};
    return s;
}

} // namespace korvane::demo
