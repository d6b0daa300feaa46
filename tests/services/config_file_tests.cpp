#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/shared_config.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvane
{

using values = std::vector<std::string>;

TEST(config_file, readsWhatPeopleAndTheProgramWrite)
{
    const struct
    {
        const char* name;
        const char* text;
        config_file::table table;
        const char* error;
    } rows[] = {
        {"keys and values become lower case",
         "Data_Paths = \"C:\\Games\\Data\";\n",
         {{"data_paths", {"c:\\games\\data"}}},
         "DONE"},
        {"letters beyond ASCII are kept", "a=\"\xc3\x84\";", {{"a", {"\xc3\x84"}}}, "DONE"},
        {"unquoted and quoted", "a = x, y,\"z w\";", {{"a", {"x", "y", "z w"}}}, "DONE"},
        {"quoted values hold separators", "a=\"x, y; z\";", {{"a", {"x, y; z"}}}, "DONE"},
        {"a line end does not end an unquoted value", "a = x\nb = y;", {{"a", {"x\nb", "=", "y"}}}, "DONE"},
        {"a key that stands twice", "a=1;b=2;a=3;", {{"a", {"1", "3"}}, {"b", {"2"}}}, "DONE"},
        {"no value at all", "a = ;b=1;", {{"a", {}}, {"b", {"1"}}}, "DONE"},
        {"an empty quoted value", "a=\"\";", {{"a", {""}}}, "DONE"},
        {"no closing quote", "a=\"x y;", {{"a", {"x y;"}}}, "DONE"},
        {"no closing semicolon", "a=x", {{"a", {"x"}}}, "DONE"},
        {"a key at the end", "a=x;b", {{"a", {"x"}}}, "DONE"},
        {"a key of another letter ends the reading", "a=x;-=y;b=z;", {{"a", {"x"}}}, "Id has length = 0"},
        {"nothing", "", {}, "DONE"},
    };
    const test::temporary_folder folder;
    for (const auto& row : rows)
    {
        test::writeBytes(folder.file("c.cfg"), row.text);
        config_file config;
        EXPECT_TRUE(config.load(folder.file("c.cfg")));
        EXPECT_EQ(config.entries(), row.table) << row.name;
        EXPECT_EQ(config.errorText(), row.error) << row.name;
    }
}

TEST(config_file, writesTheKeysInByteOrderWithALoneCarriageReturnBeforeEachQuote)
{
    const test::temporary_folder folder;
    config_file config;
    config.add("config_recent_files", {"first", "second"}, false);
    config.add("CONFIG", {"x"}, false);
    config.add("empty", {"gone"}, false);
    config.clear("EMPTY");
    ASSERT_TRUE(config.save(folder.file("c.cfg")));
    EXPECT_EQ(test::readBytes(folder.file("c.cfg")), "config = \r\"x\";\r\n\r\n"
                                                     "config_recent_files = \r\"first\", \r\"second\";\r\n\r\n"
                                                     "empty = ;\r\n\r\n");
    config_file again;
    ASSERT_TRUE(again.load(folder.file("c.cfg")));
    EXPECT_EQ(again.entries(), config.entries());
}

TEST(config_file, addLeavesOutWhatIsThereAndWhatCannotBeStored)
{
    config_file config;
    EXPECT_FALSE(config.add("k", {}, false));
    EXPECT_TRUE(config.add("K", {"One", "Two"}, false));
    EXPECT_TRUE(config.add("k", {"ONE", "Three"}, false)); // compared in lower case
    EXPECT_EQ(config.get("k"), (values{"one", "two", "three"}));
    EXPECT_TRUE(config.add("k", {"a", "b"}, true)); // each in turn to the front
    EXPECT_EQ(config.get("K"), (values{"b", "a", "one", "two", "three"}));
    config.add("q", {"say \"x\""}, false);
    EXPECT_TRUE(config.get("q").empty());
    EXPECT_TRUE(config.contains("K", "THREE"));
    config.clear("never set");
    EXPECT_EQ(config.entries().count("never set"), 0u);
}

TEST(config_file, aMissingFileEmptiesTheTableAndAnUnwritableOneChangesNothing)
{
    const test::temporary_folder folder;
    config_file config;
    config.add("k", {"v"}, false);
    EXPECT_FALSE(config.save(folder.file("no such folder/c.cfg")));
    EXPECT_EQ(config.get("k"), (values{"v"}));
    EXPECT_FALSE(config.load(folder.file("missing.cfg")));
    EXPECT_TRUE(config.entries().empty());
}

TEST(config_file, aChangeKeepsWhatOthersWroteMeanwhile)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("c.cfg");
    constexpr int threads = 4;
    constexpr int changes = 10;
    const auto work = [&path](const std::string& name) {
        config_file config;
        for (int i = 0; i < changes; ++i)
        {
            failure why;
            const std::string value = name + std::to_string(i);
            EXPECT_TRUE(config.change(
                path, [&value](config_file& changed) { return changed.add("k", {value}, false); }, why))
                << describe(why);
        }
    };
    {
        std::vector<std::jthread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back(work, "worker " + std::to_string(i) + ": ");
    }
    config_file config;
    ASSERT_TRUE(config.load(path));
    EXPECT_EQ(config.get("k").size(), std::size_t{threads * changes});
}

TEST(config_file, aChangeLeavesAFileThatIsNotUnderstoodToItsEnd)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("c.cfg");
    const std::string content = "a = \"1\"; - b = \"2\";";
    test::writeBytes(path, content);
    config_file config;
    failure why;
    const auto add = [](config_file& changed) { return changed.add("c", {"3"}, false); };
    EXPECT_FALSE(config.change(path, add, why));
    EXPECT_EQ(why.kind, failure_kind::malformed);
    EXPECT_EQ(test::readBytes(path), content);
    EXPECT_TRUE(config.contains("c", "3")); // the program goes on with it all the same
    failure none;
    EXPECT_TRUE(config.change(path, add, none, config_file::damaged_end::dropped)) << describe(none);
    EXPECT_EQ(test::readBytes(path), "a = \r\"1\";\r\n\r\nc = \r\"3\";\r\n\r\n");
}

TEST(shared_config, tellsOnceThatItCannotBeWrittenAndTakesUpWhatOthersWrite)
{
    const test::temporary_folder folder;
    int told = 0, failed = 0;
    const shared_config::listeners listeners{[&](const failure&) { ++told; }, [&](const failure&) { ++failed; }};
    config_file table;
    shared_config unwritable(table, folder.file("no such folder/config.cfg"), listeners);
    for (const char* value : {"one", "two"})
        EXPECT_FALSE(unwritable.set("page", {value}));
    EXPECT_EQ(unwritable.get("page"), values{"two"}) << "it works on";
    EXPECT_EQ(told, 1);
    EXPECT_EQ(failed, 2);

    const std::string path = folder.file("config.cfg");
    config_file own_table;
    shared_config config(own_table, path, listeners);
    EXPECT_TRUE(config.set("page", {"model"}));
    EXPECT_FALSE(config.takeUp()) << "what it has written itself is no news";
    config_file other;
    failure why;
    ASSERT_TRUE(other.change(
        path, [](config_file& file) { return file.add("data_paths", {"c:\\"}, false); }, why));
    EXPECT_TRUE(config.set("page", {"problems"})); // to the file as the other program left it
    EXPECT_EQ(config.get("data_paths"), values{"c:\\"});
    ASSERT_TRUE(other.change(
        path, [](config_file& file) { return file.add("mod_paths", {"d:\\mods"}, false); }, why));
    EXPECT_TRUE(config.takeUp());
    EXPECT_EQ(config.get("mod_paths"), values{"d:\\mods"});
    EXPECT_EQ(config.get("page"), values{"problems"});
    EXPECT_EQ(told, 1);
}

} // namespace korvane
