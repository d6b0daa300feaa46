// The fields of a conversion, without a window: proposals, what is typed, what is wrong, and which conversion comes of
// it.

#include "EASY_GUI/services/text.h"
#include "Korvane/presenters/fbx_to_anim_form.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/presenters/bone_table_form.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

using file = fbx_to_anim_form::file;
using field = fbx_to_anim_form::field;

class fbx_to_anim_form_tests : public testing::Test
{
protected:
    void look(double rate = 30, std::vector<convert_look::take> takes = {{"walk", 1.0, true}, {"walk", 2.5, true}})
    {
        form.choose(file::fbx, m_folder.file("walk.v2.fbx"));
        form.choose(file::template_anim, "pack:animations\\skeletons\\rig.anim");
        convert_look made;
        made.fbx = form.path(file::fbx);
        made.template_anim = form.path(file::template_anim);
        made.frame_rate = rate;
        made.takes = std::move(takes);
        made.prefix = "rig:";
        made.bones = {{"horn", "", "Horn_L"}, {"", "rig:Horn_L", "horn"}, {"root", "rig:root", ""}};
        EXPECT_TRUE(form.take(made));
    }
    std::vector<std::string> texts() const
    {
        return {form.text(field::rate), form.text(field::end_time), form.text(field::frames)};
    }
    using strings = std::vector<std::string>;

    temporary_folder m_folder;
    config_file m_table;
    shared_config m_config{m_table, m_folder.file("config.cfg"), {}};
    fbx_to_anim_form form{m_config};
};

TEST_F(fbx_to_anim_form_tests, whatIsProposedIsTheFilesOwnUntilSomethingIsTyped)
{
    EXPECT_FALSE(form.canRun());
    EXPECT_FALSE(form.firstProblem()) << "nothing is wrong before anything was chosen";
    look(24000.0 / 1001);
    EXPECT_TRUE(form.canRun());
    EXPECT_EQ(form.takes(),
              (strings{"walk: 1 s, 24 frames at 23.97602 a second", "walk: 2.5 s, 60 frames at 23.97602 a second"}));
    EXPECT_EQ(texts(), (strings{"23.97602", "1", "24"}));
    const convert_job_options own = form.options(m_folder.file("out.anim"));
    EXPECT_FALSE(own.rate || own.end_time || own.frames || own.take) << "nothing is rounded";
    form.chooseTake(1);
    EXPECT_EQ(texts(), (strings{"23.97602", "2.5", "60"}));
    EXPECT_EQ(form.options("x.anim").take, "1") << "two have the same name";
    look(25, {{"a", 1, true}, {"b", 0, false}});
    EXPECT_EQ(form.takes()[1], "b: nothing moves");
    EXPECT_FALSE(form.options("x.anim").take) << "the file was replaced by one with other takes";
    form.chooseTake(1);
    look(25, {{"a", 1, true}, {"b", 2, true}});
    EXPECT_EQ(form.options("x.anim").take, "b") << "of a file that was saved again";
    EXPECT_EQ(form.text(field::frames), "51");
}

TEST_F(fbx_to_anim_form_tests, endTimeAndFrameCountFollowWhatWasTypedLast)
{
    const struct
    {
        std::vector<std::pair<field, std::string>> typed;
        strings shown;
        std::optional<double> rate, end_time;
        std::optional<std::uint32_t> frames;
    } rows[] = {{{{field::rate, "20"}}, {"20", "1", "21"}, 20.0, {}, {}},
                {{{field::end_time, "0,5"}}, {"30", "0,5", "16"}, {}, 0.5, {}},
                {{{field::frames, " 61 "}}, {"30", "2", " 61 "}, {}, {}, 61},
                {{{field::frames, "31"}, {field::rate, "10"}}, {"10", "3", "31"}, 10.0, {}, 31},
                {{{field::frames, "31"}, {field::end_time, "2"}}, {"30", "2", "61"}, {}, 2.0, {}},
                {{{field::rate, "x"}, {field::end_time, "2"}, {field::rate, "10"}}, {"10", "2", "21"}, 10.0, 2.0, {}}};
    for (const auto& row : rows)
    {
        look();
        form.chooseTake(0);
        for (const auto& [which, text] : row.typed)
            form.type(which, text);
        EXPECT_EQ(texts(), row.shown);
        const convert_job_options options = form.options("x.anim");
        EXPECT_EQ(options.rate, row.rate);
        EXPECT_EQ(options.end_time, row.end_time);
        EXPECT_EQ(options.frames, row.frames);
    }
}

TEST_F(fbx_to_anim_form_tests, whatIsWrongIsSaidAsDocumentedAndBesideTheField)
{
    constexpr const char* rate = "The field Framerate is not a valid floating poinLPARAM lParam. Has to xxx.xxxx";
    constexpr const char* frames = "The Frame Count field does not contain a valid integer";
    constexpr const char* end = "The >>End Time< field does not contain a valid float";
    for (const auto& [which, typed, said] : {std::tuple{field::rate, "abc", rate},
                                             {field::rate, "", rate},
                                             {field::rate, "30x", rate},
                                             {field::rate, "nan", rate},
                                             {field::rate, "0", "The frame rate has to be between 0.001 and 1,000,000"},
                                             {field::frames, "abc", frames},
                                             {field::frames, "1.5", frames},
                                             {field::frames, "99999999999999999999", frames},
                                             {field::frames, "0", "At least 1 frame is needed"},
                                             {field::end_time, "1s", end},
                                             {field::end_time, "inf", end},
                                             {field::end_time, "-1", "The end time cannot be below 0"},
                                             {field::end_time, "0", ""}})
    {
        look();
        form.chooseTake(0);
        form.type(which, typed);
        EXPECT_EQ(form.problem(which), said) << typed;
        const auto first = form.firstProblem();
        EXPECT_EQ(first.has_value(), *said != '\0') << typed;
        if (first)
        {
            EXPECT_EQ(first->first.title, "Error!");
            EXPECT_EQ(first->first.text, said);
        }
    }
    form.type(field::end_time, "x");
    form.type(field::frames, "y");
    EXPECT_EQ(form.firstProblem()->second, field::frames);
    form.type(field::rate, "z");
    EXPECT_EQ(form.firstProblem()->second, field::rate) << "first of all";
}

TEST_F(fbx_to_anim_form_tests, bonesAreListedAndWhatComesNextIsSaid)
{
    EXPECT_EQ(form.boneSummary(), "Choose an FBX file.");
    form.choose(file::fbx, "other.fbx");
    EXPECT_EQ(form.boneSummary(), "Reading...");
    EXPECT_FALSE(form.choose(file::fbx, " \"other.fbx\"")) << "as the system copies paths";
    look();
    EXPECT_EQ(form.boneSummary(), "1 of 2 bones matched; the prefix \"rig:\" is taken off.");
    const bone_match_rows& rows = form.bones();
    ASSERT_EQ(rows.rowCount(), 3u);
    EXPECT_EQ(rows.text(0, 2), "Not in the FBX file; near: Horn_L");
    EXPECT_EQ(rows.text(1, 1), "rig:Horn_L");
    EXPECT_EQ(rows.text(1, 2), "Not in the template; near: horn");
    EXPECT_EQ(rows.mark(0), row_mark::warning);
    EXPECT_EQ(rows.text(2, 2), "Matched");
    form.choose(file::fbx, "other.fbx");
    EXPECT_FALSE(form.take({})) << "of what is not chosen any more";
}

TEST_F(fbx_to_anim_form_tests, foldersAndTheLayoutAreRemembered)
{
    const std::string folder = toLower(toUtf8(toPath(m_folder.file("x")).parent_path())); // as the configuration has it
    look();
    form.choose(file::bone_table, m_folder.file("rig.bone_table"));
    form.setForGames(true);
    EXPECT_EQ(form.options(m_folder.file("out.anim")).layout, anim_layout::games);
    fbx_to_anim_form later(m_config);
    EXPECT_TRUE(later.isForGames());
    EXPECT_EQ(toLower(later.folderOf(file::fbx)), folder);
    EXPECT_EQ(toLower(later.folderOf(file::bone_table)), folder);
    EXPECT_EQ(later.folderOf(file::template_anim), "") << "the archives have none";
    EXPECT_EQ(toLower(later.suggestion().folder), folder);
    EXPECT_EQ(form.suggestion().name, "walk.v2.anim");
    later.setForGames(false);
    EXPECT_FALSE(fbx_to_anim_form(m_config).isForGames());
    EXPECT_EQ(fbx_to_anim_form::pickerOf(file::fbx).filters[0].label, "fbx Files (*.fbx)");
}

TEST(bone_table_form, showsTypesBeforeTheyAreWritten)
{
    bone_table_form form;
    EXPECT_FALSE(form.canWrite());
    auto anim = std::make_shared<anim_data>();
    anim->skeleton_name = "rig:a/b";
    anim->bones = {{.name = "root"},
                   {.name = "left_eye", .index = 1, .parent = 0},
                   {.name = "left_thumb", .index = 2, .parent = 1}};
    form.show("pack:a.anim", anim, {});
    EXPECT_TRUE(form.canWrite());
    for (const auto& [row, type] : {std::pair{0u, "BT_ROOT"}, {1u, "BT_CORE"}, {2u, "BT_LEFT_HAND"}})
        EXPECT_EQ(form.text(row, 3), type);
    EXPECT_EQ(form.text(2, 2), "left_eye");
    EXPECT_EQ(form.suggestion().name, "rig_a_b.bone_table");
    failure why;
    fail(why, failure_kind::not_found, "gone");
    form.show("b.anim", nullptr, why);
    EXPECT_FALSE(form.canWrite());
    EXPECT_NE(form.summary().find("gone"), std::string::npos);
}

} // namespace
} // namespace korvane::test
