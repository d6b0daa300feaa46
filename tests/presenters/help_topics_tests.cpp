#include "Korvane/presenters/help_topics.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

TEST(help_topics, leadIntoTheGuideAtTheirPlaceOrItsStart)
{
    const test::temporary_folder folder;
    const std::string program = folder.file("");
    failure why;
    EXPECT_FALSE(wayIntoGuide(program, help_topic::alpha, why));
    EXPECT_EQ(why.kind, failure_kind::not_found);

    ASSERT_TRUE(writeWholeFile(program + "guide.html", "<p>", why));
    EXPECT_EQ(wayIntoGuide(program, help_topic::start, why), program + "guide.html");
    const std::optional<std::string> way = wayIntoGuide(program, help_topic::alpha, why);
    ASSERT_TRUE(way);
    const std::string page = test::readBytes(*way);
    EXPECT_NE(page.find("url=guide.html#alpha\""), page.npos) << page;

    std::filesystem::remove(toPath(*way));
    std::filesystem::create_directories(toPath(*way)); // nothing can be written there
    EXPECT_EQ(wayIntoGuide(program, help_topic::alpha, why), program + "guide.html");
}

} // namespace
} // namespace korvane
