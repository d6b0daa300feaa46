#include "tools/demo_data/figure.h"

#include "tools/demo_data/figure_parts.h"

namespace korvane::demo
{

namespace
{

struct shield_frame // the shield's plane: it hangs before the left forearm
{
    vec3 centre, out, up, right;
};

shield_frame shieldFrame()
{
    const vec3 wrist = leftSide().at("hand"), elbow = leftSide().at("lowerarm");
    const vec3 out = normalised({0.79, 0.05, -0.61});
    const vec3 up = normalised(vec3{0, 1, 0} - out * out.y);
    return {mix(elbow, wrist, 0.58) + out * 0.088, out, up, cross(up, out)};
}

// A turned piece around the shield's axis; sections are (radius, height over the plane).
std::vector<section> turned(const shield_frame& frame, std::initializer_list<vec2> profile)
{
    std::vector<section> sections;
    for (const vec2 point : profile)
        sections.push_back(disc(frame.centre + frame.out * point.y, point.x));
    return sections;
}

// The picture lies flat on the disc.
void mapFlat(grid& surface, const shield_frame& frame, double radius)
{
    for (std::size_t i = 0; i < surface.points.size(); ++i)
    {
        const vec3 arm = surface.points[i] - frame.centre;
        surface.uvs[i] = {0.5 - 0.5 * dot(arm, frame.right) / radius, 0.5 - 0.5 * dot(arm, frame.up) / radius};
    }
}

} // namespace

const body_side& leftSide()
{
    static const body_side side{1, "_l"};
    return side;
}

const body_side& rightSide()
{
    static const body_side side{-1, "_r"};
    return side;
}

std::vector<int> bonesNamed(std::initializer_list<const char*> names)
{
    std::vector<int> bones;
    for (const char* name : names)
        bones.push_back(boneIndex(name));
    return bones;
}

section disc(vec3 centre, double radius)
{
    return {centre, radius, radius, radius};
}

void addBall(mesh_builder& out, vec3 centre, vec3 radii, bone_choice bones, int around)
{
    std::vector<section> sections;
    constexpr int rings = 6;
    for (int i = 0; i <= rings; ++i)
    {
        const double turn = 0.5 * i / rings;
        const double s = i == 0 || i == rings ? 0 : sineOfTurns(turn);
        sections.push_back({centre + vec3{0, radii.y * cosineOfTurns(turn), 0}, radii.x * s, radii.z * s, radii.z * s});
    }
    loft_options options;
    options.around = around;
    options.along = 1;
    options.axis = {0, 1, 0};
    out.outward(loft(sections, options, out.density()), bones);
}

void addShield(mesh_builder& front, mesh_builder& wood, mesh_builder& steel, mesh_builder& leather)
{
    const shield_frame frame = shieldFrame();
    const auto bones = bonesNamed({"lowerarm_l"});
    constexpr double radius = 0.335;
    loft_options options;
    options.around = 44;
    options.along = 3;
    options.back_hint = frame.up;
    options.axis = frame.out;
    const auto face = turned(frame, {{radius, 0}, {0.30, 0.021}, {0.20, 0.045}, {0.09, 0.060}, {0, 0.064}});
    grid surface = loft(face, options, front.density());
    mapFlat(surface, frame, radius);
    front.facing(surface, frame.out, bones);
    const auto inside = turned(frame, {{radius, -0.008}, {0.30, 0.010}, {0.20, 0.034}, {0.09, 0.049}, {0, 0.053}});
    surface = loft(inside, options, wood.density());
    mapFlat(surface, frame, radius);
    wood.facing(surface, frame.out * -1, bones);

    options.u1 = 12;
    options.v1 = 0.07; // the trim of the steel texture
    const auto rim = turned(frame, {{radius - 0.018, 0.012},
                                    {radius - 0.006, 0.014},
                                    {radius + 0.008, 0.006},
                                    {radius + 0.008, -0.008},
                                    {radius - 0.006, -0.014},
                                    {radius - 0.018, -0.006}});
    options.along = 1;
    steel.outward(loft(rim, options, steel.density()), bones);
    options.u1 = 2;
    options.v0 = 1;
    options.v1 = 0.2;
    options.along = 2;
    const auto boss =
        turned(frame, {{0.098, 0.056}, {0.092, 0.064}, {0.074, 0.066}, {0.066, 0.085}, {0.040, 0.105}, {0, 0.114}});
    grid bowl = loft(boss, options, steel.density());
    steel.facing(bowl, frame.out, bones);

    // A strap around the forearm and a grip for the hand.
    const vec3 along = normalised(leftSide().at("hand") - leftSide().at("lowerarm"));
    const vec3 knuckles = mix(leftSide().at("middle_0"), leftSide().at("ring_0"), 0.5);
    loft_options strap;
    strap.around = 8;
    strap.along = 3;
    strap.back_hint = along;
    strap.v1 = 2;
    const vec3 arm = mix(leftSide().at("lowerarm"), leftSide().at("hand"), 0.4);
    std::vector<section> loop;
    for (int i = 0; i <= 6; ++i)
    {
        const double turn = mix(-0.30, 0.30, i / 6.0);
        loop.push_back(
            {arm + frame.out * (0.010 - 0.062 * cosineOfTurns(turn)) + frame.up * (0.058 * sineOfTurns(turn)), 0.0035,
             0.018, 0.018, 0.7});
    }
    leather.closedLoft(loop, strap, bones);
    const vec3 grip = knuckles + normalised(frame.out * -0.98) * 0.022;
    strap.back_hint = frame.out;
    leather.closedLoft({disc(grip + frame.up * 0.075 + frame.out * 0.05, 0.010), disc(grip + frame.up * 0.055, 0.011),
                        disc(grip - frame.up * 0.055, 0.011), disc(grip - frame.up * 0.075 + frame.out * 0.05, 0.010)},
                       strap, bones);
}

weapon_grip handGrip()
{
    const body_side& side = rightSide();
    const vec3 up = normalised(side.at("index_0") - side.at("pinky_0"));
    const vec3 knuckles = mix(side.at("middle_0"), side.at("ring_0"), 0.5);
    const vec3 forward = normalised(knuckles - side.at("hand"));
    const vec3 edge = normalised(forward - up * dot(forward, up)); // the edges look forward and back
    return {humanoidBones()[static_cast<std::size_t>(boneIndex("be_prop_0"))].position - edge * 0.002, up, edge,
            bonesNamed({"be_prop_0"})};
}

weapon_grip ownGrip()
{
    return {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0}};
}

void addSword(const weapon_grip& grip, mesh_builder& blade, mesh_builder& leather, mesh_builder& steel)
{
    const vec3 up = grip.up, edge = grip.edge, hold = grip.hold;
    const std::vector<int>& bones = grip.bones;
    const vec3 flat = cross(edge, up);

    loft_options options;
    options.around = 16;
    options.along = 3;
    options.back_hint = edge;
    options.v0 = 1;
    options.v1 = 0;
    const auto piece = [&](double height, double half_flat, double half_edge, double square = 0) {
        return section{hold + up * height, half_flat, half_edge, half_edge, square};
    };
    blade.closedLoft({piece(0.068, 0.0052, 0.026), piece(0.18, 0.0050, 0.0255), piece(0.36, 0.0045, 0.024),
                      piece(0.54, 0.0040, 0.022), piece(0.66, 0.0034, 0.018), piece(0.72, 0.0024, 0.0105),
                      piece(0.748, 0, 0)},
                     options, bones);
    options.v1 = 0.9;
    steel.closedLoft({piece(0.050, 0.012, 0.030, 0.4), piece(0.056, 0.015, 0.072, 0.5), piece(0.066, 0.015, 0.072, 0.5),
                      piece(0.072, 0.011, 0.030, 0.4)},
                     options, bones);
    options.v0 = 0;
    options.v1 = 1;
    leather.closedLoft({piece(-0.062, 0.0120, 0.0135), piece(-0.030, 0.0135, 0.0155), piece(0.010, 0.0125, 0.0145),
                        piece(0.052, 0.0120, 0.0135)},
                       options, bones);
    options.v1 = 0.07;
    const double r = 0.024;
    steel.closedLoft({piece(-0.096, 0, 0), piece(-0.094, r * 0.45, r * 0.45), piece(-0.086, r * 0.85, r * 0.85),
                      piece(-0.074, r, r), piece(-0.064, r * 0.75, r * 0.75), piece(-0.058, r * 0.4, r * 0.4)},
                     options, bones);
    // A small disc on either side of the guard.
    for (const double side_sign : {1.0, -1.0})
        addBall(steel, hold + up * 0.061 + flat * (side_sign * 0.014), {0.008, 0.008, 0.008}, bones, 8);
}

// A turned shaft with eight flanges at its head.
void addMace(const weapon_grip& grip, mesh_builder& wood, mesh_builder& leather, mesh_builder& steel)
{
    const std::vector<int>& bones = grip.bones;
    loft_options options;
    options.around = 14;
    options.along = 3;
    options.back_hint = grip.edge;
    const auto piece = [&](double height, double radius) { return disc(grip.hold + grip.up * height, radius); };
    options.v1 = 3;
    wood.closedLoft({piece(-0.13, 0.0125), piece(0.10, 0.0125), piece(0.42, 0.0115)}, options, bones);
    options.v1 = 1;
    leather.closedLoft({piece(-0.075, 0.0150), piece(0, 0.0165), piece(0.070, 0.0150)}, options, bones);
    options.v1 = 0.07; // the trim of the steel texture
    steel.closedLoft({piece(-0.150, 0), piece(-0.147, 0.012), piece(-0.135, 0.0185), piece(-0.118, 0.015)}, options,
                     bones);
    options.v1 = 0.5;
    steel.closedLoft({piece(0.36, 0.0155), piece(0.38, 0.0195), piece(0.40, 0.018), piece(0.53, 0.018),
                      piece(0.55, 0.021), piece(0.565, 0.013), piece(0.595, 0)},
                     options, bones);
    const vec3 across = cross(grip.up, grip.edge);
    for (int i = 0; i < 8; ++i)
    {
        const double turn = i / 8.0;
        const vec3 out = grip.edge * cosineOfTurns(turn) + across * sineOfTurns(turn);
        const auto flange = [&](double height, double from, double to) {
            return section{grip.hold + grip.up * height + out * ((from + to) / 2), 0.0028, (to - from) / 2,
                           (to - from) / 2, 0.6};
        };
        loft_options thin = options;
        thin.around = 8;
        thin.along = 2;
        thin.back_hint = out;
        thin.axis = grip.up;
        steel.closedLoft({flange(0.402, 0.010, 0.020), flange(0.430, 0.010, 0.045), flange(0.470, 0.010, 0.056),
                          flange(0.510, 0.010, 0.045), flange(0.532, 0.010, 0.020)},
                         thin, bones);
    }
}

void addSpear(mesh_builder& wood, mesh_builder& blade, mesh_builder& leather, mesh_builder& steel)
{
    const body_side& side = rightSide();
    const auto bones = bonesNamed({"be_prop_0"});
    const vec3 up = normalised(side.at("index_0") - side.at("pinky_0"));
    const vec3 hold = humanoidBones()[static_cast<std::size_t>(boneIndex("be_prop_0"))].position;
    loft_options options;
    options.around = 16;
    options.along = 4;
    options.back_hint = normalised(vec3{0, 0, 1} - up * up.z);
    const auto piece = [&](double height, double half_flat, double half_edge) {
        return section{hold + up * height, half_flat, half_edge, half_edge, 0};
    };
    options.v1 = 6;
    wood.closedLoft({piece(-0.90, 0.0125, 0.0125), piece(-0.30, 0.0140, 0.0140), piece(0.30, 0.0135, 0.0135),
                     piece(0.79, 0.0115, 0.0115)},
                    options, bones);
    options.v1 = 1;
    leather.closedLoft({piece(-0.090, 0.0155, 0.0155), piece(0, 0.0165, 0.0165), piece(0.090, 0.0155, 0.0155)}, options,
                       bones);
    options.v0 = 1;
    options.v1 = 0.9;
    steel.closedLoft({piece(0.69, 0.0150, 0.0150), piece(0.71, 0.0175, 0.0175), piece(0.74, 0.0165, 0.0165),
                      piece(0.84, 0.0105, 0.0105)},
                     options, bones);
    steel.closedLoft(
        {piece(-0.985, 0, 0), piece(-0.93, 0.0110, 0.0110), piece(-0.88, 0.0155, 0.0155), piece(-0.85, 0.0145, 0.0145)},
        options, bones);
    options.v1 = 0;
    blade.closedLoft({piece(0.815, 0.0095, 0.0115), piece(0.845, 0.0090, 0.031), piece(0.885, 0.0084, 0.039),
                      piece(0.95, 0.0072, 0.032), piece(1.02, 0.0056, 0.019), piece(1.085, 0, 0)},
                     options, bones);
}

namespace
{

// What the guard's pieces are added to: a mesh for each of the groups.
struct guard_meshes
{
    explicit guard_meshes(double density)
        : head(density)
        , skin(density)
        , helmet(density)
        , plume(density)
        , cuirass(density)
        , plates(density)
        , tunic(density)
        , leather(density)
        , trousers(density)
        , scarf(density)
        , cape(density)
        , shield(density)
        , wood(density)
        , blade(density)
        , fittings(density)
        , grips(density)
    {
    }

    void add(guard_piece piece)
    {
        switch (piece)
        {
        case guard_piece::head:
            addHead(head);
            return addHelmet(helmet, plume);
        case guard_piece::body:
            return addBody();
        case guard_piece::cape:
            return addCape(cape, fittings);
        case guard_piece::shield:
            return addShield(shield, wood, fittings, grips);
        case guard_piece::sword:
            return addSword(handGrip(), blade, grips, fittings);
        case guard_piece::spear:
            return addSpear(wood, blade, grips, fittings);
        case guard_piece::loose_sword:
            return addSword(ownGrip(), blade, grips, fittings);
        case guard_piece::loose_mace:
            return addMace(ownGrip(), wood, grips, fittings);
        }
    }

    void addBody()
    {
        addCuirass(cuirass);
        addSkirt(tunic, leather);
        addBelt(leather, fittings);
        addScarf(scarf);
        for (const body_side& side : {leftSide(), rightSide()})
        {
            addArm(side, skin, tunic, leather);
            addHand(side, skin);
            addPauldron(side, plates);
            addLeg(side, trousers, leather, plates);
        }
    }

    // Those that hold something.
    std::vector<figure_part> parts(const char* wood_name, const char* blade_name)
    {
        std::vector<figure_part> result;
        const auto take = [&](const char* name, const char* texture, mesh_builder& from) {
            if (mesh shape = from.take(); !shape.indices.empty())
                result.push_back({name, texture, std::move(shape)});
        };
        take("head", "guard_head", head);
        take("arms", "guard_skin", skin);
        take("helmet", "guard_steel", helmet);
        take("crest", "guard_plume", plume);
        take("cuirass", "guard_steel", cuirass);
        take("pauldrons_and_greaves", "guard_steel", plates);
        take("tunic", "guard_tunic", tunic);
        take("belt_straps_boots", "guard_leather", leather);
        take("trousers", "guard_wool", trousers);
        take("scarf", "guard_wool", scarf);
        take("cape", "guard_cape", cape);
        take("shield", "guard_shield", shield);
        take(wood_name, "demo_wood", wood);
        take(blade_name, "guard_blade", blade);
        take("fittings", "guard_steel", fittings);
        take("grips", "guard_leather", grips);
        return result;
    }

    mesh_builder head, skin, helmet, plume, cuirass, plates, tunic, leather, trousers, scarf, cape, shield, wood, blade,
        fittings, grips;
};

} // namespace

std::vector<figure_part> buildGuard(double density)
{
    guard_meshes meshes(density);
    for (const guard_piece piece :
         {guard_piece::head, guard_piece::body, guard_piece::cape, guard_piece::shield, guard_piece::sword})
        meshes.add(piece);
    return meshes.parts("shield_back", "sword_blade");
}

std::vector<figure_part> buildGuardPiece(guard_piece piece, double density)
{
    guard_meshes meshes(density);
    meshes.add(piece);
    if (piece == guard_piece::spear)
        return meshes.parts("spear_shaft", "spear_head");
    return meshes.parts(piece == guard_piece::loose_mace ? "mace_shaft" : "shield_back", "sword_blade");
}

} // namespace korvane::demo
