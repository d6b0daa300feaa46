// The dialog of exports without its window: what is found and chosen, what is said of it, and the job that comes of it.

#include "EASY_GUI/services/text.h"
#include "Korvane/presenters/export_choices.h"
#include "Korvane/presenters/export_rows.h"
#include "tests/support/anim_builder.h"
#include "tests/support/archive_tree.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using text_list = std::vector<std::string>;

class export_choices_tests : public testing::Test
{
protected:
    void SetUp() override
    {
        test::enterArchive(*tree, folder, "z.pack",
                           {{"animations\\skeletons\\man.anim", test::animOf("man")},
                            {"animations\\walk\\slow.anim", test::animOf("man")},
                            {"animations\\walk\\old.anim", test::animOf("man", 6)},
                            {"animations\\walk\\other.anim", test::animOf("horse")}});
        test::enterArchive(*tree, folder, "y.pack",
                           {{"animations\\walk\\slow.anim", test::animOf("man")},
                            {"animations\\run.anim", test::animOf("man").substr(0, 40)}});
        open.setGame(std::make_shared<const game_data>(tree));
        test::test_model model;
        model.skeleton_id = "man";
        test::writeBytes(folder.file("guard.rigid_model_v2"), model.bytes());
        failure why;
        ASSERT_TRUE(open.open(folder.file("guard.rigid_model_v2"), why)) << describe(why);
    }
    void search()
    {
        export_finder finder(tree, "man");
        finder.run({});
        rows.restart();
        rows.add(finder.take());
    }
    export_choices make() { return export_choices(config, open, nullptr, folder.file("exports")); }
    std::string problemOf(const export_choices& choices, std::size_t count) const
    {
        return choices.problem(count).value_or("");
    }

    test::temporary_folder folder;
    std::shared_ptr<path_tree> tree = std::make_shared<path_tree>();
    open_files open;
    config_file table;
    shared_config config{table, folder.file("config.cfg"), {}};
    export_rows rows;
};

TEST_F(export_choices_tests, whatIsFoundCanBeChosenAndStaysChosenBehindAFilter)
{
    search();
    ASSERT_EQ(rows.rowCount(), 4u) << "each archive's copy, and no other version";
    const text_list cells = {rows.text(1, 0), rows.text(1, 1), rows.text(1, 2), rows.text(1, 4), rows.text(3, 4)};
    EXPECT_EQ(cells, (text_list{"slow.anim", "animations\\walk\\", "z.pack", "2", "?"}));
    rows.choose(std::vector<std::size_t>{0, 2});
    rows.setFilter("slow");
    EXPECT_EQ(rows.chosenRows(), (std::vector<std::size_t>{1}));
    EXPECT_EQ(rows.hiddenChosenCount(), 1u);
    rows.choose(std::vector<std::size_t>{0}); // of the two that are shown the other one
    rows.setFilter("");
    EXPECT_EQ(rows.chosenRows(), (std::vector<std::size_t>{0, 1}));
    rows.chooseNone();
    EXPECT_EQ(rows.chosenCount(), 0u);
}

TEST_F(export_choices_tests, theJobHasWhatWasChosen)
{
    search();
    export_choices choices = make();
    EXPECT_EQ(problemOf(choices, 0), "Choose one or more animations.");
    rows.choose(std::vector<std::size_t>{1, 2}); // both copies of one path: the later archive's counts
    choices.setTextures(export_choices::texture_form::png);
    choices.setLod(0);
    export_job_options job = choices.options(rows.chosen());
    EXPECT_EQ(job.skeleton, "pack:animations\\skeletons\\man.anim");
    ASSERT_EQ(job.animations.size(), 2u);
    EXPECT_EQ(job.animations[1], "pack:animations\\walk\\slow.anim");
    EXPECT_EQ(job.copies.at(job.animations[0]), rows.chosen()[0]);
    EXPECT_EQ(job.folder_format, "fbx");
    EXPECT_TRUE(job.makes_normals_blue);
    EXPECT_FALSE(job.lod);
    EXPECT_FALSE(job.edited);
    EXPECT_EQ(choices.plan(2), "Writes 2 files, named after the animations.");

    const auto setFormat = [&](int position) { return [&choices, position] { choices.setFormat(position); }; };
    const auto setName = [&](const char* name) { return [&choices, name] { choices.setName(name); }; };
    const struct
    {
        std::function<void()> change;
        const char* problem;
        const char* output; // its end
    } steps[] = {
        {setFormat(2), "", "guard.glb"},
        {setName("a:b"), "A file cannot have this name", ""},
        {setName("x/y"), "without folders", ""},
        {setName(""), "Type a name", ""},
        {setName("hero"), "", "hero.glb"},
        {[&] { choices.setMode(export_choices::mode::bind_pose); }, "", "hero__BIND_POSE.glb"},
        {setFormat(1), "", "hero__BIND_POSE.dae"},
        {setFormat(7), "ERROR, COMBOBOX", ""},
    };
    for (const auto& step : steps)
    {
        step.change();
        EXPECT_NE(problemOf(choices, 2).find(step.problem), std::string::npos) << problemOf(choices, 2);
        if (*step.output != '\0')
        {
            job = choices.options(rows.chosen());
            EXPECT_TRUE(job.output.ends_with(step.output)) << job.output;
        }
    }
    EXPECT_TRUE(job.animations.empty());
    choices.setFormat(2);
    EXPECT_TRUE(choices.options({}).texture_folder.empty()) << "the pictures lie within the file";
}

TEST_F(export_choices_tests, choicesAreRememberedAndEditsAreExported)
{
    {
        export_choices choices = make();
        choices.setFormat(2);
        choices.setTextures(export_choices::texture_form::dds);
        choices.setFolder(folder.file("out"));
        choices.setTogether(false);
        choices.setFullSpan(true);
        choices.setLod(0);
        choices.remember();
    }
    const export_choices later = make();
    EXPECT_EQ(later.format(), 2);
    EXPECT_EQ(later.textures(), export_choices::texture_form::dds);
    EXPECT_TRUE(equalsIgnoringCase(later.folder(), folder.file("out"))) << later.folder();
    EXPECT_EQ(later.lod(), 0u);
    EXPECT_TRUE(later.isFullSpan() && !later.isTogether());

    ASSERT_EQ(open.model().setTexturePath(0, "tex", "other.dds").changed, 1u);
    EXPECT_TRUE(later.options({}).edited);
    open.setGame(std::make_shared<const game_data>());
    const export_choices alone = make();
    EXPECT_EQ(alone.chosenMode(), export_choices::mode::bind_pose) << "nothing to animate without a skeleton";
    EXPECT_EQ(problemOf(alone, 0), "");
}

} // namespace
} // namespace korvane
