#include "tools/demo_data/figure_parts.h"

namespace korvane::demo
{

namespace
{

// Oval sections along a chain of points, each with its own radius.
std::vector<section> tube(std::initializer_list<std::pair<vec3, double>> rings)
{
    std::vector<section> sections;
    for (const auto& [centre, radius] : rings)
        sections.push_back(disc(centre, radius));
    return sections;
}

} // namespace

void addArm(const body_side& side, mesh_builder& skin, mesh_builder& cloth, mesh_builder& leather)
{
    const vec3 shoulder = side.at("upperarm"), elbow = side.at("lowerarm"), wrist = side.at("hand");
    const vec3 inside = shoulder + vec3{side.sign * -0.038, 0.032, 0};
    const int bones[] = {side.bone("clav"), side.bone("upperarm"), side.bone("lowerarm"), side.bone("hand")};
    loft_options options;
    options.around = 18;
    options.along = 4;
    options.back_hint = {0, 0.3, 1};
    options.v1 = 2;
    const vec3 crook = mix(elbow, mix(shoulder, wrist, 0.5), 0.10);
    skin.closedLoft(tube({{mix(shoulder, elbow, 0.12), 0.056},
                          {mix(shoulder, elbow, 0.42), 0.052},
                          {mix(shoulder, elbow, 0.74), 0.042},
                          {crook, 0.038},
                          {mix(elbow, wrist, 0.28), 0.041},
                          {mix(elbow, wrist, 0.70), 0.033},
                          {mix(elbow, wrist, 1.06), 0.027}}),
                    options, bones);

    const int upper[] = {side.bone("clav"), side.bone("upperarm"), side.bone("lowerarm")};
    options.around = 26;
    options.v1 = 1;
    options.u1 = 2;
    options.shape = [](vec3 point, vec3 outward, double turn, double along) {
        return point + outward * (0.005 * along * sineOfTurns(turn * 7));
    };
    const auto sleeve = tube({{inside + vec3{side.sign * -0.022, 0.012, 0}, 0},
                              {inside + vec3{side.sign * -0.014, 0.008, 0}, 0.044},
                              {mix(shoulder, inside, 0.6), 0.062},
                              {mix(shoulder, elbow, 0.18), 0.068},
                              {mix(shoulder, elbow, 0.52), 0.068},
                              {mix(shoulder, elbow, 0.76), 0.073}});
    cloth.shell(loft(sleeve, options, cloth.density()), 0.004, upper);

    options.shape = nullptr;
    options.around = 18;
    options.along = 2;
    options.u1 = 1;
    const auto bracer = tube({{mix(elbow, wrist, 0.20), 0.0505},
                              {mix(elbow, wrist, 0.28), 0.048},
                              {mix(elbow, wrist, 0.60), 0.043},
                              {mix(elbow, wrist, 0.88), 0.037},
                              {mix(elbow, wrist, 0.94), 0.039}});
    const int lower[] = {side.bone("lowerarm"), side.bone("hand")};
    leather.shell(loft(bracer, options, leather.density()), 0.004, lower);
}

void addHand(const body_side& side, mesh_builder& skin)
{
    const vec3 wrist = side.at("hand"), knuckles = mix(side.at("middle_0"), side.at("ring_0"), 0.5);
    const vec3 across = normalised(side.at("pinky_0") - side.at("index_0"));
    loft_options options;
    options.around = 14;
    options.along = 2;
    options.back_hint = across;
    options.u1 = 0.5;
    options.v1 = 0.5;
    const int palm[] = {side.bone("lowerarm"), side.bone("hand")};
    skin.closedLoft({{mix(wrist, knuckles, -0.12), 0.022, 0.026, 0.026},
                     {mix(wrist, knuckles, 0.15), 0.021, 0.030, 0.029},
                     {mix(wrist, knuckles, 0.55), 0.019, 0.040, 0.038, 0.2},
                     {mix(wrist, knuckles, 0.95), 0.016, 0.041, 0.040, 0.3},
                     {mix(wrist, knuckles, 1.08), 0.009, 0.037, 0.036, 0.3}},
                    options, palm);
    options.around = 9;
    options.u1 = 0.25;
    options.v1 = 0.4;
    for (const char* name : {"thumb", "index", "middle", "ring", "pinky"})
    {
        const std::string finger = name;
        const int bones[] = {side.bone(finger + "_0"), side.bone(finger + "_1"), side.bone(finger + "_2")};
        const vec3 a = side.at(finger + "_0"), b = side.at(finger + "_1"), c = side.at(finger + "_2");
        const double size = finger == "thumb" ? 0.0125 : finger == "pinky" ? 0.0095 : 0.011;
        const vec3 tip = c + normalised(c - b) * 0.018;
        skin.closedLoft({disc(mix(a, b, -0.3), size), disc(a, size * 1.05), disc(b, size), disc(c, size * 0.9),
                         disc(mix(c, tip, 0.7), size * 0.75), disc(tip, size * 0.2)},
                        options, bones);
    }
}

void addPauldron(const body_side& side, mesh_builder& steel)
{
    const vec3 shoulder = side.at("upperarm"), elbow = side.at("lowerarm");
    const vec3 arm = normalised(elbow - shoulder);
    const vec3 out = normalised(vec3{side.sign * 0.72, 0.69, 0});
    const int rigid[] = {side.bone("upperarm")};
    const int cap_bones[] = {side.bone("clav"), side.bone("upperarm")};

    // The cap: a bowl over the joint, deeper at front and back than across.
    const vec3 base = shoulder + vec3{side.sign * -0.012, -0.012, 0};
    loft_options bowl;
    bowl.around = 28;
    bowl.along = 2;
    bowl.back_hint = {0, 0, 1};
    bowl.u1 = 2;
    bowl.v0 = 1;
    bowl.v1 = 0.1;
    const section cap[] = {{base + out * 0.010, 0.096, 0.096, 0.096}, {base + out * 0.022, 0.094, 0.093, 0.093},
                           {base + out * 0.055, 0.083, 0.080, 0.080}, {base + out * 0.082, 0.058, 0.054, 0.054},
                           {base + out * 0.096, 0.028, 0.026, 0.026}, {base + out * 0.100, 0, 0, 0}};
    steel.shell(loft(cap, bowl, steel.density()), 0.005, cap_bones);

    // Three lames below it, each under the one above.
    loft_options lame;
    lame.around = 18;
    lame.along = 2;
    lame.back_hint = normalised(vec3{side.sign, 0.25, 0.1});
    lame.from_turn = -0.29;
    lame.to_turn = 0.29;
    lame.u1 = 2;
    for (int i = 0; i < 3; ++i)
    {
        const vec3 top = shoulder + arm * (0.030 + 0.040 * i) + vec3{side.sign * 0.004, 0, 0};
        const double radius = 0.089 - 0.004 * i;
        const section band[] = {disc(top, radius - 0.006), disc(top + arm * 0.026, radius),
                                disc(top + arm * 0.050, radius + 0.004)};
        steel.shell(loft(band, lame, steel.density()), 0.004, rigid);
    }
}

void addLeg(const body_side& side, mesh_builder& trousers, mesh_builder& leather, mesh_builder& steel)
{
    const vec3 hip = side.at("upperleg"), knee = side.at("lowerleg"), ankle = side.at("foot");
    const int bones[] = {boneIndex("pelvis"), side.bone("upperleg"), side.bone("lowerleg"), side.bone("foot")};
    loft_options options;
    options.around = 22;
    options.along = 3;
    options.v1 = 3;
    options.shape = [](vec3 point, vec3 outward, double turn, double along) {
        return point + outward * (0.003 * sineOfTurns(turn * 3 + along * 9));
    };
    trousers.closedLoft(tube({{hip + vec3{0, 0.05, 0}, 0.086},
                              {hip, 0.091},
                              {mix(hip, knee, 0.35), 0.082},
                              {mix(hip, knee, 0.8), 0.062},
                              {knee, 0.056},
                              {mix(knee, ankle, 0.3) + vec3{0, 0, 0.012}, 0.058},
                              {mix(knee, ankle, 0.7), 0.044},
                              {ankle, 0.038}}),
                        options, bones);

    // The greave: open at the back, with a knee piece above.
    const int shin[] = {side.bone("lowerleg")};
    loft_options plate;
    plate.around = 22;
    plate.along = 3;
    plate.from_turn = 0.10;
    plate.to_turn = 0.90;
    plate.u1 = 1;
    const section greave[] = {{mix(knee, ankle, 0.07), 0.066, 0.068, 0.066},
                              {mix(knee, ankle, 0.16), 0.066, 0.066, 0.070},
                              {mix(knee, ankle, 0.35) + vec3{0, 0, 0.010}, 0.066, 0.070, 0.068},
                              {mix(knee, ankle, 0.70), 0.052, 0.056, 0.054},
                              {mix(knee, ankle, 0.90), 0.047, 0.052, 0.050},
                              {mix(knee, ankle, 0.97), 0.051, 0.058, 0.052}};
    plate.shape = [](vec3 point, vec3, double turn, double) {
        const double d = (turn - 0.5) / 0.09;
        return point + vec3{0, 0, -0.008 * bump(d * d)}; // the ridge along the shin
    };
    steel.shell(loft(greave, plate, steel.density()), 0.004, shin);
    const int joint[] = {side.bone("upperleg"), side.bone("lowerleg")};
    loft_options bowl;
    bowl.around = 20;
    bowl.along = 2;
    bowl.back_hint = {0, 1, 0};
    bowl.v0 = 1;
    bowl.v1 = 0.1;
    const vec3 cop = knee + vec3{side.sign * 0.004, 0.004, -0.028};
    const section cap[] = {{cop + vec3{0, 0, 0.010}, 0.069, 0.066, 0.070},
                           {cop + vec3{0, 0, -0.012}, 0.058, 0.060, 0.064},
                           {cop + vec3{0, 0, -0.034}, 0.036, 0.036, 0.040},
                           {cop + vec3{0, 0, -0.044}, 0, 0, 0}};
    steel.shell(loft(cap, bowl, steel.density()), 0.004, joint);

    // The boot: a shaft, and a foot from heel to toe.
    const vec3 toe = side.at("toe");
    const int foot_bones[] = {side.bone("lowerleg"), side.bone("foot")};
    loft_options shaft;
    shaft.around = 20;
    shaft.along = 2;
    shaft.v1 = 1;
    const auto boot = tube({{mix(knee, ankle, 0.66), 0.051},
                            {mix(knee, ankle, 0.72), 0.049},
                            {mix(knee, ankle, 0.92), 0.044},
                            {ankle + vec3{0, -0.012, 0.004}, 0.047},
                            {ankle + vec3{0, -0.045, 0.002}, 0.046}});
    leather.shell(loft(boot, shaft, leather.density()), 0.004, foot_bones);
    loft_options sole;
    sole.around = 18;
    sole.along = 3;
    sole.back_hint = {0, 1, 0};
    const vec3 ahead = normalised(vec3{toe.x - ankle.x, 0, toe.z - ankle.z});
    const auto slice = [&](double reach, double height, double half_width, double up) {
        const vec3 centre{ankle.x + ahead.x * reach, height, ankle.z + ahead.z * reach};
        return section{centre, half_width, height, up, 0.55};
    };
    const int toes[] = {side.bone("foot"), side.bone("toe")};
    leather.closedLoft({slice(-0.060, 0.030, 0.016, 0.030), slice(-0.052, 0.036, 0.030, 0.045),
                        slice(-0.020, 0.040, 0.037, 0.058), slice(0.030, 0.040, 0.038, 0.058),
                        slice(0.085, 0.034, 0.044, 0.036), slice(0.140, 0.028, 0.047, 0.022),
                        slice(0.180, 0.022, 0.038, 0.014), slice(0.198, 0.018, 0.018, 0.008)},
                       sole, toes);
}

} // namespace korvane::demo
