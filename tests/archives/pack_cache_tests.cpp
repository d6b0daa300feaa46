#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <chrono>

namespace korvane
{
namespace
{

using test::test_pack;

// A data folder with everything that can happen: overrides, a damaged archive, a file cut off, a file that is a folder
// as well, time stamps, compression flags and an empty archive.
class data_folder
{
public:
    data_folder()
    {
        test_pack base;
        base.names = {"other.pack"};
        base.entries = {{"Models\\A.rigid_model_v2", "first"}, {"models\\b.dds", "b"}, {"models", "file and folder"}};
        write("data.pack", base);
        test_pack mod;
        mod.magic = "PFH5";
        mod.flags = 0x40;
        mod.entries = {{"models\\a.rigid_model_v2", "second"}, {"readme", ""}, {"models\\c\\d", "not zstd", 1}};
        write("a_mod.pack", mod);
        test_pack cut;
        cut.entries = {{"whole", "1234"}, {"cut", "5678"}};
        test::writeBytes(m_folder.file("cut.pack"), cut.bytes().substr(0, cut.bytes().size() - 1));
        test::writeBytes(m_folder.file("bad.pack"), "PFH1");
        write("empty.pack", {});
    }

    void write(const std::string& name, const test_pack& pack) const
    {
        test::writeBytes(m_folder.file(name), pack.bytes());
    }
    std::string path(const std::string& name) const { return m_folder.file(name); }
    std::filesystem::path onDisk(const std::string& name) const { return toPath(path(name)); }
    pack_cache cache() const { return pack_cache(path("packs.cache")); }

private:
    test::temporary_folder m_folder;
};

void addNode(const path_tree& tree, const path_node& node, std::string& text)
{
    text += std::string(node.path()) + (node.file() ? "*" : "/") + std::string(node.name()) + "\n";
    for (const path_node* child : tree.children(node))
        addNode(tree, *child, text);
}

// All that the tree holds, as text.
std::string contentOf(const path_tree& tree)
{
    std::string text;
    for (const auto& archive : tree.archives())
        text += archive->name + " " + archive->path + " " + archive->format + " " +
                std::to_string(archive->file_count) + "\n";
    const auto add = [&text](const pack_file_node& file) {
        text += file.archive().name + ": " + std::string(file.internalPath()) + " " + std::to_string(file.size()) +
                " " + std::to_string(file.offset()) + " " + std::to_string(file.compression()) + " " +
                std::to_string(file.timeStamp()) + "\n";
    };
    for (const auto& files : tree.entries())
        for (const pack_file_node& file : files)
            add(file);
    for (const pack_file_node* file : tree.files())
    {
        add(*file);
        const path_node* const found = tree.find(file->internalPath());
        text += found && found->file() == file ? "found\n" : "lost\n";
    }
    addNode(tree, tree.root(), text);
    return text;
}

// Loads the folder, with or without a cache; everything that can be noticed of it.
struct loading
{
    std::string content;
    std::string log;        // without the cache's own lines
    std::string cache_line; // the last of those
    std::string shown;
    bool has_written = false;
    std::shared_ptr<const path_tree> tree;

    explicit loading(const data_folder& folder, const pack_cache* cache)
    {
        const auto note = [this](const std::string& line) {
            if (line.starts_with("[PACK CACHE]"))
                cache_line = line;
            else
                log += line + "\n";
        };
        pack_reader reader({{}, {}, note}, cache);
        EXPECT_TRUE(reader.loadAllArchives({folder.path("")}));
        has_written = reader.wantsCache(cache_use::always) && reader.writeCache();
        content = contentOf(*(tree = reader.tree()));
        for (const auto& [title, text] : reader.notices())
            shown += title + "|" + text;
    }

    void expectSameAs(const loading& other) const
    {
        EXPECT_EQ(content, other.content);
        EXPECT_EQ(log, other.log);
        EXPECT_EQ(shown, other.shown);
    }
};

} // namespace

TEST(pack_cache, whatComesOutOfItIsWhatTheArchivesHold)
{
    const data_folder folder;
    const pack_cache cache = folder.cache();
    const loading plain(folder, nullptr), first(folder, &cache), second(folder, &cache);
    EXPECT_NE(plain.content.find("a_mod.pack: models\\a.rigid_model_v2 6 "), std::string::npos) << plain.content;
    EXPECT_NE(plain.log.find("left out"), std::string::npos);
    EXPECT_NE(plain.shown.find("bad.pack"), std::string::npos);
    first.expectSameAs(plain);
    second.expectSameAs(plain);
    EXPECT_TRUE(first.has_written);
    EXPECT_FALSE(second.has_written); // it was used
    EXPECT_EQ(first.cache_line + second.cache_line, "");

    memory_file bytes; // and the files can be read
    failure why;
    ASSERT_TRUE(readEntry(*second.tree->findFile("models/A.rigid_model_v2"), bytes, why));
    EXPECT_EQ(bytes.text(), "second");
}

TEST(pack_cache, anyChangeOfTheArchivesIsNoticed)
{
    const auto edit = [](const data_folder& folder, const std::string& name, const test_pack& pack) {
        const auto time = std::filesystem::last_write_time(folder.onDisk("data.pack"));
        folder.write(name, pack);
        std::filesystem::last_write_time(folder.onDisk(name), time); // as it was
    };
    test_pack larger;
    larger.entries = {{"new", "something of another size"}};
    const struct
    {
        const char* name;
        std::function<void(const data_folder&)> change;
    } rows[] = {
        {"other size, same time", [&](const data_folder& folder) { edit(folder, "data.pack", larger); }},
        {"other time, same size",
         [](const data_folder& folder) {
             const auto time = std::filesystem::last_write_time(folder.onDisk("data.pack"));
             std::filesystem::last_write_time(folder.onDisk("data.pack"), time + std::chrono::seconds(2));
         }},
        {"an archive more", [&](const data_folder& folder) { folder.write("z.pack", larger); }},
        {"an archive less", [](const data_folder& folder) { std::filesystem::remove(folder.onDisk("empty.pack")); }},
        {"another name",
         [](const data_folder& folder) {
             std::filesystem::rename(folder.onDisk("data.pack"), folder.onDisk("renamed.pack"));
         }},
        {"the damaged one mended", [&](const data_folder& folder) { folder.write("bad.pack", larger); }},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        const data_folder folder;
        const pack_cache cache = folder.cache();
        {
            const loading before(folder, &cache); // it holds the archives open: Windows would not let them go
        }
        row.change(folder);
        const loading after(folder, &cache), plain(folder, nullptr), again(folder, &cache);
        after.expectSameAs(plain);
        again.expectSameAs(plain);
        EXPECT_TRUE(after.has_written);
        EXPECT_NE(after.cache_line.find("not used"), std::string::npos);
        EXPECT_FALSE(again.has_written);
    }
}

TEST(pack_cache, aDamagedCacheNeverChangesTheTree)
{
    const data_folder folder;
    const pack_cache cache = folder.cache();
    const loading plain(folder, &cache);
    const std::string good = test::readBytes(cache.path());
    const std::vector<std::string> archives = {folder.path("empty.pack"), folder.path("data.pack"),
                                               folder.path("cut.pack"), folder.path("bad.pack"),
                                               folder.path("a_mod.pack")};
    std::size_t used = 0;
    const auto check = [&](const std::string& bytes, std::size_t at) {
        test::writeBytes(cache.path(), bytes);
        indexed_archives indexed;
        failure why;
        if (cache.load(archives, indexed, why))
        {
            ++used;
            EXPECT_EQ(contentOf(*indexed.tree), plain.content) << at;
        }
        else
        {
            EXPECT_FALSE(why.what.empty()) << at;
            EXPECT_FALSE(indexed.tree) << at;
        }
    };
    check(good, 0);
    EXPECT_EQ(used, 1u);
    for (std::size_t size = 0; size < good.size(); size += 7)
        check(good.substr(0, size), size);
    EXPECT_EQ(used, 1u); // no cut one was used
    for (std::size_t at = 0; at < good.size(); at += 3)
    {
        std::string bytes = good;
        bytes[at] = static_cast<char>(bytes[at] ^ (at % 2 == 0 ? '\x01' : '\x80'));
        check(bytes, at);
    }
    EXPECT_LT(used, good.size()); // bytes of the part that is not needed for loading may differ
}

TEST(pack_cache, itStandsBesideTheConfigurationWhichRecordsIt)
{
    const data_folder folder;
    config_file config;
    const std::string config_path = folder.path("config.cfg");
    EXPECT_EQ(pack_cache::of(config, config_path).path(), folder.path("packs.cache"));
    EXPECT_TRUE(pack_cache::recordIn(config));
    EXPECT_EQ(config.get("PACKS_CACHE"), std::vector<std::string>{"packs.cache"});
    EXPECT_FALSE(pack_cache::recordIn(config));
    config.clear("packs_cache");
    config.add("packs_cache", {"precious.txt"}, false); // no cache's name
    EXPECT_EQ(pack_cache::of(config, config_path).path(), folder.path("packs.cache"));
    test::writeBytes(folder.path("precious.cache"), "no cache, whatever its name says");
    failure why;
    EXPECT_FALSE(pack_cache(folder.path("precious.cache")).remove(why));
    EXPECT_FALSE(loading(folder, nullptr).has_written);
    const pack_cache precious(folder.path("precious.cache"));
    EXPECT_FALSE(loading(folder, &precious).has_written);
    EXPECT_EQ(test::readBytes(folder.path("precious.cache")), "no cache, whatever its name says");
    config.clear("packs_cache");
    config.add("packs_cache", {"Other.CACHE"}, false);
    test::writeBytes(folder.path("Other.cache"), ""); // the configuration holds lower case
    const std::string found = pack_cache::of(config, config_path).path();
    EXPECT_TRUE(std::filesystem::equivalent(toPath(found), folder.onDisk("Other.cache"))) << found;
}

TEST(pack_cache, aCacheThatCannotBeWrittenIsNoFailure)
{
    const data_folder folder;
    const pack_cache cache(folder.path("no such folder/packs.cache"));
    const loading plain(folder, nullptr), loaded(folder, &cache);
    loaded.expectSameAs(plain);
    EXPECT_FALSE(loaded.has_written);
    EXPECT_NE(loaded.cache_line.find("not written"), std::string::npos);
}

} // namespace korvane
