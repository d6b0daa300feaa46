#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_finder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <map>

namespace korvane
{

namespace
{

using paths = std::vector<std::string>;

TEST(game_finder, librariesOfBothFormsAndOfDamagedLists)
{
    const struct
    {
        const char* name;
        std::string text;
        paths libraries;
    } rows[] = {
        {"old form",
         "\"LibraryFolders\"\n{\n\t\"TimeNextStatsReport\"\t\"15\"\n\t\"1\"\t\t\"D:\\\\Games\\\\Steam\"\n}",
         {"D:\\Games\\Steam"}},
        {"new form",
         "\"libraryfolders\" { \"0\" { \"path\" \"C:\\\\Steam\" \"label\" \"\" \"apps\" { \"214950\" \"123\" } } // "
         "\"9\"\n"
         "\"1\" { \"Path\" \"E:\\\\\" } }",
         {"C:\\Steam", "E:\\"}},
        {"single backslashes and bare words", "libraryfolders { 1 { path \"F:\\Spiele\\Neu\" } }", {"F:\\Spiele\\Neu"}},
        {"ends in a text",
         "\"libraryfolders\" { \"0\" { \"path\" \"C:\\\\a\" } \"1\" { \"path\" \"D:",
         {"C:\\a", "D:"}},
        {"more closed than opened", "} } \"0\" { \"path\" \"C:\\\\a\" }", {}},
        {"a library's own numbers are none", "x { 0 { apps { 10 20 path y } contentid 7 } }", {}},
        {"braces alone", std::string(500'000, '{'), {}},
        {"nothing", "", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(steamLibraries(row.text), row.libraries) << row.name;
}

class game_finder_test : public testing::Test
{
protected:
    void put(const std::string& path, const std::string& bytes = "x")
    {
        std::filesystem::create_directories(toPath(m_folder.file(path)).parent_path());
        test::writeBytes(m_folder.file(path), bytes);
    }

    test::temporary_folder m_folder;
};

TEST_F(game_finder_test, dataFoldersWithArchivesOfEachStoreOnce)
{
    put("steam/steamapps/common/First/Data/a.PACK");
    put("steam/steamapps/common/First/data.txt");
    put("steam/steamapps/common/No Archives/data/readme.txt");
    put("steam/steamapps/common/a file");
    put("library/steamapps/common/second/data/a.pack");
    put("library/steamapps/common/second/data/b.pack");
    put("steam/steamapps/libraryfolders.vdf", "\"libraryfolders\" { \"0\" { \"path\" \"" + m_folder.file("steam") +
                                                  "\" } \"1\" { \"path\" \"" + m_folder.file("library") +
                                                  "\" } \"2\" { \"path\" \"" + m_folder.file("gone") + "\" } }");
    put("steam/config/libraryfolders.vdf", std::string(2 << 20, '"')); // more than such a list can have
    std::string anywhere = m_folder.file("anywhere");
    std::replace(anywhere.begin(), anywhere.end(), '\\', '/'); // which JSON would take for an escape
    put("epic/one.item", "{\"InstallLocation\": \"" + anywhere + "\", \"DisplayName\": \"Third\"}");
    put("epic/two.item", "{\"InstallLocation\": 7}");
    put("epic/three.item", std::string(100'000, '['));
    put("anywhere/data/a.pack");
    put("gog/Fourth/data/a.pack");
    std::error_code error;
    std::filesystem::create_directory_symlink(toPath(m_folder.file("gog")), toPath(m_folder.file("gog/loop")), error);
    std::filesystem::create_directory_symlink(toPath(m_folder.file("gog/Fourth")), toPath(m_folder.file("gog/Again")),
                                              error);
    const game_stores stores = {{m_folder.file("steam"), m_folder.file("no steam")},
                                {m_folder.file("epic")},
                                {m_folder.file("gog"), m_folder.file("steam/steamapps/common/a file")},
                                {m_folder.file("gog/Fourth"), ""}};
    std::map<std::string, std::size_t> found;
    for (const found_game& game : findGames(stores, {}))
        found.emplace(toLower(game.name), game.archives);
    EXPECT_EQ(found.erase("again") + found.erase("fourth"), 1u) << "two names of one folder";
    EXPECT_EQ(found, (std::map<std::string, std::size_t>{{"first", 1}, {"second", 2}, {"third", 1}}));

    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(findGames(stores, {{}, stop.get_token(), {}}).empty());
}

} // namespace

} // namespace korvane
