// Two bytes with the length of a skeleton file, that file, and an animation file: the tree that any bone table gives,
// and poses of any animation on it. Whatever the files say, every bone stands somewhere and no bone is its own
// ancestor.

#include "Korvane/posing/skeleton_pose.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkTree(const skeleton_tree& tree, bool fits)
{
    std::size_t children = 0, tops = 0, floating = 0;
    for (const skeleton_node& node : tree.nodes())
    {
        std::size_t height = 0;
        for (const skeleton_node* above = node.parent(); above; above = above->parent())
            require(++height < tree.nodes().size());
        tops += !node.parent();
        floating += node.parentIndex() == -1;
        require(!node.parent() || node.parent()->index() == node.parentIndex());
        for (const skeleton_node* child : node.children())
            require(child->parent() == &node);
        children += node.children().size();
    }
    require(children + tops == tree.nodes().size());
    require(fits ? tops == floating && (tree.root() || tree.nodes().empty()) : !tree.nodes().empty());
}

template <class value>
bool sameBits(const value& left, const value& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

void checkPose(const skeleton_pose& pose, const anim_data& moves)
{
    const auto has = [](const std::vector<std::uint32_t>& bones, std::uint32_t bone) {
        return std::find(bones.begin(), bones.end(), bone) != bones.end();
    };
    for (std::uint32_t i = 0; i < pose.joints().size(); ++i)
    {
        const joint& now = pose.joints()[i];
        const joint& bind = pose.bindJoints()[i];
        const bool is_still = moves.frame_count == 0;
        require(sameBits(now.translation, bind.translation) || (!is_still && has(moves.animated_translations, i)));
        require(sameBits(now.rotation, bind.rotation) || (!is_still && has(moves.animated_rotations, i)));
        const skeleton_node& node = pose.tree().nodes()[i];
        require(node.parent() || (sameBits(node.worldTranslation(), now.translation) &&
                                  sameBits(node.worldRotation(), now.rotation) && sameBits(now.world, now.local)));
    }
}

void play(skeleton_pose& pose, double& now)
{
    playback_control control;
    const std::uint32_t frames = pose.shownAnimation().frameCount();
    for (int i = 0; i < 12; ++i)
    {
        now += i % 5 == 4 ? 1e9 : 0.03;
        if (i % 3 == 2)
            control.toggle();
        if (i % 4 == 1)
            control.stepBack();
        pose.advance(control);
        const playback_position shown = control.shown();
        require(shown.fraction >= 0 && shown.fraction <= 1);
        require(i % 4 != 1 || frames == 0 || shown.frame < frames);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size)).subspan(2);
    const std::size_t split = std::min<std::size_t>(data[0] + 256u * data[1], bytes.size());
    anim_file skeleton;
    const auto file = std::make_shared<anim_file>();
    failure why;
    skeleton.openFromMemory(memory_file(bytes.first(split)), "skeleton");
    file->openFromMemory(memory_file(bytes.subspan(split)), "animation");
    if (!skeleton.loadSkeleton({}, why))
        return 0;
    double now = 0;
    skeleton_pose pose([&now] { return now; });
    checkTree(pose.tree(), pose.setSkeleton(skeleton.data()));
    if (!file->loadAnimation({}, why))
        return 0;
    require(pose.setAnimation({file, &file->data()}, why));
    const std::uint64_t last = file->data().frame_count;
    for (const std::uint64_t frame : {std::uint64_t{0}, last / 2, last, std::numeric_limits<std::uint64_t>::max()})
        for (const float fraction : {0.0f, 0.25f, 1.0f})
        {
            pose.show(frame, fraction);
            checkPose(pose, file->data());
        }
    play(pose, now);
    return 0;
}
