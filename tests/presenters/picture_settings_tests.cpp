#include "Korvane/presenters/picture_settings.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{

TEST(picture_settings, whatWasChosenIsRememberedAndFollowsTheView)
{
    temporary_folder folder;
    config_file table;
    shared_config config(table, folder.file("config.cfg"), {});
    {
        picture_settings settings(config, {1000, 500});
        EXPECT_EQ(settings.request().size, (picture_size{1000, 500}));
        settings.setSize(picture_settings::size_choice::own);
        settings.typeHeight("601");
        EXPECT_EQ(settings.width(), "1202");
        settings.setTransparent(true);
        settings.setSamples(3);
        settings.remember();
    }
    picture_settings later(config, {900, 300}); // the view has other proportions now
    EXPECT_EQ(later.size(), picture_settings::size_choice::own);
    EXPECT_EQ(later.request().size, (picture_size{1202, 401}));
    EXPECT_TRUE(later.isTransparent());
    EXPECT_EQ(later.request().samples, 16u);
    later.keepProportions(false);
    later.typeHeight("8192");
    EXPECT_EQ(later.request().size, (picture_size{1202, 8192}));
    for (const char* const wrong : {"", "0", "8193", "12a", "-3", "99999999999"})
    {
        later.typeWidth(wrong);
        EXPECT_TRUE(later.problem()) << wrong;
    }
    later.setSize(picture_settings::size_choice::four_k);
    EXPECT_EQ(later.request().size, (picture_size{3840, 2160}));
    later.remember();
    EXPECT_EQ(picture_settings(config, {90, 30}).size(), picture_settings::size_choice::four_k);
}

} // namespace korvane::test
