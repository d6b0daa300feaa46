#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/presenters/cache_rows.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

class cache_rows_test : public testing::Test
{
protected:
    cache_rows_test() { write("a.pack"); }

    void write(const std::string& name, const std::string& entry = "x.dds")
    {
        test::test_pack pack;
        pack.entries = {{entry, "data"}};
        test::writeBytes(m_folder.file(name), pack.bytes());
    }
    cache_places places() const
    {
        return {{m_folder.file("")},
                cache_use::where_it_pays,
                pack_cache(m_folder.file("packs.cache")),
                usage_store(m_folder.file("usage.cache"))};
    }
    // The row of packs.cache as it is now.
    cache_rows look(const cache_places& of) const
    {
        cache_rows rows(of, true);
        rows.take(cache_rows::packs, lookAtPackCache(of, {}));
        return rows;
    }

    test::temporary_folder m_folder;
};

} // namespace

TEST_F(cache_rows_test, eachStateIsSaidWithWhatCanBeDone)
{
    const cache_places given = places();
    const auto expect = [&](const cache_places& of, const char* state, const char* said, bool rebuild, bool remove) {
        const cache_rows rows = look(of);
        EXPECT_EQ(rows.text(cache_rows::packs, 1), state);
        EXPECT_NE(rows.details(cache_rows::packs).find(said), std::string::npos) << rows.details(cache_rows::packs);
        EXPECT_EQ(rows.canRebuild(cache_rows::packs), rebuild) << state;
        EXPECT_EQ(rows.canDelete(cache_rows::packs), remove) << state;
    };
    failure why;
    expect(given, "none", "each start reads the archives", true, false);
    ASSERT_TRUE(rebuildPackCache(given, {}, why)) << describe(why);
    expect(given, "up to date", "1 file in 1 archive.", true, true);
    EXPECT_NE(look(given).useText().find("it does not here"), std::string::npos);
    write("b.pack");
    expect(given, "out of date", "1 file in 1 archive, but it is of other archives", true, true);

    const std::string good = test::readBytes(given.packs.path());
    test::writeBytes(given.packs.path(), good.substr(0, good.size() - 1));
    expect(given, "damaged", "Nothing is lost", true, true);
    cache_places elsewhere = given;
    elsewhere.folders.clear();
    expect(elsewhere, "damaged", "Setup Game Folders", false, true);
    EXPECT_FALSE(rebuildPackCache(elsewhere, {}, why));
    elsewhere = given;
    elsewhere.packs = pack_cache(m_folder.file("nowhere/packs.cache"));
    expect(elsewhere, "none", "It cannot be written now", true, false);
    EXPECT_FALSE(rebuildPackCache(elsewhere, {}, why));

    std::stop_source stop;
    work_port stopped;
    stopped.stop = stop.get_token();
    stop.request_stop();
    EXPECT_FALSE(rebuildPackCache(given, stopped, why));
    EXPECT_EQ(test::readBytes(given.packs.path()), good.substr(0, good.size() - 1)) << "a stop leaves what was there";
    EXPECT_TRUE(given.packs.remove(why));
    expect(given, "none", "", true, false);
}

TEST_F(cache_rows_test, theUsageIndexKnowsWhichArchivesChanged)
{
    const cache_places given = places();
    const auto gameNow = [&] {
        indexed_archives indexed;
        EXPECT_TRUE(indexArchives(archivesInOrder(given.folders), {}, indexed));
        return game_data(indexed.tree);
    };
    failure why;
    const auto game = std::make_unique<game_data>(gameNow());
    ASSERT_TRUE(rebuildUsageCache(given, *game, {}, why)) << describe(why);
    EXPECT_EQ(lookAtUsageCache(given, game.get()).is, cache_look::state::fresh);
    write("b.pack");
    const game_data more = gameNow();
    const cache_look look = lookAtUsageCache(given, &more);
    EXPECT_EQ(look.is, cache_look::state::old);
    EXPECT_EQ(look.why, "1 archive is new or changed");
}

TEST(cache_rows, agesAreSpokenInTheUnitThatFits)
{
    const std::pair<int, const char*> rows[] = {{-5, "a moment"},  {59, "a moment"},        {60, "1 minute"},
                                                {7200, "2 hours"}, {47 * 3600, "47 hours"}, {48 * 3600, "2 days"}};
    for (const auto& [seconds, text] : rows)
        EXPECT_EQ(ageText(std::chrono::seconds(seconds)), text);
}

} // namespace korvane
