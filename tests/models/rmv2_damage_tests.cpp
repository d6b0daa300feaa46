// Damaged models: cut at every length, patched at every byte, and the particular lies a hostile file can tell. Whatever
// is read must hold together; whatever is refused must say where.

#include "Korvane/models/rmv2_file.h"
#include "tests/support/model_builder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using test::test_group;
using test::test_model;

std::string sampleModel(std::uint32_t version)
{
    test_group one, two;
    one.vertex_format = 4;
    one.attachments = {{"be_prop_0", 1.0f}};
    two.vertex_format = 1;
    two.stride = 16;
    two.vertices = std::string(60, '\x01');
    test_model source;
    source.version = version;
    source.is_wide = version == 5;
    source.lods = {{one, two}, {one}};
    return source.bytes();
}

// What every loaded model must keep, however odd its file was.
void validate(const rmv2_file& model)
{
    const RMV2_FILE_DATA& data = model.data();
    ASSERT_EQ(data.lods.size(), data.lod_count);
    for (const lod_data& lod : data.lods)
    {
        ASSERT_EQ(lod.groups.size(), lod.header.group_count);
        for (const group_data& group : lod.groups)
        {
            ASSERT_EQ(group.textures.size(), group.header.texture_count);
            ASSERT_EQ(group.attachments.size(), group.header.attachment_count);
            ASSERT_EQ(group.store.indices.size(), group.header.index_count);
            ASSERT_TRUE(group.store.vertices.size() == 0 || group.store.vertices.size() == group.header.vertex_count);
            for (const texture_entry& texture : group.textures)
                ASSERT_LE(texture.path_field.fileOffset() + texture.path_field.width(), model.image().size());
            static_cast<void>(model.influences(group));
        }
    }
}

void openDamaged(const std::string& bytes, const std::string& what)
{
    SCOPED_TRACE(what);
    rmv2_file model;
    failure why;
    if (model.openFromMemory(memory_file(bytes), "damaged", why))
        return validate(model);
    EXPECT_TRUE(why);
    EXPECT_FALSE(why.what.empty());
    EXPECT_EQ(why.path, "damaged");
    EXPECT_LE(why.offset, bytes.size());
    EXPECT_TRUE(model.data().lods.empty());
}

} // namespace

TEST(rmv2_damage, everyCutIsRefused)
{
    for (const std::uint32_t version : {5u, 7u})
    {
        const std::string bytes = sampleModel(version);
        for (std::size_t size = 0; size < bytes.size(); ++size)
        {
            rmv2_file model;
            failure why;
            ASSERT_FALSE(model.openFromMemory(memory_file(bytes.substr(0, size)), "cut", why)) << size;
            ASSERT_FALSE(why.what.empty());
        }
    }
}

TEST(rmv2_damage, everyPatchedByteIsReadOrRefused)
{
    for (const std::uint32_t version : {5u, 6u, 8u})
    {
        const std::string bytes = sampleModel(version);
        for (std::size_t at = 0; at < bytes.size(); ++at)
            for (const int value : {0, 255, bytes[at] + 1, bytes[at] - 1})
            {
                std::string patched = bytes;
                patched[at] = static_cast<char>(static_cast<unsigned char>(value));
                openDamaged(patched, "byte " + std::to_string(at) + " = " + std::to_string(value & 255));
            }
    }
}

TEST(rmv2_damage, liesAreRefusedWithTheirPlace)
{
    const std::size_t lod = 140;                 // version 7: the LOD header
    const std::size_t group = lod + 28;          // the only group
    const std::size_t counts = group + 60 + 732; // behind a shader name of 12 bytes
    const struct
    {
        const char* name;
        std::size_t at;
        std::uint32_t value;
        failure_kind kind;
        const char* field;
    } rows[] = {
        {"other magic", 0, 0x31564d52, failure_kind::unsupported, "magic"},
        {"version 4", 4, 4, failure_kind::unsupported, "version"},
        {"version 9", 4, 9, failure_kind::unsupported, "version"},
        {"256 LODs", 8, 256, failure_kind::malformed, "lod_count"},
        {"more LODs than bytes", 8, 0xffffffff, failure_kind::malformed, "lod_count"},
        {"groups", lod, 0xffffffff, failure_kind::malformed, "LOD header 0, group_count"},
        {"256 groups", lod, 256, failure_kind::malformed, "LOD header 0, group_count"},
        {"start", lod + 12, 0xffffffff, failure_kind::malformed, "LOD header 0, start_offset"},
        {"group size", group + 4, 0xffffffff, failure_kind::malformed, "LOD 0, group 0, group_size"},
        {"vertex offset", group + 8, 0xffffffff, failure_kind::malformed, "LOD 0, group 0, vertex_offset"},
        {"vertices", group + 12, 0xffffffff, failure_kind::malformed, "LOD 0, group 0, vertex_count"},
        {"vertices that make the stride short", group + 12, 4, failure_kind::malformed, "LOD 0, group 0, vertex size"},
        {"indices before vertices", group + 16, 0, failure_kind::malformed, "LOD 0, group 0, index_offset"},
        {"indices", group + 20, 0xffffffff, failure_kind::truncated, "LOD 0, group 0, index data"},
        {"attachments", counts, 0xffffffff, failure_kind::malformed, "LOD 0, group 0, attachment_count"},
        {"attachments beyond the file", counts, 255, failure_kind::truncated,
         "LOD 0, group 0, attachment point 4, matrix"},
        {"textures", counts + 4, 256, failure_kind::malformed, "LOD 0, group 0, texture_count"},
    };
    for (const auto& row : rows)
    {
        test::bytes_out patched;
        patched.text(test_model{}.bytes());
        patched.putU32(row.at, row.value);
        rmv2_file model;
        failure why;
        EXPECT_FALSE(model.openFromMemory(memory_file(patched.str()), "lie", why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name << ": " << describe(why);
        EXPECT_EQ(why.field, row.field) << row.name << ": " << describe(why);
        EXPECT_FALSE(model.isLoaded());
    }
}

TEST(rmv2_damage, manyGroupsOnTheSameBytesAreNotAnAmplifier)
{
    // 255 LODs that all point at one group whose size is 0: each would decode the same vertices once more.
    test_model source;
    source.lods.assign(255, {test_group{}});
    test::bytes_out patched;
    patched.text(source.bytes());
    const std::uint32_t first = 140 + 255 * 28;
    for (std::size_t i = 0; i < 255; ++i)
        patched.putU32(140 + i * 28 + 12, first);
    patched.putU32(first + 4, 0);
    rmv2_file model;
    failure why;
    const std::string bytes = patched.str().substr(0, first + 4096);
    EXPECT_FALSE(model.openFromMemory(memory_file(bytes), "overlap", why));
    EXPECT_NE(why.what.find("overlap"), std::string::npos) << describe(why);
}

TEST(rmv2_damage, aFailedValidationLeavesTheTextsPeopleSee)
{
    rmv2_file model;
    failure why;
    EXPECT_FALSE(model.openFromMemory(memory_file(std::string_view("PNG, surely not a model")), "x", why));
    EXPECT_EQ(lastModelError(), "ERROR: File is NOT a valid .rigid_model_v2 file!");
    EXPECT_EQ(model.status().substr(0, 7), "ERROR: ");
    EXPECT_EQ(model.log(), model.status() + " \n");

    failure missing;
    EXPECT_FALSE(model.open("no/such/model.rigid_model_v2", missing));
    EXPECT_EQ(missing.kind, failure_kind::not_found);
    EXPECT_EQ(model.errorCode(), 4);
    EXPECT_EQ(model.name(), "model");
}

} // namespace korvane
