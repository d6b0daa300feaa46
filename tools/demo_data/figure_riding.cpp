#include "tools/demo_data/clips.h"
#include "tools/demo_data/figure_motion.h"

#include <vector>

namespace korvane::demo
{

namespace
{

using controls = figure_controls;

// In the saddle: the feet in the stirrups, the shield before the body, the sword up. The cape lies on the croup.
controls seated()
{
    controls c;
    c.hips = {0, 0.0, 0.02};
    c.chest = {4, 0, 0};
    c.head = {-2, 0, 0};
    for (const bool is_left : {true, false})
    {
        foot_controls& foot = is_left ? c.left_foot : c.right_foot;
        foot.place = {(is_left ? 1 : -1) * 0.205, 0.235, -0.135};
        foot.heel = -8;
        foot.yaw = is_left ? 12 : -12;
    }
    c.knees_out = 1.2;
    c.left_arm.hand = {-0.02, 0.02, -0.06};
    c.right_arm.hand = {-0.04, 0.06, 0.02};
    setCape(c, 62, 0);
    return c;
}

// One cycle of the horse under the rider.
struct seat_motion
{
    double seconds;
    double bob, bobs;    // of the body, metres and times a cycle
    double lean, rock;   // forward, and how far it swings
    double late;         // of the cycle, after the horse
    double sword = 0.01; // how far the hand with the sword swings
};

controls rideAt(const seat_motion& how, double seconds)
{
    const double cycle = seconds / how.seconds;
    const auto wave = [cycle, &how](double times, double late) {
        return cosineOfTurns(times * (cycle - how.late - late));
    };
    controls c = seated();
    c.hips.y += how.bob * wave(how.bobs, 0);
    c.hips_turn.x = how.rock * 0.5 * wave(how.bobs, 0.1);
    c.hips_turn.z = 1.5 * wave(1, 0);
    c.chest.x += how.lean + how.rock * wave(how.bobs, 0.15);
    c.chest.z = -1.5 * wave(1, 0.05);
    c.head.x -= how.lean * 0.8 + how.rock * 0.7 * wave(how.bobs, 0.2);
    for (foot_controls* foot : {&c.left_foot, &c.right_foot})
    {
        foot->place.z += 0.012 * wave(how.bobs, 0.25);
        foot->heel -= 4 * wave(how.bobs, 0.1);
    }
    c.left_arm.hand.y += 0.6 * how.sword * wave(how.bobs, 0.2);
    c.right_arm.hand.y += how.sword * wave(how.bobs, 0.25);
    c.right_arm.turn.x = 3 * how.rock * 0.3 * wave(how.bobs, 0.3);
    for (double& lift : c.cape_lift)
        lift += how.bob * 90 * wave(how.bobs, 0.35);
    return c;
}

clip rideClip(std::string_view name, std::string_view about, double frame_rate, int intervals, const seat_motion& how)
{
    return {name,      about, frame_rate,
            intervals, true,  [how](double seconds) {
                return figurePose(rideAt(how, seconds)); }};
}

} // namespace

std::span<const clip> rideClips()
{
    static const std::vector<clip> clips = {
        rideClip("ride/hu1_ride_idle", "sits on the standing horse", 20, 80, {4, 0.003, 1, 0, 0.8, 0, 0.006}),
        rideClip("ride/hu1_ride_walk", "rides at a walk", 30, 36, {1.2, 0.010, 2, 0, 2, 0.1, 0.010}),
        rideClip("ride/hu1_ride_gallop", "rides at a gallop", 30, 15, {0.5, 0.035, 1, 14, 6, 0.15, 0.030}),
    };
    return clips;
}

} // namespace korvane::demo
