#include "tools/demo_data/clips.h"
#include "tools/demo_data/figure_motion.h"
#include "tools/demo_data/gait.h"

#include <vector>

namespace korvane::demo
{

namespace
{

struct roll_key // of the foot over a cycle
{
    double cycle, heel;
};

struct gait
{
    double seconds = 1; // of a cycle of two steps
    step_shape step;
    double heading = 0;  // where the figure travels, degrees to the left of where it looks
    double strike = 16;  // the toes are up as the heel meets the ground
    double push = 40;    // the heel is up as the foot leaves the ground
    double kick = 30;    // and in the first half of the swing
    double drop = 0.045; // of the hips, on average
    double bob = 0.017;  // up and down, twice a cycle; below zero: down in the middle of a step, as in running
    double sway = 0.022; // over the foot that stands
    double twist = 7;    // of the hips, the chest goes against it
    double lean = 2;     // forward
    double arms = 0.10;  // swing of the hands, forward and back
    double bend = 0;     // raises the hands, as the elbows bend
    double cape = 7;     // lifts the cape
    double guard = 0;    // 1: shield and sword ready
    double behind = 0;   // metres that the feet stay behind the body
    double width = 0;    // metres between the feet, more than in the rest pose
};

// The foot's roll over the cycle, smooth.
double heelAt(const gait& how, double cycle)
{
    const double duty = how.step.duty, air = 1 - duty;
    motion_keys<std::array<double, 1>> keys;
    const auto none = [](auto&) {};
    keys.at(0, {-how.strike}, none)
        .at(duty * 0.18, {0}, none)
        .at(duty * 0.58, {0}, none)
        .at(duty, {how.push}, none)
        .at(duty + air * 0.30, {how.kick}, none)
        .at(duty + air * 0.75, {-how.strike * 0.7}, none)
        .repeating(1);
    return keys.sample(cycle)[0];
}

void setFoot(foot_controls& foot, const gait& how, double cycle, double side)
{
    const step now = stepAt(how.step, cycle);
    foot.heel = heelAt(how, fraction(cycle));
    const vec3 way = rotated(turnOf({0, how.heading, 0}), {0, 0, -1});
    foot.place = way * (now.ahead - how.behind) + vec3{side * how.width / 2, now.height, 0};
    if (now.swing >= 0) // in the air the toes hang
        foot.flat = 1 - 0.7 * sineOfTurns(now.swing / 2);
}

figure_controls gaitAt(const gait& how, double seconds)
{
    const double cycle = seconds / how.seconds;
    const auto wave = [cycle](double times, double late) { return cosineOfTurns(times * (cycle - late)); };
    figure_controls c;
    setFoot(c.left_foot, how, cycle, 1);
    setFoot(c.right_foot, how, cycle + 0.5, -1);
    const double middle = how.step.duty / 2; // the left foot is below the hips
    const double ahead = cosineOfTurns(how.heading / 360);
    c.hips = {how.sway * wave(1, middle), -how.drop + how.bob * wave(2, middle), 0};
    const double twist = how.twist * ahead * wave(1, 0.03);
    c.hips_turn = {how.lean * 0.4, -twist, -3.0 * wave(1, middle)};
    c.chest = {how.lean * 0.6 + how.guard * 4 + 0.8 * wave(2, middle + 0.05), twist * 1.9, 4.0 * wave(1, middle)};
    c.head = {-how.lean * 0.8 - how.guard * 3, -twist * 0.9, -1.0 * wave(1, middle)};
    const double swing = how.arms * ahead * wave(1, 0.05);
    const auto arm = [&](arm_controls& hand, double forward, double side) {
        hand.hand = {side * -0.12 * forward, how.bend + 0.25 * how.arms + 0.35 * forward * forward / 0.1 * how.arms,
                     -forward};
        hand.turn = {forward * -60, 0, 0};
        hand.shrug = 1.0 + 1.0 * wave(2, middle);
    };
    arm(c.left_arm, -swing * 0.8, 1);
    arm(c.right_arm, swing, -1);
    c.left_arm.hand = c.left_arm.hand + vec3{-0.03, 0.09, -0.10} * how.guard;
    c.right_arm.hand = c.right_arm.hand + vec3{-0.03, 0.10, 0.05} * how.guard;
    c.right_arm.turn.x += 18 * how.guard;
    c.knees_out = how.guard * 0.2;
    for (std::size_t i = 0; i < c.cape_lift.size(); ++i) // a wave that runs down
    {
        const double late = middle + 0.09 * static_cast<double>(i);
        c.cape_lift[i] = how.cape * (i == 0 ? 0.35 : 0.24) + how.cape * 0.14 * wave(2, late + 0.1);
        c.cape_sway[i] = -2.2 * wave(1, late);
    }
    return c;
}

clip clipOf(std::string_view name, std::string_view about, double frame_rate, int intervals, const gait& how)
{
    return {name,      about, frame_rate,
            intervals, true,  [how](double seconds) {
                return figurePose(gaitAt(how, seconds)); }};
}

std::vector<clip> walks()
{
    gait walk;
    walk.seconds = 1.1;
    walk.step = {1.16, 0.60, 0.075};
    gait slow = walk;
    slow.seconds = 1.6;
    slow.step = {0.84, 0.66, 0.045};
    slow.push = 30;
    slow.drop = 0.03;
    slow.bob = 0.011;
    slow.sway = 0.030;
    slow.arms = 0.06;
    slow.lean = 5;
    gait march = walk;
    march.seconds = 1.0;
    march.step = {1.1, 0.58, 0.16};
    march.lean = -1;
    march.arms = 0.15;
    march.sway = 0.014;
    march.cape = 5;
    gait back = walk;
    back.heading = 180;
    back.step = {0.80, 0.62, 0.07};
    back.strike = -14; // the ball of the foot comes first
    back.push = 6;
    back.kick = 20;
    back.guard = 1;
    back.drop = 0.06;
    back.cape = 2;
    gait left = back;
    left.heading = 90;
    left.step = {0.46, 0.60, 0.08};
    left.seconds = 0.9;
    left.strike = 2;
    left.width = 0.22; // the feet never cross
    left.cape = 4;
    gait right = left;
    right.heading = -90;
    gait sneak = slow;
    sneak.drop = 0.15;
    sneak.lean = 22;
    sneak.guard = 0.8;
    sneak.step = {0.90, 0.64, 0.12};
    sneak.strike = 4;
    sneak.push = 28;
    return {
        clipOf("walk/hu1_walk_forward", "a brisk walk on the spot", 30, 33, walk),
        clipOf("walk/hu1_walk_forward_slow", "a tired walk", 20, 32, slow),
        clipOf("walk/hu1_march", "marching with high knees", 30, 30, march),
        clipOf("walk/hu1_walk_backward", "steps back behind the shield", 30, 33, back),
        clipOf("walk/hu1_walk_left", "steps to the left", 30, 27, left),
        clipOf("walk/hu1_walk_right", "steps to the right", 30, 27, right),
        clipOf("walk/hu1_sneak", "creeps along, bent low", 20, 32, sneak),
    };
}

std::vector<clip> runs()
{
    gait run;
    run.seconds = 0.7;
    run.step = {2.10, 0.36, 0.17};
    run.strike = 2;
    run.push = 48;
    run.kick = 80;
    run.drop = 0.055;
    run.bob = -0.028;
    run.sway = 0.012;
    run.twist = 10;
    run.lean = 12;
    run.arms = 0.17;
    run.bend = 0.07;
    run.cape = 30;
    run.behind = 0.07;
    gait charge = run;
    charge.seconds = 0.6;
    charge.step = {2.25, 0.33, 0.18};
    charge.lean = 18;
    charge.guard = 1;
    charge.arms = 0.12;
    charge.cape = 38;
    gait jog = run;
    jog.seconds = 0.8;
    jog.step = {1.70, 0.42, 0.12};
    jog.kick = 60;
    jog.lean = 8;
    jog.arms = 0.13;
    jog.cape = 20;
    clip charging = clipOf("run/hu1_charge", "a charge, shield ahead and sword raised", 30, 18, charge);
    charging.motion = [charge](double seconds) {
        figure_controls c = gaitAt(charge, seconds);
        c.right_arm.hand = c.right_arm.hand + vec3{0.02, 0.42, 0.24};
        c.right_arm.turn = {-20, 0, 0};
        c.right_arm.elbow = {-0.6, 0, 0.3};
        c.jaw = 14;
        return figurePose(c);
    };
    return {
        clipOf("run/hu1_run_forward", "a run on the spot", 30, 21, run),
        clipOf("run/hu1_jog", "an easy run", 20, 16, jog),
        charging,
    };
}

// Turns on the spot: one foot after the other is lifted and set down beside the figure's new facing.
motion_keys<figure_controls> turning(double degrees, int steps, double seconds)
{
    motion_keys<figure_controls> keys;
    const figure_controls start = standing();
    const bool left_first = degrees > 0;
    keys.at(0, start);
    figure_controls now = start;
    for (int i = 0; i < steps; ++i)
    {
        const double before = degrees * i / steps, after = degrees * (i + 1) / steps;
        for (const bool first : {true, false})
        {
            const bool is_left = first == left_first;
            foot_controls& moving = is_left ? now.left_foot : now.right_foot;
            const double begin = seconds * (i + (first ? 0.06 : 0.54)) / steps;
            const double lifted = seconds * (i + (first ? 0.26 : 0.74)) / steps;
            const double side = is_left ? -0.035 : 0.035; // the weight goes to the other foot
            now.hips = {side, -0.032, 0};
            now.hips_turn.y = (after - before) * (first ? 0.10 : -0.05);
            now.head.y = (after - before) * (first ? 0.35 : 0.1);
            keys.at(begin, now);
            stand(moving, is_left, first ? mix(before, after, 0.6) : mix(before, after, 0.7), {0, 0.06, 0});
            moving.heel = 12;
            now.facing = mix(before, after, first ? 0.35 : 0.8);
            keys.at(lifted, now);
            stand(moving, is_left, after, {});
            now.facing = mix(before, after, first ? 0.5 : 1.0);
            setCape(now, 3, degrees > 0 ? -9 : 9);
            keys.at(seconds * (i + (first ? 0.46 : 0.94)) / steps, now);
        }
    }
    now.hips = start.hips;
    now.hips_turn = now.head = {};
    setCape(now, 1.5, 0);
    return keys.at(seconds, now);
}

clip turnClip(std::string_view name, std::string_view about, double degrees, int steps, double frame_rate,
              int intervals)
{
    const auto keys = turning(degrees, steps, intervals / frame_rate);
    return {name,      about, frame_rate,
            intervals, false, [keys](double seconds) {
                return figurePose(keys.sample(seconds)); }};
}

std::vector<clip> makeGaitClips()
{
    std::vector<clip> all = walks();
    for (clip& each : runs())
        all.push_back(std::move(each));
    all.push_back(turnClip("turn/hu1_turn_left_90", "a quarter turn to the left", 90, 1, 30, 36));
    all.push_back(turnClip("turn/hu1_turn_right_90", "a quarter turn to the right", -90, 1, 30, 36));
    all.push_back(turnClip("turn/hu1_turn_about", "about face", 180, 2, 24.5, 49));
    return all;
}

} // namespace

std::span<const clip> gaitClips()
{
    static const std::vector<clip> all = makeGaitClips();
    return all;
}

} // namespace korvane::demo
