#pragma once

// The motions of the demo skeletons, in the order in which they are listed. Clips last as long as the program.

#include "tools/demo_data/rig.h"

#include <functional>
#include <span>
#include <string_view>

namespace korvane::demo
{

struct clip
{
    std::string_view name;  // below the skeleton's folder: "walk/hu1_walk_forward"
    std::string_view about; // one line for people
    double frame_rate;
    int intervals; // frames less one
    bool is_loop;  // the last frame equals the first
    std::function<rig_pose(double seconds)> motion;
};

// Of the figure.
[[nodiscard]] std::span<const clip> gaitClips();   // walk, run, turn
[[nodiscard]] std::span<const clip> standClips();  // idle variants, gestures
[[nodiscard]] std::span<const clip> combatClips(); // attack, defend, hit, die
[[nodiscard]] std::span<const clip> rideClips();   // on the horse, each as long as one of the beast's
[[nodiscard]] const clip& moddedWave();            // what the mod has instead of the wave
// Of the beast.
[[nodiscard]] std::span<const clip> beastClips();

// All frames of a clip.
[[nodiscard]] std::vector<rig_pose> framesOf(const clip& source);

} // namespace korvane::demo
