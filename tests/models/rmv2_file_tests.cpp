#include "EASY_GUI/services/text.h"
#include "Korvane/models/rmv2_file.h"
#include "tests/support/model_builder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using test::test_group;
using test::test_model;

bool openBytes(rmv2_file& model, const std::string& bytes, failure& why)
{
    return model.openFromMemory(memory_file(bytes), "test.rigid_model_v2", why);
}

const group_data& groupOf(const rmv2_file& model, std::size_t lod, std::size_t group)
{
    return model.data().lods.at(lod).groups.at(group);
}

// Three weighted vertices of 28 bytes whose bone and weight bytes are given.
std::string weightedVertices(std::initializer_list<std::array<unsigned char, 3>> bones_and_weight)
{
    std::string bytes;
    for (const auto& vertex : bones_and_weight)
    {
        std::string raw(28, '\0');
        for (std::size_t i = 0; i < 3; ++i)
            raw[8 + i] = static_cast<char>(vertex[i]);
        bytes += raw;
    }
    return bytes;
}

} // namespace

TEST(rmv2_file, allVersionsGiveTheSameModel)
{
    for (const std::uint32_t version : {5u, 6u, 7u, 8u})
    {
        test_model source;
        source.version = version;
        source.is_wide = version == 5;
        test_group first, second;
        first.attachments = {{"be_prop_0", 2.5f}, {"be_prop_1", 3.5f}};
        first.textures = {{0, "tex/a.dds"}, {1, "tex/b.dds"}};
        first.alpha_mode = 0xffffffff;
        first.bytes_before_vertices = 16;
        second.group_name = "second";
        second.shader_name = "x";
        source.lods = {{first, second}, {second}};

        rmv2_file model;
        failure why;
        ASSERT_TRUE(openBytes(model, source.bytes(), why)) << version << ": " << describe(why);
        EXPECT_EQ(model.status(), "SUCCESS: File: is valid rigid_model_v2 file!");
        EXPECT_EQ(model.data().skeleton_id, "humanoid01");
        ASSERT_EQ(model.data().lods.size(), 2u);
        EXPECT_EQ(model.data().lods[1].header.lod_distance, 200.0f);
        EXPECT_EQ(model.data().lods[1].header.lod_index, version >= 7 ? 1u : 0u);
        const group_data& group = groupOf(model, 0, 0);
        EXPECT_EQ(group.header.shader_name, "rigid_shade");
        EXPECT_EQ(group.header.group_name, "body");
        EXPECT_EQ(group.header.texture_directory, "variantmeshes/tex");
        EXPECT_EQ(group.header.bbox_max, glm::vec3(1, 2, 3));
        ASSERT_EQ(group.attachments.size(), 2u);
        EXPECT_EQ(group.attachments[1].name, "be_prop_1");
        EXPECT_EQ(group.attachments[1].matrix[0], 3.5f);
        EXPECT_EQ(group.attachments[1].kept, 7u);
        ASSERT_EQ(group.textures.size(), 2u);
        EXPECT_EQ(group.textures[1].path, "tex/b.dds");
        EXPECT_EQ(group.textures[1].path_field.text(), "tex/b.dds");
        EXPECT_EQ(group.alpha_mode_field.u32(), 0xffffffffu);
        EXPECT_EQ(group.store.vertex_size, 32);
        EXPECT_EQ(group.store.indices, (std::vector<std::uint16_t>{0, 2, 1})); // winding flipped
        EXPECT_EQ(groupOf(model, 0, 1).header.shader_name, "x");               // what follows the name floats
        EXPECT_EQ(groupOf(model, 0, 1).header.group_name, "second");
        EXPECT_EQ(groupOf(model, 1, 0).store.vertices.size(), 3u);
    }
}

TEST(rmv2_file, everyFieldStartsWithTheFilesOwnBytes)
{
    test_model source;
    source.lods[0][0].textures = {{0, std::string("a.dds\0leftover", 14)}};
    const std::string bytes = source.bytes();
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, bytes, why));
    const group_data& group = groupOf(model, 0, 0);
    for (const fixed_field* field : {&group.shader_name_field, &group.group_name_field, &group.texture_directory_field,
                                     &group.alpha_mode_field, &group.textures[0].path_field})
    {
        const std::string stored(reinterpret_cast<const char*>(field->bytes().data()), field->width());
        EXPECT_EQ(stored, bytes.substr(field->fileOffset(), field->width()));
    }
    EXPECT_EQ(group.shader_name_field.width(), 12u);
    EXPECT_EQ(group.textures[0].path, "a.dds");
}

TEST(rmv2_file, aFixedFieldKeepsItsWidth)
{
    const std::string stored(8, 'x');
    fixed_field padded(0, std::as_bytes(std::span(stored)), field_mode::zero_padded);
    padded.setText("0123456789");
    EXPECT_EQ(padded.text(), "0123456"); // the last byte stays zero
    padded.setText("ab");
    EXPECT_EQ(untilZero(padded.bytes().subspan(2)), "");
    fixed_field raw(0, std::as_bytes(std::span(stored)), field_mode::raw);
    raw.setText("0123456789");
    EXPECT_EQ(raw.text(), "01234567");
    fixed_field wide(0, std::as_bytes(std::span(stored)), field_mode::zero_padded, true);
    wide.setText("abcdef");
    EXPECT_EQ(wide.text(), "abc");
    fixed_field nothing;
    nothing.setText("x");
    EXPECT_EQ(nothing.width(), 0u);
}

TEST(rmv2_file, version5TextsAreWideOnlyWhenTheirBytesSaySo)
{
    test_model source;
    source.version = 5;
    source.lods[0][0].attachments = {{"narrow", 1.0f}};
    for (const bool is_wide : {false, true})
    {
        source.is_wide = is_wide;
        rmv2_file model;
        failure why;
        ASSERT_TRUE(openBytes(model, source.bytes(), why)) << describe(why);
        EXPECT_EQ(groupOf(model, 0, 0).attachments[0].name, "narrow");
        EXPECT_EQ(groupOf(model, 0, 0).textures[0].path, "tex/body_diffuse.dds");
        EXPECT_EQ(groupOf(model, 0, 0).textures[0].path_field.isWide(), is_wide);
        EXPECT_EQ(model.data().second_text, "second");
    }
}

TEST(rmv2_file, aReaderThatSawVersion5ReadsLaterFilesWithItsWidths)
{
    test_model five, six;
    five.version = 5;
    six.version = 6;
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, five.bytes(), why));
    EXPECT_FALSE(openBytes(model, six.bytes(), why)); // the header is looked for behind 268 bytes
    EXPECT_FALSE(model.isLoaded());
}

TEST(rmv2_file, undecodedFormatsReadIndicesAtTheVertexDataAndKeepTheNextGroup)
{
    test_group undecoded, next;
    undecoded.vertex_format = 2;
    undecoded.vertices = std::string("\x02\x00\x01\x00\x00\x00", 6) + std::string(90, '\x55');
    next.group_name = "next";
    test_model source;
    source.lods = {{undecoded, next}};
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, source.bytes(), why)) << describe(why);
    EXPECT_EQ(groupOf(model, 0, 0).store.vertices.size(), 0u);
    EXPECT_EQ(groupOf(model, 0, 0).store.indices, (std::vector<std::uint16_t>{2, 0, 1}));
    EXPECT_EQ(groupOf(model, 0, 0).store.indices_out_of_range, 3u);
    EXPECT_EQ(groupOf(model, 0, 1).header.group_name, "next");
}

TEST(rmv2_file, aCollisionVertexTakesFourBytesMoreThanItsStride)
{
    test_group collision, next;
    collision.vertex_format = 1;
    collision.stride = 16;
    collision.vertices = std::string(3 * 20, '\0');
    next.group_name = "next";
    test_model source;
    source.lods = {{collision, next}};
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, source.bytes(), why)) << describe(why);
    EXPECT_EQ(groupOf(model, 0, 0).store.vertex_size, 16);
    EXPECT_EQ(groupOf(model, 0, 0).store.indices, (std::vector<std::uint16_t>{0, 2, 1}));
    EXPECT_EQ(groupOf(model, 0, 1).header.group_name, "next");
}

TEST(rmv2_file, emptyGroupsAndOddIndicesAreKeptAsTheyAre)
{
    test_group empty, odd;
    empty.vertex_count = 0;
    empty.vertices.clear();
    empty.indices.clear();
    odd.indices = {0, 1, 2, 3, 1}; // one triangle, two left over, one beyond the three vertices
    test_model source;
    source.lods = {{empty, odd}};
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, source.bytes(), why)) << describe(why);
    EXPECT_EQ(groupOf(model, 0, 0).store.vertex_size, -1);
    EXPECT_EQ(groupOf(model, 0, 1).store.indices, (std::vector<std::uint16_t>{0, 2, 1, 3, 1}));
    EXPECT_EQ(groupOf(model, 0, 1).store.indices_out_of_range, 1u);
}

TEST(rmv2_file, influencesLeaveOutZeroWeightsAndTheFourthBone)
{
    test_group weighted, cinematic;
    weighted.vertex_format = 3;
    weighted.stride = 28;
    weighted.vertices = weightedVertices({{5, 6, 255}, {6, 5, 0}, {5, 7, 51}});
    cinematic.vertex_format = 4;
    cinematic.vertices = std::string(96, '\0');
    for (std::size_t i = 0; i < 4; ++i) // bones 1 to 4, a quarter each, on the first vertex
    {
        cinematic.vertices[8 + i] = static_cast<char>(1 + i);
        cinematic.vertices[12 + i] = '\x40';
    }
    test_model source;
    source.lods = {{weighted, cinematic}};
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, source.bytes(), why)) << describe(why);

    const influence_table table = model.influences(groupOf(model, 0, 0));
    ASSERT_EQ(table.bones.size(), 2u);
    EXPECT_EQ(table.bones[0].bone, 5u); // vertex 0 wholly, vertex 1 wholly (weight 255 - 0), vertex 2 a fifth
    EXPECT_EQ(table.bones[0].vertices, (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(table.bones[0].weights[2], 51.0f / 255.0f);
    EXPECT_EQ(table.bones[1].bone, 7u);
    EXPECT_EQ(table.bones[1].weights, (std::vector<float>{204.0f / 255.0f}));
    EXPECT_EQ(table.by_vertex[1].size(), 1u);
    EXPECT_EQ(table.position_of_bone.count(6), 0u); // named by bytes, but never with a weight

    const influence_table four = model.influences(groupOf(model, 0, 1));
    ASSERT_EQ(four.bones.size(), 3u);
    EXPECT_EQ(four.bones[2].bone, 3u);
}

TEST(rmv2_file, gapsBetweenLodsShiftTheVerticesBecauseTheirStartRunsOn)
{
    test_model source;
    source.lods = {{test_group{}}, {test_group{}}};
    std::string bytes = source.bytes();
    const std::size_t second_start = 140 + 2 * 28 + (bytes.size() - 140 - 2 * 28) / 2;
    bytes.insert(second_start, std::string(8, '\x11'));
    bytes[140 + 28 + 12] = static_cast<char>(static_cast<unsigned char>(second_start + 8)); // low byte only
    bytes[140 + 28 + 13] = static_cast<char>(static_cast<unsigned char>((second_start + 8) >> 8));
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, bytes, why)) << describe(why);
    EXPECT_EQ(groupOf(model, 1, 0).header.group_name, "body");
    EXPECT_EQ(groupOf(model, 1, 0).vertex_data_offset - groupOf(model, 0, 0).vertex_data_offset,
              groupOf(model, 0, 0).header.group_size);
}

TEST(rmv2_file, onlyTheLow16BitsOfTheLodCountCount)
{
    std::string bytes = test_model{}.bytes();
    bytes[10] = '\x07';
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, bytes, why)) << describe(why);
    EXPECT_EQ(model.data().lod_count, 1u);
}

TEST(rmv2_file, centringMovesTheUnionOfTheBoxesToTheOrigin)
{
    test_group left, right; // boxes -1..1 and 1..5 in x: extent 6, centre 2
    right.bbox_min = {1, -2, -3};
    right.bbox_max = {5, 2, 3};
    test_model source;
    source.lods = {{left, right}};
    rmv2_file model;
    failure why;
    ASSERT_TRUE(openBytes(model, source.bytes(), why));
    const glm::vec3 before = groupOf(model, 0, 0).store.vertices[0].position;
    model.centre(0);
    EXPECT_EQ(groupOf(model, 0, 0).store.vertices[0].position, before + glm::vec3(-2, 0, 0));
    EXPECT_FLOAT_EQ(model.modelScale(), 0.3f);
}

} // namespace korvane
