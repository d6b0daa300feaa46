#include "Korvane/jobs/file_preview.h"
#include "Korvane/presenters/archive_browser.h"
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
              "b\\one.dds: from upper.pack (PFH4). Hides 1 copy, because it was read later: lower.pack.");
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
    EXPECT_EQ(hexLines(std::as_bytes(std::span(bytes)), 0x20),
              "00000020  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  0123456789abcdef\r\n"
              "00000030  01 7e                                            .~\r\n");
}

} // namespace
} // namespace korvane
