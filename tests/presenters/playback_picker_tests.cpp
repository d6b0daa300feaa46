// The box of animations without its window: both searches, the list with its filter, what is played and what is said.

#include "Korvane/presenters/playback_picker.h"
#include "tests/support/anim_builder.h"
#include "tests/support/archive_tree.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using text_list = std::vector<std::string>;

class playback_picker_tests : public testing::Test
{
protected:
    void addArchive(const std::string& name, std::vector<test::test_entry> entries)
    {
        test::enterArchive(*tree, folder, name, std::move(entries));
        game = std::make_shared<const game_data>(tree);
    }
    // Of these skeletons; all but those with a '?' before their id were found.
    static scene_pointer sceneOf(const text_list& ids, const std::string& path = "a.rigid_model_v2")
    {
        auto scene = std::make_shared<loaded_scene>();
        scene->path = path;
        for (const std::string& id : ids)
        {
            const bool is_there = id.front() != '?';
            scene_rig rig;
            rig.id = is_there ? id : id.substr(1);
            rig.path = is_there ? "skeletons\\" + id + ".anim" : "";
            rig.skeleton = is_there ? std::make_shared<const anim_data>() : nullptr;
            rig.problem = is_there ? "" : "it is nowhere";
            scene->rigs.push_back(rig);
        }
        return scene;
    }
    bool show(scene_pointer scene, text_list converted = {}, bool has_view = true)
    {
        return picker.show({has_view, true, std::move(scene), game, std::move(converted)});
    }
    void search()
    {
        const auto finder = picker.beginSearch();
        work_port work;
        work.log = [this](const std::string& line) { log.push_back(line); };
        picker.end(finder->run(work));
        picker.take(*finder);
    }
    text_list shownRows() const
    {
        text_list rows;
        for (std::size_t row = 0; row < picker.rows().rowCount(); ++row)
            rows.push_back(picker.rows().text(row, 0));
        return rows;
    }
    bool choose(std::size_t row) { return picker.choose(readAnimation(picker.rows().choice(row), picker.shownId())); }

    test::temporary_folder folder;
    std::shared_ptr<path_tree> tree = std::make_shared<path_tree>();
    std::shared_ptr<const game_data> game = std::make_shared<const game_data>();
    text_list log;
    playback_picker picker{[this](const std::string& line) { log.push_back(line); }};
};

TEST_F(playback_picker_tests, listsWhatIsMadeForTheSkeletonAndSaysSoInTheLog)
{
    addArchive("z.pack", {{"animations\\skeletons\\man.anim", test::animOf("man")},
                          {"animations\\man\\walk\\slow.anim", test::animOf("man")},
                          {"animations\\man\\walk\\other.anim", test::animOf("Man")}});
    addArchive("y.pack",
               {{"mod\\skeletons\\man.anim", test::animOf("man")}, {"animations\\man\\run.anim", test::animOf("man")}});
    ASSERT_TRUE(show(sceneOf({"man"}), {"d:\\work\\my walk.anim"}));
    search();
    ASSERT_EQ(picker.skeletons().size(), 2u);
    EXPECT_EQ(picker.skeletons()[1].label, "man.anim");
    EXPECT_EQ(picker.shownSkeleton(), 0);
    EXPECT_EQ(shownRows(), (text_list{"[-- Bind/A-Pose --]", "[DISK]: my walk.anim", "man.anim", "slow.anim",
                                      "man.anim", "run.anim"}));
    EXPECT_EQ(picker.rows().text(3, 1), "animations\\man\\walk\\");
    EXPECT_EQ(picker.status(), "5 animations");
    EXPECT_EQ(log, (text_list{"Searching fpr skeletons...", "Number of skeletons added to combobox: 2",
                              "seaching for compatible animations", "Number of animations found 4",
                              "Skeletopn + Animation find+load SUCCESSFUL!"}));
    EXPECT_FALSE(show(sceneOf({"man"}), {"d:\\work\\my walk.anim"})) << "the same: nothing is searched again";

    const struct
    {
        const char* words;
        text_list rows;
    } filters[] = {
        {"w", {"[DISK]: my walk.anim", "slow.anim"}},
        {"wa", {"[DISK]: my walk.anim", "slow.anim"}},
        {"walk SLOW", {"slow.anim"}},
        {"man/walk ", {"slow.anim"}},
        {"disk", {"[DISK]: my walk.anim"}},
        {"man\\run", {"run.anim"}},
        {"fly", {}},
        {"", {"[DISK]: my walk.anim", "man.anim", "slow.anim", "man.anim", "run.anim"}},
    };
    for (const auto& filter : filters)
    {
        picker.rows().setFilter(filter.words);
        text_list rows = shownRows();
        EXPECT_EQ(rows.front(), "[-- Bind/A-Pose --]");
        rows.erase(rows.begin());
        EXPECT_EQ(rows, filter.rows) << filter.words;
    }
}

TEST_F(playback_picker_tests, saysWhyThereIsNothingAndWhatToDo)
{
    const auto messageOf = [this](scene_pointer scene, bool has_view = true) {
        picker.forget();
        if (show(std::move(scene), {}, has_view))
            search();
        return picker.message();
    };
    const auto says = [](const std::string& message, const char* what) {
        return message.find(what) != std::string::npos;
    };
    EXPECT_FALSE(picker.show({true, false, nullptr, game, {}}));
    EXPECT_TRUE(says(picker.message(), "Open a model or a definition"));
    EXPECT_TRUE(says(messageOf(sceneOf({"?man"})), "no archives are loaded. Set the game's folders"));
    EXPECT_TRUE(picker.needsFolders());
    addArchive("z.pack", {{"animations\\walk.anim", test::animOf("ox")}});
    EXPECT_TRUE(says(messageOf(sceneOf({"?man"})), "no skeleton \"man\" in the archives"));
    EXPECT_EQ(picker.skeletons().at(0).label, "man (not found)");
    EXPECT_TRUE(says(messageOf(sceneOf({"man"})), "No animation names the skeleton \"man\""));
    EXPECT_FALSE(picker.needsFolders());
    log.clear();
    EXPECT_TRUE(says(messageOf(sceneOf({})), "names no skeleton"));
    EXPECT_EQ(log.front(), "playback_box::onDialogInit(LPARAM): strSkeletonId ==  ");
    EXPECT_EQ(log.back(), "Skeletopn + Animation find+load SUCCESSFUL!") << "the searches go on";
    log.clear();
    EXPECT_TRUE(says(messageOf(nullptr, false), "no 3D view"));
    EXPECT_EQ(log, text_list{"playback_box::onDialogInit(LPARAM): m_poD3DWindow == nullptr"});

    EXPECT_TRUE(says(messageOf(sceneOf({"ox"})), "Choose an animation"));
    picker.rows().setFilter("fly");
    EXPECT_EQ(picker.message(), "No animation has \"fly\" in its path. Delete a word to see more.");
    EXPECT_EQ(picker.status(), "0 of 1 animation");
}

TEST_F(playback_picker_tests, riderAndHorseMoveAtOnceAndWhatWasPickedLastLeads)
{
    addArchive("z.pack",
               {{"a\\ride.anim", test::animOf("man")}, {"a\\trot.anim", test::animOf("ox")}, {"a\\bad.anim", "x"}});
    ASSERT_TRUE(show(sceneOf({"man", "ox", "man"}), {folder.file("gone.anim")}));
    search();
    ASSERT_EQ(picker.skeletons().size(), 2u) << "each once";
    ASSERT_TRUE(choose(2));
    ASSERT_TRUE(picker.chooseSkeleton(1)) << "with animations of its own";
    search();
    EXPECT_EQ(picker.chosenRow(), std::size_t{0}) << "this one is in its bind pose";
    ASSERT_TRUE(choose(2));
    EXPECT_EQ(picker.chosenRow(), std::size_t{2});
    const auto played = picker.animations();
    ASSERT_EQ(played.size(), 2u);
    EXPECT_EQ(played[0]->skeleton_name, "man");
    EXPECT_EQ(played[1]->skeleton_name, "ox");
    EXPECT_EQ(picker.message(), "Shown: ride.anim and trot.anim");
    EXPECT_EQ(picker.length()->frame_count, 2u);
    picker.setProblems({"2 bones are called otherwise"});
    EXPECT_EQ(picker.message(), "2 bones are called otherwise.");

    const read_animation gone = readAnimation(picker.rows().choice(1), "ox");
    ASSERT_TRUE(gone.said);
    EXPECT_EQ(gone.said->text, "File: " + folder.file("gone.anim") + " is missing");
    EXPECT_FALSE(picker.choose(gone));
    EXPECT_EQ(picker.animations().size(), 2u) << "all stays";
    EXPECT_NE(picker.message().find("is not played"), std::string::npos);
    ASSERT_TRUE(choose(0)) << "the bind pose";
    ASSERT_EQ(picker.animations().size(), 1u);
    EXPECT_EQ(picker.animations()[0]->skeleton_name, "man");
    picker.follow(sceneOf({"man"}, "b.rigid_model_v2"));
    EXPECT_TRUE(picker.animations().empty()) << "the view has begun anew, too";
}

TEST(playback_numbers, areReadAsTheyAreTyped)
{
    const playback_length length{20, 2.95, 60};
    const struct
    {
        const char* text;
        std::optional<playback_position> frame, time;
        std::optional<float> speed;
    } rows[] = {
        {"3", playback_position{3, 0}, playback_position{59, 0}, 3.0f},
        {" 1,5 ", playback_position{1, 0.5f}, playback_position{30, 0}, 1.5f},
        {"0.1", playback_position{0, 0.1f}, playback_position{2, 0}, 0.1f},
        {"5000", playback_position{59, 0}, playback_position{59, 0}, {}},
        {"4.01", playback_position{4, 0.01f}, playback_position{59, 0}, {}},
        {"-1", {}, {}, {}},
        {"", {}, {}, {}},
        {"1x", {}, {}, {}},
        {"nan", {}, {}, {}},
    };
    const auto isNear = [](const auto& left, const auto& right) {
        return left.has_value() == right.has_value() &&
               (!left || (left->frame == right->frame && std::abs(left->fraction - right->fraction) < 1e-4f));
    };
    for (const auto& row : rows)
    {
        EXPECT_TRUE(isNear(typedFrame(row.text, length), row.frame)) << row.text;
        EXPECT_TRUE(isNear(typedTime(row.text, length), row.time)) << row.text;
        EXPECT_EQ(typedSpeed(row.text), row.speed) << row.text;
    }
    EXPECT_EQ(typedRange("10", "20", length), (frame_range{10, 20}));
    EXPECT_EQ(typedRange("20", "10", length), (frame_range{10, 20}));
    EXPECT_EQ(typedRange("", "10", length), (frame_range{0, 10}));
    EXPECT_EQ(typedRange("0", "99", length), frame_range{}) << "all of it";
    EXPECT_EQ(timeText({30, 0}, length), "1.50");
    EXPECT_EQ(timeText({30, 0}, {}), "0.00");
}

} // namespace
} // namespace korvane
