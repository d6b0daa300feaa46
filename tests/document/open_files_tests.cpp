// The document: what is opened by which path, and the archives behind it.

#include "EASY_GUI/services/file_system.h"
#include "Korvane/document/definition_tree.h"
#include "Korvane/document/open_files.h"
#include "Korvane/document/pasted_path.h"
#include "Korvane/game/game_loader.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/program_title.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvane::test
{
namespace
{

constexpr const char* two_models = "<VARIANT_MESH model=\"men\\body.rigid_model_v2\"><SLOT name=\"head\">"
                                   "<VARIANT_MESH model=\"Men/Head.rigid_model_v2\"/></SLOT></VARIANT_MESH>";

test_model modelWithLods(std::size_t count)
{
    test_model model;
    model.lods.assign(count, {test_group{}});
    return model;
}

class open_files_test : public testing::Test
{
protected:
    void TearDown() override { drop(); } // closes the archives before their folder goes

    std::string write(const std::string& name, const std::string& bytes)
    {
        failure why;
        EXPECT_TRUE(writeWholeFile(m_folder.file(name), bytes, why)) << describe(why);
        return m_folder.file(name);
    }
    bool reread(const std::vector<test_entry>& entries)
    {
        drop();
        test_pack pack;
        pack.entries = entries;
        write("a.pack", pack.bytes());
        m_config.add("data_paths", {m_folder.file("")}, false);
        return rereadArchives();
    }
    void drop() { m_files.setGame(std::make_shared<const game_data>()); }
    bool rereadArchives()
    {
        const game_load loaded = game_loader(m_config, m_config_path).reload({{}, {}, [this](const std::string& line) {
                                                                                  m_log.push_back(line);
                                                                              }});
        m_notices = loaded.notices;
        if (loaded.game)
            m_files.setGame(loaded.game);
        return loaded.game != nullptr;
    }
    void open(const std::string& path)
    {
        failure why;
        EXPECT_TRUE(m_files.open(path, why)) << describe(why);
    }

    temporary_folder m_folder;
    config_file m_config;
    std::string m_config_path = m_folder.file("config.cfg");
    std::vector<notice> m_notices;
    std::vector<std::string> m_log;
    open_files m_files;
};

TEST_F(open_files_test, aModelAndADefinitionAreOpenAtTheSameTimeAndTheLastOneIsShown)
{
    const std::string start = test::programTitle("");
    EXPECT_EQ(m_files.title(), start + "RMV2: [no file loaded] VMD: [no file loaded]");
    EXPECT_EQ(m_files.shown(), open_files::kind::nothing);
    EXPECT_NE(m_files.status({}).find("Ctrl+O"), std::string::npos);

    open(write("guard 李.VariantMeshDefinition", two_models));
    EXPECT_EQ(m_files.title(), start + "RMV2: [no file loaded] VMD: [guard 李.VariantMeshDefinition]");
    EXPECT_EQ(m_files.shown(), open_files::kind::definition);
    EXPECT_EQ(m_files.definition().models(),
              (std::vector<std::string>{"men\\body.rigid_model_v2", "men\\head.rigid_model_v2"}));

    open(write("body.rigid_model_v2", modelWithLods(2).bytes()));
    EXPECT_EQ(m_files.title(), start + "RMV2: [body.rigid_model_v2] VMD: [guard 李.VariantMeshDefinition]");
    EXPECT_EQ(m_files.shown(), open_files::kind::model);
    EXPECT_EQ(m_files.status({}), "2 LODs; LOD 1: 1 group, 3 vertices, 1 triangle");

    const std::string broken[] = {write("broken.variantmeshdefinition", "<VARIANT_MESH model=\"a\">"),
                                  m_folder.file("none.variantmeshdefinition"), write("text.rigid_model_v2", "text"),
                                  "pack:men/guard.variantmeshdefinition", "pack:men/a.rigid_model_v2"};
    for (const std::string& path : broken)
    {
        failure why;
        EXPECT_FALSE(m_files.open(path, why)) << path;
        EXPECT_NE(describe(why), "") << path;
        EXPECT_EQ(m_files.title(), start + "RMV2: [body.rigid_model_v2] VMD: [guard 李.VariantMeshDefinition]");
        EXPECT_EQ(m_files.shown(), open_files::kind::model) << path;
        EXPECT_EQ(m_files.definition().models().size(), 2u) << path;
    }
}

TEST_F(open_files_test, aPathThatIsPastedIntoNothingIsOpened)
{
    ASSERT_TRUE(reread({{"men\\body.rigid_model_v2", "x"}, {"men\\body.dds", "x"}}));
    const struct
    {
        const char *pasted, *opened;
    } rows[] = {
        {" \"pack:men/none.rigid_model_v2\"\r\n", "pack:men/none.rigid_model_v2"}, // which says that it is not there
        {"Men/Body.rigid_model_v2\nsecond line", "pack:Men/Body.rigid_model_v2"},
        {"men\\none.rigid_model_v2", ""},
        {"men\\body.dds", ""},
        {"C:\\mods\\a.VariantMeshDefinition", "C:\\mods\\a.VariantMeshDefinition"},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(openablePath(row.pasted, *m_files.game()), row.opened) << row.pasted;
}

TEST_F(open_files_test, theBoxOfABrokenDefinitionHasItsFixedBeginningAndTheParsersText)
{
    const std::string path = write("broken.variantmeshdefinition", "<VARIANT_MESH></SLOT>");
    failure why;
    ASSERT_FALSE(m_files.open(path, why));
    const open_error error = describeOpenFailure(path, why, game_data());
    EXPECT_EQ(error.title, "Error!");
    EXPECT_EQ(error.text.rfind("Loading .variantmeshdefintion failed. \r\nErro string: r\n" + path, 0), 0u)
        << error.text;
    EXPECT_NE(error.text.find("tag"), std::string::npos) << "the parser's own words: " << error.text;
    EXPECT_NE(error.text.find("byte "), std::string::npos) << error.text;
}

TEST_F(open_files_test, theStatusOfADefinitionSaysWhatIsDrawn)
{
    const auto definition = [](std::size_t models, const char* rest) {
        std::string text = "<VARIANT_MESH>";
        for (std::size_t i = 0; i < models; ++i)
            text += "<VARIANT_MESH model=\"m.rigid_model_v2\"/>";
        return text + rest + "</VARIANT_MESH>";
    };
    const char* const dangling = "<VARIANT_MESH_REFERENCE definition=\"gone.variantmeshdefinition\"/>";
    const struct
    {
        std::size_t models;
        const char* rest;
        std::optional<drawn_models> drawn;
        const char* text;
    } rows[] = {
        {4, "", std::nullopt, "guard: 4 models"},
        {1, "", drawn_models{0, 1}, "guard: 1 model, 1 triangle"},
        {2, "", drawn_models{2, 0}, "guard: 2 models; 2 could not be opened (see log.txt)"},
        {0, dangling, drawn_models{}, "guard: names no models; 1 reference not followed (see log.txt)"},
        {2, dangling, drawn_models{1, 3},
         "guard: 2 models, 3 triangles; 1 could not be opened, 1 reference not followed (see log.txt)"},
    };
    ASSERT_TRUE(reread({}));
    for (const auto& row : rows)
    {
        open(write("guard.variantmeshdefinition", definition(row.models, row.rest)));
        EXPECT_EQ(m_files.status(row.drawn), row.text);
    }
    EXPECT_EQ(m_files.definition().emptyNotice({1, 0}), "") << "the other one is drawn";
    EXPECT_TRUE(m_files.definition().emptyNotice({2, 0}).starts_with("None of the 2 models of guard"));
    drop();
    EXPECT_TRUE(m_files.reopen().empty());
    EXPECT_TRUE(m_files.definition().emptyNotice({2, 0}).starts_with("guard names 2 models.\r\n"));
    EXPECT_EQ(m_files.status(drawn_models{2, 0}),
              "guard: 2 models; there are no archives to take them from: set the data folders");
}

TEST_F(open_files_test, pathsIntoTheArchivesAreOpenedInAnyCase)
{
    ASSERT_TRUE(reread(
        {{"men\\body.rigid_model_v2", modelWithLods(3).bytes()}, {"men\\guard.variantmeshdefinition", two_models}}));
    open("pack:Men/Body.rigid_model_v2");
    EXPECT_EQ(lodEntries(*m_files.model().data()).size(), 3u);
    EXPECT_FALSE(fileInfo(*m_files.model().file()).is_on_disk);
    open("pack:men\\GUARD.variantmeshdefinition");
    EXPECT_EQ(m_files.definition().models().size(), 2u);
    EXPECT_EQ(m_files.title(), test::programTitle("RMV2: [Body.rigid_model_v2] VMD: [GUARD.variantmeshdefinition]"));
    failure why;
    EXPECT_FALSE(m_files.open("pack:men", why));
    EXPECT_EQ(why.kind, failure_kind::not_found);
}

TEST_F(open_files_test, reReadingBringsTheArchivesNewContent)
{
    ASSERT_TRUE(reread({{"body.rigid_model_v2", modelWithLods(1).bytes()}, {"a.variantmeshdefinition", two_models}}));
    open("pack:body.rigid_model_v2");
    open("pack:a.variantmeshdefinition");
    m_log.clear();
    ASSERT_TRUE(reread({{"body.rigid_model_v2", modelWithLods(4).bytes()},
                        {"a.variantmeshdefinition", "<VARIANT_MESH model=\"x.rigid_model_v2\"/>"}}));
    ASSERT_GE(m_log.size(), 4u);
    EXPECT_EQ(m_log[0], "Initializing virtual file system (.pack reading)...");
    EXPECT_EQ(m_log[1], ".pack files being sorted...");
    EXPECT_TRUE(m_files.reopen().empty());
    EXPECT_EQ(lodEntries(*m_files.model().data()).size(), 4u);
    EXPECT_EQ(m_files.definition().models(), std::vector<std::string>{"x.rigid_model_v2"});

    ASSERT_TRUE(reread({})); // both are gone: what was open stays, and the person hears of it
    const std::vector<open_error> errors = m_files.reopen();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_NE(errors[0].text.find("pack:body.rigid_model_v2"), std::string::npos) << errors[0].text;
    EXPECT_EQ(errors[1].text.rfind("Loading .variantmeshdefintion failed.", 0), 0u) << errors[1].text;
    EXPECT_EQ(lodEntries(*m_files.model().data()).size(), 4u);
    EXPECT_EQ(m_files.definition().models().size(), 1u);
}

TEST_F(open_files_test, theCacheIsRecordedAndAReReadDoesNotTrustIt)
{
    m_config.add("data_paths", {m_folder.file("")}, false);
    m_config.add("cache_use", {"always"}, false);
    ASSERT_TRUE(m_config.save(m_config_path));
    ASSERT_TRUE(reread({{"a", "1"}}));
    EXPECT_EQ(m_config.get("packs_cache"), std::vector<std::string>{"packs.cache"});
    config_file saved;
    ASSERT_TRUE(saved.load(m_config_path));
    EXPECT_TRUE(saved.contains("packs_cache", "packs.cache")) << "at once";

    // Another path in an archive of the same size and time: only the archive itself can tell.
    const auto time = std::filesystem::last_write_time(toPath(m_folder.file("a.pack")));
    drop();
    test_pack pack;
    pack.entries = {{"b", "1"}};
    write("a.pack", pack.bytes());
    std::filesystem::last_write_time(toPath(m_folder.file("a.pack")), time);
    ASSERT_TRUE(rereadArchives());
    EXPECT_TRUE(m_files.game()->find("b"));
    EXPECT_FALSE(m_files.game()->find("a"));
}

TEST_F(open_files_test, withoutDataFoldersReReadingOnlySaysSo)
{
    EXPECT_FALSE(rereadArchives());
    ASSERT_EQ(m_notices.size(), 1u);
    EXPECT_EQ(m_notices[0].title, "Error!");
    EXPECT_EQ(m_notices[0].text, "Setup up your games' \\data\\ folder in tools->setup game data folder first");
    EXPECT_TRUE(m_log.empty());

    m_config.add("data_paths", {m_folder.file("")}, false); // which holds no archive
    EXPECT_FALSE(rereadArchives());
    EXPECT_NE(m_notices.back().text.find("File Not Found"), std::string::npos);
}

TEST_F(open_files_test, aReReadThatFailsLeavesTheArchivesThatWorked)
{
    ASSERT_TRUE(reread({{"body.rigid_model_v2", modelWithLods(2).bytes()}}));
    m_config.add("data_paths", {m_folder.file("unplugged/")}, false);
    EXPECT_FALSE(rereadArchives());
    ASSERT_EQ(m_notices.size(), 1u);
    open("pack:body.rigid_model_v2");
    EXPECT_EQ(lodEntries(*m_files.model().data()).size(), 2u);
}

TEST(file_choice, theFirstOfEachKindIsOpened)
{
    const file_choice choice = chooseFiles(
        {"b.VariantMeshDefinition", "a.FBX", "1.rigid_model_v2", "2.rigid_model_v2", "c.variantmeshdefinition"});
    EXPECT_EQ(choice.opened, (std::vector<std::string>{"b.VariantMeshDefinition", "a.FBX", "1.rigid_model_v2"}));
    EXPECT_EQ(choice.left_out, (std::vector<std::string>{"2.rigid_model_v2", "c.variantmeshdefinition"}));
}

// A node a line, as deep as it stands; "!" before what is missing.
std::string outline(const definition_tree& tree, tree_model::node of = tree_model::root, const std::string& indent = {})
{
    std::string text;
    for (std::size_t i = 0; i < tree.childCount(of); ++i)
    {
        const tree_model::node child = tree.child(of, i);
        text += indent + (tree.mark(child) == row_mark::error ? "!" : "") + tree.text(child) + "\n" +
                outline(tree, child, indent + " ");
    }
    return text;
}

TEST_F(open_files_test, theTreeOfADefinitionMarksWhatIsMissing)
{
    ASSERT_TRUE(
        reread({{"men\\body.rigid_model_v2", "x"},
                {"men\\sets.variantmeshdefinition", "<a>\n\n<VARIANT_MESH model='men\\hat.rigid_model_v2'/></a>"}}));
    open(write("figure.variantmeshdefinition",
               "<VARIANT_MESH model='men/BODY.rigid_model_v2'>\n<SLOT name='head' attach_point='be_head'\n"
               "probability='0.25'>\n<VARIANT_MESH_REFERENCE definition='men/sets.variantmeshdefinition'/>\n"
               "<VARIANT_MESH_REFERENCE definition='none'><VARIANT_MESH/></VARIANT_MESH_REFERENCE>"
               "<decal d='1'/></SLOT></VARIANT_MESH>"));
    const definition_tree tree(m_files.definition(), *m_files.game());
    EXPECT_EQ(outline(tree), "body.rigid_model_v2\n Slot head at be_head (25 %)\n"
                             "  Reference to sets.variantmeshdefinition\n   a\n    !hat.rigid_model_v2\n"
                             "  !Reference to none\n   Mesh without a model\n  decal d=1\n");
    EXPECT_EQ(tree.missingCount(), 2u);
    EXPECT_EQ(tree.modelOf(tree.findModel()).text(), "pack:men\\body.rigid_model_v2");
    const tree_model::node hat = tree.findModel("pack:men/hat.rigid_model_v2");
    EXPECT_NE(tree.tip(hat).find("in no archive"), std::string::npos);
    const attribute_list attributes = tree.attributesOf(hat);
    EXPECT_EQ(attributes.text(2, 1), "men\\sets.variantmeshdefinition, line 3");
    const attribute_list slot = tree.attributesOf(tree.child(tree.findModel(), 0));
    EXPECT_EQ(slot.text(3, 0) + "=" + slot.text(3, 1), "probability=0.25");

    drop();
    const definition_tree alone(m_files.definition(), *m_files.game());
    EXPECT_EQ(alone.mark(alone.findModel()), row_mark::warning) << "nothing is known of it";
    EXPECT_EQ(definition_tree().childCount(tree_model::root), 0u);
}

TEST_F(open_files_test, anotherAlternativeOfASlotCanBeChosen)
{
    const std::string path = write(
        "figure.variantmeshdefinition",
        "<VARIANT_MESH model='body'><SLOT name='hand'><VARIANT_MESH model='sword'/><VARIANT_MESH><SLOT name='blade'>"
        "<VARIANT_MESH model='short'/><VARIANT_MESH model='long'/></SLOT></VARIANT_MESH></SLOT></VARIANT_MESH>");
    open(path);
    const auto dimmed = [&](const char* model) {
        const definition_tree tree(m_files.definition(), *m_files.game());
        const tree_model::node found = tree.findModel(game_path::ofInternal(model));
        return !tree.choiceThatShows(found).empty();
    };
    EXPECT_EQ(m_files.status(drawn_models{0, 9}), "figure: 2 of 4 models, 9 triangles");
    EXPECT_TRUE(!dimmed("body") && !dimmed("sword") && dimmed("short") && dimmed("long"));
    const definition_tree tree(m_files.definition(), *m_files.game());
    const tree_model::node wanted = tree.findModel(game_path::ofInternal("long"));
    EXPECT_EQ(tree.attributesOf(wanted).text(3, 1), "2 of 2, not shown");
    EXPECT_TRUE(m_files.chooseAlternatives(tree.choiceThatShows(wanted)));
    EXPECT_FALSE(m_files.chooseAlternatives({{"hand", 1}}));
    EXPECT_TRUE(dimmed("sword") && dimmed("short") && !dimmed("long"));
    EXPECT_EQ(m_files.definition().figure().at(1).path, "long");
    open(path);
    EXPECT_FALSE(dimmed("long")) << "read again";
}

} // namespace
} // namespace korvane::test
