#include "Korvane/document/command_table.h"
#include "Korvane/document/recent_files.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

TEST(recent_files, theNewestStandsFirstOnceAndTenAreKept)
{
    config_file config;
    EXPECT_TRUE(recentFiles(config).empty());
    for (int i = 1; i <= 12; ++i)
        addRecentFile(config, "/none/" + std::to_string(i));
    std::vector<std::string> files = recentFiles(config);
    ASSERT_EQ(files.size(), 10u);
    EXPECT_EQ(files.front(), "/none/12");
    EXPECT_EQ(files.back(), "/none/3");

    addRecentFile(config, "/NONE/5"); // opened again, written otherwise
    files = recentFiles(config);
    EXPECT_EQ(files.size(), 10u);
    EXPECT_EQ(files.front(), "/none/5");
    EXPECT_EQ(files[1], "/none/12");
    EXPECT_EQ(std::count(files.begin(), files.end(), "/none/5"), 1);
    EXPECT_EQ(config.get("config_recent_files"), files);
    EXPECT_TRUE(removeRecentFile(config, "/none/12"));
    EXPECT_FALSE(removeRecentFile(config, "/none/12"));
    EXPECT_EQ(recentFiles(config).size(), 9u);
    addRecentFile(config, "pack:Men/A.rigid_model_v2");
    EXPECT_EQ(recentFiles(config).front(), "pack:men/a.rigid_model_v2") << "kept, although no disk holds it";
}

TEST(recent_files, labelsCarryTheirShortcut)
{
    EXPECT_EQ(recentFileLabel(0, "C:\\a.rigid_model_v2"), "C:\\a.rigid_model_v2\tCtrl + 1");
    EXPECT_EQ(recentFileLabel(9, "x & y"), "x && y\tCtrl + 0");
    EXPECT_EQ(shortcutOf(recentFileLabel(9, "x")), (key_shortcut{'0'}));
    EXPECT_EQ(shortcutOf("&Open \t\t Ctrl+O"), (key_shortcut{'O'}));
    EXPECT_EQ(shortcutOf("Convert FBX animation to .ANIM\t Ctrl+Shift+C"), (key_shortcut{'C', true}));
    EXPECT_FALSE(shortcutOf("E&xit \t\t Alt+F4")) << "the system's own";
    EXPECT_FALSE(shortcutOf("Re-read .pack files..."));
}

} // namespace
} // namespace korvane::test
