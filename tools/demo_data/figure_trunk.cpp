#include "tools/demo_data/figure_parts.h"

namespace korvane::demo
{

namespace
{

constexpr double crown_height = 1.80, throat_height = 1.43; // the ends of the head's texture

double bumpAt(vec3 p, double x, double y, double radius_x, double radius_y)
{
    const double dx = (p.x - x) / radius_x, dy = (p.y - y) / radius_y;
    return bump(dx * dx + dy * dy);
}
double pairAt(vec3 p, double x, double y, double radius_x, double radius_y)
{
    return bumpAt(p, x, y, radius_x, radius_y) + bumpAt(p, -x, y, radius_x, radius_y);
}

// How far the face stands out at a point of the smooth head; metres.
double faceRelief(vec3 p)
{
    double relief = bumpAt(p, 0, 1.648, 0.020, 0.034) * 0.013; // bridge, tip and wings of the nose
    relief += bumpAt(p, 0, 1.634, 0.019, 0.016) * 0.015 + pairAt(p, 0.012, 1.629, 0.013, 0.012) * 0.005;
    relief -= pairAt(p, 0.031, 1.672, 0.027, 0.017) * 0.012; // eye sockets, eyeballs, brows
    relief += pairAt(p, 0.031, 1.671, 0.014, 0.009) * 0.005 + pairAt(p, 0.030, 1.691, 0.034, 0.012) * 0.005;
    relief += pairAt(p, 0.046, 1.648, 0.026, 0.022) * 0.005;                                         // cheeks
    relief += bumpAt(p, 0, 1.612, 0.027, 0.007) * 0.005 + bumpAt(p, 0, 1.602, 0.023, 0.007) * 0.005; // lips
    relief += bumpAt(p, 0, 1.578, 0.032, 0.020) * 0.010;                                             // chin
    return relief;
}

vec3 shapeFace(vec3 point, vec3 outward, double, double)
{
    return outward.z < 0 ? point + vec3{0, 0, -faceRelief(point)} : point;
}

double cuirassRelief(vec3 p)
{
    double relief = pairAt(p, 0.072, 1.325, 0.080, 0.065) * 0.016;
    for (const double y : {1.225, 1.165, 1.105})
        relief += pairAt(p, 0.036, y, 0.036, 0.032) * 0.007;
    return relief;
}

vec3 shapeCuirass(vec3 point, vec3 outward, double, double)
{
    return outward.z < 0 ? point + outward * (cuirassRelief(point) * smoothStep(0, 0.4, -outward.z)) : point;
}

constexpr section helmet_bowl[] = {{{0, 1.690, 0.004}, 0.092, 0.118, 0.114}, {{0, 1.735, 0.004}, 0.093, 0.118, 0.114},
                                   {{0, 1.785, 0.004}, 0.083, 0.104, 0.102}, {{0, 1.822, 0.004}, 0.054, 0.066, 0.068},
                                   {{0, 1.838, 0.004}, 0.022, 0.026, 0.028}, {{0, 1.841, 0.004}, 0, 0, 0}};

} // namespace

void addHead(mesh_builder& skin)
{
    const section outline[] = {{{0, 1.420, 0.022}, 0.072, 0.056, 0.070}, {{0, 1.470, 0.024}, 0.058, 0.052, 0.060},
                               {{0, 1.520, 0.018}, 0.055, 0.052, 0.060}, {{0, 1.551, 0.008}, 0.054, 0.056, 0.068},
                               {{0, 1.565, 0.004}, 0.052, 0.083, 0.078}, {{0, 1.585, 0.002}, 0.059, 0.092, 0.088},
                               {{0, 1.615, 0.000}, 0.066, 0.091, 0.095}, {{0, 1.650, 0.000}, 0.071, 0.090, 0.100},
                               {{0, 1.690, 0.000}, 0.074, 0.091, 0.103}, {{0, 1.735, 0.000}, 0.074, 0.088, 0.100},
                               {{0, 1.772, 0.002}, 0.060, 0.070, 0.078}, {{0, 1.793, 0.004}, 0.033, 0.038, 0.042},
                               {{0, crown_height, 0.004}, 0, 0, 0}};
    loft_options options;
    options.around = 52;
    options.along = 3;
    options.axis = {0, 1, 0};
    options.shape = shapeFace;
    grid surface = loft(outline, options, skin.density());
    for (std::size_t i = 0; i < surface.points.size(); ++i) // a flat picture of the face finds its place
        surface.uvs[i].y = clamp01((crown_height - surface.points[i].y) / (crown_height - throat_height));
    skin.outward(surface, bonesNamed({"spine_2", "neck", "head"}));
}

void addHelmet(mesh_builder& steel, mesh_builder& plume)
{
    const auto head = bonesNamed({"head"});
    loft_options options;
    options.around = 36;
    options.along = 3;
    options.axis = {0, 1, 0};
    options.u1 = 3;
    options.v0 = 1;
    options.v1 = 0;
    steel.shell(loft(helmet_bowl, options, steel.density()), 0.005, head);

    const section rim[] = {{{0, 1.680, 0.004}, 0.093, 0.119, 0.115},
                           {{0, 1.686, 0.003}, 0.101, 0.128, 0.123},
                           {{0, 1.696, 0.003}, 0.102, 0.129, 0.124},
                           {{0, 1.705, 0.004}, 0.093, 0.119, 0.115}};
    options.along = 1;
    options.v1 = 0.93; // all of it in the trim of the texture
    options.u1 = 8;
    steel.outward(loft(rim, options, steel.density()), head);

    loft_options plate;
    plate.along = 4;
    plate.axis = {0, 1, 0};
    plate.v1 = 1;
    const section nape[] = {{{0, 1.690, 0.004}, 0.093, 0.118, 0.114},
                            {{0, 1.640, 0.006}, 0.090, 0.110, 0.116},
                            {{0, 1.585, 0.010}, 0.094, 0.110, 0.126},
                            {{0, 1.545, 0.016}, 0.110, 0.110, 0.146}};
    plate.around = 16;
    plate.from_turn = -0.19;
    plate.to_turn = 0.19;
    steel.shell(loft(nape, plate, steel.density()), 0.004, head);
    const section cheek[] = {{{0, 1.690, 0.004}, 0.092, 0.117, 0.112},
                             {{0, 1.645, 0.004}, 0.088, 0.112, 0.108},
                             {{0, 1.600, 0.000}, 0.080, 0.106, 0.100},
                             {{0, 1.566, -0.006}, 0.068, 0.100, 0.090}};
    plate.around = 7;
    plate.u1 = 0.6;
    for (const double side : {0.25, 0.75})
    {
        const double forward = side < 0.5 ? 1 : -1;
        plate.from_turn = side - 0.045 * forward;
        plate.to_turn = side + 0.125 * forward;
        if (plate.from_turn > plate.to_turn)
            std::swap(plate.from_turn, plate.to_turn);
        // The lower end sweeps forward, to the corner of the mouth.
        plate.shape = [](vec3 point, vec3, double, double along) { return point + vec3{0, 0, -0.016 * along * along}; };
        steel.shell(loft(cheek, plate, steel.density()), 0.004, head);
    }

    // The crest: an arc from the brow over the crown to the nape.
    std::vector<section> ridge, brush;
    for (int i = 0; i <= 8; ++i)
    {
        const double turn = mix(-0.215, 0.245, i / 8.0);
        const double s = sineOfTurns(turn), c = cosineOfTurns(turn);
        const double height = 0.040 * bump(0.55 * (i / 8.0 - 0.45) * (i / 8.0 - 0.45) / 0.25) + 0.012;
        ridge.push_back({{0, 1.705 + 0.139 * c, 0.004 + 0.122 * s}, 0.014, 0.012, 0.012, 0.6});
        const double reach = 0.012 + height;
        brush.push_back({{0, 1.705 + (0.139 + reach) * c, 0.004 + (0.122 + reach) * s},
                         height,
                         0.015 + 0.004 * c,
                         0.015 + 0.004 * c,
                         0.35});
    }
    loft_options arc;
    arc.around = 10;
    arc.along = 2;
    arc.back_hint = {1, 0, 0};
    arc.v1 = 4;
    arc.u1 = 0.5;
    steel.closedLoft(ridge, arc, head);
    arc.around = 16;
    arc.along = 3;
    arc.v1 = 2;
    arc.u1 = 1;
    plume.closedLoft(brush, arc, head);
}

void addCuirass(mesh_builder& steel)
{
    const section outline[] = {{{0, 1.015, 0.000}, 0.163, 0.122, 0.112}, {{0, 1.040, 0.000}, 0.150, 0.110, 0.104},
                               {{0, 1.100, 0.000}, 0.148, 0.110, 0.100}, {{0, 1.190, 0.000}, 0.160, 0.118, 0.106},
                               {{0, 1.290, 0.004}, 0.178, 0.128, 0.118}, {{0, 1.365, 0.008}, 0.184, 0.122, 0.120},
                               {{0, 1.415, 0.012}, 0.170, 0.100, 0.108}, {{0, 1.452, 0.018}, 0.128, 0.076, 0.088},
                               {{0, 1.478, 0.022}, 0.082, 0.064, 0.074}};
    loft_options options;
    options.around = 48;
    options.along = 4;
    options.axis = {0, 1, 0};
    options.u1 = 2;
    options.v0 = 1;
    options.v1 = 0;
    options.shape = shapeCuirass;
    steel.shell(loft(outline, options, steel.density()), 0.005, bonesNamed({"spine_0", "spine_1", "spine_2"}));
}

void addSkirt(mesh_builder& cloth, mesh_builder& leather)
{
    const auto bones = bonesNamed({"pelvis", "upperleg_l", "upperleg_r"});
    const section outline[] = {{{0, 1.045, 0.000}, 0.146, 0.106, 0.100},
                               {{0, 0.960, 0.002}, 0.176, 0.128, 0.126},
                               {{0, 0.840, 0.002}, 0.202, 0.156, 0.154},
                               {{0, 0.700, 0.000}, 0.222, 0.178, 0.182},
                               {{0, 0.600, 0.000}, 0.232, 0.190, 0.196}};
    loft_options options;
    options.around = 60;
    options.along = 3;
    options.axis = {0, 1, 0};
    options.u1 = 4;
    options.shape = [](vec3 point, vec3 outward, double turn, double along) {
        const double depth = 0.012 * along + 0.006 * along * sineOfTurns(turn * 5 + 0.2);
        return point + outward * (depth * sineOfTurns(turn * 17 + 0.1 * sineOfTurns(turn * 3))) +
               vec3{0, 0.008 * along * sineOfTurns(turn * 6), 0};
    };
    cloth.shell(loft(outline, options, cloth.density()), 0.004, bones);

    // Straps of leather that hang over it, a longer row below a shorter one.
    for (int row = 0; row < 2; ++row)
    {
        const double drop = row == 0 ? 0.27 : 0.16, out = row == 0 ? 0.020 : 0.029;
        const section strap_outline[] = {{{0, 1.035, 0}, 0.148 + out * 0.4, 0.108 + out * 0.4, 0.102 + out * 0.4},
                                         {{0, 1.035 - drop * 0.35, 0}, 0.168 + out, 0.122 + out, 0.120 + out},
                                         {{0, 1.035 - drop * 0.95, 0},
                                          0.186 + out + 0.05 * drop,
                                          0.142 + out + 0.05 * drop,
                                          0.140 + out + 0.05 * drop},
                                         {{0, 1.035 - drop, 0}, 0.187 + out, 0.143 + out, 0.141 + out}};
        loft_options strap;
        strap.around = 3;
        strap.along = 2;
        strap.axis = {0, 1, 0};
        strap.u1 = 0.32;
        constexpr int count = 20;
        for (int i = 0; i < count; ++i)
        {
            const double shift = row * 0.5;
            strap.from_turn = (i + shift + 0.06) / count;
            strap.to_turn = (i + shift + 0.94) / count;
            leather.shell(loft(strap_outline, strap, leather.density()), 0.004, bones);
        }
    }
}

void addBelt(mesh_builder& leather, mesh_builder& steel)
{
    const auto bones = bonesNamed({"pelvis", "spine_0"});
    const section band[] = {{{0, 1.018, 0}, 0.170, 0.129, 0.119},
                            {{0, 1.024, 0}, 0.174, 0.133, 0.123},
                            {{0, 1.054, 0}, 0.166, 0.125, 0.117},
                            {{0, 1.062, 0}, 0.158, 0.118, 0.111}};
    loft_options options;
    options.around = 40;
    options.along = 2;
    options.axis = {0, 1, 0};
    options.u1 = 12;
    leather.shell(loft(band, options, leather.density()), 0.004, bones);
    loft_options plate;
    plate.around = 18;
    plate.along = 1;
    plate.back_hint = {0, 1, 0};
    plate.axis = {0, 0, 1};
    const vec3 centre{0, 1.040, -0.126};
    steel.closedLoft({{centre, 0.031, 0.026, 0.026, 0.3},
                      {centre + vec3{0, 0, -0.009}, 0.031, 0.026, 0.026, 0.3},
                      {centre + vec3{0, 0, -0.013}, 0.024, 0.020, 0.020, 0.3},
                      {centre + vec3{0, 0, -0.011}, 0.014, 0.011, 0.011, 0.3}},
                     plate, bones);
}

void addScarf(mesh_builder& cloth)
{
    const section outline[] = {{{0, 1.448, 0.020}, 0.098, 0.080, 0.086},
                               {{0, 1.468, 0.022}, 0.101, 0.086, 0.092},
                               {{0, 1.494, 0.022}, 0.090, 0.080, 0.084},
                               {{0, 1.518, 0.020}, 0.074, 0.070, 0.074},
                               {{0, 1.530, 0.019}, 0.060, 0.058, 0.064}};
    loft_options options;
    options.around = 44;
    options.along = 3;
    options.axis = {0, 1, 0};
    options.u1 = 3;
    options.v1 = 0.45; // above the pattern
    options.shape = [](vec3 point, vec3 outward, double turn, double along) {
        const double fold = sineOfTurns(along * 2.3 + 0.35 * sineOfTurns(turn * 2) + 0.1 * sineOfTurns(turn * 5));
        return point + outward * (0.006 * fold * bump((along - 0.5) * (along - 0.5) * 4));
    };
    cloth.outward(loft(outline, options, cloth.density()), bonesNamed({"spine_2", "neck"}));
}

void addCape(mesh_builder& cape, mesh_builder& steel)
{
    const auto rows = static_cast<std::size_t>(std::max(4, static_cast<int>(26 * cape.density() + 0.5)));
    const auto columns = static_cast<std::size_t>(std::max(6, static_cast<int>(36 * cape.density() + 0.5)));
    grid sheet{rows + 1, columns + 1, false, {}, {}};
    for (std::size_t row = 0; row <= rows; ++row)
        for (std::size_t column = 0; column <= columns; ++column)
        {
            const double down = static_cast<double>(row) / static_cast<double>(rows);
            const double across = static_cast<double>(column) / static_cast<double>(columns) * 2 - 1; // -1 to 1
            const double half = mix(0.185, 0.36, down) * (1 - 0.10 * bump((down - 0.35) * (down - 0.35) / 0.16));
            const double fold = mix(0.006, 0.030, down) * smoothStep(0, 0.2, down) *
                                (sineOfTurns(across * 2.6 + 0.15 * down) + 0.4 * sineOfTurns(across * 6.3 + 0.3));
            const double shoulders = (1 - down) * (1 - down) * across * across; // drawn to the clasps in front
            sheet.points.push_back({half * across, 1.468 - 0.045 * across * across * (1 - down) - 1.235 * down,
                                    0.137 + 0.20 * down * (1.35 - 0.35 * down) - 0.115 * shoulders + fold -
                                        0.05 * down * across * across});
            sheet.uvs.push_back({(across + 1) * 0.5, down});
        }
    const vec3 towards{0, 0.1, 1};
    const auto bones = bonesNamed({"spine_2", "cape_0", "cape_1", "cape_2", "cape_3"});
    cape.shell(sheet, 0.006, bones, &towards);
    for (const double side : {1.0, -1.0})
        addBall(steel, {side * 0.135, 1.447, -0.052}, {0.021, 0.021, 0.012}, bonesNamed({"spine_2"}), 12);
}

} // namespace korvane::demo
