#include "tools/demo_data/painters.h"

namespace korvane::demo
{

namespace
{

double oval(double x, double y, double centre_x, double centre_y, double radius_x, double radius_y)
{
    const double dx = (x - centre_x) / radius_x, dy = (y - centre_y) / radius_y;
    return dx * dx + dy * dy; // 1 on the line
}

double inside(double squared, double softness = 0.25)
{
    return 1 - smoothStep(1 - softness, 1 + softness, squared);
}

} // namespace

surface paintSkin(double u, double v, std::uint32_t seed)
{
    const double cloud = cloudy(u, v, 4, 4, 4, seed + 1), pores = cloudy(u, v, 64, 64, 2, seed + 2);
    surface s;
    s.colour = mix(vec3{0.66, 0.46, 0.35}, {0.76, 0.57, 0.45}, cloud) * (0.92 + 0.14 * pores);
    s.specular = {0.16, 0.15, 0.14};
    s.gloss = 0.36 + 0.12 * (pores - 0.5);
    s.height = 0.0024 * pores;
    return s;
}

surface paintHead(double u, double v, std::uint32_t seed)
{
    surface s = paintSkin(u * 2, v, seed);
    // Metres on the face: x to the side, y up; the head's texture spans 0.37 m in height.
    const double turn = u - 0.5;
    const double x = (turn < 0 ? -turn : turn) * 0.45, y = 1.80 - v * 0.37;
    const double blush = inside(oval(x, y, 0.045, 1.640, 0.024, 0.018), 0.9) * 0.35 +
                         inside(oval(x, y, 0, 1.636, 0.016, 0.016), 0.9) * 0.3;
    s.colour = mix(s.colour, {0.74, 0.38, 0.31}, blush);
    const double hollow = inside(oval(x, y, 0.031, 1.673, 0.026, 0.016), 0.7);
    s.colour = s.colour * (1 - 0.30 * hollow);

    // Beard: jaw, chin and upper lip, in short strokes.
    const double jaw = smoothStep(1.628, 1.598, y) * smoothStep(1.548, 1.566, y) * smoothStep(0.130, 0.098, x);
    const double moustache = inside(oval(x, y, 0.011, 1.6215, 0.020, 0.0065), 0.5);
    const double strokes = noise(u * 2, v, 256, 24, seed + 11) * 0.6 + cloudy(u, v, 48, 48, 2, seed + 12) * 0.4;
    const double beard = clamp01(std::max(jaw, moustache) * (0.55 + 0.9 * strokes));
    s.colour = mix(s.colour, vec3{0.20, 0.125, 0.075} * (0.7 + 0.7 * strokes), 0.85 * beard);
    s.height += 0.0035 * beard * strokes;
    s.gloss -= 0.10 * beard;
    // Hair under the helmet.
    const double hair = smoothStep(1.700, 1.715, y + 0.02 * smoothStep(0.06, 0.12, x));
    const double back = smoothStep(0.125, 0.140, x) * smoothStep(1.53, 1.56, y);
    const double head_hair = std::max(hair, back);
    s.colour = mix(s.colour, vec3{0.20, 0.125, 0.075} * (0.7 + 0.7 * strokes), head_hair);
    s.height += 0.003 * head_hair * strokes;

    const double lips = inside(oval(x, y, 0, 1.6075, 0.024, 0.0085), 0.3);
    s.colour = mix(s.colour, {0.60, 0.30, 0.27}, lips * 0.9);
    s.colour = s.colour * (1 - 0.6 * inside(oval(x, y, 0, 1.6070, 0.023, 0.0016), 0.6));
    s.colour = s.colour * (1 - 0.6 * inside(oval(x, y, 0.0075, 1.6265, 0.0042, 0.0026), 0.6)); // nostrils

    const double eye = inside(oval(x, y, 0.0310, 1.6715, 0.0135, 0.0062), 0.2);
    const double lid = inside(oval(x, y, 0.0310, 1.6725, 0.0158, 0.0085), 0.2) * (1 - eye);
    s.colour = mix(s.colour, {0.25, 0.15, 0.11}, lid * (y > 1.6720 ? 0.95 : 0.45));
    s.colour = mix(s.colour, {0.86, 0.84, 0.80}, eye);
    s.colour = mix(s.colour, {0.22, 0.34, 0.38}, eye * inside(oval(x, y, 0.0310, 1.6722, 0.0056, 0.0056), 0.3));
    s.colour = mix(s.colour, {0.03, 0.03, 0.03}, eye * inside(oval(x, y, 0.0310, 1.6722, 0.0026, 0.0026), 0.4));
    s.gloss = mix(s.gloss, 0.80, eye);
    const double bend = y - 1.6895 - 0.10 * (0.012 - (x - 0.030) * (x - 0.030) * 10);
    const double brow = inside(oval(x, bend, 0.031, 0, 0.0185, 0.0046), 0.5) * (0.65 + 0.5 * strokes);
    s.colour = mix(s.colour, {0.17, 0.105, 0.065}, clamp01(brow));
    return s;
}

surface paintWood(double u, double v, std::uint32_t seed)
{
    const double plank = fraction(u * 4);
    const int index = static_cast<int>(u * 4);
    const double shift = hashOfCell(index, 3, seed);
    const double rings = cloudy(u, fraction(v + shift), 24, 2, 3, seed + static_cast<std::uint32_t>(index) * 31);
    const double fibre = noise(u, v, 256, 8, seed + 5);
    const double lines = fraction(rings * 7);
    const double from_edge = std::min(plank, 1 - plank);
    const double gap = bump(from_edge * from_edge / 0.0012);
    surface s;
    s.colour =
        mix(vec3{0.36, 0.24, 0.14}, {0.56, 0.41, 0.26}, 0.5 * lines + 0.3 * fibre + 0.2 * shift) * (1 - 0.75 * gap);
    s.specular = {0.09, 0.09, 0.08};
    s.gloss = 0.24 + 0.10 * lines;
    s.height = 0.0025 * lines + 0.0015 * fibre - 0.016 * gap;
    return s;
}

surface paintStone(double u, double v, std::uint32_t seed)
{
    const double cloud = cloudy(u, v, 4, 4, 6, seed + 1), fine = cloudy(u, v, 48, 48, 3, seed + 2);
    const double vein = cloudy(u, v, 3, 3, 4, seed + 3) - 0.5;
    const double crack = bump(vein * vein / 0.00035);
    const double pit = smoothStep(0.66, 0.80, fine);
    const double moss = smoothStep(0.58, 0.72, cloudy(u, v, 5, 5, 4, seed + 4));
    surface s;
    s.colour =
        mix(vec3{0.50, 0.475, 0.43}, {0.70, 0.68, 0.63}, cloud) * (0.88 + 0.2 * fine - 0.35 * pit - 0.45 * crack);
    s.colour = mix(s.colour, vec3{0.27, 0.32, 0.14} * (0.6 + 0.8 * fine), 0.55 * moss);
    s.specular = {0.10, 0.10, 0.10};
    s.gloss = 0.22 + 0.12 * cloud - 0.08 * moss;
    s.height = 0.006 * cloud + 0.003 * fine - 0.004 * pit - 0.008 * crack;
    return s;
}

surface paintGrass(double u, double v, std::uint32_t seed)
{
    surface s;
    s.alpha = 0;
    s.colour = {0.26, 0.32, 0.12};
    // Blades from the bottom, bent to the side, each row before the last.
    for (int i = 0; i < 26; ++i)
    {
        const double root = (i + 0.5 + 0.7 * (hashOfCell(i, 1, seed) - 0.5)) / 26;
        const double tall = 0.45 + 0.52 * hashOfCell(i, 2, seed), lean = 0.28 * (hashOfCell(i, 3, seed) - 0.5);
        const double up = (1 - v) / tall;
        if (up > 1)
            continue;
        const double middle = root + lean * up * up, half = 0.021 * (1 - up) + 0.0015;
        const double off = (u - middle) / half;
        if (off * off < 1)
        {
            s.alpha = 1;
            const double tone = hashOfCell(i, 4, seed);
            s.colour = mix(vec3{0.17, 0.27, 0.075}, {0.50, 0.53, 0.20}, 0.75 * up * (0.6 + 0.4 * tone) + 0.15 * tone) *
                       (1 - 0.25 * bump(off * off * 9));
            s.height = 0.01 * (1 - off * off);
        }
    }
    s.specular = {0.08, 0.09, 0.06};
    s.gloss = 0.28;
    return s;
}

// A bay horse: short hair that lies along v, darker in broad clouds.
surface paintCoat(double u, double v, std::uint32_t seed)
{
    const double cloud = cloudy(u, v, 3, 3, 4, seed + 1), hair = noise(u, v, 128, 24, seed + 2);
    const double fine = cloudy(u, v, 64, 16, 2, seed + 3);
    surface s;
    s.colour = mix(vec3{0.30, 0.155, 0.075}, {0.43, 0.245, 0.125}, cloud) * (0.82 + 0.22 * hair + 0.12 * fine);
    s.specular = {0.15, 0.13, 0.11};
    s.gloss = 0.40 + 0.14 * (hair - 0.5);
    s.height = 0.0016 * hair + 0.0008 * fine;
    return s;
}

// Mane and tail: long strands along v.
surface paintHair(double u, double v, std::uint32_t seed)
{
    const double strand = noise(u, v, 48, 3, seed + 1), fine = noise(u, v, 192, 6, seed + 2);
    surface s;
    s.colour = mix(vec3{0.045, 0.035, 0.03}, {0.16, 0.115, 0.085}, strand) * (0.7 + 0.6 * fine);
    s.specular = {0.16, 0.15, 0.14};
    s.gloss = 0.38 + 0.2 * strand;
    s.height = 0.008 * strand + 0.003 * fine;
    return s;
}

} // namespace korvane::demo
