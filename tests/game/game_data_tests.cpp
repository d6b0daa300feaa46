#include "Korvane/game/game_data.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/mod_folder.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/game/data_folders.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

using test::test_entry;

class game_data_test : public testing::Test
{
protected:
    void write(const std::string& name, const std::string& text) const
    {
        const std::filesystem::path path = toPath(m_folder.file(name));
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    std::shared_ptr<path_tree> treeOf(std::vector<test_entry> entries) const
    {
        test::test_pack pack;
        pack.magic = "PFH5";
        pack.entries = std::move(entries);
        write("a.pack", pack.bytes());
        auto tree = std::make_shared<path_tree>();
        pack_file archive(*tree);
        failure why;
        EXPECT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
        return tree;
    }
    // With these mod folders over it.
    std::shared_ptr<path_tree> laidOver(std::shared_ptr<path_tree> tree, const std::vector<std::string>& folders) const
    {
        for (const std::string& folder : folders)
        {
            failure why;
            EXPECT_TRUE(enterModFolder(*tree, m_folder.file(folder), {}, why)) << describe(why);
        }
        return tree;
    }
    // Its content, or "nothing".
    static std::string contentOf(const game_file& file)
    {
        memory_file bytes;
        failure why;
        return file && file.read(bytes, why) ? std::string(bytes.text()) : "nothing";
    }
    std::string model() const { return m_folder.file("data/units/man/man.rigid_model_v2"); }

    test::temporary_folder m_folder;
};

TEST_F(game_data_test, oneToleranceForSeparatorsCaseAndBlanks)
{
    const game_data game(treeOf({{"Maps\\Body.dds", "body"},
                                 {"maps/odd.dds", "slash"},
                                 {"maps\\blank.dds ", "blank"},
                                 {"maps\\both.dds", "plain"},
                                 {"maps/both.dds", "with a slash"}}));
    const struct
    {
        const char* path;
        const char* content;
    } rows[] = {
        {"maps\\body.dds", "body"},
        {"MAPS/BODY.DDS", "body"},
        {" \\maps\\\\body.dds\r\n", "body"},
        {"Maps/Odd.dds", "slash"},
        {"maps\\odd.dds", "slash"},
        {"maps\\blank.dds", "blank"},
        {"maps/blank.dds ", "blank"},
        {"maps\\both.dds", "plain"},
        {"maps/both.dds", "with a slash"},
        {"maps", "nothing"},
        {"", "nothing"},
        {"maps\\missing.dds", "nothing"},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(contentOf(game.find(row.path)), row.content) << row.path;
        memory_file bytes;
        failure why;
        EXPECT_EQ(game.read(game_path::ofInternal(row.path), bytes, why), row.content != std::string("nothing"));
    }
}

TEST_F(game_data_test, modFoldersStandBeforeTheArchivesAndTheDiskAroundAFileBehindThem)
{
    write("mod/Maps/body.DDS", "painted");
    write("second mod/maps/body.dds", "other paint");
    write("second mod/maps/new.dds", "new");
    write("data/units/man/maps/near.dds", "near");
    write("data/units/man/beside.dds", "beside");
    write("data/maps/near.dds", "not this one");
    write("secret.dds", "secret");
    write("second mod/maps/game.dds", "taken back");
    const auto tree =
        laidOver(treeOf({{"maps\\body.dds", "body"}, {"maps\\game.dds", "game"}, {"broken.dds", "none", 1}}),
                 {"second mod/", "MOD"});
    const game_data game(tree);
    const pack_file_node* const listed = tree->findFile("maps\\body.dds");
    ASSERT_TRUE(listed);
    EXPECT_EQ(contentOf(game_file(std::shared_ptr<const pack_file_node>(tree, listed))), "painted");
    EXPECT_EQ(listed->archive().format, "folder");
    EXPECT_EQ(tree->archives().back()->file_count, 1u);
    // What happens in a folder afterwards counts at once.
    std::filesystem::remove(toPath(m_folder.file("second mod/maps/game.dds")));
    write("mod/Maps/later.dds", "later");
    const struct
    {
        const char* path;
        const char* content;
        bool is_around; // found only there
    } rows[] = {
        {"maps\\BODY.dds", "painted", false}, {"maps/new.dds ", "new", false},
        {"maps\\game.dds", "game", false},    {"maps\\later.dds", "later", false},
        {"Maps\\Near.dds", "near", true},     {"other\\folder\\beside.dds", "beside", true},
        {"..\\secret.dds", "nothing", false}, {"maps/../../secret.dds", "nothing", false},
        {"C:\\secret.dds", "nothing", false}, {"/secret.dds", "nothing", false},
        {"units", "nothing", false},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(contentOf(game.findAround(row.path, model())), row.content) << row.path;
        EXPECT_EQ(contentOf(game.findAround(row.path, "pack:units\\man.rigid_model_v2")),
                  row.is_around ? "nothing" : row.content)
            << row.path;
    }
    std::vector<std::string> log;
    const auto note = [&log](const std::string& line) { log.push_back(line); };
    EXPECT_EQ(game.readTexture("beside.dds", model(), note).value().text(), "beside");
    EXPECT_FALSE(game.readTexture("missing.dds", model(), note));
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(game.readTexture("broken.dds", model(), note));
    ASSERT_EQ(log.size(), 1u);
    EXPECT_NE(log[0].find("broken.dds in "), std::string::npos) << log[0];
}

TEST_F(game_data_test, aSkeletonIsThatOfTheModThenOfTheFirstArchiveAndWithoutArchivesTheOneAroundTheModel)
{
    write("data/animations/skeletons/man.anim", "around");
    const auto tree = treeOf({{"old\\skeletons\\Man.anim", "first"}, {"animations\\skeletons\\man.anim", "second"}});
    EXPECT_EQ(contentOf(game_data(tree).findSkeleton("MAN", model())), "first");
    EXPECT_EQ(contentOf(game_data(tree).findSkeleton("horse", model())), "nothing");
    EXPECT_EQ(contentOf(game_data().findSkeleton("man", model())), "around");
    EXPECT_EQ(contentOf(game_data().findSkeleton("man", {})), "nothing");
    write("mod/animations/skeletons/man.anim", "mine");
    EXPECT_EQ(contentOf(game_data(laidOver(tree, {"mod"})).findSkeleton("man", model())), "mine");
}

TEST_F(game_data_test, withModFoldersAloneNoArchivesAreLoaded)
{
    write("mod/a", "mine");
    const game_data game(laidOver(std::make_shared<path_tree>(), {"mod"}));
    EXPECT_FALSE(game.hasArchives());
    EXPECT_EQ(contentOf(game.find("A")), "mine");
    memory_file bytes;
    failure why;
    EXPECT_FALSE(game.read("pack:b", bytes, why));
    EXPECT_EQ(why.what, "no mod folder holds this path, and no archives are loaded");
}

TEST(data_folders, areUnderstoodAsShellsHandThemOver)
{
    using folders = std::vector<std::string>;
    const test::temporary_folder folder;
    const struct
    {
        folders given;
        folders understood;
    } rows[] = {
        {{"C:\\Total War\\data"}, {"C:\\Total War\\data\\"}},
        {{"C:\\Total War\\data\\"}, {"C:\\Total War\\data\\"}},
        {{"C:\\a b\""}, {"C:\\a b\\"}},
        {{"C:\\a\" D:\\b\"", "e/f"}, {"C:\\a\\", "D:\\b\\", "e/f/"}},
        {{"D:"}, {"D:\\"}},
        {{""}, {}},
        {{folder.file("")}, {folder.file("")}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(foldersGiven(row.given), row.understood) << row.given.front();
}

TEST_F(game_data_test, whatIsFoundOutlivesItsGameAndIsReadAgain)
{
    game_file found;
    {
        const game_data game(treeOf({{"a", "content"}}));
        found = game.find("A");
    }
    EXPECT_EQ(contentOf(found), "content");
    std::byte start[4] = {};
    std::size_t count = 0;
    failure why;
    ASSERT_TRUE(found.readStart(start, count, why)) << describe(why);
    EXPECT_EQ(count, 4u);
    write("short", "ab");
    ASSERT_TRUE(game_file(m_folder.file("short")).readStart(start, count, why)) << describe(why);
    EXPECT_EQ(count, 2u);
}

TEST_F(game_data_test, readingSaysWhatIsMissing)
{
    const game_data game(treeOf({{"folder\\a", "content"}}));
    const struct
    {
        const game_data& game;
        const char* path;
        const char* what;
    } rows[] = {
        {game_data(), "pack:a", "no archives are loaded"},
        {game, "pack:b", "no archive holds this path"},
        {game, "pack:folder", "this is a folder of the archives, not a file"},
    };
    for (const auto& row : rows)
    {
        memory_file bytes;
        failure why;
        EXPECT_FALSE(row.game.read(row.path, bytes, why));
        EXPECT_EQ(why.kind, failure_kind::not_found);
        EXPECT_EQ(why.what, row.what);
        EXPECT_EQ(why.path, row.path);
    }
}

} // namespace

} // namespace korvane
