#include "Korvane/archives/path_pattern.h"

#include <gtest/gtest.h>

namespace korvane
{

TEST(path_pattern, starsAndQuestionMarksMatchAsUsersExpect)
{
    const struct
    {
        const char* path;
        const char* pattern;
        bool matches;
    } rows[] = {
        {"a\\b.dds", "*", true},
        {"a\\b.dds", "*.DDS", true},
        {"a\\b.dds", "A/?.dds", true},
        {"a\\b.dds", "a\\*.anim", false},
        {"a\\b\\c\\d.anim", "a*d.anim", true},
        {"aXbXc", "*x?", true},
        {"", "*", true},
        {"", "?", false},
        {"abc", "ab", false},
        {"abc", "abc**", true},
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaab", "*a*a*a*a*a*a*c", false}, // must not take for ever
    };
    for (const auto& row : rows)
        EXPECT_EQ(matchesPattern(row.path, row.pattern), row.matches) << row.path << " ~ " << row.pattern;
}

TEST(path_pattern, noInternalPathLeavesItsFolder)
{
    std::string reason;
    for (const char* bad : {"..\\x", "a\\..\\..\\x", "c:\\x", "a/../x", ".", "con", "a\\NUL.txt", "com7", "lpt1.dds",
                            "a\\b:stream", "a\\b?.dds", "a\\trailing.", "blank \\x", "a\\\x01", "\\\\", ""})
    {
        EXPECT_FALSE(relativeDiskPath(bad, reason)) << bad;
        EXPECT_FALSE(reason.empty()) << bad;
    }
    EXPECT_EQ(relativeDiskPath("\\a\\\\b/c.dds", reason), "a/b/c.dds"); // a root is no way out
    EXPECT_EQ(relativeDiskPath("console\\com\\nully.x", reason), "console/com/nully.x");
    EXPECT_EQ(relativeDiskPath("a\\..b\\...c", reason), "a/..b/...c");
}

} // namespace korvane
