#include "EASY_GUI/services/log_file.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

utc_time march()
{
    return {4, 3, 2017, 9, 5};
}

// Text mode: on Windows each line feed brings one more carriage return.
std::string asWritten(std::string text)
{
#ifdef _WIN32
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
#endif
    return text;
}

} // namespace

TEST(log_file, everyStartAddsABannerBehindThreeEmptyLines)
{
    const std::string stars(80, '*');
    const std::string banner = "\r\n\r\n\r\n" + stars + "\r\n*\t\t\t\t\t\t\tKorvane 0.X debugging log\r\n" + stars +
                               "\r\n*\t4-3-2017 9:5\r\n" + stars + "\r\n";
    const test::temporary_folder folder;
    const std::string path = folder.file("log.txt");
    for (int start = 0; start < 2; ++start)
    {
        log_file log(march);
        ASSERT_TRUE(log.openAt(path));
        log.write("step");
        EXPECT_TRUE(test::readBytes(path).ends_with("step")); // on disk before write returns
        log.write(": SUCCESS\r\n");
    }
    EXPECT_EQ(test::readBytes(path), asWritten(banner + "step: SUCCESS\r\n" + banner + "step: SUCCESS\r\n"));
}

TEST(log_file, aLogThatCannotBeOpenedStaysSilent)
{
    const test::temporary_folder folder;
    log_file log(march);
    EXPECT_FALSE(log.openAt(folder.file("no such folder/log.txt")));
    log.write("lost");
    EXPECT_EQ(folder.fileCount(), 0u);
}

} // namespace korvane
