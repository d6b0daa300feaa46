#pragma once

// A skeleton and how it stands at the moment: the bind pose, the pose that is shown, and the tree that places every
// bone in the world. The drawing half of a skeleton builds on it. One thread at a time, which is the render thread once
// the skeleton is drawn; what replaces a skeleton or an animation comes in while nothing is drawn.

#include "Korvane/posing/animation.h"
#include "Korvane/posing/playback.h"
#include "Korvane/posing/skeleton_node.h"

namespace korvane
{

class skeleton_pose
{
public:
    explicit skeleton_pose(seconds_clock clock = steadySeconds) : m_player(std::move(clock)) {}
    skeleton_pose(const skeleton_pose&) = delete;
    skeleton_pose& operator=(const skeleton_pose&) = delete;

    // Takes a skeleton's bones and shows the bind pose; an animation is dropped. False when the bones do not make one
    // tree (skeleton_tree::build); what hangs together is there all the same.
    [[nodiscard]] bool setSkeleton(const anim_data& skeleton);

    // Starts an animation at its first frame. False, with everything as it was, when it cannot be shown.
    [[nodiscard]] bool setAnimation(std::shared_ptr<const anim_data> source, failure& why);
    void clearAnimation(); // shows the bind pose
    bool hasAnimation() const { return m_player.isLoaded(); }
    const animation& shownAnimation() const { return m_animation; }

    // For every picture: playing goes on, and the pose follows. Nothing without an animation. Allocates nothing.
    void advance(playback_control& control);
    // The pose at a place of the animation, whatever is playing; the bind pose without one.
    void show(std::uint64_t frame, float fraction);

    playback& player() { return m_player; }
    std::span<const joint> bindJoints() const { return m_bind; }
    std::span<const joint> joints() const { return m_current; }
    const skeleton_tree& tree() const { return m_tree; } // of the shown pose; node i belongs to joint i

private:
    std::vector<joint> m_bind;
    std::vector<joint> m_current; // the tree's nodes read these
    skeleton_tree m_tree;
    animation m_animation;
    playback m_player;
};

// The joints of a skeleton's bind pose, with their local matrices.
[[nodiscard]] std::vector<joint> bindPose(const anim_data& skeleton);

} // namespace korvane
