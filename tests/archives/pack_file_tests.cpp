#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace korvane
{
namespace
{

using test::test_entry;
using test::test_pack;

std::string contentOf(const path_tree& tree, const std::string& path)
{
    const path_node* const node = tree.find(path);
    memory_file bytes;
    failure why;
    if (!node || !node->file() || !readEntry(*node->file(), bytes, why))
        return "(none)";
    return std::string(bytes.text());
}

std::shared_ptr<path_tree> treeOf(const test::temporary_folder& folder, const test_pack& pack)
{
    test::writeBytes(folder.file("one.pack"), pack.bytes());
    auto tree = std::make_shared<path_tree>();
    pack_file archive(*tree);
    failure why;
    if (!archive.open(folder.file("one.pack"), why))
        return nullptr;
    archive.enter();
    return tree;
}

// Loads the folder and returns the log.
struct loaded_folder
{
    std::vector<std::string> log;
    pack_reader reader{{{}, {}, [this](const std::string& line) { log.push_back(line); }}};
    bool is_loaded = false;

    explicit loaded_folder(const std::vector<std::string>& folders) { is_loaded = reader.loadAllArchives(folders); }
};

} // namespace

TEST(pack_file, everyHeaderReadsTheSameFiles)
{
    const test::temporary_folder folder;
    for (const char* magic : {"PFH0", "PFH2", "PFH3", "PFH4", "PFH5"})
        for (const std::uint32_t flags : {0u, 0x40u, 0x43u})
        {
            test_pack pack;
            pack.magic = magic;
            pack.flags = flags;
            pack.names = {"base.pack", "", "third.pack"};
            pack.entries = {{"Animations\\Skeletons\\Humanoid01.ANIM", "first"}, {"b.txt", ""}, {"a\\c.dds", "third"}};
            const std::shared_ptr<path_tree> tree = treeOf(folder, pack);
            ASSERT_TRUE(tree) << magic;
            EXPECT_EQ(contentOf(*tree, "animations/SKELETONS\\humanoid01.anim"), "first") << magic << flags;
            EXPECT_EQ(contentOf(*tree, "b.txt"), "");
            EXPECT_EQ(contentOf(*tree, "a\\c.dds"), "third");
        }
}

TEST(pack_file, theTreeKnowsFoldersAndOrdersThem)
{
    const test::temporary_folder folder;
    test_pack pack;
    pack.entries = {{"z\\2.a", "1"}, {"z\\1.b", "2"}, {"\\\\z\\\\y\\3.tar.GZ\\", "3"}, {"a/b\\c", "4"}, {"top", "5"}};
    const std::shared_ptr<path_tree> tree = treeOf(folder, pack);
    ASSERT_TRUE(tree);
    const path_tree::node_pointer z = tree->getNodeFromInternalPath("Z/");
    ASSERT_TRUE(z);
    EXPECT_EQ(z->file(), nullptr);
    std::string names;
    for (const path_node* child : tree->children(*z))
        names += std::string(child->name()) + " ";
    EXPECT_EQ(names, "1.b 2.a y ");
    const path_node* const file = tree->find("z\\y\\3.tar.gz"); // empty components are dropped
    ASSERT_TRUE(file && file->file());
    EXPECT_EQ(file->file()->extension(), "gz");
    EXPECT_EQ(file->file()->fileName(), "3.tar.gz");
    EXPECT_EQ(tree->find("a/b/c"), nullptr); // '/' is an ordinary character in stored paths
    EXPECT_EQ(tree->find("no\\such"), nullptr);
    EXPECT_EQ(tree->find(""), &tree->root());
    EXPECT_EQ(tree->children(tree->root()).size(), 3u);
    std::string paths;
    for (const pack_file_node* entry : tree->files())
        paths += std::string(entry->internalPath()) + " ";
    EXPECT_EQ(paths, "a/b\\c top z\\1.b z\\2.a z\\y\\3.tar.gz ");
}

TEST(pack_file, manyFilesAreAllFoundAgain)
{
    test_pack pack;
    for (int i = 0; i < 20000; ++i)
        pack.entries.push_back(
            {"folder" + std::to_string(i % 173) + "\\sub" + std::to_string(i % 7) + "\\" + std::to_string(i) + ".txt",
             ""});
    const test::temporary_folder folder;
    const std::shared_ptr<path_tree> tree = treeOf(folder, pack);
    ASSERT_TRUE(tree);
    for (const test_entry& entry : pack.entries)
        ASSERT_TRUE(tree->find(entry.path) && tree->find(entry.path)->file()) << entry.path;
    EXPECT_EQ(tree->files().size(), pack.entries.size());
}

TEST(pack_file, aHeldNodeOutlivesTheTree)
{
    const test::temporary_folder folder;
    test_pack pack;
    pack.entries = {{"a\\b", "data"}};
    std::shared_ptr<path_tree> tree = treeOf(folder, pack);
    const path_tree::node_pointer node = tree->getNodeFromInternalPath("a\\b");
    tree.reset();
    memory_file bytes;
    failure why;
    ASSERT_TRUE(readEntry(*node->file(), bytes, why)) << describe(why);
    EXPECT_EQ(bytes.text(), "data");
}

TEST(pack_file, damagedArchivesAreRefusedWithTheirPlace)
{
    test_pack pack;
    pack.names = {"base.pack"};
    pack.entries = {{"a\\b", "data"}, {"c", "more"}};
    const std::string good = pack.bytes();
    const auto patched = [&](std::size_t at, std::uint32_t value) {
        test::bytes_out out;
        out.text(good);
        out.putU32(at, value);
        return out.str();
    };
    test_pack long_path = pack;
    long_path.entries[1].path = std::string(1024, 'x');
    const std::size_t index_end = 28 + 10 + 8 + 6;
    const struct
    {
        const char* name;
        std::string bytes;
        failure_kind kind;
        const char* field;
    } rows[] = {
        {"empty", "", failure_kind::truncated, "magic"},
        {"inside the header", good.substr(0, 20), failure_kind::truncated, "file index size"},
        {"inside the names", good.substr(0, 33), failure_kind::malformed, "file index size"},
        {"inside the index", good.substr(0, index_end - 1), failure_kind::malformed, "file index size"},
        {"names", patched(8, 0xffffffff), failure_kind::malformed, "archive name count"},
        {"a name more than zeros", patched(8, 100), failure_kind::truncated, "archive name 9"},
        {"files", patched(16, 0xffffffff), failure_kind::malformed, "file count"},
        {"one file more", patched(16, 3), failure_kind::malformed, "file count"},
        {"index size", patched(20, 0xffffffff), failure_kind::malformed, "file index size"},
        {"index too short", patched(20, 11), failure_kind::truncated, "file index, record 1"},
        {"long path", long_path.bytes(), failure_kind::malformed, "file index, record 1, path"},
    };
    const test::temporary_folder folder;
    path_tree tree;
    for (const auto& row : rows)
    {
        test::writeBytes(folder.file("bad.pack"), row.bytes);
        pack_file archive(tree);
        failure why;
        EXPECT_FALSE(archive.open(folder.file("bad.pack"), why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name << ": " << describe(why);
        EXPECT_EQ(why.field, row.field) << row.name << ": " << describe(why);
    }
    test::writeBytes(folder.file("bad.pack"), "PFH1" + good.substr(4));
    pack_file archive(tree);
    failure why;
    try
    {
        static_cast<void>(archive.open(folder.file("bad.pack"), why));
        FAIL() << "PFH1 was accepted";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "Unknown .PACK file format");
    }
}

TEST(pack_file, aFileBeyondTheEndIsLeftOutAndTheOthersStay)
{
    test_pack pack;
    pack.entries = {{"whole", "1234"}, {"cut", "5678"}};
    const test::temporary_folder folder;
    const std::string bytes = pack.bytes();
    test::writeBytes(folder.file("cut.pack"), bytes.substr(0, bytes.size() - 1));
    path_tree tree;
    pack_file archive(tree);
    failure why;
    ASSERT_TRUE(archive.open(folder.file("cut.pack"), why)) << describe(why);
    EXPECT_EQ(archive.leftOut(), std::vector<std::string>{"cut"});
    archive.enter();
    EXPECT_EQ(contentOf(tree, "whole"), "1234");
    EXPECT_EQ(tree.find("cut"), nullptr);
}

TEST(pack_file, theNamesCountByteByByteWhateverTheirSizeSays)
{
    test_pack pack;
    pack.names = {"base.pack"};
    pack.entries = {{"a", "data"}};
    for (const std::uint32_t size : {0u, 3u, 14u})
    {
        test::bytes_out out;
        out.text(pack.bytes());
        out.putU32(12, size);
        const test::temporary_folder folder;
        test::writeBytes(folder.file("x.pack"), out.str());
        path_tree tree;
        pack_file archive(tree);
        failure why;
        ASSERT_TRUE(archive.open(folder.file("x.pack"), why)) << size << ": " << describe(why);
        archive.enter();
        EXPECT_EQ(contentOf(tree, "a"), "data") << size;
    }
}

TEST(pack_reader, theLowestNameWinsAndTheLogTellsTheOrder)
{
    const test::temporary_folder folder;
    const auto write = [&](const std::string& name, const std::string& content) {
        test_pack pack;
        pack.entries = {{"shared", content}, {"only " + name, content}};
        test::writeBytes(folder.file(name), pack.bytes());
    };
    write("a.pack", "a");
    write("B.pack", "B");
    write("c.pack", "c");
    test::writeBytes(folder.file("notes.txt"), "not an archive");
    std::filesystem::create_directories(toPath(folder.file("folder.pack")));
    const loaded_folder result({folder.file("")});
    ASSERT_TRUE(result.is_loaded);
    ASSERT_TRUE(result.reader.tree());
    EXPECT_EQ(contentOf(*result.reader.tree(), "shared"), "B");
    EXPECT_EQ(contentOf(*result.reader.tree(), "only c.pack"), "c");
    ASSERT_EQ(result.log.size(), 5u);
    EXPECT_EQ(result.log[0], ".pack files being sorted...");
    EXPECT_EQ(result.log[1], ".pack files is sorted in the following order: ");
    const char* const order[] = {"c.pack", "a.pack", "B.pack"};
    for (std::size_t i = 0; i < 3; ++i)
    {
        EXPECT_TRUE(result.log[2 + i].starts_with("[PACK FILE] " + std::to_string(i) + " : ")) << result.log[2 + i];
        EXPECT_TRUE(result.log[2 + i].ends_with(order[i])) << result.log[2 + i];
    }
}

TEST(pack_reader, oneBadArchiveDoesNotLockTheOthersOut)
{
    const test::temporary_folder folder;
    test_pack pack;
    pack.entries = {{"good", "yes"}};
    test::writeBytes(folder.file("good.pack"), pack.bytes());
    test::writeBytes(folder.file("other.pack"), "PFH1" + pack.bytes().substr(4));
    test::writeBytes(folder.file("short.pack"), "PF");
    const loaded_folder result({folder.file("")});
    EXPECT_TRUE(result.is_loaded);
    EXPECT_EQ(contentOf(*result.reader.tree(), "good"), "yes");
    ASSERT_EQ(result.reader.notices().size(), 1u); // one box that names all of them
    EXPECT_EQ(result.reader.notices()[0].title, "Error!");
    for (const char* text : {"An error has occured ", "Unknown .PACK file format", "other.pack", "short.pack"})
        EXPECT_NE(result.reader.notices()[0].text.find(text), std::string::npos) << text;
}

TEST(pack_reader, aFolderWithoutArchivesStopsTheLoad)
{
    const test::temporary_folder full, empty;
    test_pack pack;
    pack.entries = {{"good", "yes"}};
    test::writeBytes(full.file("good.pack"), pack.bytes());
    const std::string without_separator = full.file("").substr(0, full.file("").size() - 1);
    for (const std::string& bad : {empty.file(""), without_separator})
    {
        const loaded_folder result({full.file(""), bad});
        EXPECT_FALSE(result.is_loaded);
        EXPECT_FALSE(result.reader.tree());
        ASSERT_EQ(result.reader.notices().size(), 1u);
        EXPECT_EQ(result.reader.notices()[0].text, "Function: findValidPakFiles() : File Not Found.Content:\r\n '" +
                                                       bad + "' \r\nPossibly invalid data folder set.");
    }
    EXPECT_FALSE(loaded_folder({}).is_loaded);
}

} // namespace korvane
