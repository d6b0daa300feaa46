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

// From over the right shoulder down to the left.
keys slashing()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.35, ready,
            [](controls& c) {
                c.hips = {-0.02, -0.08, 0.06};
                c.hips_turn.y = -30;
                c.chest = {-2, -16, -6};
                c.head = {-2, 40, 0};
                c.right_arm.hand = {-0.08, 0.62, 0.22};
                c.right_arm.turn = {-50, 10, -30};
                c.right_arm.elbow = {-0.8, 0, 0.2};
            })
        .at(0.52, ready,
            [](controls& c) {
                c.hips = {0.02, -0.10, -0.05};
                c.hips_turn.y = 4;
                c.chest = {12, 14, 4};
                c.head = {-6, -10, 0};
                c.right_arm.hand = {0.24, 0.26, -0.34};
                c.right_arm.turn = {62, 20, 25};
                c.right_foot.heel = 20;
                c.jaw = 14;
                setCape(c, 14, -6);
            })
        .at(0.68, ready,
            [](controls& c) {
                c.hips = {0.03, -0.13, -0.07};
                c.hips_turn.y = 10;
                c.chest = {18, 28, 6};
                c.head = {-8, -22, 0};
                c.right_arm.hand = {0.48, -0.02, -0.18};
                c.right_arm.turn = {85, 50, 50};
                c.right_foot.heel = 28;
                c.left_arm.hand = {0.06, 0.06, 0.04};
                setCape(c, 10, -12);
            })
        .at(0.9, ready, [](controls& c) {
            c.hips = {0.02, -0.11, -0.02};
            c.hips_turn.y = 0;
            c.chest = {12, 16, 2};
            c.head = {-6, -8, 0};
            c.right_arm.hand = {0.30, 0.02, -0.16};
            c.right_arm.turn = {60, 34, 30};
        });
    return motion.at(1.4, ready);
}

// Back from the left, level.
keys slashingBack()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.4, ready,
            [](controls& c) {
                c.hips = {0.02, -0.10, -0.01};
                c.hips_turn.y = 8;
                c.chest = {6, 30, 2};
                c.head = {-4, -26, 0};
                c.right_arm.hand = {0.46, 0.34, -0.12};
                c.right_arm.turn = {20, 60, 60};
            })
        .at(0.6, ready,
            [](controls& c) {
                c.hips = {0, -0.12, -0.05};
                c.hips_turn.y = -16;
                c.chest = {8, -8, 0};
                c.head = {-4, 14, 0};
                c.right_arm.hand = {0.08, 0.28, -0.36};
                c.right_arm.turn = {82, 0, 0};
                c.jaw = 12;
                setCape(c, 8, 9);
            })
        .at(0.76, ready, [](controls& c) {
            c.hips = {-0.02, -0.11, -0.02};
            c.hips_turn.y = -32;
            c.chest = {6, -28, -3};
            c.head = {-2, 44, 0};
            c.right_arm.hand = {-0.16, 0.22, 0.04};
            c.right_arm.turn = {80, -60, 0};
            setCape(c, 6, 14);
        });
    return motion.at(1.3, ready);
}

keys thrusting()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.35, ready,
            [](controls& c) {
                c.hips = {-0.02, -0.09, 0.10};
                c.hips_turn.y = -28;
                c.chest = {2, -12, 0};
                c.head = {-4, 36, 0};
                c.right_arm.hand = {-0.02, 0.16, 0.26};
                c.right_arm.turn = {72, 12, 0};
                c.left_foot.place = {0.03, 0.03, -0.22};
            })
        .at(0.6, ready,
            [](controls& c) {
                c.hips = {0.01, -0.16, -0.20};
                c.hips_turn = {8, 6, 0};
                c.chest = {10, 18, 0};
                c.head = {-12, -18, 0};
                c.left_foot.place = {0.03, 0, -0.50};
                c.right_foot.heel = 38;
                c.right_arm.hand = {0.12, 0.30, -0.36};
                c.right_arm.turn = {76, 4, 0};
                c.right_arm.shrug = 5;
                c.left_arm.hand = {0.08, 0.05, 0.05};
                c.jaw = 12;
                setCape(c, 20, 0);
            })
        .at(0.75, ready,
            [](controls& c) {
                c.hips = {0.01, -0.16, -0.19};
                c.hips_turn = {8, 5, 0};
                c.chest = {10, 16, 0};
                c.head = {-12, -16, 0};
                c.left_foot.place = {0.03, 0, -0.50};
                c.right_foot.heel = 36;
                c.right_arm.hand = {0.11, 0.29, -0.34};
                c.right_arm.turn = {76, 4, 0};
                c.left_arm.hand = {0.08, 0.05, 0.05};
                setCape(c, 10, 0);
            })
        .at(1.1, ready, [](controls& c) {
            c.left_foot.place = {0.03, 0.04, -0.30};
        });
    return motion.at(1.4, ready);
}

keys overhead()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.5, ready,
            [](controls& c) {
                c.hips = {0, -0.03, 0.05};
                c.left_foot.place = {0.03, 0, -0.18};
                c.hips_turn.y = -14;
                c.chest = {-12, -6, 0};
                c.head = {2, 18, 0};
                c.right_arm.hand = {0.12, 0.80, 0.16};
                c.right_arm.turn = {-75, 0, 0};
                c.right_arm.elbow = {-0.6, 0, -0.3};
                c.right_arm.shrug = 14;
                setCape(c, 1, 0);
            })
        .at(0.72, ready,
            [](controls& c) {
                c.hips = {0.02, -0.15, -0.09};
                c.hips_turn = {10, 0, 0};
                c.chest = {24, 8, 0};
                c.head = {-14, -6, 0};
                c.right_foot.heel = 34;
                c.right_arm.hand = {0.22, 0.10, -0.30};
                c.right_arm.turn = {85, 0, 0};
                c.jaw = 16;
                setCape(c, 22, 0);
            })
        .at(0.9, ready, [](controls& c) {
            c.hips = {0.02, -0.16, -0.08};
            c.hips_turn = {10, 0, 0};
            c.chest = {26, 8, 0};
            c.head = {-12, -6, 0};
            c.right_foot.heel = 32;
            c.right_arm.hand = {0.20, 0.02, -0.24};
            c.right_arm.turn = {92, 0, 0};
            setCape(c, 8, 0);
        });
    return motion.at(1.5, ready);
}

keys bashing()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.25, ready,
            [](controls& c) {
                c.hips = {0, -0.11, 0.07};
                c.hips_turn.y = 4;
                c.chest = {8, 16, 0};
                c.left_arm.hand = {0.04, 0.12, 0.04};
            })
        .at(0.45, ready,
            [](controls& c) {
                c.hips = {0.01, -0.12, -0.14};
                c.hips_turn = {8, -34, 0};
                c.chest = {12, -14, 0};
                c.head = {-10, 34, 0};
                c.left_foot.place = {0.03, 0, -0.36};
                c.right_foot.heel = 34;
                c.left_arm.hand = {-0.02, 0.20, -0.28};
                c.left_arm.turn = {0, 20, 0};
                c.left_arm.shrug = 6;
                c.jaw = 10;
                setCape(c, 18, 4);
            })
        .at(0.75, ready, [](controls& c) {
            c.left_foot.place = {0.03, 0.03, -0.26};
        });
    return motion.at(1.0, ready);
}

keys blocking()
{
    const controls ready = guarding();
    const auto covered = [](controls& c) {
        c.hips = {0, -0.17, 0.06};
        c.hips_turn.y = -22;
        c.chest = {14, -6, 0};
        c.head = {6, 22, 0};
        c.left_arm.hand = {-0.06, 0.34, -0.10};
        c.left_arm.turn = {-12, 10, 0};
        c.left_arm.shrug = 10;
    };
    keys motion;
    motion.at(0, ready)
        .at(0.25, ready, covered)
        .at(0.4, ready, covered)
        .at(0.5, ready, // the blow
            [&](controls& c) {
                covered(c);
                c.hips = c.hips + vec3{0, -0.04, 0.06};
                c.left_arm.hand = c.left_arm.hand + vec3{0, -0.05, 0.09};
                c.chest.x += 4;
                setCape(c, -4, 0);
            })
        .at(0.8, ready, covered);
    return motion.at(1.2, ready);
}

keys hitFromAhead()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.12, ready,
            [](controls& c) {
                c.hips = {0.01, -0.09, 0.09};
                c.hips_turn.x = -6;
                c.chest = {-14, -10, -4};
                c.head = {18, 8, 0};
                c.right_arm.hand = {-0.10, 0.16, 0.0};
                c.left_arm.hand = {0.10, 0.16, -0.02};
                c.jaw = 14;
                setCape(c, -8, 0);
            })
        .at(0.35, ready,
            [](controls& c) {
                c.hips = {0.01, -0.12, 0.15};
                c.hips_turn.x = 4;
                c.chest = {12, -4, 2};
                c.head = {10, 4, 0};
                c.right_foot.place = {-0.07, 0.04, 0.30};
                c.right_arm.hand = {-0.04, 0.0, 0.0};
                setCape(c, 12, 0);
            })
        .at(0.55, ready,
            [](controls& c) {
                c.hips = {0, -0.12, 0.10};
                c.chest = {12, 0, 0};
                c.right_foot.place = {-0.07, 0, 0.36};
            })
        .at(0.85, ready, [](controls& c) {
            c.right_foot.place = {-0.07, 0.03, 0.30};
        });
    return motion.at(1.1, ready);
}

void lieOnBack(controls& c)
{
    c.hips = {0.02, -0.865, 0.30};
    c.hips_turn = {-88, 0, 4};
    c.chest = {2, 0, 6};
    c.head = {8, 24, 0};
    c.left_foot.place = {0.06, 0, -0.42};
    c.left_foot.heel = -58;
    c.left_foot.yaw = 24;
    c.right_foot.place = {-0.08, 0, -0.22};
    c.right_foot.heel = -10;
    c.right_foot.yaw = -14;
    c.left_arm.hand = {0.30, -0.06, 0.14};
    c.left_arm.turn = {-20, -40, 20};
    c.right_arm.hand = {-0.26, 0.02, 0.17};
    c.right_arm.turn = {-36, 0, -45};
    c.right_arm.open = 0.6;
    setCape(c, -12, 0);
}

keys dyingBackwards()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.2, ready,
            [](controls& c) {
                c.hips = {0, -0.06, 0.08};
                c.hips_turn.x = -8;
                c.chest = {-18, -8, 0};
                c.head = {-22, 0, 0};
                c.right_arm.hand = {-0.14, 0.26, -0.02};
                c.left_arm.hand = {0.12, 0.22, -0.06};
                c.jaw = 18;
                setCape(c, -6, 0);
            })
        .at(0.6, ready,
            [](controls& c) {
                c.hips = {0.01, -0.38, 0.28};
                c.hips_turn = {-30, -8, 2};
                c.chest = {-4, -4, 4};
                c.head = {20, 4, 0};
                c.left_foot.place = {0.04, 0.02, -0.26};
                c.left_foot.heel = -18;
                c.right_foot.heel = 14;
                c.right_foot.place = {-0.08, 0, 0.06};
                c.right_arm.hand = {-0.22, 0.24, -0.04};
                c.left_arm.hand = {0.24, 0.20, -0.04};
                setCape(c, -12, 0);
            })
        .at(0.95, ready,
            [](controls& c) {
                lieOnBack(c);
                c.head.x = 26;
                c.left_foot.place.y = 0.05;
            })
        .at(1.12, ready,
            [](controls& c) {
                lieOnBack(c);
                c.hips.y += 0.012; // a short bounce
                c.chest.x = 4;
            })
        .at(1.3, ready, lieOnBack);
    return motion.at(2.0, ready, [](controls& c) {
        lieOnBack(c);
        c.head.y = 34;
        c.right_arm.open = 0.9;
    });
}

void lieOnFace(controls& c)
{
    c.hips = {0, -0.84, -0.30};
    c.hips_turn = {86, 0, 0};
    c.chest = {-4, 0, 0};
    c.head = {-24, 30, 0};
    c.left_foot.place = {0.03, 0, 0.58};
    c.left_foot.heel = 66;
    c.left_foot.flat = 0.3;
    c.right_foot.place = {-0.06, 0, 0.60};
    c.right_foot.heel = 70;
    c.right_foot.flat = 0.3;
    c.left_arm.hand = {0.16, 0.40, 0.08};
    c.left_arm.turn = {20, 0, 0};
    c.left_arm.elbow = {0.8, 0, 0.6};
    c.right_arm.hand = {-0.12, 0.50, 0.08};
    c.right_arm.turn = {-18, 0, 0};
    c.right_arm.elbow = {-0.8, 0, 0.6};
    setCape(c, 0, 5);
}

keys dyingForwards()
{
    const controls ready = guarding();
    keys motion;
    motion.at(0, ready)
        .at(0.25, ready,
            [](controls& c) {
                c.hips = {0, -0.14, -0.02};
                c.chest = {26, 0, 4};
                c.head = {24, 0, 0};
                c.right_arm.hand = {0.10, -0.02, 0.0};
                c.left_arm.hand = {0.02, -0.04, 0.06};
                c.jaw = 14;
            })
        .at(0.7, ready, // on the knees
            [](controls& c) {
                c.hips = {0, -0.47, 0.0};
                c.hips_turn = {6, 0, 0};
                c.chest = {22, 0, 6};
                c.head = {22, 0, 4};
                c.left_foot.place = {0.02, 0, 0.46};
                c.left_foot.heel = 70;
                c.right_foot.place = {-0.05, 0, 0.52};
                c.right_foot.heel = 70;
                c.right_arm.hand = {0.02, -0.12, 0.0};
                c.left_arm.hand = {0.03, -0.08, 0.06};
                setCape(c, 4, 0);
            })
        .at(1.2, ready, lieOnFace)
        .at(1.35, ready, [](controls& c) {
            lieOnFace(c);
            c.hips.y += 0.01;
            c.head.x = -18;
        });
    return motion.at(2.0, ready, [](controls& c) {
        lieOnFace(c);
        c.head = {-16, 36, 0};
    });
}

clip clipOf(std::string_view name, std::string_view about, double frame_rate, int intervals, keys motion)
{
    return {name,       about,
            frame_rate, intervals,
            false,      [motion = std::move(motion)](double seconds) {
                return figurePose(motion.sample(seconds)); }};
}

std::vector<clip> makeCombatClips()
{
    return {
        clipOf("attack/hu1_attack_slash_01", "a blow from above the right shoulder", 30, 42, slashing()),
        clipOf("attack/hu1_attack_slash_02", "a level blow from the left", 30, 39, slashingBack()),
        clipOf("attack/hu1_attack_thrust", "a lunge", 30, 42, thrusting()),
        clipOf("attack/hu1_attack_overhead", "both feet planted, straight down", 20, 30, overhead()),
        clipOf("attack/hu1_attack_shield_bash", "the shield first", 30, 30, bashing()),
        clipOf("defend/hu1_block", "catches a blow with the shield", 30, 36, blocking()),
        clipOf("hit/hu1_hit_front", "staggers from a blow", 30, 33, hitFromAhead()),
        clipOf("die/hu1_die_back", "falls on the back", 30, 60, dyingBackwards()),
        clipOf("die/hu1_die_front", "to the knees, then on the face", 30, 60, dyingForwards()),
    };
}

} // namespace

std::span<const clip> combatClips()
{
    static const std::vector<clip> all = makeCombatClips();
    return all;
}

} // namespace korvane::demo
