#include "Korvane/game/file_bytes.h"
#include "Korvane/jobs/file_preview.h"
#include "Korvane/presenters/archive_browser.h"
#include "Korvane/presenters/archive_changes.h"
#include "Korvane/presenters/archive_overview.h"
#include "Korvane/presenters/archive_places.h"
#include "Korvane/presenters/hex_rows.h"
#include "tests/support/archive_tree.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

class archive_browser_test : public testing::Test
{
protected:
    // The later one of two archives counts.
    std::shared_ptr<const game_data> gameOf(std::vector<test::test_entry> lower, std::vector<test::test_entry> upper)
    {
        auto tree = std::make_shared<path_tree>();
        test::enterArchive(*tree, m_folder, "lower.pack", std::move(lower));
        test::enterArchive(*tree, m_folder, "upper.pack", std::move(upper));
        return std::make_shared<const game_data>(tree);
    }
    std::shared_ptr<const game_data> usual()
    {
        return gameOf(
            {{"b\\deep\\x.dds", "12"}, {"b\\two.anim", "2"}, {"b\\one.dds", "111"}, {"top.txt", ""}, {"a\\f", ""}},
            {{"b\\one.dds", "1"}, {"b", "a file of a folder's name"}});
    }
    std::string listed() const
    {
        std::string text;
        const archive_rows& rows = m_browser.rows();
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            text += (row == 0 ? "" : " ") + std::string(rows.folderAt(row) != nullptr ? "+" : "") +
                    rows.text(row, archive_rows::name);
        return text;
    }

    test::temporary_folder m_folder;
    archive_browser m_browser;
};

TEST_F(archive_browser_test, placesAreGoneToAndBackAndStayWhenArchivesAreReadAgain)
{
    EXPECT_FALSE(m_browser.open("b"));
    EXPECT_EQ(m_browser.folders().childCount(tree_model::root), 0u);
    m_browser.setGame(usual());
    EXPECT_EQ(listed(), "+a +b b top.txt");
    EXPECT_FALSE(m_browser.canGoUp());
    ASSERT_TRUE(m_browser.open(" B/Deep/"));
    EXPECT_EQ(m_browser.folder(), "b\\deep");
    EXPECT_EQ(listed(), "x.dds");
    EXPECT_FALSE(m_browser.open("b\\none"));
    EXPECT_FALSE(m_browser.open("top.txt"));
    EXPECT_EQ(m_browser.folder(), "b\\deep");
    m_browser.goUp();
    EXPECT_EQ(listed(), "+deep one.dds two.anim");
    EXPECT_EQ(m_browser.status(false), "1 folder, 2 files");
    m_browser.goBack();
    m_browser.goBack();
    EXPECT_EQ(m_browser.folder(), "");
    EXPECT_FALSE(m_browser.canGoBack());
    m_browser.goForward();
    EXPECT_EQ(m_browser.folder(), "b\\deep");
    EXPECT_TRUE(m_browser.canGoForward());
    // The folder is gone: the nearest one around it is shown.
    m_browser.setGame(gameOf({{"b\\two.anim", ""}}, {{"c", ""}}));
    EXPECT_EQ(m_browser.folder(), "b");
    EXPECT_EQ(listed(), "two.anim");
    // In the tree of folders: each is found, and knows what it stands below.
    archive_folders& folders = m_browser.folders();
    const tree_model::node found = folders.find("b");
    EXPECT_EQ(folders.parent(found), archive_folders::everything);
    EXPECT_EQ(folders.parent(archive_folders::everything), tree_model::root);
    EXPECT_EQ(folders.child(archive_folders::everything, 0), found);
    EXPECT_EQ(folders.childCount(archive_folders::everything), 1u);
}

TEST_F(archive_browser_test, changesOnTheDiskAreSaidAndWhatWasChosenIsFoundAgain)
{
    m_browser.setGame(usual());
    ASSERT_TRUE(m_browser.open("b"));
    const std::vector<std::string> chosen = m_browser.pathsOf({1, 2}); // one.dds and two.anim
    const std::shared_ptr<const path_tree> tree = m_browser.game()->archives();
    const std::vector<std::string> folders = {m_folder.file("")};
    test::writeBytes(m_folder.file("bad.pack"), "no archive");
    const archive_stamps as_read = stampsAsRead(*tree, stampArchives(folders));
    EXPECT_EQ(describeChanges(as_read, stampArchives(folders)), "");
    test::writeBytes(m_folder.file("bad.pack"), "no archive yet");
    EXPECT_EQ(describeChanges(as_read, stampArchives(folders)), "On the disk bad.pack has changed.");
    std::filesystem::rename(toPath(m_folder.file("bad.pack")), toPath(m_folder.file("new.pack")));
    test::writeBytes(m_folder.file("other.pack"), "");
    EXPECT_EQ(describeChanges(as_read, stampArchives(folders)),
              "On the disk bad.pack is gone, new.pack, other.pack are new.");

    m_browser.setGame(gameOf({{"b\\a", ""}, {"b\\two.anim", "2"}}, {{"b\\zz", ""}}));
    EXPECT_EQ(m_browser.rowsOf(chosen), std::vector<std::size_t>{1});
}

TEST_F(archive_browser_test, veryManyRowsAreMadeBesideTheWindow)
{
    std::vector<test::test_entry> many = {{"few\\x", ""}};
    for (int i = 0; i < 20001; ++i)
        many.push_back({"many\\" + std::to_string(99999 - i), ""});
    m_browser.setGame(gameOf(std::move(many), {}));
    ASSERT_TRUE(m_browser.open("many"));
    EXPECT_EQ(m_browser.status(false), "0 files, being put in order...");
    const archive_browser::due_rows due = m_browser.takeDue();
    EXPECT_FALSE(m_browser.takeDue().make) << "once";
    ASSERT_TRUE(m_browser.take(due.make(), due));
    EXPECT_EQ(m_browser.status(false), "20,001 files");
    EXPECT_EQ(m_browser.rows().text(0, archive_rows::name), "79999");
    m_browser.sortBy(archive_rows::name);
    m_browser.sortBy(archive_rows::name); // the newer one counts
    const archive_browser::due_rows downwards = m_browser.takeDue();
    EXPECT_FALSE(m_browser.take(due.make(), due));
    ASSERT_TRUE(m_browser.take(downwards.make(), downwards));
    EXPECT_EQ(m_browser.rows().text(0, archive_rows::name), "99999");
    m_browser.sortBy(archive_rows::size);
    const archive_browser::due_rows late = m_browser.takeDue();
    ASSERT_TRUE(m_browser.open("few"));
    EXPECT_FALSE(m_browser.take(late.make(), late));
    EXPECT_EQ(m_browser.status(false), "1 file");
}

TEST_F(archive_browser_test, columnsAreSortedAndHiddenCopiesAreKnown)
{
    m_browser.setGame(usual());
    m_browser.setHidden(std::make_shared<hidden_copies>(m_browser.game()->archives()));
    ASSERT_TRUE(m_browser.open("b"));
    const struct
    {
        archive_rows::column column;
        const char* upwards;
        const char* downwards;
    } rows[] = {{archive_rows::type, "+deep two.anim one.dds", "+deep one.dds two.anim"},
                {archive_rows::archive, "+deep two.anim one.dds", "+deep one.dds two.anim"},
                {archive_rows::overrides, "+deep two.anim one.dds", "+deep one.dds two.anim"},
                {archive_rows::name, "+deep one.dds two.anim", "+deep two.anim one.dds"}};
    for (const auto& row : rows)
    {
        m_browser.sortBy(row.column);
        EXPECT_EQ(listed(), row.upwards) << row.column;
        m_browser.sortBy(row.column);
        EXPECT_EQ(listed(), row.downwards) << row.column;
    }
    const std::optional<std::size_t> one = m_browser.rowOf("b\\one.dds");
    ASSERT_TRUE(one);
    EXPECT_EQ(m_browser.rows().text(*one, archive_rows::overrides), "1");
    EXPECT_EQ(m_browser.details(*one),
              "b\\one.dds: from upper.pack (PFH4). Hides 1 copy, for its archive counts more: lower.pack.");
    ASSERT_EQ(m_browser.copiesOf(*one).size(), 1u);
    EXPECT_EQ(m_browser.copiesOf(*one)[0]->size(), 3u);
    m_browser.beginList("What x needs");
    m_browser.rows().setMissing({"no\\such.dds"});
    EXPECT_EQ(m_browser.status(false), "What x needs: 0 files, 1 missing");
    EXPECT_EQ(m_browser.rows().mark(0), row_mark::error);
    m_browser.showFolder();
    EXPECT_TRUE(m_browser.isFolderShown());
}

TEST(file_preview, textsAreToldFromBytes)
{
    const struct
    {
        std::string bytes;
        const char* text;
        const char* encoding; // null: no text
    } rows[] = {{"a\nb\r\nc\rd", "a\r\nb\r\nc\r\nd", "UTF-8"},
                {"\xef\xbb\xbfm\xc3\xa4n", "m\xc3\xa4n", "UTF-8"},
                {"m\xe4n", "m\xc3\xa4n", "Latin-1"},
                {std::string("\xff\xfem\0\n\0", 6), "m\r\n", "UTF-16"},
                {std::string("\xfe\xff\0m", 4), "m", "UTF-16"},
                {std::string("a\0b", 3), "", nullptr},
                {"", "", "UTF-8"}};
    for (const auto& row : rows)
    {
        std::string text, encoding;
        const bool is_text = readText(std::as_bytes(std::span(row.bytes)), text, encoding);
        EXPECT_EQ(is_text, row.encoding != nullptr) << row.bytes;
        EXPECT_EQ(text + encoding, is_text ? std::string(row.text) + row.encoding : "");
    }
    const std::string bytes("0123456789abcdef\x01~", 18);
    EXPECT_EQ(hexLines(std::as_bytes(std::span(bytes))),
              "00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  0123456789abcdef\r\n"
              "00000010  01 7e                                            .~\r\n");
}

TEST_F(archive_browser_test, eachCopyCanBeHadAndTheOverviewSaysWhichCounts)
{
    const std::shared_ptr<const game_data> game = usual();
    const struct
    {
        const char* path;
        std::uint64_t size;
    } rows[] = {{"b\\one.dds", 1},
                {"LOWER.pack|B/one.dds", 3},
                {"upper.pack|b\\one.dds", 1},
                {"lower.pack|b", 0},
                {"no.pack|top.txt", 0}};
    for (const auto& row : rows)
    {
        file_bytes bytes;
        failure why;
        const game_file found = game->find(row.path);
        EXPECT_EQ(static_cast<bool>(found), row.size > 0) << row.path;
        EXPECT_EQ(found && bytes.open(found, why) ? bytes.size() : 0, row.size) << row.path << describe(why);
    }
    const archive_overview overview(game->archives(), {});
    EXPECT_EQ(overview.archiveAt(0).name, "upper.pack");
    EXPECT_EQ(overview.text(0, 5) + "/" + overview.text(0, 6), "1/");
    EXPECT_EQ(overview.text(1, 5) + "/" + overview.text(1, 6), "/1");
    EXPECT_NE(overview.facts(1).find("1   upper.pack"), std::string::npos);
}

TEST_F(archive_browser_test, placeSortingAndFavouritesAreKept)
{
    config_file config;
    m_browser.setGame(usual());
    ASSERT_TRUE(m_browser.open("b"));
    m_browser.sortBy(archive_rows::size);
    m_browser.sortBy(archive_rows::size);
    const std::string before = listed();
    EXPECT_TRUE(keepPlace(config, m_browser));
    EXPECT_FALSE(keepPlace(config, m_browser));
    m_browser = archive_browser();
    restorePlace(m_browser, config);
    m_browser.setGame(usual());
    EXPECT_EQ(listed(), before);
    EXPECT_EQ(m_browser.folder(), "b");
    EXPECT_TRUE(setFavourite(config, "b", true));
    EXPECT_FALSE(setFavourite(config, "b", true));
    EXPECT_EQ(favouriteFolders(config), std::vector<std::string>{"b"});
    EXPECT_TRUE(setFavourite(config, "b", false));
    EXPECT_TRUE(favouriteFolders(config).empty());
}

TEST_F(archive_browser_test, bytesAreReadPageByPageWhenTheyAreSeen)
{
    hex_rows rows;
    int told = 0;
    rows.onWanted = [&told] { ++told; };
    rows.restart(hex_rows::page_size + 3);
    EXPECT_EQ(rows.rowCount(), hex_rows::page_size / 16 + 1);
    const std::size_t last = rows.rowCount() - 1;
    EXPECT_EQ(rows.text(last, 0), "00004000");
    EXPECT_EQ(rows.text(last, 1) + rows.text(last, 2) + rows.text(0, 1), "");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(rows.takeWanted(), (std::vector<std::uint64_t>{0, 1}));
    rows.take(1, {std::byte{'a'}, std::byte{0}, std::byte{0xff}});
    EXPECT_EQ(rows.text(last, 1) + "|" + rows.text(last, 2), "61 00 ff|a..");
    rows.take(0, {}); // cannot be read
    EXPECT_EQ(rows.mark(0), row_mark::error);
    rows.restart(std::uint64_t{4} << 30);
    EXPECT_LT(rows.rowCount(), 100'000'000u);
    EXPECT_EQ(rows.positionOf(rows.rowOf(0x12345678)), 0x12345640u);

    const std::pair<const char*, std::optional<std::uint64_t>> positions[] = {
        {"8,000", 8000},    {"0x1F40", 8000},     {"1f40", 8000},
        {"", std::nullopt}, {"-1", std::nullopt}, {"xyz", std::nullopt}};
    for (const auto& [typed, position] : positions)
        EXPECT_EQ(positionIn(typed), position) << typed;
    EXPECT_EQ(bytesIn("0x1f 8B"), (std::vector{std::byte{0x1f}, std::byte{0x8b}}));
    EXPECT_EQ(bytesIn("0x1").size(), 3u);
}

} // namespace
} // namespace korvane
