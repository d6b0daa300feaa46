#include "Korvane/document/open_files.h"
#include "tests/support/model_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

class open_model_test : public testing::Test
{
protected:
    std::string write(const std::string& name, const std::string& bytes)
    {
        writeBytes(m_folder.file(name), bytes);
        return m_folder.file(name);
    }
    std::string write(const std::string& name, const test_model& model) { return write(name, model.bytes()); }

    temporary_folder m_folder;
};

test_model threeLods()
{
    test_model model;
    model.lods = {{test_group{}, test_group{}, test_group{}}, {test_group{}, test_group{}}, {test_group{}}};
    return model;
}

TEST_F(open_model_test, aFileThatCannotBeOpenedLeavesWhatWasOpen)
{
    open_files files;
    open_model& document = files.model();
    failure why;
    ASSERT_TRUE(files.open(write("good.rigid_model_v2", threeLods()), why));
    document.select({1, 1});
    const auto held = document.data();

    const struct
    {
        const char* name;
        std::string path;
        failure_kind kind;
    } broken[] = {
        {"no such file", m_folder.file("none.rigid_model_v2"), failure_kind::not_found},
        {"another format", write("text.rigid_model_v2", std::string(400, 'x')), failure_kind::unsupported},
        {"cut in the first group", write("cut.rigid_model_v2", threeLods().bytes().substr(0, 900)),
         failure_kind::malformed},
        {"no archives", "pack:a.rigid_model_v2", failure_kind::not_found},
    };
    for (const auto& row : broken)
    {
        failure reason;
        EXPECT_FALSE(files.open(row.path, reason)) << row.name;
        EXPECT_EQ(reason.kind, row.kind) << row.name << ": " << describe(reason);
        EXPECT_NE(describe(reason).find(row.path), std::string::npos) << row.name;
        EXPECT_EQ(document.data(), held) << row.name;
        EXPECT_EQ(document.selection(), (model_selection{1, 1})) << row.name;
    }
}

TEST_F(open_model_test, aVersion5ModelLeavesTheNextOneReadable)
{
    test_model old;
    old.version = 5;
    old.is_wide = true;
    open_files files;
    failure why;
    ASSERT_TRUE(files.open(write("five.rigid_model_v2", old), why)) << describe(why);
    EXPECT_TRUE(files.open(write("seven.rigid_model_v2", test_model{}), why)) << describe(why);
}

TEST_F(open_model_test, theSelectionStaysInsideTheModel)
{
    const struct
    {
        const char* name;
        model_selection wanted, got;
    } rows[] = {
        {"valid", {1, 1}, {1, 1}},
        {"last ones", {2, 0}, {2, 0}},
        {"LOD one past the last", {3, 0}, {0, 0}},
        {"LOD far past the last", {5, 2}, {0, 2}},
        {"group one past the LOD's last", {1, 2}, {1, 0}},
        {"nothing chosen", {-1, -1}, {0, 0}},
        {"negative beyond the count", {-7, -7}, {0, 0}},
    };
    open_files files;
    open_model& document = files.model();
    document.select({2, 2});
    EXPECT_EQ(document.selection(), (model_selection{-1, -1})) << "without a model";
    EXPECT_EQ(document.selectedGroup(), nullptr);
    failure why;
    ASSERT_TRUE(files.open(write("a.rigid_model_v2", threeLods()), why));
    EXPECT_EQ(document.selection(), (model_selection{0, 0}));
    for (const auto& row : rows)
    {
        document.select(row.wanted);
        EXPECT_EQ(document.selection(), row.got) << row.name;
        EXPECT_NE(document.selectedGroup(), nullptr) << row.name;
    }
    document.select({2, 0});
    ASSERT_TRUE(files.open(write("a.rigid_model_v2", threeLods()), why));
    EXPECT_EQ(document.selection(), (model_selection{2, 0})) << "the same model again";
    ASSERT_TRUE(files.open(write("other.rigid_model_v2", threeLods()), why));
    EXPECT_EQ(document.selection(), (model_selection{0, 0}));
    document.select({2, 0}); // written smaller meanwhile: what it does not have falls back
    ASSERT_TRUE(files.open(write("other.rigid_model_v2", test_model{}), why));
    EXPECT_EQ(document.selection(), (model_selection{0, 0}));
    test_model empty_lod;
    empty_lod.lods = {{}};
    ASSERT_TRUE(files.open(write("c.rigid_model_v2", empty_lod), why)) << describe(why);
    EXPECT_EQ(document.selection(), (model_selection{0, -1}));
    EXPECT_EQ(document.selectedGroup(), nullptr);
}

TEST_F(open_model_test, textsThatAreNotUtf8AreShownNevertheless)
{
    test_model model;
    model.skeleton_id = "rider\xe9";
    open_files files;
    open_model& document = files.model();
    failure why;
    ASSERT_TRUE(files.open(write("m.rigid_model_v2", model), why)) << describe(why);
    EXPECT_EQ(fileInfo(*document.file()).skeleton_id, "rideré");
}

TEST_F(open_model_test, textureRowsSplitAtTheLastSeparatorAndEndAfterEight)
{
    test_group group;
    group.textures = {{0, "a/b/c.dds"}, {2, "plain.dds"}, {27, "x\\y/z.dds"}, {1, "ends/"}};
    test_model model;
    model.lods = {{group}};
    open_files files;
    open_model& document = files.model();
    failure why;
    ASSERT_TRUE(files.open(write("m.rigid_model_v2", model), why)) << describe(why);
    const struct
    {
        bool is_used;
        const char *type, *directory, *file;
    } rows[] = {{true, "Diffuse", "a/b/", "c.dds"},
                {true, "[unknown type]", "", "plain.dds"},
                {true, "Base Colour", "x\\y/", "z.dds"},
                {true, "Normal Map", "ends/", ""},
                {false, "", "", ""}};
    const texture_rows shown = textureRows(*document.selectedGroup());
    for (std::size_t i = 0; i < std::size(rows); ++i)
    {
        EXPECT_EQ(shown[i].is_used, rows[i].is_used) << i;
        EXPECT_EQ(shown[i].type_name, rows[i].type) << i;
        EXPECT_EQ(shown[i].directory, rows[i].directory) << i;
        EXPECT_EQ(shown[i].file, rows[i].file) << i;
    }

    group.textures.assign(10, {0, "t/0.dds"});
    for (std::size_t i = 0; i < 10; ++i)
        group.textures[i].second = "t/" + std::to_string(i) + ".dds";
    model.lods = {{group}};
    ASSERT_TRUE(files.open(write("m.rigid_model_v2", model), why)) << describe(why);
    EXPECT_EQ(textureRows(*document.selectedGroup()).back().file, "7.dds");
}

TEST_F(open_model_test, theListsCountFromOneAndTheSummaryAddsUp)
{
    open_files files;
    open_model& document = files.model();
    failure why;
    ASSERT_TRUE(files.open(write("m.rigid_model_v2", threeLods()), why));
    const RMV2_FILE_DATA& model = *document.data();
    EXPECT_EQ(lodEntries(model), (std::vector<std::string>{"LOD 1", "LOD 2", "LOD 3"}));
    EXPECT_EQ(groupEntries(model, 1), (std::vector<std::string>{"G 1", "G 2"}));
    EXPECT_TRUE(groupEntries(model, -1).empty());
    EXPECT_EQ(modelSummary(model, 0), "3 LODs; LOD 1: 3 groups, 9 vertices, 3 triangles");
    EXPECT_EQ(modelSummary(model, 2), "3 LODs; LOD 3: 1 group, 3 vertices, 1 triangle");

    test_group large;
    large.vertex_count = 1234;
    large.vertices = std::string(1234 * 32, '\0');
    test_model one;
    one.lods = {{large}};
    ASSERT_TRUE(files.open(write("l.rigid_model_v2", one), why)) << describe(why);
    EXPECT_EQ(modelSummary(*document.data(), 0), "1 LOD; LOD 1: 1 group, 1,234 vertices, 1 triangle");
}

} // namespace
} // namespace korvane::test
