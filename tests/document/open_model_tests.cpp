#include "EASY_GUI/services/file_system.h"
#include "Korvane/document/open_model.h"
#include "tests/support/model_builder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace korvane::test
{
namespace
{

class open_model_test : public testing::Test
{
protected:
    void SetUp() override { std::filesystem::create_directories(toPath(m_folder)); }
    void TearDown() override { std::filesystem::remove_all(toPath(m_folder)); }

    std::string write(const std::string& name, const std::string& bytes)
    {
        const std::string path = m_folder + "/" + name;
        failure why;
        EXPECT_TRUE(writeWholeFile(path, bytes, why)) << describe(why);
        return path;
    }
    std::string write(const std::string& name, const test_model& model) { return write(name, model.bytes()); }

    std::string m_folder = toUtf8(std::filesystem::temp_directory_path()) + "/korvane document 李 " +
                           testing::UnitTest::GetInstance()->current_test_info()->name();
};

test_group groupWithFormat(std::uint16_t format, std::size_t stride)
{
    test_group group;
    group.vertex_format = format;
    group.stride = stride;
    group.vertices = std::string(3 * stride, '\x40');
    return group;
}

test_model threeLods()
{
    test_model model;
    model.lods = {{test_group{}, test_group{}, test_group{}}, {test_group{}, test_group{}}, {test_group{}}};
    return model;
}

TEST_F(open_model_test, AFileThatCannotBeOpenedLeavesWhatWasOpen)
{
    open_model document;
    failure why;
    ASSERT_TRUE(document.open(write("good.rigid_model_v2", threeLods()), why));
    document.select({1, 1});
    const auto held = document.data();

    const struct
    {
        const char* name;
        std::string path;
        failure_kind kind;
    } broken[] = {
        {"no such file", m_folder + "/none.rigid_model_v2", failure_kind::not_found},
        {"another format", write("text.rigid_model_v2", std::string(400, 'x')), failure_kind::unsupported},
        {"cut in the first group", write("cut.rigid_model_v2", threeLods().bytes().substr(0, 900)),
         failure_kind::malformed},
        {"no archives", "pack:a.rigid_model_v2", failure_kind::not_found},
    };
    for (const auto& row : broken)
    {
        failure reason;
        EXPECT_FALSE(document.open(row.path, reason)) << row.name;
        EXPECT_EQ(reason.kind, row.kind) << row.name << ": " << describe(reason);
        EXPECT_NE(describe(reason).find(row.path), std::string::npos) << row.name;
        EXPECT_EQ(document.data(), held) << row.name;
        EXPECT_EQ(document.selection(), (model_selection{1, 1})) << row.name;
    }
}

TEST_F(open_model_test, AVersion5ModelLeavesTheNextOneReadable)
{
    test_model old;
    old.version = 5;
    old.is_wide = true;
    open_model document;
    failure why;
    ASSERT_TRUE(document.open(write("five.rigid_model_v2", old), why)) << describe(why);
    EXPECT_TRUE(document.open(write("seven.rigid_model_v2", test_model{}), why)) << describe(why);
}

TEST_F(open_model_test, TheSelectionStaysInsideTheModel)
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
    open_model document;
    document.select({2, 2});
    EXPECT_EQ(document.selection(), (model_selection{-1, -1})) << "without a model";
    EXPECT_EQ(document.selectedGroup(), nullptr);
    failure why;
    ASSERT_TRUE(document.open(write("a.rigid_model_v2", threeLods()), why));
    EXPECT_EQ(document.selection(), (model_selection{0, 0}));
    for (const auto& row : rows)
    {
        document.select(row.wanted);
        EXPECT_EQ(document.selection(), row.got) << row.name;
        EXPECT_NE(document.selectedGroup(), nullptr) << row.name;
    }
    // A smaller model: what it does not have falls back.
    document.select({2, 0});
    ASSERT_TRUE(document.open(write("b.rigid_model_v2", test_model{}), why));
    EXPECT_EQ(document.selection(), (model_selection{0, 0}));
    test_model empty_lod;
    empty_lod.lods = {{}};
    ASSERT_TRUE(document.open(write("c.rigid_model_v2", empty_lod), why)) << describe(why);
    EXPECT_EQ(document.selection(), (model_selection{0, -1}));
    EXPECT_EQ(document.selectedGroup(), nullptr);
}

TEST_F(open_model_test, TheFilePanelNamesTheGameOfTheVersion)
{
    const struct
    {
        std::uint32_t version;
        const char* game;
    } rows[] = {{5, "<error or unknown>"}, {6, "Rome2/Atilla/Thrones"}, {7, "WH/WH2"}, {8, "Three Kingdoms"}};
    for (const auto& row : rows)
    {
        test_model model;
        model.version = row.version;
        model.skeleton_id = "rider\xe9"; // not UTF-8
        rmv2_file file;
        failure why;
        const std::string path = write("m.rigid_model_v2", model);
        ASSERT_TRUE(file.open(path, why)) << describe(why);
        const file_info_content content = fileInfo(file);
        EXPECT_EQ(content.version, std::to_string(row.version));
        EXPECT_EQ(content.game, row.game);
        EXPECT_EQ(content.path, path);
        EXPECT_EQ(content.skeleton_id, "rideré");
    }
}

TEST_F(open_model_test, TheGroupPanelsShowLabelsOfTheFormatAndAlphaMode)
{
    const struct
    {
        test_group group;
        std::uint32_t material, alpha;
        const char* material_name;
        std::optional<std::string> short_label;
        const char* long_label;
        int alpha_position;
    } rows[] = {
        {groupWithFormat(0, 32), 68, 0, "default", "Default", "\"Default\" (static)", 0},
        {groupWithFormat(3, 28), 70, 1, "weighted_skin", "Weighted", "\"Weighted\" (2 weights/verrtx))", 1},
        {groupWithFormat(4, 32), 99, 0xffffffff, "decal_overlay", "Cinematic", "\"Cinematic\" (4 weights/vertex)", 2},
        {groupWithFormat(5, 32), 0, 7, "<UNKNOWN>", std::nullopt, "\"Grass\" (internal)", 3},
        {groupWithFormat(6, 32), 1, 0x40000000, "alpha_blend", std::nullopt, "", 4},
    };
    for (const auto& row : rows)
    {
        test_group group = row.group;
        group.material_id = row.material;
        group.alpha_mode = row.alpha;
        group.material_flags = 0xfffffffe;
        test_model model;
        model.lods = {{test_group{}, group}};
        open_model document;
        failure why;
        ASSERT_TRUE(document.open(write("m.rigid_model_v2", model), why)) << describe(why);
        document.select({0, 1});
        ASSERT_NE(document.selectedGroup(), nullptr);
        const group_info_content info = groupInfo(*document.selectedGroup());
        const group_tool_content tool = groupTool(*document.selectedGroup(), document.selection());
        EXPECT_EQ(info.material_name, row.material_name);
        EXPECT_EQ(info.material_id, std::to_string(row.material));
        EXPECT_EQ(info.vertex_label, row.short_label) << group.vertex_format;
        EXPECT_EQ(info.vertex_format, std::to_string(group.vertex_format));
        EXPECT_EQ(tool.vertex_label, row.long_label) << group.vertex_format;
        EXPECT_EQ(tool.caption, "L(0) G(1)");
        EXPECT_EQ(tool.material_flags, "4294967294");
        EXPECT_EQ(tool.alpha_mode, row.alpha_position) << row.alpha;
    }
}

TEST_F(open_model_test, TextureRowsSplitAtTheLastSeparatorAndEndAfterEight)
{
    test_group group;
    group.textures = {{0, "a/b/c.dds"}, {2, "plain.dds"}, {27, "x\\y/z.dds"}, {1, "ends/"}};
    test_model model;
    model.lods = {{group}};
    open_model document;
    failure why;
    ASSERT_TRUE(document.open(write("m.rigid_model_v2", model), why)) << describe(why);
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
    ASSERT_TRUE(document.open(write("m.rigid_model_v2", model), why)) << describe(why);
    EXPECT_EQ(textureRows(*document.selectedGroup()).back().file, "7.dds");
}

TEST_F(open_model_test, TheListsCountFromOneAndTheSummaryAddsUp)
{
    open_model document;
    failure why;
    ASSERT_TRUE(document.open(write("m.rigid_model_v2", threeLods()), why));
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
    ASSERT_TRUE(document.open(write("l.rigid_model_v2", one), why)) << describe(why);
    EXPECT_EQ(modelSummary(*document.data(), 0), "1 LOD; LOD 1: 1 group, 1,234 vertices, 1 triangle");
}

} // namespace
} // namespace korvane::test
