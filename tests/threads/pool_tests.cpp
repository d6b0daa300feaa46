// Work that is only shared when there is much of it, and that no other test gives enough to.

#include "Korvane/models/rmv2_file.h"
#include "tests/support/model_builder.h"

#include <gtest/gtest.h>

namespace korvane
{

TEST(pools, theGroupsOfALargeModelAreAlikeWhoeverDecodesThem)
{
    test::test_group group;
    group.vertex_format = 0;
    group.stride = 32;
    group.vertex_count = 60'000;
    group.vertices.assign(group.vertex_count * group.stride, '\x3c');
    test::test_model source;
    source.lods = {std::vector<test::test_group>(6, group)};

    rmv2_file model;
    failure why;
    ASSERT_TRUE(model.openFromMemory(memory_file(source.bytes()), "large.rigid_model_v2", why)) << describe(why);
    const std::vector<group_data>& groups = model.data().lods.front().groups;
    ASSERT_EQ(groups.size(), 6u);
    for (const group_data& decoded : groups)
    {
        ASSERT_EQ(decoded.store.vertices.size(), 60'000u);
        EXPECT_EQ(decoded.store.vertices[0].position, groups[0].store.vertices[59'999].position);
    }
}

} // namespace korvane
