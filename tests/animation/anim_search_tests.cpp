// The searches for skeletons and animations over archives that override each other.

#include "Korvane/animation/anim_search.h"

#include "Korvane/archives/pack_file.h"
#include "tests/support/anim_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <zstd.h>

namespace korvane
{
namespace
{

std::string animOf(const std::string& skeleton, std::uint32_t version = 5)
{
    test::test_anim source;
    source.version = version;
    source.skeleton_name = skeleton;
    return source.bytes();
}

std::string packed(const std::string& data)
{
    std::string result(ZSTD_compressBound(data.size()), '\0');
    result.resize(ZSTD_compress(result.data(), result.size(), data.data(), data.size(), 1));
    test::bytes_out out;
    out.u32(static_cast<std::uint32_t>(data.size()));
    out.text(result);
    return out.str();
}

class anim_search_tests : public testing::Test
{
protected:
    std::string archivePath(const std::string& name) const { return folder.file(name + ".pack"); }

    void add(const std::string& name, std::vector<test::test_entry> entries)
    {
        test::test_pack pack;
        pack.magic = "PFH5";
        pack.entries = std::move(entries);
        test::writeBytes(archivePath(name), pack.bytes());
        pack_file archive(*tree);
        failure why;
        ASSERT_TRUE(archive.open(archivePath(name), why)) << describe(why);
        archive.enter();
    }

    // "z:idle.anim": the archive and the file name of each.
    std::vector<std::string> names(const entry_list& entries) const
    {
        std::vector<std::string> result;
        for (const pack_file_node* entry : entries)
            result.push_back(entry->archive().name.substr(0, 1) + ":" + std::string(entry->fileName()));
        return result;
    }

    entry_list find(const std::string& id)
    {
        entry_list found;
        failure why;
        EXPECT_TRUE(findAnimations(animationCandidates(*tree), id, found, why)) << describe(why);
        return found;
    }

    void addUsualArchives()
    {
        add("z", {{"animations\\man\\walk.anim", animOf("Man_01")},
                  {"animations\\man\\run.anim", animOf("man_01")},
                  {"animations\\skeletons\\man_01.anim", animOf("Man_01")},
                  {"animations\\man\\notes.txt", animOf("Man_01")},
                  {"animations\\man\\longer.anim", animOf("Man_010")},
                  {"animations\\man\\tiny.anim", "tiny"},
                  {"animations\\man\\cut.anim", animOf("Man_01").substr(0, 19)},
                  {"animations\\man\\only_name.anim", animOf("Man_01", 9).substr(0, 20)}});
        add("a", {{"animations\\man\\walk.anim", animOf("Man_01", 7)}, // overrides
                  {"animations\\man\\packed.anim", packed(animOf("Man_01", 7)), 1},
                  {"animations\\man\\damaged.anim", "\x10" + std::string(60, '\x01'), 1},
                  {"animations\\skeletons\\man_01.anim", animOf("")},
                  {"mod\\otherskeletons\\man_01.anim", animOf("")},
                  {"animations\\man_01.anim", animOf("")}});
    }

    test::temporary_folder folder;
    std::shared_ptr<path_tree> tree = std::make_shared<path_tree>();
};

using text_list = std::vector<std::string>;

} // namespace

TEST_F(anim_search_tests, everyArchivesCopyOfASkeletonIsListedInOrder)
{
    addUsualArchives();
    text_list log;
    const entry_list found = findSkeletons(*tree, "MAN_01", [&log](const std::string& line) { log.push_back(line); });
    // The pattern is compared from the end of the path: it may end in the middle of a folder's name.
    EXPECT_EQ(names(found), (text_list{"z:man_01.anim", "a:man_01.anim", "a:man_01.anim"}));
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[2]->internalPath(), "mod\\otherskeletons\\man_01.anim");
    EXPECT_EQ(log, (text_list{"Searching fpr skeletons...", "Number of skeletons added to combobox: 3"}));
    EXPECT_TRUE(findSkeletons(*tree, "an_01").empty());
}

TEST_F(anim_search_tests, animationsNameTheirSkeletonByteForByte)
{
    addUsualArchives();
    EXPECT_EQ(names(find("Man_01")),
              (text_list{"z:walk.anim", "z:man_01.anim", "z:only_name.anim", "a:walk.anim", "a:packed.anim"}));
    EXPECT_EQ(names(find("man_01")), (text_list{"z:run.anim"}));
    EXPECT_EQ(names(find("")), (text_list{"a:man_01.anim", "a:man_01.anim", "a:man_01.anim"}));
    EXPECT_TRUE(find("Man_0").empty());
    EXPECT_TRUE(find(std::string(70000, 'x')).empty());
}

TEST_F(anim_search_tests, whatCanBeExportedIsOfTwoVersionsAndAStopKeepsWhatWasFound)
{
    addUsualArchives();
    entry_list found;
    const found_port take = [&found](const entry_list& more, std::size_t, std::size_t total) {
        found.insert(found.end(), more.begin(), more.end());
        EXPECT_EQ(total, 13u);
    };
    EXPECT_EQ(listCompatible(*tree, "Man_01", take).found, 4u);
    // "only_name" is of version 9.
    EXPECT_EQ(names(found), (text_list{"z:walk.anim", "z:man_01.anim", "a:walk.anim", "a:packed.anim"}));

    std::vector<test::test_entry> many;
    for (int i = 0; i < 40000; ++i)
        many.push_back({std::to_string(i) + ".anim", animOf("Man_02")});
    add("m", many);
    std::stop_source stop;
    std::size_t count = 0, done = 0;
    const auto stopSoon = [&](const entry_list& more, std::size_t at, std::size_t) {
        count += more.size();
        done = at;
        stop.request_stop();
    };
    const compatible_listing cut = listCompatible(*tree, "Man_02", stopSoon, stop.get_token());
    EXPECT_TRUE(cut.is_stopped && cut.found == count && count > 0 && count < 40000) << count;
    EXPECT_GE(done, count);
}

TEST_F(anim_search_tests, manyCandidatesKeepTheirOrderAndAnUnreadableArchiveEndsThem)
{
    std::vector<test::test_entry> first, second;
    text_list wanted;
    for (int i = 0; i < 5000; ++i)
    {
        const std::string name = std::to_string(i) + ".anim";
        (i < 3000 ? first : second).push_back({name, animOf(i % 3 == 0 ? "Man_01" : "Man_02")});
        if (i % 3 == 0)
            wanted.push_back((i < 3000 ? "z:" : "y:") + name);
    }
    add("z", first);
    add("y", second);
    EXPECT_EQ(names(find("Man_01")), wanted);
    std::stop_source stop;
    stop.request_stop();
    entry_list none;
    failure why;
    EXPECT_TRUE(findAnimations(animationCandidates(*tree), "Man_01", none, why, stop.get_token()));
    EXPECT_TRUE(none.empty());

    const auto whole_size = std::filesystem::file_size(toPath(archivePath("y")));
    std::filesystem::resize_file(toPath(archivePath("y")), 100); // somebody writes it anew
    wanted.resize(1000);
    entry_list found;
    EXPECT_FALSE(findAnimations(animationCandidates(*tree), "Man_01", found, why));
    EXPECT_EQ(names(found), wanted);
    EXPECT_EQ(why.kind, failure_kind::unreadable);
    EXPECT_EQ(why.path, "3000.anim in " + archivePath("y"));

    text_list log, listed;
    std::size_t pieces = 0;
    const found_port take = [&](const entry_list& more, std::size_t, std::size_t total) {
        ++pieces;
        EXPECT_EQ(total, 5000u);
        for (const std::string& name : names(more))
            listed.push_back(name);
    };
    const log_port tell_log = [&log](const std::string& line) { log.push_back(line); };
    const animation_listing cut = listAnimations(*tree, "Man_01", take, {}, tell_log);
    EXPECT_EQ(listed, wanted);
    ASSERT_TRUE(cut.said);
    EXPECT_EQ(cut.said->title, "Error!");
    EXPECT_EQ(cut.said->text, "Error reading .pack files. Are they being used by another program?");
    EXPECT_EQ(log.front(), "seaching for compatible animations");
    EXPECT_EQ(log.size(), 2u) << "and which archive";

    std::filesystem::resize_file(toPath(archivePath("y")), whole_size); // of zeros, which are nobody's animation
    listed.clear();
    log.clear();
    pieces = 0;
    EXPECT_EQ(listAnimations(*tree, "Man_01", take, {}, tell_log).found, 1000u);
    EXPECT_EQ(listed, wanted);
    EXPECT_GT(pieces, 1u) << "there is something to see before the end";
    EXPECT_EQ(log, (text_list{"seaching for compatible animations", "Number of animations found 1000",
                              "Skeletopn + Animation find+load SUCCESSFUL!"}));
    std::filesystem::resize_file(toPath(archivePath("y")), 100);

    const compatible_listing listing = listCompatible(*tree, "Man_01", take); // passes over what it cannot read
    EXPECT_EQ(listing.found, 1000u);
    EXPECT_EQ(listing.unreadable, 2000u);
}

} // namespace korvane
