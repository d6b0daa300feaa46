// Reads the generated models straight from their bytes, by the layout in docs/formats/rigid_model_v2.md and without the
// program's reader: two people who made the same mistake would not notice it.

#include "tests/demo_data/made_files.h"
#include "tools/demo_data/humanoid_skeleton.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>

namespace korvane::demo
{

namespace
{

float halfAt(std::span<const std::byte> bytes, std::size_t position)
{
    const auto bits = valueAt<std::uint16_t>(bytes, position);
    const int exponent = (bits >> 10) & 31, mantissa = bits & 1023;
    const double size = exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
    return static_cast<float>((bits & 0x8000) != 0 ? -size : size);
}

struct group_view
{
    std::size_t start = 0, size = 0, vertices = 0, indices = 0; // positions in the file, but size
    std::uint32_t vertex_count = 0, index_count = 0, stride = 0, format = 0;
    std::array<float, 6> box{};
};

struct layout // where a format keeps things; 99: nowhere
{
    std::size_t skipped, normal, bones, bone_count, weights;
};

layout layoutOf(std::uint32_t format)
{
    switch (format)
    {
    case 1:
        return {4, 10, 99, 0, 99};
    case 2:
        return {0, 12, 99, 0, 99};
    case 3:
        return {0, 12, 8, 2, 10};
    case 4:
        return {0, 16, 8, 4, 12};
    default:
        return {0, 16, 99, 0, 99};
    }
}

// Walks the file from block to block; everything has to meet exactly.
std::vector<group_view> groupsOf(std::span<const std::byte> bytes)
{
    std::vector<group_view> groups;
    const auto version = valueAt<std::uint32_t>(bytes, 4), lods = valueAt<std::uint32_t>(bytes, 8);
    const bool wide = version == 5;
    const std::size_t table = wide ? 268 : 140, record = version >= 7 ? 28 : 20;
    std::size_t position = table + record * lods;
    for (std::size_t lod = 0; lod < lods; ++lod)
    {
        EXPECT_EQ(valueAt<std::uint32_t>(bytes, table + record * lod + 12), position) << "LODs follow each other";
        for (std::uint32_t i = valueAt<std::uint32_t>(bytes, table + record * lod); i > 0; --i)
        {
            group_view group;
            group.start = position;
            group.size = valueAt<std::uint32_t>(bytes, position + 4);
            group.vertex_count = valueAt<std::uint32_t>(bytes, position + 12);
            group.index_count = valueAt<std::uint32_t>(bytes, position + 20);
            for (std::size_t k = 0; k < 6; ++k)
                group.box[k] = valueAt<float>(bytes, position + 24 + k * 4);
            const std::size_t tail = position + 48 + (wide ? 24 : 12); // after the shader name of eleven characters
            EXPECT_EQ(valueAt<std::uint8_t>(bytes, tail - 1), 0);
            EXPECT_NE(valueAt<std::uint8_t>(bytes, tail - (wide ? 4 : 2)), 0);
            group.format = valueAt<std::uint16_t>(bytes, tail + 20);
            const auto attachments = valueAt<std::uint32_t>(bytes, tail + 732);
            const auto textures = valueAt<std::uint32_t>(bytes, tail + 736);
            const std::size_t header_end =
                tail + 880 + attachments * (wide ? 116u : 84u) + textures * (wide ? 516u : 260u) + 8;
            group.vertices = position + valueAt<std::uint32_t>(bytes, position + 8);
            EXPECT_EQ(group.vertices, header_end);
            const auto index_offset = valueAt<std::uint32_t>(bytes, position + 16);
            group.stride = (index_offset - valueAt<std::uint32_t>(bytes, position + 8)) / group.vertex_count;
            group.indices = group.vertices + group.vertex_count * (group.stride + layoutOf(group.format).skipped);
            EXPECT_EQ(group.indices + group.index_count * 2, position + group.size);
            position += group.size;
            groups.push_back(group);
        }
    }
    EXPECT_EQ(position, bytes.size());
    return groups;
}

float component(std::span<const std::byte> bytes, const group_view& group, std::size_t position)
{
    const auto stored = static_cast<float>(valueAt<std::uint8_t>(bytes, position));
    return group.format == 4 ? 2 * stored / 255 - 1 : stored / 127 - 1;
}

void checkVertices(std::span<const std::byte> bytes, const group_view& group)
{
    const layout where = layoutOf(group.format);
    std::array<float, 6> box{1e30f, 1e30f, 1e30f, -1e30f, -1e30f, -1e30f};
    const std::size_t pivot = group.start + 48 + 12 + 568; // not in version 5, where it is zero
    const bool has_pivot = valueAt<std::uint32_t>(bytes, 4) != 5;
    for (std::uint32_t i = 0; i < group.vertex_count; ++i)
    {
        const std::size_t at = group.vertices + i * (group.stride + where.skipped) + where.skipped;
        float length = 0;
        for (std::size_t k = 0; k < 3; ++k)
        {
            const float n = component(bytes, group, at + where.normal + k);
            length += n * n;
            const float p = halfAt(bytes, at + k * 2) + (has_pivot ? valueAt<float>(bytes, pivot + k * 4) : 0.0f);
            box[k] = std::min(box[k], p);
            box[3 + k] = std::max(box[3 + k], p);
        }
        ASSERT_NEAR(std::sqrt(length), 1.0f, 0.02f) << "normal of vertex " << i;
        if (where.bone_count == 0)
            continue;
        int sum = 0;
        for (std::size_t k = 0; k < where.bone_count; ++k)
        {
            sum += valueAt<std::uint8_t>(bytes, at + where.weights + k);
            ASSERT_LT(valueAt<std::uint8_t>(bytes, at + where.bones + k), humanoidBones().size());
        }
        ASSERT_EQ(sum, 255) << "weights of vertex " << i;
    }
    for (std::size_t k = 0; k < 6; ++k)
        EXPECT_NEAR(box[k], group.box[k], 0.003f) << "bounding box, " << k;
}

void checkIndices(std::span<const std::byte> bytes, const group_view& group)
{
    ASSERT_EQ(group.index_count % 3, 0u);
    const layout where = layoutOf(group.format);
    std::set<std::uint16_t> used;
    std::size_t against = 0; // triangles that turn their back to their vertices' normals
    for (std::uint32_t i = 0; i < group.index_count; i += 3)
    {
        double p[3][3] = {}, facing[3] = {};
        for (std::size_t corner = 0; corner < 3; ++corner)
        {
            const auto index = valueAt<std::uint16_t>(bytes, group.indices + (i + corner) * 2);
            ASSERT_LT(index, group.vertex_count);
            used.insert(index);
            const std::size_t at = group.vertices + index * (group.stride + where.skipped) + where.skipped;
            for (std::size_t k = 0; k < 3; ++k)
            {
                p[corner][k] = halfAt(bytes, at + k * 2);
                facing[k] += static_cast<double>(component(bytes, group, at + where.normal + k));
            }
        }
        const double a[] = {p[1][0] - p[0][0], p[1][1] - p[0][1], p[1][2] - p[0][2]};
        const double b[] = {p[2][0] - p[0][0], p[2][1] - p[0][1], p[2][2] - p[0][2]};
        const double normal[] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        // Triangles of a few millimetres are bent by the rounding of positions to halves and do not count. Mirrored
        // files are counter-clockwise from outside, the others (5, 2) clockwise; format 1 mirrors z but keeps its
        // normals' signs to itself.
        const double side = group.format == 5 || group.format == 2 ? -1 : 1;
        if (group.format != 1 && side * (normal[0] * facing[0] + normal[1] * facing[1] + normal[2] * facing[2]) < -2e-5)
            ++against;
    }
    EXPECT_EQ(used.size(), group.vertex_count) << "vertices without a triangle";
    EXPECT_LE(against, group.index_count / 3 / 100 + 1) << "triangles against their normals";
}

} // namespace

// One model has faults, for whoever wants to see them found.
bool isSoundModel(std::string_view path)
{
    return path.ends_with(".rigid_model_v2") && !path.ends_with("_faulty.rigid_model_v2");
}

TEST(demo_models, every_model_is_sound_from_its_first_byte_to_its_last)
{
    std::set<std::uint32_t> versions, formats;
    for (const file& each : allFiles())
    {
        if (!isSoundModel(each.path))
            continue;
        SCOPED_TRACE(each.path);
        ASSERT_EQ(valueAt<std::uint32_t>(each.bytes, 0), 0x32564D52u);
        versions.insert(valueAt<std::uint32_t>(each.bytes, 4));
        for (const group_view& group : groupsOf(each.bytes))
        {
            SCOPED_TRACE("group at " + std::to_string(group.start));
            formats.insert(group.format);
            checkVertices(each.bytes, group);
            checkIndices(each.bytes, group);
        }
    }
    EXPECT_EQ(versions, (std::set<std::uint32_t>{5, 6, 7, 8}));
    EXPECT_EQ(formats, (std::set<std::uint32_t>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(demo_models, a_large_scale_is_split_where_sixteen_bit_indices_end)
{
    options large;
    large.scale = max_scale;
    std::vector<group_view> groups;
    failure why;
    EXPECT_FALSE(makeFiles(
        large,
        [&](const file& made) {
            groups = groupsOf(made.bytes); // the guard; the rest is not needed
            return false;
        },
        why));
    std::uint64_t triangles = 0;
    for (const group_view& group : groups)
    {
        EXPECT_LE(group.vertex_count, 65535u);
        triangles += group.index_count / 3;
    }
    EXPECT_GT(triangles, 1'000'000u);
}

TEST(demo_models, the_sword_is_in_the_right_hand)
{
    // The reader negates x, and the figure looks along -z: its right is at -x when decoded, so +x in the file.
    const file* guard = fileNamed("demo_guard.rigid_model_v2");
    ASSERT_NE(guard, nullptr);
    const auto groups = groupsOf(guard->bytes);
    int found = 0;
    for (const group_view& group : groups)
    {
        const std::string_view name = reinterpret_cast<const char*>(guard->bytes.data()) + group.start + 60 + 22;
        const float middle = (group.box[0] + group.box[3]) / 2;
        if (name == "sword_blade" || name == "shield")
        {
            EXPECT_EQ(middle > 0, name == "sword_blade") << name;
            EXPECT_GT(std::abs(middle), 0.2f) << name;
            ++found;
        }
    }
    EXPECT_EQ(found, 6);                    // in three LODs
    EXPECT_GT(groups.front().box[4], 1.7f); // the head's top
}

TEST(demo_models, every_texture_that_a_model_names_is_there)
{
    std::set<std::string> there;
    for (const file& each : allFiles())
        there.insert(each.path);
    const std::string figure = "variantmeshes/wh_variantmodels/hu1/demo/demo_guard.rigid_model_v2";
    ASSERT_TRUE(there.contains(figure));
    std::size_t named = 0;
    for (const file& each : allFiles())
    {
        if (!isSoundModel(each.path))
            continue;
        const std::string text(reinterpret_cast<const char*>(each.bytes.data()), each.bytes.size());
        for (std::size_t at = text.find(".dds"); at != std::string::npos; at = text.find(".dds", at + 1), ++named)
        {
            const std::size_t from = text.rfind('\0', at) + 1;
            EXPECT_TRUE(there.contains(text.substr(from, at + 4 - from))) << text.substr(from, at + 4 - from);
        }
    }
    EXPECT_GT(named, 100u);
}

TEST(demo_skeleton, parents_come_first_and_names_are_unique)
{
    std::set<std::string_view> names;
    int index = 0;
    for (const bone& each : humanoidBones())
    {
        EXPECT_TRUE(names.insert(each.name).second) << each.name;
        EXPECT_EQ(each.parent < 0, index == 0) << each.name;
        EXPECT_LT(each.parent, index) << each.name;
        ++index;
    }
    EXPECT_GE(index, 60);
}

} // namespace korvane::demo
