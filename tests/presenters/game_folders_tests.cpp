#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/presenters/game_folders.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace korvane
{

namespace
{

using paths = std::vector<std::string>;
using kind = game_folders::folder_kind;

std::string spelled(std::string path) // in one way, whatever the system's separators are
{
    path = toLower(path);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

class game_folders_test : public testing::Test
{
protected:
    void put(const std::string& path)
    {
        std::filesystem::create_directories(toPath(m_folder.file(path)).parent_path());
        test::writeBytes(m_folder.file(path), "x");
    }
    std::string configPath() const { return m_folder.file("config.cfg"); }
    std::string add(game_folders& folders, kind of, const std::string& chosen)
    {
        return folders.add(of, game_folders::lookAtChosen(of, chosen)).value_or("");
    }

    test::temporary_folder m_folder;
    config_file m_config;
};

TEST_F(game_folders_test, whatIsAddedComesBackAndWhatIsWrongIsSaid)
{
    for (const char* path :
         {"Game/data/a.pack", "Game/data/B.PACK", "rome/data/Models2_Rome2.pack", "mine/x.dds", "mod/x.dds"})
        put(path);
    shared_config shared(m_config, configPath(), {});
    game_folders folders(shared);
    EXPECT_FALSE(folders.isChanged());
    EXPECT_EQ(add(folders, kind::data, "  \"" + m_folder.file("Game") + "\" "), "") << "a game's root: its data folder";
    EXPECT_EQ(add(folders, kind::data, m_folder.file("rome/data")), "");
    EXPECT_EQ(add(folders, kind::mod, m_folder.file("mine")), "");
    const struct
    {
        kind of;
        std::string chosen, said;
    } refused[] = {{kind::data, "", "Type the path"},
                   {kind::data, m_folder.file("nowhere"), "There is no folder"},
                   {kind::mod, m_folder.file("mine/x.dds"), "There is no folder"},
                   {kind::data, m_folder.file("mod"), "holds no .pack archives"},
                   {kind::data, m_folder.file("GAME/Data/"), "in the list already"}};
    for (const auto& row : refused)
        EXPECT_NE(add(folders, row.of, row.chosen).find(row.said), std::string::npos) << row.said;
    const auto offers = [this](kind of, const std::string& name) {
        return game_folders::offerToMake(of, game_folders::lookAtChosen(of, m_folder.file(name))).has_value();
    };
    EXPECT_TRUE(offers(kind::mod, "mod/new") && offers(kind::mod, "mod/new/"));
    EXPECT_FALSE(offers(kind::data, "mod/new") || offers(kind::mod, "mod/new/deep") || offers(kind::mod, "mod") ||
                 offers(kind::mod, "mine/x.dds"));
    ASSERT_EQ(folders.rowCount(), 3u);
    EXPECT_EQ(folders.text(0, 2), "2");
    EXPECT_TRUE(folders.text(1, 0).starts_with("Total War Rome 2 | ")) << folders.text(1, 0);
    EXPECT_NE(spelled(folders.text(1, 0)).find(" path | " + spelled(m_folder.file("rome/data/"))), std::string::npos);
    EXPECT_EQ(folders.summary(), "2 data folders with 3 archives, 1 mod folder");

    EXPECT_FALSE(folders.canMoveDown(1)) << "the next one is a mod folder";
    folders.moveDown(0);
    EXPECT_EQ(folders.text(1, 2), "2");
    EXPECT_EQ(add(folders, kind::mod, m_folder.file("mod")), "");
    folders.setBoxText("C:\\typed");
    EXPECT_TRUE(folders.isChanged());
    ASSERT_TRUE(folders.save());
    EXPECT_FALSE(folders.isChanged());

    config_file again;
    ASSERT_TRUE(again.load(configPath()));
    ASSERT_EQ(again.get("DATA_PATHS").size(), 2u);
    EXPECT_EQ(spelled(again.get("DATA_PATHS")[0]), spelled(m_folder.file("rome/data/")));
    EXPECT_EQ(spelled(again.get("DATA_PATHS")[1]), spelled(m_folder.file("Game/data/")));
    EXPECT_EQ(spelled(again.get("mod_paths").back()), spelled(m_folder.file("mod/"))) << "the upper one counts most";
    EXPECT_EQ(again.get("FOLDER_BOX_TEXT_SAVED"), paths{"c:\\typed"});
    shared_config shared_again(again, configPath(), {});
    EXPECT_EQ(spelled(game_folders(shared_again).modFolder()), spelled(m_folder.file("mod/")));
}

TEST_F(game_folders_test, missingFoldersAreMarkedOnceTheyWereLookedAt)
{
    put("Game/data/a.pack");
    put("Empty/data/readme.txt");
    m_config.add(config_keys::data_folders,
                 {m_folder.file("Game/data/"), m_folder.file("Gone/data/"), m_folder.file("Empty/data/")}, false);
    shared_config shared(m_config, configPath(), {});
    game_folders folders(shared);
    EXPECT_EQ(folders.text(0, 2), "");
    EXPECT_EQ(folders.mark(1), row_mark::plain);
    folders.take(game_folders::look(folders.unseenFolders(), {}));
    EXPECT_TRUE(folders.unseenFolders().empty());
    EXPECT_EQ(spelled(folders.text(0, 0)), spelled(m_folder.file("Game/data/")));
    EXPECT_EQ(folders.mark(0), row_mark::plain);
    EXPECT_EQ(folders.text(1, 2), "missing");
    EXPECT_EQ(folders.mark(1), row_mark::error);
    EXPECT_EQ(folders.mark(2), row_mark::error);
    EXPECT_FALSE(folders.isChanged());
    EXPECT_EQ(folders.newOf({{"a", m_folder.file("GAME/data/"), 1}, {"b", m_folder.file("other/data/"), 1}}).size(),
              1u);
    folders.remove(1);
    EXPECT_TRUE(folders.isChanged());
}

// Another window has set other folders: only what was changed here is written.
TEST_F(game_folders_test, foldersThatWereNotTouchedStayAsAnotherWindowHasSetThem)
{
    m_config.add(config_keys::data_folders, {"c:\\old\\"}, false);
    shared_config shared(m_config, configPath(), {});
    game_folders folders(shared);
    config_file other;
    other.add(config_keys::data_folders, {"c:\\new\\"}, false);
    ASSERT_TRUE(other.save(configPath()));
    folders.setBoxText("typed");
    ASSERT_TRUE(folders.save());
    EXPECT_EQ(m_config.get(config_keys::data_folders), paths{"c:\\new\\"});
}

} // namespace

} // namespace korvane
