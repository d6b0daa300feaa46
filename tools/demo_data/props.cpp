#include "tools/demo_data/props.h"

#include "tools/demo_data/figure_parts.h"
#include "tools/demo_data/image.h"

namespace korvane::demo
{

namespace
{

constexpr int unrigged[] = {0};

section level(double height, double radius)
{
    return disc({0, height, 0}, radius);
}

loft_options turnedOnce(int around, int along, double u1, double v1)
{
    loft_options options;
    options.around = around;
    options.along = along;
    options.axis = {0, 1, 0};
    options.u1 = u1;
    options.v0 = v1;
    options.v1 = 0;
    return options;
}

// Twenty flutes, shallow, with sharp ridges between.
vec3 fluted(vec3 point, vec3 outward, double turn, double)
{
    const double s = sineOfTurns(fraction(turn * 20) * 0.5);
    return point - outward * (0.028 * s);
}

} // namespace

std::vector<figure_part> buildBarrel(double density)
{
    mesh_builder wood(density), iron(density);
    wood.closedLoft({level(0.0, 0.265), level(0.08, 0.292), level(0.30, 0.340), level(0.45, 0.350), level(0.60, 0.340),
                     level(0.82, 0.292), level(0.90, 0.265)},
                    turnedOnce(40, 4, 5, 2), unrigged);
    for (const double height : {0.05, 0.25, 0.65, 0.85})
    {
        const double up = (height - 0.45) / 0.45;
        const double radius = 0.350 - 0.085 * up * up + 0.002, slope = -0.19 * up;
        const section band[] = {level(height - 0.028, radius - slope * 0.028 - 0.004),
                                level(height - 0.026, radius - slope * 0.026 + 0.007),
                                level(height + 0.026, radius + slope * 0.026 + 0.007),
                                level(height + 0.028, radius + slope * 0.028 - 0.004)};
        loft_options options = turnedOnce(40, 1, 10, 0.7);
        options.v1 = 0.3; // between the trims of the texture
        iron.outward(loft(band, options, density), unrigged);
    }
    std::vector<figure_part> parts;
    parts.push_back({"barrel_staves", "demo_wood", wood.take()});
    parts.push_back({"barrel_hoops", "guard_steel", iron.take()});
    return parts;
}

std::vector<figure_part> buildColumn(double density, std::uint32_t seed)
{
    mesh_builder stone(density);
    stone.box({0, 0.09, 0}, {0.62, 0, 0}, {0, 0.09, 0}, {0, 0, 0.62}, unrigged, 0.8);
    stone.outward(loft(std::vector<section>{level(0.18, 0.57), level(0.22, 0.60), level(0.28, 0.58), level(0.31, 0.51),
                                            level(0.35, 0.50), level(0.40, 0.54), level(0.45, 0.53), level(0.47, 0.46)},
                       turnedOnce(48, 2, 4, 0.5), density),
                  unrigged);
    loft_options shaft = turnedOnce(160, 5, 4, 3);
    shaft.shape = [seed](vec3 point, vec3 outward, double turn, double along) {
        const vec3 cut = fluted(point, outward, turn, along);
        // The top is broken off at a slant, unevenly.
        const double jagged = 0.16 * outward.x + 0.10 * outward.z + 0.20 * (cloudy(turn, 0.3, 5, 5, 3, seed) - 0.5);
        return cut + vec3{0, jagged * smoothStep(0.72, 1.0, along), 0};
    };
    const section drum[] = {level(0.46, 0.455), level(1.0, 0.45), level(1.7, 0.435), level(2.45, 0.415)};
    const grid body = loft(drum, shaft, density);
    stone.outward(body, unrigged);
    // The break: from the rim to the middle, rough.
    grid fracture{5, body.columns, true, {}, {}};
    vec3 middle;
    for (std::size_t column = 0; column + 1 < body.columns; ++column)
        middle = middle + body.at(body.rows - 1, column) * (1.0 / static_cast<double>(body.columns - 1));
    for (std::size_t row = 0; row < fracture.rows; ++row)
        for (std::size_t column = 0; column < body.columns; ++column)
        {
            const double in = static_cast<double>(row) / 4;
            const double turn = static_cast<double>(column) / static_cast<double>(body.columns - 1);
            vec3 point = mix(body.at(body.rows - 1, column), middle, in);
            const double roughness = in > 0 && in < 1 ? 0.16 * (cloudy(turn, in * 0.4, 9, 9, 2, seed + 3) - 0.5) : 0;
            point.y += roughness;
            fracture.points.push_back(point);
            fracture.uvs.push_back({0.5 + point.x, 0.5 + point.z});
        }
    stone.facing(fracture, {0, 1, 0}, unrigged);

    // A drum that has fallen, lying beside.
    loft_options fallen = turnedOnce(160, 4, 4, 1);
    const vec3 axis = normalised({0.5, 0.03, 0.86});
    fallen.axis = axis;
    fallen.back_hint = {0, 1, 0};
    fallen.shape = fluted;
    const vec3 from{0.75, 0.43, -0.75};
    stone.closedLoft({disc(from, 0.42), disc(from + axis * 0.5, 0.425), disc(from + axis * 1.0, 0.43)}, fallen,
                     unrigged);

    std::vector<figure_part> parts;
    parts.push_back({"column", "demo_stone", stone.take()});
    return parts;
}

std::vector<figure_part> buildBanner(double density)
{
    mesh_builder wood(density), cloth(density), iron(density);
    wood.closedLoft({level(0.0, 0.028), level(0.9, 0.027), level(1.8, 0.025), level(2.95, 0.022)},
                    turnedOnce(12, 4, 1, 8), unrigged);
    loft_options bar = turnedOnce(10, 3, 1, 4);
    bar.axis = {1, 0, 0};
    wood.closedLoft(
        {disc({-0.46, 2.72, -0.03}, 0.018), disc({0, 2.72, -0.03}, 0.020), disc({0.46, 2.72, -0.03}, 0.018)}, bar,
        unrigged);
    loft_options tip = turnedOnce(16, 3, 1, 0.9);
    iron.outward(loft(std::vector<section>{level(2.93, 0.026), level(2.97, 0.034), level(3.00, 0.020),
                                           level(3.06, 0.040), level(3.12, 0.030), level(3.26, 0)},
                      tip, density),
                 unrigged);
    const auto count = [density](int at_one) {
        return static_cast<std::size_t>(std::max(3, static_cast<int>(at_one * density + 0.5)));
    };
    const std::size_t rows = count(40), columns = count(24);
    grid sheet{rows + 1, columns + 1, false, {}, {}};
    for (std::size_t row = 0; row <= rows; ++row)
        for (std::size_t column = 0; column <= columns; ++column)
        {
            const double down = static_cast<double>(row) / static_cast<double>(rows);
            const double across = static_cast<double>(column) / static_cast<double>(columns);
            const double wave = 0.050 * down * sineOfTurns(down * 1.1 + across * 0.6) +
                                0.014 * sineOfTurns(across * 3 + down * 0.4) * smoothStep(0, 0.25, down);
            sheet.points.push_back({0.42 - 0.84 * across, 2.70 - 1.45 * down, -0.055 + wave - 0.02 * down});
            sheet.uvs.push_back({across, down});
        }
    const vec3 towards{0, 0, -1};
    cloth.shell(sheet, 0.006, unrigged, &towards);

    std::vector<figure_part> parts;
    parts.push_back({"pole", "demo_wood", wood.take()});
    parts.push_back({"cloth", "demo_banner", cloth.take()});
    parts.push_back({"finial", "guard_steel", iron.take()});
    return parts;
}

std::vector<figure_part> buildGrass(double density, std::uint32_t seed)
{
    random_source random(seed);
    mesh_builder grass(1);
    const int tufts = std::max(4, static_cast<int>(90 * density * density + 0.5));
    for (int i = 0; i < tufts; ++i)
    {
        const double reach = 1.1 * std::sqrt(random.unit()), turn = random.unit(), around = random.unit();
        const vec3 root{reach * sineOfTurns(turn), 0, reach * cosineOfTurns(turn)};
        const double height = random.between(0.28, 0.50), half = random.between(0.16, 0.26);
        const vec3 across{cosineOfTurns(around), 0, sineOfTurns(around)};
        const vec3 towards = cross(across, {0, 1, 0});
        const vec3 lean = towards * random.between(-0.12, 0.12);
        grid card{3, 2, false, {}, {}};
        for (int row = 0; row < 3; ++row)
        {
            const double up = 1 - row * 0.5;
            for (const double side : {-1.0, 1.0})
            {
                card.points.push_back(root + across * (half * side) + vec3{0, height * up, 0} + lean * (up * up));
                card.uvs.push_back({side < 0 ? 0.0 : 1.0, 1 - up});
            }
        }
        grass.facing(card, towards, unrigged);
        grass.facing(card, towards * -1, unrigged);
    }
    std::vector<figure_part> parts;
    parts.push_back({"grass", "demo_grass", grass.take()});
    return parts;
}

mesh buildColumnHull()
{
    mesh_builder hull(1);
    hull.closedLoft({level(0, 0.66), level(0.47, 0.62), level(0.48, 0.47), level(2.45, 0.45)}, turnedOnce(12, 1, 1, 1),
                    unrigged);
    return hull.take();
}

} // namespace korvane::demo
