#pragma once

// What an animator of the demo figure turns, and the pose that comes of it: trunk and head by angles, feet and hands by
// the place where they are to be. All zero is the rest pose. Metres and degrees; turns as turnOf() has them.

#include "tools/demo_data/motion_keys.h"
#include "tools/demo_data/rig.h"

namespace korvane::demo
{

struct foot_controls
{
    vec3 place;      // of the sole, against the rest pose; the world's axes, so a foot stays where it stands
    double heel = 0; // degrees; above zero the heel rises about the ball of the foot, below the toes about the heel
    double yaw = 0;  // the foot turns to the left
    double flat = 1; // how much of a risen heel the toes make good, so that they stay on the ground
};

struct arm_controls
{
    vec3 hand;        // of the wrist, against the rest pose, in the axes of the chest
    vec3 turn;        // of the hand against the chest
    vec3 elbow;       // pulls the elbow to a side, in the axes of the chest; 1 is a strong pull
    double shrug = 0; // raises the shoulder, degrees
    double open = 0;  // stretches the fingers: 0 is the grip of the rest pose, 1 a flat hand
};

struct figure_controls
{
    vec3 root;         // moves the whole figure but for its feet
    double facing = 0; // turns it to the left
    vec3 hips, hips_turn;
    vec3 chest; // bends the three spine bones together
    vec3 head;  // neck and head together
    double jaw = 0;
    foot_controls left_foot, right_foot;
    arm_controls left_arm, right_arm;
    double knees_out = 0;                           // spreads the knees; 1 points them to the sides
    std::array<double, 4> cape_lift{}, cape_sway{}; // of its bones, from the top, degrees: backwards, to the left
};

[[nodiscard]] rig_pose figurePose(const figure_controls& controls);

// Places a foot as it stands beside the figure that has turned to the left and moved.
void stand(foot_controls& foot, bool is_left, double facing, vec3 moved);

// The stance from which the motions start: weight on both feet, knees soft.
[[nodiscard]] figure_controls standing();
[[nodiscard]] figure_controls guarding(); // left foot ahead, shield up, sword ready

// The cape as one: lifted backwards and swung to the left, more towards its end.
void setCape(figure_controls& controls, double lift, double sway);

} // namespace korvane::demo
