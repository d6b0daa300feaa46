#include "tools/demo_data/horse.h"

#include "tools/demo_data/beast.h"
#include "tools/demo_data/figure_parts.h"

#include <initializer_list>

namespace korvane::demo
{

namespace
{

std::vector<int> beastBonesNamed(std::initializer_list<const char*> names)
{
    std::vector<int> bones;
    for (const char* name : names)
        bones.push_back(beastRig().find(name));
    return bones;
}

vec3 mirrored(vec3 point, double sign)
{
    return {point.x * sign, point.y, point.z};
}

// The barrel of the body at a depth z; outlines stand across the z axis, turn 0 is up.
struct barrel_row
{
    double z, y, half_width, up, down;
};

constexpr barrel_row barrel[] = {
    {0.815, 1.24, 0.000, 0.000, 0.000},  {0.800, 1.23, 0.110, 0.110, 0.150},  {0.735, 1.21, 0.205, 0.210, 0.240},
    {0.560, 1.20, 0.275, 0.295, 0.250},  {0.330, 1.19, 0.270, 0.275, 0.275},  {0.050, 1.17, 0.290, 0.262, 0.335},
    {-0.200, 1.18, 0.270, 0.310, 0.350}, {-0.380, 1.19, 0.245, 0.310, 0.335}, {-0.540, 1.19, 0.215, 0.240, 0.290},
    {-0.660, 1.17, 0.150, 0.150, 0.190}, {-0.715, 1.16, 0.070, 0.070, 0.090}, {-0.725, 1.16, 0.000, 0.000, 0.000},
};

// At any z between the rows, wider by so much; linear is smooth enough for what lies on it.
section barrelAt(double z, double wider)
{
    std::size_t i = 0;
    while (i + 2 < std::size(barrel) && barrel[i + 1].z > z)
        ++i;
    const barrel_row &a = barrel[i], &b = barrel[i + 1];
    const double t = clamp01((a.z - z) / (a.z - b.z));
    return {{0, mix(a.y, b.y, t), z},
            mix(a.half_width, b.half_width, t) + wider,
            mix(a.down, b.down, t) + wider,
            mix(a.up, b.up, t) + wider};
}

loft_options acrossTheBody(int around, int along)
{
    loft_options options;
    options.around = around;
    options.along = along;
    options.axis = {0, 0, -1};
    options.back_hint = {0, 1, 0};
    return options;
}

void addTrunk(mesh_builder& coat)
{
    std::vector<section> sections;
    for (const barrel_row& row : barrel)
        sections.push_back({{0, row.y, row.z}, row.half_width, row.down, row.up});
    loft_options options = acrossTheBody(40, 4);
    options.u1 = 3;
    options.v1 = 3;
    // The belly is rounder than an oval, the back flatter; the croup has a furrow.
    options.shape = [](vec3 point, vec3 outward, double turn, double along) {
        const double up = cosineOfTurns(turn);
        const double furrow = up > 0.97 && along < 0.35 ? 0.006 : 0;
        return point - outward * furrow;
    };
    coat.closedLoft(sections, options,
                    beastBonesNamed({"pelvis", "spine_0", "spine_1", "spine_2", "neck_0", "thigh_l", "thigh_r",
                                     "scapula_l", "scapula_r"}));
}

void addNeckAndHead(mesh_builder& coat, mesh_builder& hair)
{
    loft_options options;
    options.around = 28;
    options.along = 4;
    options.back_hint = {0, 0.6, 0.8}; // the crest
    options.u1 = 2;
    options.v1 = 1.5;
    coat.closedLoft({{{0, 1.18, -0.34}, 0.10, 0.16, 0.16},
                     {{0, 1.26, -0.46}, 0.165, 0.270, 0.230},
                     {{0, 1.38, -0.585}, 0.135, 0.235, 0.200},
                     {{0, 1.56, -0.715}, 0.105, 0.185, 0.150},
                     {{0, 1.75, -0.835}, 0.085, 0.140, 0.115},
                     {{0, 1.89, -0.915}, 0.075, 0.105, 0.085},
                     {{0, 1.97, -0.940}, 0.045, 0.060, 0.040}},
                    options, beastBonesNamed({"spine_2", "neck_0", "neck_1", "neck_2", "head"}));
    options.back_hint = {0, 0.72, -0.70}; // the forehead
    options.v1 = 1;
    const auto head = beastBonesNamed({"head"});
    coat.closedLoft({{{0, 2.000, -0.880}, 0.030, 0.030, 0.030},
                     {{0, 1.955, -0.925}, 0.082, 0.110, 0.075},
                     {{0, 1.880, -0.990}, 0.098, 0.140, 0.080},
                     {{0, 1.800, -1.055}, 0.085, 0.118, 0.068},
                     {{0, 1.715, -1.130}, 0.064, 0.080, 0.056},
                     {{0, 1.640, -1.200}, 0.060, 0.066, 0.052},
                     {{0, 1.590, -1.250}, 0.060, 0.062, 0.048},
                     {{0, 1.560, -1.278}, 0.044, 0.044, 0.030}},
                    options, head);
    for (const double sign : {1.0, -1.0})
    {
        addBall(hair, mirrored({0.084, 1.900, -1.005}, sign), {0.016, 0.018, 0.020}, head, 12); // an eye
        addBall(hair, mirrored({0.040, 1.612, -1.262}, sign), {0.013, 0.016, 0.014}, head, 10); // a nostril
        loft_options ear;
        ear.around = 12;
        ear.along = 3;
        ear.back_hint = {0, 0, 1};
        coat.closedLoft({{mirrored({0.045, 1.985, -0.905}, sign), 0.024, 0.020, 0.016},
                         {mirrored({0.055, 2.040, -0.908}, sign), 0.033, 0.018, 0.016},
                         {mirrored({0.060, 2.090, -0.905}, sign), 0.022, 0.012, 0.012},
                         {mirrored({0.058, 2.130, -0.900}, sign), 0.003, 0.003, 0.003}},
                        ear, beastBonesNamed({sign > 0 ? "ear_l" : "ear_r"}));
    }
}

void addHair(mesh_builder& hair)
{
    loft_options options;
    options.around = 14;
    options.along = 5;
    options.back_hint = {0, 0.6, 0.8};
    options.u1 = 1;
    options.v1 = 2;
    // Stands on the crest in front and falls to the left behind.
    hair.closedLoft({{{0.000, 2.020, -0.960}, 0.012, 0.020, 0.020},
                     {{0.010, 1.985, -0.850}, 0.022, 0.060, 0.050},
                     {{0.030, 1.840, -0.745}, 0.036, 0.100, 0.045},
                     {{0.042, 1.690, -0.620}, 0.044, 0.130, 0.045},
                     {{0.044, 1.570, -0.480}, 0.044, 0.130, 0.040},
                     {{0.034, 1.500, -0.370}, 0.030, 0.080, 0.030},
                     {{0.020, 1.480, -0.290}, 0.010, 0.020, 0.012}},
                    options, beastBonesNamed({"spine_2", "neck_0", "neck_1", "neck_2", "head"}));
    hair.closedLoft({{{0, 2.020, -0.950}, 0.020, 0.010, 0.010},
                     {{0, 1.990, -0.990}, 0.032, 0.014, 0.014},
                     {{0, 1.930, -1.045}, 0.026, 0.014, 0.012},
                     {{0, 1.870, -1.085}, 0.006, 0.004, 0.004}},
                    options, beastBonesNamed({"head"})); // over the forehead
    options.back_hint = {0, 0, 1};
    hair.closedLoft({{{0, 1.400, 0.760}, 0.030, 0.030, 0.030},
                     {{0, 1.370, 0.835}, 0.040, 0.040, 0.040},
                     {{0, 1.240, 0.895}, 0.058, 0.050, 0.050},
                     {{0, 1.020, 0.935}, 0.082, 0.062, 0.066},
                     {{0, 0.780, 0.955}, 0.086, 0.066, 0.070},
                     {{0, 0.560, 0.955}, 0.058, 0.050, 0.050},
                     {{0, 0.400, 0.950}, 0.012, 0.012, 0.012}},
                    options, beastBonesNamed({"tail_0", "tail_1", "tail_2", "tail_3"}));
}

void addLeg(mesh_builder& coat, mesh_builder& hoof, double sign, bool is_fore)
{
    const std::string end = sign > 0 ? "_l" : "_r";
    const auto bone = [&end](const char* name) { return beastRig().find(name + end); };
    loft_options options;
    options.around = 20;
    options.along = 4;
    options.back_hint = {0, 0, 1};
    options.axis = {0, -1, 0};
    options.v1 = 3;
    options.u1 = 1.5;
    const auto at = [sign](double x, double y, double z, double half_width, double front, double back) {
        return section{{x * sign, y, z}, half_width, front, back};
    };
    const auto ring = [&](double x, double y, double z, double radius) {
        return section{{x * sign, y, z}, radius, radius * 1.12, radius};
    };
    if (is_fore)
    {
        const int bones[] = {bone("scapula"), bone("upperarm"), bone("forearm"), bone("cannon_fore"),
                             bone("pastern_fore")};
        coat.closedLoft({at(0.135, 1.30, -0.400, 0.080, 0.150, 0.110), at(0.150, 1.12, -0.430, 0.105, 0.165, 0.150),
                         at(0.165, 0.97, -0.385, 0.090, 0.120, 0.125), at(0.170, 0.82, -0.365, 0.070, 0.085, 0.095),
                         at(0.168, 0.66, -0.390, 0.053, 0.062, 0.066), at(0.166, 0.53, -0.405, 0.048, 0.055, 0.052),
                         at(0.165, 0.46, -0.400, 0.043, 0.045, 0.046), at(0.165, 0.35, -0.390, 0.033, 0.035, 0.042),
                         at(0.165, 0.24, -0.375, 0.036, 0.038, 0.046), at(0.165, 0.19, -0.375, 0.040, 0.043, 0.048),
                         at(0.165, 0.14, -0.395, 0.034, 0.037, 0.036), at(0.165, 0.095, -0.420, 0.045, 0.050, 0.046),
                         at(0.165, 0.080, -0.425, 0.030, 0.030, 0.030)},
                        options, bones);
        const int rigid[] = {bone("hoof_fore")};
        hoof.closedLoft({ring(0.165, 0.105, -0.415, 0.030), ring(0.165, 0.100, -0.416, 0.048),
                         ring(0.165, 0.050, -0.432, 0.057), ring(0.165, 0.004, -0.445, 0.065),
                         ring(0.165, 0.000, -0.445, 0.058), ring(0.165, 0.000, -0.445, 0.002)},
                        options, rigid);
        return;
    }
    const int bones[] = {beastRig().find("pelvis"), bone("thigh"), bone("gaskin"), bone("cannon_hind"),
                         bone("pastern_hind")};
    coat.closedLoft({at(0.120, 1.36, 0.560, 0.090, 0.150, 0.120), at(0.145, 1.22, 0.560, 0.130, 0.225, 0.205),
                     at(0.165, 1.06, 0.540, 0.120, 0.205, 0.215), at(0.176, 0.92, 0.520, 0.092, 0.135, 0.165),
                     at(0.174, 0.78, 0.590, 0.066, 0.085, 0.100), at(0.169, 0.67, 0.680, 0.050, 0.058, 0.072),
                     at(0.166, 0.58, 0.745, 0.046, 0.054, 0.060), at(0.165, 0.50, 0.750, 0.042, 0.048, 0.046),
                     at(0.165, 0.37, 0.728, 0.034, 0.040, 0.042), at(0.165, 0.25, 0.705, 0.037, 0.041, 0.047),
                     at(0.165, 0.19, 0.700, 0.041, 0.044, 0.049), at(0.165, 0.14, 0.675, 0.035, 0.038, 0.037),
                     at(0.165, 0.095, 0.650, 0.046, 0.050, 0.046), at(0.165, 0.080, 0.645, 0.030, 0.030, 0.030)},
                    options, bones);
    const int rigid[] = {bone("hoof_hind")};
    hoof.closedLoft({ring(0.165, 0.105, 0.655, 0.030), ring(0.165, 0.100, 0.654, 0.048),
                     ring(0.165, 0.050, 0.638, 0.056), ring(0.165, 0.004, 0.625, 0.063),
                     ring(0.165, 0.000, 0.625, 0.056), ring(0.165, 0.000, 0.625, 0.002)},
                    options, rigid);
}

void addSaddle(mesh_builder& cloth, mesh_builder& leather, mesh_builder& steel)
{
    const auto back = beastBonesNamed({"spine_0", "spine_1", "spine_2"});
    const auto seat = beastBonesNamed({"spine_1"});
    loft_options blanket = acrossTheBody(28, 3);
    blanket.from_turn = -0.27;
    blanket.to_turn = 0.27;
    blanket.u1 = 2;
    std::vector<section> rows;
    for (const double z : {0.40, 0.25, 0.10, -0.05, -0.20, -0.33})
        rows.push_back(barrelAt(z, 0.016));
    const vec3 up{0, 1, 0};
    cloth.shell(loft(rows, blanket, cloth.density()), 0.010, back, &up);

    loft_options tree = acrossTheBody(20, 4);
    tree.from_turn = -0.16;
    tree.to_turn = 0.16;
    rows.clear();
    const struct
    {
        double z, rise;
    } profile[] = {{0.30, 0.020},  {0.265, 0.115}, {0.19, 0.060}, {0.05, 0.035},
                   {-0.10, 0.045}, {-0.19, 0.120}, {-0.22, 0.030}};
    for (const auto& [z, rise] : profile)
    {
        section row = barrelAt(z, 0.024);
        row.back += rise; // pommel and cantle
        rows.push_back(row);
    }
    leather.shell(loft(rows, tree, leather.density()), 0.022, seat, &up);

    // The girth, two flaps, the stirrups on their leathers.
    std::vector<section> girth = {barrelAt(-0.06, 0.009), barrelAt(-0.065, 0.016), barrelAt(-0.135, 0.016),
                                  barrelAt(-0.14, 0.009)};
    loft_options strap = acrossTheBody(36, 1);
    strap.u1 = 6;
    leather.outward(loft(girth, strap, leather.density()), beastBonesNamed({"spine_1", "spine_2"}));
    for (const double sign : {1.0, -1.0})
    {
        loft_options hanging;
        hanging.around = 8;
        hanging.along = 3;
        hanging.back_hint = {0, 0, 1};
        hanging.v1 = 2;
        leather.closedLoft({{mirrored({0.260, 1.34, -0.02}, sign), 0.004, 0.016, 0.016, 0.7},
                            {mirrored({0.312, 1.20, -0.03}, sign), 0.004, 0.016, 0.016, 0.7},
                            {mirrored({0.330, 0.98, -0.04}, sign), 0.004, 0.016, 0.016, 0.7}},
                           hanging, seat);
        hanging.v1 = 0.07;
        std::vector<section> iron;
        for (int i = 0; i <= 10; ++i)
        {
            const double turn = i / 10.0;
            iron.push_back(disc(mirrored({0.330, 0.905, -0.04}, sign) +
                                    vec3{sign * 0.062 * sineOfTurns(turn), 0.075 * cosineOfTurns(turn), 0},
                                0.008));
        }
        steel.outward(loft(iron, hanging, steel.density()), seat);
    }
}

void addBridle(mesh_builder& leather, mesh_builder& steel)
{
    const auto head = beastBonesNamed({"head"});
    loft_options strap;
    strap.around = 24;
    strap.along = 1;
    strap.back_hint = {0, 0.72, -0.70};
    strap.u1 = 3;
    const vec3 along = normalised({0, -0.72, -0.69});
    const auto band = [&](vec3 centre, double half_width, double front, double back) {
        std::vector<section> ring;
        for (const auto& [way, wider] :
             {vec2{-0.015, 0.001}, vec2{-0.014, 0.007}, vec2{0.014, 0.007}, vec2{0.015, 0.001}})
            ring.push_back({centre + along * way, half_width + wider, front + wider, back + wider});
        leather.outward(loft(ring, strap, leather.density()), head);
    };
    band({0, 1.715, -1.130}, 0.066, 0.082, 0.058); // over the nose
    band({0, 1.940, -0.940}, 0.086, 0.118, 0.078); // behind the ears
    loft_options thin;
    thin.around = 8;
    thin.along = 4;
    thin.back_hint = {0, 1, 0};
    thin.v1 = 4;
    for (const double sign : {1.0, -1.0})
    {
        leather.closedLoft({disc(mirrored({0.094, 1.930, -0.950}, sign), 0.007),
                            disc(mirrored({0.098, 1.820, -1.045}, sign), 0.007),
                            disc(mirrored({0.073, 1.700, -1.140}, sign), 0.007)},
                           thin, head); // along the cheek
        addBall(steel, mirrored({0.070, 1.660, -1.170}, sign), {0.012, 0.026, 0.026}, head, 12);
        leather.closedLoft(
            {disc(mirrored({0.074, 1.655, -1.165}, sign), 0.006), disc(mirrored({0.130, 1.540, -0.960}, sign), 0.006),
             disc(mirrored({0.165, 1.490, -0.700}, sign), 0.006), disc(mirrored({0.130, 1.560, -0.420}, sign), 0.006),
             disc(mirrored({0.030, 1.640, -0.215}, sign), 0.006)},
            thin, beastBonesNamed({"spine_2", "neck_0", "neck_1", "neck_2", "head"})); // a rein
    }
}

} // namespace

std::vector<figure_part> buildHorse(double density)
{
    mesh_builder coat(density, beastBones()), hair(density, beastBones()), hooves(density, beastBones()),
        cloth(density, beastBones()), leather(density, beastBones()), steel(density, beastBones());
    addTrunk(coat);
    addNeckAndHead(coat, hair);
    addHair(hair);
    for (const double sign : {1.0, -1.0})
        for (const bool is_fore : {true, false})
            addLeg(coat, hooves, sign, is_fore);
    addSaddle(cloth, leather, steel);
    addBridle(leather, steel);
    std::vector<figure_part> parts;
    parts.push_back({"coat", "beast_coat", coat.take()});
    parts.push_back({"mane_and_tail", "beast_hair", hair.take()});
    parts.push_back({"hooves", "beast_hair", hooves.take()});
    parts.push_back({"saddle_blanket", "guard_cape", cloth.take()});
    parts.push_back({"saddle_and_bridle", "guard_leather", leather.take()});
    parts.push_back({"stirrups_and_bit", "guard_steel", steel.take()});
    return parts;
}

vec3 saddlePlace()
{
    return {0, 0.60, 0.06};
}

} // namespace korvane::demo
