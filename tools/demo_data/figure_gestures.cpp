#include "tools/demo_data/clips.h"
#include "tools/demo_data/figure_motion.h"

#include <utility>
#include <vector>

namespace korvane::demo
{

namespace
{

using keys = motion_keys<figure_controls>;
using controls = figure_controls;

// The chest rises and falls; the period is to divide a loop's length.
void breathe(controls& c, double seconds, double period, double depth = 1)
{
    const double in = sineOfTurns(seconds / period);
    c.chest.x += -0.7 * depth * in;
    c.head.x += 0.6 * depth * in;
    c.left_arm.shrug += 1.1 * depth * in;
    c.right_arm.shrug += 1.1 * depth * in;
    c.left_arm.hand.y += 0.004 * depth * in;
    c.right_arm.hand.y += 0.004 * depth * in;
    for (double& lift : c.cape_lift)
        lift += 0.25 * depth * in;
}

clip clipOf(std::string_view name, std::string_view about, double frame_rate, int intervals, bool is_loop, keys motion,
            double breath)
{
    return {name, about, frame_rate, intervals, is_loop, [motion = std::move(motion), breath](double seconds) {
                controls c = motion.sample(seconds);
                breathe(c, seconds, breath);
                return figurePose(c);
            }};
}

// Weight over the left foot (1) or the right one (-1).
void lean(controls& c, double side)
{
    c.hips.x = 0.045 * side;
    c.hips.y = -0.022;
    c.hips_turn.z = -3.5 * side;
    c.chest.z = 4.0 * side;
    c.head.z = -1.5 * side;
    c.cape_sway[0] = -2 * side;
}

keys lookingAround()
{
    const controls rest = standing();
    keys motion;
    motion.at(0, rest)
        .at(0.8, rest,
            [](controls& c) {
                lean(c, 0.6);
                c.head = {-2, 48, 2};
                c.chest.y = 10;
                c.hips_turn.y = 3;
            })
        .at(1.7, rest,
            [](controls& c) {
                lean(c, 0.8);
                c.head = {4, 55, 3};
                c.chest.y = 12;
                c.hips_turn.y = 4;
            })
        .at(2.8, rest,
            [](controls& c) {
                lean(c, -0.7);
                c.head = {-3, -46, -2};
                c.chest.y = -12;
                c.hips_turn.y = -4;
            })
        .at(3.6, rest,
            [](controls& c) {
                lean(c, -0.8);
                c.head = {6, -50, -4};
                c.chest.y = -13;
                c.hips_turn.y = -4;
            })
        .repeating(5);
    return motion;
}

keys shiftingWeight()
{
    const controls rest = standing();
    keys motion;
    motion.at(0, rest)
        .at(1.2, rest,
            [](controls& c) {
                lean(c, 1);
                c.right_arm.hand = {-0.03, -0.10, -0.06}; // the sword's point sinks to the ground
                c.right_arm.turn = {125, 0, 8};
                c.head = {14, -14, 0};
            })
        .at(2.6, rest,
            [](controls& c) {
                lean(c, 1);
                c.right_arm.hand = {-0.03, -0.11, -0.05};
                c.right_arm.turn = {128, 6, 8};
                c.head = {16, -8, 0};
            })
        .at(3.8, rest,
            [](controls& c) {
                lean(c, -1);
                c.head = {-4, 10, 0};
                c.left_arm.shrug = 5;
                c.left_arm.hand = {0, 0.02, 0};
            })
        .repeating(5);
    return motion;
}

keys weighingSword()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.6, ready,
            [](controls& c) {
                c.hips.y -= 0.015;
                c.right_arm.hand = c.right_arm.hand + vec3{0, 0.04, 0};
                c.right_arm.turn = {2, 8, -14};
            })
        .at(1.2, ready,
            [](controls& c) {
                c.hips = c.hips + vec3{-0.02, 0.006, 0.015};
                c.right_arm.turn = {28, 8, 10};
                c.head.y += 4;
            })
        .at(1.7, ready,
            [](controls& c) {
                c.hips.x += 0.02;
                c.left_arm.hand = c.left_arm.hand + vec3{0, 0.03, -0.02};
            })
        .repeating(2.4);
    return motion;
}

// The sword is raised and swung from side to side.
keys waving(int times, double reach)
{
    const controls rest = standing();
    const auto raised = [reach](controls& c, double side) {
        lean(c, 0.7);
        c.right_arm.hand = {0.01 + 0.10 * reach * side, 0.84 - 0.03 * side * side, 0.05};
        c.right_arm.turn = {-14, 0, 30 * reach * side};
        c.right_arm.elbow = {-0.9, 0, 0};
        c.right_arm.shrug = 14;
        c.head = {-8, -6, 0};
        c.chest = {-3, 0, 4};
        c.jaw = 8;
        setCape(c, 3, -2 * side);
    };
    keys motion;
    motion.at(0, rest).at(0.25, rest, [](controls& c) { c.right_arm.hand = {-0.06, 0.16, -0.04}; });
    double time = 0.7;
    for (int i = 0; i < times; ++i, time += 0.6)
        motion.at(time, rest, [&](controls& c) { raised(c, 1); }).at(time + 0.3, rest, [&](controls& c) {
            raised(c, -1);
        });
    motion.at(time + 0.25, rest, [](controls& c) { c.right_arm.hand = {-0.08, 0.20, -0.05}; });
    return motion.at(time + 0.7, rest);
}

keys saluting()
{
    const controls rest = standing();
    const auto before_face = [](controls& c) {
        c.hips.y = -0.004;
        c.chest.x = -3;
        c.head = {-3, 0, 0};
        c.right_arm.hand = {0.33, 0.32, -0.09};
        c.right_arm.turn = {-20, 20, 6};
        c.right_arm.elbow = {-0.3, -0.2, 0};
        c.right_foot.place = {0.03, 0, -0.01};
        c.left_foot.place = {-0.03, 0, 0.01};
    };
    keys motion;
    motion.at(0, rest)
        .at(0.5, rest, before_face)
        .at(1.2, rest, before_face)
        .at(1.65, rest,
            [&](controls& c) {
                before_face(c);
                c.right_arm.hand = {-0.14, -0.05, -0.04}; // swept out and down
                c.right_arm.turn = {112, -25, -8};
                c.right_arm.elbow = {};
                c.head = {9, 0, 0};
                c.chest.x = 5;
            })
        .at(2.0, rest, [&](controls& c) {
            before_face(c);
            c.right_arm.hand = {-0.13, -0.06, -0.03};
            c.right_arm.turn = {114, -25, -8};
            c.right_arm.elbow = {};
            c.head = {10, 0, 0};
            c.chest.x = 5;
        });
    return motion.at(2.5, rest);
}

// The sword goes up with a shout, again and again.
keys cheering()
{
    const controls rest = standing();
    const auto low = [](controls& c) {
        c.hips = {0, -0.06, 0.01};
        c.chest = {6, 0, 0};
        c.right_arm.hand = {-0.02, 0.48, 0.08};
        c.right_arm.turn = {-10, 0, 0};
        c.right_arm.elbow = {-0.6, 0, 0};
        c.left_arm.hand = {0.02, 0.05, -0.05};
        setCape(c, 2, 0);
    };
    const auto high = [](controls& c) {
        c.hips = {0, 0.022, 0};
        c.left_foot.heel = c.right_foot.heel = 14;
        c.chest = {-8, -4, 0};
        c.head = {-16, 0, 0};
        c.jaw = 16;
        c.right_arm.hand = {0.06, 0.90, 0.02};
        c.right_arm.turn = {-4, 0, 4};
        c.right_arm.elbow = {-0.9, 0, 0};
        c.right_arm.shrug = 18;
        c.left_arm.hand = {0.10, 0.22, -0.08};
        c.left_arm.shrug = 8;
        setCape(c, 8, 0);
    };
    keys motion;
    motion.at(0, rest, low).at(0.4, rest, high).at(0.55, rest, high).repeating(1.0);
    return motion;
}

// The flat of the sword beats the shield.
keys drumming()
{
    const controls ready = guarding();
    const auto shield = [](controls& c) {
        c.left_arm.hand = {-0.06, 0.14, -0.06};
        c.left_arm.turn = {0, 6, 0};
    };
    keys motion;
    motion
        .at(0, ready,
            [&](controls& c) {
                shield(c);
                c.right_arm.hand = {0.02, 0.24, 0.02};
                c.right_arm.turn = {10, 10, -10};
                c.head.x = -8;
            })
        .at(0.3, ready,
            [&](controls& c) {
                shield(c);
                c.hips.y -= 0.02;
                c.chest.y += 8;
                c.right_arm.hand = {0.20, 0.16, -0.20};
                c.right_arm.turn = {38, 20, 46};
                c.head = {-10, 8, 0};
                c.jaw = 14;
            })
        .repeating(0.6);
    return motion;
}

keys pointing()
{
    const controls rest = standing();
    const auto stretched = [](controls& c, double shake) {
        c.hips = {0.02, -0.03, -0.04};
        c.hips_turn.y = 8;
        c.chest = {6, 14, 0};
        c.head = {-4 + shake, -16, 0};
        c.left_foot.place = {0, 0, 0.02};
        c.right_foot.place = {0, 0, -0.20};
        c.right_arm.hand = {0.12, 0.34 + 0.01 * shake, -0.36};
        c.right_arm.turn = {70 - shake, 0, 0};
        c.right_arm.shrug = 6;
        c.jaw = 10 + 2 * shake;
        setCape(c, 6, 0);
    };
    keys motion;
    motion.at(0, rest)
        .at(0.3, rest,
            [](controls& c) {
                c.hips = {0.03, -0.03, 0.02};
                c.chest = {-4, -8, 0};
                c.right_foot.place = {0, 0.05, -0.08};
                c.right_arm.hand = {-0.04, 0.40, 0.10};
                c.right_arm.turn = {-10, 0, 0};
            })
        .at(0.7, rest, [&](controls& c) { stretched(c, 0); })
        .at(1.1, rest, [&](controls& c) { stretched(c, 3); })
        .at(1.5, rest, [&](controls& c) { stretched(c, 0); })
        .at(2.0, rest, [](controls& c) {
            c.right_foot.place = {0, 0.05, -0.09};
        });
    return motion.at(2.4, rest);
}

keys bowing()
{
    const controls rest = standing();
    const auto bowed = [](controls& c) {
        c.hips = {0, -0.03, 0.09};
        c.hips_turn.x = 24;
        c.chest.x = 30;
        c.head = {22, 0, 0};
        c.right_arm.hand = {0.34, 0.12, 0.02};
        c.right_arm.turn = {-30, 40, 60};
        c.left_arm.hand = {0.06, -0.06, 0.10};
        setCape(c, -30, 0);
    };
    keys motion;
    motion.at(0, rest).at(0.8, rest, bowed).at(1.5, rest, bowed);
    return motion.at(2.4, rest);
}

keys kneeling()
{
    const controls rest = standing();
    const auto down = [](controls& c) {
        c.hips = {-0.01, -0.455, 0.06};
        c.hips_turn = {4, -6, 0};
        c.chest = {10, 4, 0};
        c.head = {20, 0, 0};
        c.left_foot.place = {0.02, 0, -0.26};
        c.right_foot.place = {-0.03, 0, 0.50};
        c.right_foot.heel = 72;
        c.right_arm.hand = {0.10, -0.05, -0.14};
        c.right_arm.turn = {8, 0, 0};
        c.left_arm.hand = {0.03, -0.02, -0.06};
        c.knees_out = 0.15;
        setCape(c, 22, 0);
    };
    keys motion;
    motion.at(0, rest)
        .at(0.45, rest,
            [](controls& c) {
                c.hips = {0.04, -0.10, 0};
                c.right_foot.place = {-0.02, 0.06, 0.24};
                c.right_foot.heel = 40;
                c.left_foot.place = {0.01, 0, 0};
                c.chest.x = 8;
            })
        .at(0.6, rest,
            [](controls& c) {
                c.hips = {0.02, -0.16, -0.02};
                c.right_foot.place = {-0.03, 0, 0.34};
                c.right_foot.heel = 50;
                c.left_foot.place = {0.02, 0.03, -0.12};
                c.chest.x = 12;
            })
        .at(1.3, rest, down)
        .at(2.0, rest, [&](controls& c) {
            down(c);
            c.head.x = 26;
        });
    return motion;
}

clip parade()
{
    return {"stand/hu1_pose_parade", "one frame: on parade", 20, 0, false, [](double) {
                controls c = standing();
                c.hips.y = -0.002;
                c.chest.x = -4;
                c.head.x = 2;
                c.left_foot = {{-0.045, 0, 0}, 0, 12, 1};
                c.right_foot = {{0.045, 0, 0}, 0, -12, 1};
                c.right_arm.hand = {0.08, -0.04, 0.0};
                c.right_arm.turn = {-24, 0, 0};
                return figurePose(c);
            }};
}

std::vector<clip> makeStandClips()
{
    keys still, ready;
    still.at(0, standing());
    ready.at(0, guarding())
        .at(1, guarding(),
            [](controls& c) {
                c.hips = c.hips + vec3{0.01, -0.02, -0.01};
            })
        .repeating(2);
    return {
        clipOf("stand/hu1_stand_idle_01", "breathes", 20, 80, true, still, 4),
        clipOf("stand/hu1_stand_idle_02", "looks around", 30, 150, true, lookingAround(), 2.5),
        clipOf("stand/hu1_stand_idle_03", "shifts the weight, rests the sword", 20, 100, true, shiftingWeight(), 2.5),
        clipOf("stand/hu1_stand_ready", "sways behind the shield", 24.5, 49, true, ready, 2),
        clipOf("stand/hu1_stand_ready_02", "weighs the sword", 30, 72, true, weighingSword(), 2.4),
        parade(),
        clipOf("gesture/hu1_wave", "waves with the sword", 30, 78, false, waving(2, 1), 2.6),
        clipOf("gesture/hu1_salute", "salutes with the sword", 30, 75, false, saluting(), 2.5),
        clipOf("gesture/hu1_cheer_01", "raises the sword and shouts", 30, 30, true, cheering(), 1),
        clipOf("gesture/hu1_cheer_02", "beats the shield with the sword", 30, 36, true, drumming(), 1.2),
        clipOf("gesture/hu1_point", "points ahead with the sword", 20, 48, false, pointing(), 2.4),
        clipOf("gesture/hu1_bow", "bows", 20, 48, false, bowing(), 2.4),
        clipOf("gesture/hu1_kneel", "goes down on one knee", 20, 40, false, kneeling(), 2),
    };
}

} // namespace

std::span<const clip> standClips()
{
    static const std::vector<clip> all = makeStandClips();
    return all;
}

const clip& moddedWave()
{
    static const clip wave =
        clipOf("gesture/hu1_wave", "waves with the sword, wilder", 30, 114, false, waving(4, 1.5), 3.8);
    return wave;
}

} // namespace korvane::demo
