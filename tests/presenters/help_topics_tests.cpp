#include "Korvane/presenters/help_topics.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

TEST(help_topics, leadIntoTheGuideFromFoldersOfAnyName)
{
    const test::temporary_folder folder;
    const std::string program = folder.file("a b#100%") + "/";
    std::filesystem::create_directories(toPath(program));
    const guide_place where{program, folder.file("")};
    failure why;
    EXPECT_FALSE(wayIntoGuide(where, help_topic::alpha, why));
    EXPECT_EQ(why.kind, failure_kind::not_found);

    ASSERT_TRUE(writeWholeFile(program + "guide.html", "<p>", why));
    EXPECT_EQ(wayIntoGuide(where, help_topic::start, why), program + "guide.html");
    const std::optional<std::string> way = wayIntoGuide(where, help_topic::alpha, why);
    ASSERT_TRUE(way);
    const std::string page = test::readBytes(*way);
    EXPECT_NE(page.find("url=file://"), page.npos);
    EXPECT_NE(page.find("/a%20b%23100%25/guide.html#alpha\""), page.npos) << page;
}

} // namespace
} // namespace korvane
