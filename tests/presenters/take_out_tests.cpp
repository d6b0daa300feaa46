#include "Korvane/presenters/take_out.h"

#include "EASY_GUI/services/text.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/mod_folder.h"
#include "Korvane/presenters/file_offer.h"
#include "tests/support/archive_tree.h"
#include "tests/support/dds_builder.h"

#include <algorithm>
#include <set>

namespace korvane::test
{

namespace
{

std::set<std::string> namesBelow(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(toPath(folder)))
        if (entry.is_regular_file())
            names.insert(entry.path().lexically_relative(toPath(folder)).generic_string());
    return names;
}

using form = take_out_choices::texture_form;

TEST(take_out, whatWasChosenIsDoneAndWhatWasLeftOutIsSaid)
{
    temporary_folder folder;
    const auto tree = std::make_shared<path_tree>();
    enterArchive(*tree, folder, "one.pack",
                 {{"tex\\a.dds", test_dds().bytes()},
                  {"tex\\bad.dds", "DDS 1"},
                  {"tex\\cube.dds", test_dds::dx10(28, 6 * 64, 4).bytes()},
                  {"tex\\a.png", "a png"},
                  {"other\\a.dds", test_dds().bytes()},
                  {"..\\evil.txt", "x"},
                  {"c:\\con.txt", "x"},
                  {"notes.txt", "own"}});
    std::filesystem::create_directories(toPath(folder.file("mod")));
    writeBytes(folder.file("mod/Mine.txt"), "of the mod folder");
    failure why;
    ASSERT_TRUE(enterModFolder(*tree, folder.file("mod"), {}, why)) << describe(why);
    const struct
    {
        bool is_flat;
        form textures;
        std::set<std::string> there;
        std::vector<std::string> said; // in this order
    } rows[] = {
        {false,
         form::as_they_are,
         {"tex/a.dds", "tex/bad.dds", "tex/cube.dds", "tex/a.png", "other/a.dds", "notes.txt", "mine.txt"},
         {"6 files extracted", "1 file that differ", "2 failed", "Not taken out (2)",
          "..\\evil.txt: ", "c:\\con.txt: ", "differs is there (1)", "notes.txt"}},
        {false,
         form::png,
         {"tex/a.png", "tex/a_2.png", "tex/bad.dds", "tex/cube.png", "other/a.png", "notes.txt", "mine.txt"},
         {"Not taken out (2)", "could not be made pictures (1)", "tex\\bad.dds: ", "With another name", "a_2.png is ",
          "Cubes and arrays", "cube.png: 6 faces"}},
        {true,
         form::targa,
         {"a.tga", "a_2.tga", "bad.dds", "cube.tga", "a.png", "notes.txt", "mine.txt"},
         {"With another name, for the name was taken by another file (1)", "a_2.tga is tex\\a.dds"}},
    };
    for (const auto& row : rows)
    {
        config_file table;
        shared_config config(table, folder.file("config.cfg"), {});
        take_out_choices choices(config);
        EXPECT_TRUE(choices.problem()) << "no folder is chosen";
        choices.setFolder("relative");
        EXPECT_TRUE(choices.problem());
        const std::string out = folder.file(row.is_flat ? "flat" : "out" + std::to_string(row.said.size()));
        choices.setFolder(" \"" + out + "\" ");
        EXPECT_FALSE(choices.problem());
        choices.setFlat(row.is_flat);
        choices.setTextures(row.textures);
        choices.remember();
        const take_out_choices again(config);
        EXPECT_TRUE(equalsIgnoringCase(again.folder(), out)) << again.folder(); // as the configuration keeps it
        EXPECT_EQ(std::tuple(again.isFlat(), again.textures(), again.replaces()),
                  std::tuple(row.is_flat, row.textures, false));

        std::filesystem::create_directories(toPath(out));
        writeBytes(out + "/notes.txt", "mine");
        extract_job_result result;
        extractEntries(tree, tree->files(), again.options(), {}, result);
        EXPECT_EQ(namesBelow(out), row.there);
        EXPECT_EQ(readBytes(out + "/notes.txt"), "mine");
        const take_out_report report = reportOf(result, out, true);
        std::size_t at = 0;
        for (const std::string& said : row.said)
        {
            at = report.text.find(said, at);
            ASSERT_NE(at, std::string::npos) << said << " in\n" << report.text;
        }
        extractEntries(tree, tree->files(), again.options(), {}, result);
        EXPECT_EQ(namesBelow(out), row.there) << "the same names the second time";
    }
    EXPECT_FALSE(std::filesystem::exists(toPath(folder.file("evil.txt"))));
}

TEST(file_offer, namesAreThoseBelowWhatWasChosenAndNeverTheSame)
{
    temporary_folder folder;
    const auto tree = std::make_shared<path_tree>();
    enterArchive(*tree, folder, "one.pack",
                 {{"a\\x.dds", "1"}, {"b\\x.dds", "2"}, {"b\\c\\y.dds", "3"}, {"b\\nul", "4"}});
    file_offer offer(tree);
    for (const char* const file : {"a\\x.dds", "b\\x.dds"})
        offer.add(*tree->findFile(file));
    offer.add(*tree->find("b"));
    std::vector<std::string> names;
    for (std::size_t i = 0; i < offer.count(); ++i)
        names.push_back(offer.path(i));
    EXPECT_EQ(names, (std::vector<std::string>{"x.dds", "x_2.dds", "b\\c\\y.dds", "b\\x.dds"}));
    EXPECT_EQ(offer.leftOut(), 1u);
    offer.add(*tree->find("b\\c")); // from that folder on
    EXPECT_EQ(offer.path(4), "c\\y.dds");
}

} // namespace

} // namespace korvane::test
