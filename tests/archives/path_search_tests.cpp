#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/path_search.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <sstream>

namespace korvane
{
namespace
{

std::shared_ptr<path_tree> treeOf(const std::vector<std::string>& paths)
{
    const test::temporary_folder folder;
    test::test_pack pack;
    for (const std::string& path : paths)
        pack.entries.push_back({path, ""});
    test::writeBytes(folder.file("x.pack"), pack.bytes());
    auto tree = std::make_shared<path_tree>();
    pack_file archive(*tree);
    failure why;
    EXPECT_TRUE(archive.open(folder.file("x.pack"), why)) << describe(why);
    archive.enter();
    return tree;
}

std::vector<std::string> hitsOf(const path_search& search)
{
    std::vector<std::string> paths;
    for (const pack_file_node* file : search.hits())
        paths.emplace_back(file->internalPath());
    return paths;
}

// Some part of the path is spelled so, by trying all of them.
bool has(std::string_view path, std::string_view word)
{
    const std::function<bool(std::string_view, std::string_view)> begins = [&](std::string_view text,
                                                                               std::string_view rest) {
        if (rest.empty())
            return true;
        if (rest.front() == '*')
            return begins(text, rest.substr(1)) || (!text.empty() && begins(text.substr(1), rest));
        return !text.empty() && (rest.front() == '?' || rest.front() == text.front()) &&
               begins(text.substr(1), rest.substr(1));
    };
    for (std::size_t at = 0; at <= path.size(); ++at)
        if (begins(path.substr(at), word))
            return true;
    return false;
}

} // namespace

TEST(path_search, findsWhatAPlainSearchFindsInTheOrderOfThePaths)
{
    std::vector<std::string> paths = {"a",        "a\\b",     "a.x",  "a\\b\\c",           "a b", "a\\b.txt",
                                      "zz\\\xff", "zz\\\x01", "a\\c", "units\\man_01.dds", "ab",  "units\\man_02.dds"};
    for (int i = 0; i < 300; ++i) // lengths around the sixteen bytes that are looked at in one go
        paths.push_back("long\\" + std::string(static_cast<std::size_t>(i % 50), 'x') + "needle" + std::to_string(i));
    const std::shared_ptr<path_tree> tree = treeOf(paths);
    std::sort(paths.begin(), paths.end(), [](const std::string& left, const std::string& right) {
        return std::string_view(left) < std::string_view(right); // as unsigned bytes
    });
    path_search search(tree);
    EXPECT_EQ(search.fileCount(), paths.size());
    for (const std::string text : {"",
                                   "a",
                                   "\\",
                                   "needle",
                                   "NEEDLE29",
                                   "e2",
                                   "x",
                                   "xneedle",
                                   "UNITS/man_0",
                                   "s\\m",
                                   "\xff",
                                   "9",
                                   "no such",
                                   "a\\b",
                                   ".dds",
                                   "xxxxxxxxxxxxxxxxxxxxxxneedle",
                                   "dds man",
                                   " 9  needle 2 ",
                                   "x*9",
                                   "n??s\\m dds",
                                   "u*1.d",
                                   "*",
                                   "???????????????",
                                   "x?e*?d",
                                   "needle?9",
                                   "x*x*?eed*1?",
                                   "?xxneed*"})
    {
        search.find({"\x02"}); // nothing has it: what follows is no narrowing
        while (search.advance(7))
        {
        }
        search.find({text});
        while (search.advance(7))
        {
        }
        std::string wanted = text;
        std::transform(wanted.begin(), wanted.end(), wanted.begin(), [](char each) {
            return each == '/' ? '\\' : each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each;
        });
        std::istringstream words(wanted);
        const std::vector<std::string> each{std::istream_iterator<std::string>(words), {}};
        std::vector<std::string> expected;
        for (const std::string& path : paths)
            if (std::all_of(each.begin(), each.end(), [&path](const std::string& word) { return has(path, word); }))
                expected.push_back(path);
        EXPECT_EQ(hitsOf(search), expected) << text;
    }
}

TEST(path_search, narrowsAndGoesOnWhereItStood)
{
    std::vector<std::string> paths;
    for (int i = 100; i < 200; ++i)
        paths.push_back("man_" + std::to_string(i));
    path_search search(treeOf(paths));
    EXPECT_FALSE(search.isDone());
    search.find({"1"});
    EXPECT_TRUE(search.advance(50));
    EXPECT_EQ(search.hitCount(), 50u);
    search.find({"15"}); // typed on: 115 is kept, and the rest is looked at only from here on
    EXPECT_EQ(search.lookedAt(), 50u);
    EXPECT_TRUE(search.advance(20));
    EXPECT_EQ(hitsOf(search), std::vector<std::string>{"man_115"});
    search.find({"15 m"}); // while the former ones are looked at
    EXPECT_TRUE(search.advance(1000));
    EXPECT_EQ(hitsOf(search), std::vector<std::string>{"man_115"});
    EXPECT_EQ(search.lookedAt(), 50u);
    EXPECT_FALSE(search.advance(1000));
    EXPECT_EQ(search.hitCount(), 11u);
    search.find({"19"}); // something else: from the beginning
    EXPECT_EQ(search.lookedAt(), 0u);
    EXPECT_FALSE(search.advance(1000));
    EXPECT_EQ(search.hitCount(), 11u);

    path_search kinds(treeOf({"a.dds", "dds", "b.dds", "b.anim", "dds.x"}));
    kinds.find({"b", "dds"});
    EXPECT_FALSE(kinds.advance(1000));
    EXPECT_EQ(hitsOf(kinds), std::vector<std::string>{"b.dds"});
    kinds.find({"", "dds"}); // looser
    EXPECT_FALSE(kinds.advance(1000));
    EXPECT_EQ(hitsOf(kinds), (std::vector<std::string>{"a.dds", "b.dds"}));

    path_search nothing(nullptr);
    nothing.find({"x"});
    EXPECT_FALSE(nothing.advance(10));
}

} // namespace korvane
