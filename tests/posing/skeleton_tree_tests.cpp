#include "Korvane/posing/skeleton_node.h"
#include "tests/posing/pose_builder.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane
{

namespace
{

using namespace test;

// Bone i is moved by 2^i along x, so that the x of its place in the world spells the bones that it hangs on.
std::vector<joint> spelling(const std::vector<test_bone>& bones)
{
    std::vector<joint> result = joints(bones);
    for (joint& bone : result)
        bone.translation = {static_cast<float>(1 << bone.index), 0, 0};
    return result;
}

TEST(skeleton_tree, whatHangsTogetherIsPlacedWhateverTheTableSays)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    const struct
    {
        const char* name;
        std::vector<test_bone> bones;
        bool fits;
        std::vector<float> places; // in the order of the records
    } rows[] = {
        {"no bone", {}, true, {}},
        {"root alone", {{0, -1}}, true, {1}},
        {"chain", {{0, -1}, {1, 0}, {2, 1}}, true, {1, 3, 7}},
        {"records out of order", {{2, 1}, {0, -1}, {1, 0}}, true, {7, 1, 3}},
        {"the parent has the larger index", {{0, -1}, {1, 2}, {2, 0}}, true, {1, 7, 5}},
        {"floating bone with a child", {{0, -1}, {1, -1}, {2, 1}}, true, {1, 2, 6}},
        {"gaps between the indexes", {{0, -1}, {4, 0}, {9, 4}}, true, {1, 17, 529}},
        {"parent missing", {{0, -1}, {1, 7}, {2, 1}}, false, {1, 2, 6}},
        {"parents out of range", {{0, -1}, {1, -2}, {2, lowest}, {3, highest}}, false, {1, 2, 4, 8}},
        {"its own parent", {{0, -1}, {1, 1}, {2, 1}}, false, {1, 2, 6}},
        {"the root its own parent", {{0, 0}, {1, 0}}, false, {1, 3}},
        {"no root", {{1, -1}, {2, 1}}, false, {2, 6}},
        {"two in a ring", {{0, 1}, {1, 0}, {2, 0}}, false, {1, 2, 5}},
        {"a ring beside the tree, bones hanging on it",
         {{0, -1}, {1, 3}, {2, 1}, {3, 2}, {4, 2}, {5, 4}, {6, 0}},
         false,
         {1, 2, 4, 8, 20, 52, 65}},
        {"the walk meets the ring from outside", {{0, -1}, {5, 1}, {1, 2}, {2, 1}}, false, {1, 34, 2, 4}},
        {"two rings", {{0, -1}, {1, 2}, {2, 1}, {3, 4}, {4, 3}}, false, {1, 2, 4, 8, 16}},
        {"one index twice: children find the first", {{0, -1}, {1, 0}, {1, -1}, {2, 1}}, false, {1, 3, 2, 7}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        std::vector<joint> bones = spelling(row.bones);
        skeleton_tree tree;
        EXPECT_EQ(tree.build(bones), row.fits);
        ASSERT_EQ(tree.nodes().size(), row.places.size());
        for (std::size_t i = 0; i < bones.size(); ++i)
        {
            EXPECT_EQ(tree.nodes()[i].worldTranslation().x, row.places[i]) << i;
            EXPECT_EQ(bones[i].world[3].x, row.places[i]) << i;
            EXPECT_EQ(bones[i].local[3].x, bones[i].translation.x) << i;
        }
    }
}

TEST(skeleton_tree, nodesKnowTheirParentsChildrenAndRoot)
{
    std::vector<joint> bones = joints({{3, 0}, {0, -1}, {1, 0}, {2, 1}, {4, -1}});
    skeleton_tree tree;
    ASSERT_TRUE(tree.build(bones));
    ASSERT_TRUE(tree.root());
    EXPECT_EQ(tree.root(), &tree.nodes()[1]);
    ASSERT_EQ(tree.root()->children().size(), 2u);
    EXPECT_EQ(tree.root()->children()[0]->name(), "bone_3") << "in the order of the records";
    EXPECT_EQ(tree.root()->children()[1]->name(), "bone_1");
    EXPECT_EQ(tree.find(2)->parent(), tree.find(1));
    EXPECT_EQ(tree.find(2)->root(), tree.root());
    EXPECT_EQ(tree.find(4)->parent(), nullptr);
    EXPECT_EQ(tree.find(5), nullptr);

    std::vector<joint> others = joints({{0, 1}, {1, 0}});
    EXPECT_FALSE(tree.build(others));
    EXPECT_EQ(tree.root(), nullptr);
    EXPECT_TRUE(tree.find(0)->children().empty()) << "bones of a ring hang nowhere";
}

TEST(skeleton_tree, aChildTurnsItsOwnWayAndThenItsParents)
{
    // Root at (1, 2, 3), turned about z. The child is 2 along the root's x, which now points along y, and turned
    // about x; its child is 1 along that one's y: about x it becomes z, which the root leaves alone.
    std::vector<joint> bones =
        joints({{0, -1, {1, 2, 3}, about_z_90}, {1, 0, {2, 0, 0}, about_x_90}, {2, 1, {0, 1, 0}, about_z_90}});
    skeleton_tree tree;
    ASSERT_TRUE(tree.build(bones));
    const auto nodes = tree.nodes();
    expectNear(nodes[0].worldTranslation(), {1, 2, 3}, "root");
    expectNear(nodes[1].worldTranslation(), {1, 4, 3}, "child");
    expectNear(nodes[1].worldRotation(), {0.5f, 0.5f, 0.5f, 0.5f}, "child: x then z");
    expectNear(nodes[2].worldTranslation(), {1, 4, 4}, "grandchild");
    // z, then x, then z: x goes to y, z, z.
    expectNear(glm::vec3(nodes[2].worldMatrix() * glm::vec4(1, 0, 0, 0)), {0, 0, 1}, "grandchild's x");

    bones[0].translation = {0, 0, 0};
    tree.updateWorld();
    expectNear(nodes[2].worldTranslation(), {0, 2, 1}, "the root has moved");
}

TEST(skeleton_tree, longChainsAndLongRingsTakeNoStack)
{
    constexpr std::int32_t length = 200000;
    std::vector<test_bone> chain;
    for (std::int32_t i = 0; i < length; ++i)
        chain.push_back({static_cast<std::uint32_t>(i), i - 1, {0.5f, 0, 0}});
    std::vector<joint> bones = joints(chain);
    skeleton_tree tree;
    EXPECT_TRUE(tree.build(bones));
    EXPECT_EQ(tree.nodes().back().worldTranslation().x, length / 2);
    bones[0].parent = length - 1;
    EXPECT_FALSE(tree.build(bones));
    EXPECT_EQ(tree.nodes().back().worldTranslation().x, 0.5f);
}

} // namespace

} // namespace korvane
