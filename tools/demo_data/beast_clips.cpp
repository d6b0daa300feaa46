#include "tools/demo_data/beast.h"
#include "tools/demo_data/clips.h"
#include "tools/demo_data/gait.h"

#include <utility>
#include <vector>

namespace korvane::demo
{

namespace
{

using keys = motion_keys<beast_controls>;

struct beast_gait
{
    double seconds;
    step_shape step;
    double late[4];      // when each hoof meets the ground: fore left, fore right, hind left, hind right
    double fold = 55;    // of the hoof in the air, degrees
    double drop = 0.035; // of the body
    double bob = 0.012, bobs = 2;
    double pitch = 0; // of the body, once a cycle
    double nod = 4;
    double tail = 6;
};

void setHoof(hoof_controls& hoof, const beast_gait& how, double cycle, bool is_fore)
{
    const step now = stepAt(how.step, cycle);
    hoof.place = {0, now.height, -now.ahead};
    hoof.swing = (is_fore ? 26 : 34) * now.ahead;
    if (now.swing >= 0)
    {
        const double up = sineOfTurns(now.swing / 2);
        hoof.roll = how.fold * up * up * (1.2 - 0.5 * now.swing);
        hoof.swing += (is_fore ? 8 : 10) * up * up;
    }
}

beast_controls gaitAt(const beast_gait& how, double seconds)
{
    const double cycle = seconds / how.seconds;
    const auto wave = [cycle](double times, double late) { return cosineOfTurns(times * (cycle - late)); };
    beast_controls c;
    setHoof(c.fore_left, how, cycle - how.late[0], true);
    setHoof(c.fore_right, how, cycle - how.late[1], true);
    setHoof(c.hind_left, how, cycle - how.late[2], false);
    setHoof(c.hind_right, how, cycle - how.late[3], false);
    const double middle = how.late[2] + how.step.duty / 2;
    c.body = {0.012 * wave(1, middle), -how.drop + how.bob * wave(how.bobs, middle), 0};
    c.body_turn = {how.pitch * wave(1, how.late[0] + 0.1), 0, -1.5 * wave(1, middle)};
    c.back = {-how.pitch * 0.6 * wave(1, how.late[0] + 0.15), 1.2 * wave(1, how.late[2]), 1.0 * wave(1, middle)};
    c.neck = {how.nod * wave(how.bobs, middle + 0.1) - how.pitch * 0.7 * wave(1, how.late[0] + 0.1), 0, 0};
    c.head = {-0.6 * how.nod * wave(how.bobs, middle + 0.15), 0, 0};
    c.tail_lift = how.tail + how.tail * 0.4 * wave(how.bobs, middle + 0.2);
    c.tail_sway = 5 * wave(1, 0.1);
    return c;
}

clip clipOf(std::string_view name, std::string_view about, double frame_rate, int intervals, const beast_gait& how)
{
    return {name,      about, frame_rate,
            intervals, true,  [how](double seconds) {
                return beastPose(gaitAt(how, seconds)); }};
}

clip clipOf(std::string_view name, std::string_view about, double frame_rate, int intervals, bool is_loop, keys motion)
{
    return {name,       about,
            frame_rate, intervals,
            is_loop,    [motion = std::move(motion)](double seconds) {
                return beastPose(motion.sample(seconds)); }};
}

beast_controls atRest()
{
    beast_controls c;
    c.body.y = -0.012;
    c.tail_lift = -2;
    return c;
}

keys idling()
{
    const beast_controls rest = atRest();
    keys motion;
    motion.at(0, rest)
        .at(0.7, rest,
            [](beast_controls& c) {
                c.tail_sway = 26;
                c.ears = -18;
                c.back.x = 0.8;
            })
        .at(1.3, rest,
            [](beast_controls& c) {
                c.tail_sway = -24;
                c.neck = {4, 10, 0};
                c.head = {2, 6, 0};
            })
        .at(2.1, rest,
            [](beast_controls& c) {
                c.neck = {8, 16, 0};
                c.head = {4, 12, 4};
                c.back.x = 0.8;
                c.ears = 10;
            })
        .at(3.1, rest,
            [](beast_controls& c) {
                c.neck = {-2, -6, 0};
                c.head = {-4, 0, 0};
                c.tail_sway = 8;
            })
        .repeating(4);
    return motion;
}

keys grazing()
{
    const beast_controls rest = atRest();
    const auto down = [](beast_controls& c) {
        c.body = {0, -0.03, -0.03};
        c.fore_left.place = {0, 0, -0.16};
        c.fore_left.swing = 6;
        c.back = {10, 0, 0};
        c.neck = {92, 0, 0};
        c.head = {-36, 0, 0};
    };
    keys motion;
    motion.at(0, rest)
        .at(0.5, rest,
            [](beast_controls& c) {
                c.fore_left.place = {0, 0.06, -0.10};
                c.fore_left.roll = 25;
                c.neck.x = 20;
            })
        .at(1.2, rest, down)
        .at(1.6, rest,
            [&](beast_controls& c) {
                down(c);
                c.jaw = 9;
                c.head.y = 5;
            })
        .at(2.0, rest,
            [&](beast_controls& c) {
                down(c);
                c.tail_sway = 20;
                c.head.x = -30;
            })
        .at(2.4, rest,
            [&](beast_controls& c) {
                down(c);
                c.jaw = 9;
                c.head.y = -6;
                c.tail_sway = -20;
            })
        .at(2.9, rest, down)
        .at(3.5, rest,
            [](beast_controls& c) {
                c.fore_left.place = {0, 0.05, -0.08};
                c.fore_left.roll = 20;
                c.neck.x = 24;
            })
        .repeating(4);
    return motion;
}

keys rearing()
{
    const beast_controls rest = atRest();
    const auto up = [](beast_controls& c, double side) {
        c.body = {0, -0.26, 0.14};
        c.body_turn = {-46, 0, 0};
        c.back.x = -6;
        c.neck = {14, 0, 0};
        c.head = {22, 0, 0};
        c.jaw = 14;
        c.ears = -25;
        c.tail_lift = -14;
        c.fore_left.place = {0, 1.06 + 0.14 * side, 0.16 - 0.10 * side};
        c.fore_right.place = {0, 1.06 - 0.14 * side, 0.16 + 0.10 * side};
        c.fore_left.roll = 60 - 25 * side;
        c.fore_right.roll = 60 + 25 * side;
        c.hind_left.place = {0.02, 0, 0.03};
        c.hind_right.place = {-0.02, 0, -0.05};
        c.hind_left.swing = c.hind_right.swing = -4;
    };
    keys motion;
    motion.at(0, rest)
        .at(0.35, rest,
            [](beast_controls& c) {
                c.body = {0, -0.12, 0.06};
                c.body_turn.x = 4;
                c.neck.x = 16;
                c.head.x = 8;
            })
        .at(0.8, rest, [&](beast_controls& c) { up(c, 1); })
        .at(1.1, rest, [&](beast_controls& c) { up(c, -1); })
        .at(1.4, rest, [&](beast_controls& c) { up(c, 1); })
        .at(1.95, rest, [](beast_controls& c) {
            c.body = {0, -0.10, 0.0};
            c.body_turn.x = 4;
            c.neck.x = 22;
            c.tail_lift = 14;
        });
    return motion.at(2.5, rest);
}

keys kicking()
{
    const beast_controls rest = atRest();
    keys motion;
    motion.at(0, rest)
        .at(0.3, rest,
            [](beast_controls& c) {
                c.body = {0, -0.06, -0.02};
                c.body_turn.x = -3;
                c.neck.x = 20;
                c.ears = -30;
            })
        .at(0.6, rest,
            [](beast_controls& c) {
                c.body = {0, 0.16, -0.05};
                c.body_turn.x = 18;
                c.back.x = 4;
                c.neck = {30, 10, 0};
                c.hind_left.place = {0, 0.85, 0.86};
                c.hind_right.place = {0, 0.78, 0.80};
                c.hind_left.roll = c.hind_right.roll = 75;
                c.hind_left.swing = c.hind_right.swing = -30;
                c.tail_lift = 40;
                c.ears = -30;
            })
        .at(0.85, rest,
            [](beast_controls& c) {
                c.body = {0, 0.08, -0.03};
                c.body_turn.x = 9;
                c.neck.x = 18;
                c.hind_left.place = c.hind_right.place = {0, 0.30, 0.10};
                c.hind_left.roll = c.hind_right.roll = 50;
                c.tail_lift = 24;
            })
        .at(1.1, rest, [](beast_controls& c) {
            c.body = {0, -0.08, 0.02};
            c.neck.x = -6;
        });
    return motion.at(1.5, rest);
}

keys turning()
{
    const beast_controls rest = atRest();
    // Each hoof in its turn goes to where it stands when the beast has turned.
    const double degrees = 60;
    const auto placed = [&](hoof_controls& hoof, const char* bone, double done) {
        const vec3 at = beastRig().bones[static_cast<std::size_t>(beastRig().find(bone))].position;
        hoof.place = rotated(turnOf({0, degrees * done, 0}), at);
        return hoof.place;
    };
    keys motion;
    const char* names[] = {"pastern_fore_l", "pastern_hind_r", "pastern_fore_r", "pastern_hind_l"};
    constexpr int steps = 32;
    for (int i = 0; i <= steps; ++i)
    {
        beast_controls c = rest;
        const double t = static_cast<double>(i) / steps;
        const double done = smoothStep(0.05, 0.95, t);
        c.facing = degrees * done;
        hoof_controls* hooves[] = {&c.fore_left, &c.hind_right, &c.fore_right, &c.hind_left};
        for (int k = 0; k < 4; ++k)
        {
            // Two rounds of four steps.
            double stood = 0, air = 0;
            for (int round = 0; round < 2; ++round)
            {
                const double begin = 0.06 + 0.44 * round + 0.10 * k;
                const double s = smoothStep(begin, begin + 0.13, t);
                stood += s / 2;
                air += 4 * s * (1 - s);
            }
            // The controls count from where the turned figure's hoof would be.
            const vec3 there = placed(*hooves[k], names[k], stood), turned = placed(*hooves[k], names[k], done);
            hooves[k]->place = there - turned + vec3{0, 0.09 * air, 0};
            hooves[k]->roll = 40 * air;
        }
        c.neck = {2, 22 * 4 * done * (1 - done), 0};
        c.back.y = 8 * 4 * done * (1 - done);
        c.tail_sway = -12 * 4 * done * (1 - done);
        motion.at(1.6 * t, c);
    }
    return motion;
}

keys dying()
{
    const beast_controls rest = atRest();
    const auto folded = [](hoof_controls& hoof, bool is_fore, double side, double out) {
        hoof.place = {side * out, 0.06, is_fore ? -0.30 : -0.34};
        hoof.roll = 30;
        hoof.swing = is_fore ? 12 : 24;
    };
    const auto down = [&](beast_controls& c) {
        c.body = {0.10, -1.02, 0.05};
        c.body_turn = {0, 0, 74};
        c.neck = {46, 0, 10};
        c.head = {8, 0, 10};
        c.ears = 20;
        folded(c.fore_left, true, -1, 0.80);
        folded(c.fore_right, true, -1, 0.80);
        folded(c.hind_left, false, -1, 0.84);
        folded(c.hind_right, false, -1, 0.84);
        c.fore_left.place.y = c.hind_left.place.y = 0.16;
        c.fore_right.place.y = c.hind_right.place.y = 0.40;
    };
    keys motion;
    motion.at(0, rest)
        .at(0.4, rest,
            [](beast_controls& c) {
                c.body = {0, -0.10, 0.04};
                c.neck = {-20, 10, 0};
                c.jaw = 14;
                c.head.x = -10;
            })
        .at(0.9, rest,
            [](beast_controls& c) {
                c.body = {0.04, -0.50, 0.02};
                c.body_turn = {6, 0, 14};
                c.neck = {30, 0, 6};
                c.fore_left.place = c.fore_right.place = {0, 0.04, 0.06};
                c.fore_left.roll = c.fore_right.roll = 50;
                c.hind_left.place = c.hind_right.place = {0, 0, -0.20};
            })
        .at(1.15, rest,
            [&](beast_controls& c) {
                c.body = {0.06, -0.52, 0.03};
                c.body_turn = {3, 0, 30};
                c.neck = {36, 0, 8};
                for (hoof_controls* each : {&c.fore_left, &c.fore_right})
                    folded(*each, true, -1, 0.46);
                for (hoof_controls* each : {&c.hind_left, &c.hind_right})
                    folded(*each, false, -1, 0.50);
            })
        .at(1.5, rest, down)
        .at(1.65, rest, [&](beast_controls& c) {
            down(c);
            c.neck.x = 40;
            c.tail_sway = 20;
        });
    return motion.at(2.25, rest, [&](beast_controls& c) {
        down(c);
        c.neck = {52, 0, 14};
    });
}

std::vector<clip> makeBeastClips()
{
    beast_gait walk{1.2, {1.36, 0.64, 0.09}, {0.25, 0.75, 0.0, 0.5}};
    walk.drop = 0.05;
    beast_gait trot{0.7, {1.8, 0.44, 0.16}, {0.0, 0.5, 0.5, 0.0}};
    trot.bob = -0.03;
    trot.drop = 0.055;
    trot.fold = 75;
    trot.nod = 2;
    trot.tail = 16;
    beast_gait gallop{0.5, {3.6, 0.26, 0.22}, {0.45, 0.58, 0.0, 0.13}};
    gallop.bobs = 1;
    gallop.bob = 0.04;
    gallop.drop = 0.08;
    gallop.pitch = 7;
    gallop.fold = 95;
    gallop.nod = 6;
    gallop.tail = 34;
    return {
        clipOf("stand/be1_stand_idle_01", "swings the tail, turns the ears", 20, 80, true, idling()),
        clipOf("stand/be1_stand_graze", "lowers the head and grazes", 20, 80, true, grazing()),
        clipOf("walk/be1_walk_forward", "a walk in four beats on the spot", 30, 36, walk),
        clipOf("walk/be1_trot_forward", "a trot on the spot", 30, 21, trot),
        clipOf("run/be1_gallop", "a gallop on the spot", 30, 15, gallop),
        clipOf("turn/be1_turn_left_60", "turns on the spot", 20, 32, false, turning()),
        clipOf("attack/be1_attack_rear", "rears and strikes with the fore hooves", 30, 75, false, rearing()),
        clipOf("attack/be1_attack_kick", "kicks out behind", 30, 45, false, kicking()),
        clipOf("die/be1_die", "breaks down and rolls onto its side", 20, 45, false, dying()),
    };
}

} // namespace

std::span<const clip> beastClips()
{
    static const std::vector<clip> all = makeBeastClips();
    return all;
}

} // namespace korvane::demo
