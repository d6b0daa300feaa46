#include "EASY_GUI/services/zoomed_picture.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

zoomed_picture shown(int width, int height)
{
    zoomed_picture place;
    place.setPicture(width, height);
    place.setView(400, 200);
    return place;
}

} // namespace

TEST(zoomed_picture, fitsUntilSomebodyZooms)
{
    zoomed_picture place = shown(800, 200);
    EXPECT_DOUBLE_EQ(place.scale(), 0.5);
    EXPECT_DOUBLE_EQ(place.top(), 50) << "in the middle";
    EXPECT_FALSE(place.canMove());
    place.move(10, 10);
    place.setView(200, 200);
    EXPECT_DOUBLE_EQ(place.scale(), 0.25) << "it follows the window";
    place.showActualSize();
    place.setView(300, 200);
    EXPECT_DOUBLE_EQ(place.scale(), 1);
    EXPECT_DOUBLE_EQ(place.left(), -250) << "the middle stays in the middle";
}

TEST(zoomed_picture, whatIsBelowTheMouseStaysThere)
{
    zoomed_picture place = shown(800, 400);
    const picture_point mouse{120, 80};
    const picture_point before = place.pictureAt(mouse);
    for (int i = 0; i < 6; ++i)
    {
        place.zoom(1, mouse);
        EXPECT_NEAR(place.pictureAt(mouse).x, before.x, 1e-9);
        EXPECT_NEAR(place.pictureAt(mouse).y, before.y, 1e-9);
    }
    place.zoom(1000, mouse);
    EXPECT_DOUBLE_EQ(place.scale(), zoomed_picture::largest_scale);
    place.zoom(-1000, mouse);
    EXPECT_DOUBLE_EQ(place.scale(), 1) << "a stop at the actual size";
    place.zoom(-1000, mouse);
    EXPECT_DOUBLE_EQ(place.scale(), 16.0 / 400) << "never too small to be seen";
    EXPECT_DOUBLE_EQ(place.left(), (400 - 32) / 2.0);
}

TEST(zoomed_picture, movesNoFurtherThanItsEdges)
{
    zoomed_picture place = shown(1000, 100);
    place.showActualSize();
    place.move(1e6, 1e6);
    EXPECT_DOUBLE_EQ(place.left(), 0);
    EXPECT_DOUBLE_EQ(place.top(), 50) << "it is not higher than the view";
    place.move(-1e6, 0);
    EXPECT_DOUBLE_EQ(place.left(), -600);
}

TEST(zoomed_picture, anotherMipLevelShowsTheSamePart)
{
    zoomed_picture place = shown(1024, 512);
    place.zoom(8, {300, 50});
    const picture_point before = place.pictureAt({200, 100});
    const double scale = place.scale();
    place.setPicture(256, 128);
    EXPECT_DOUBLE_EQ(place.scale(), scale * 4);
    EXPECT_NEAR(place.pictureAt({200, 100}).x, before.x / 4, 1e-9);
    place.setPicture(0, -1);
    EXPECT_LE(place.scale(), zoomed_picture::largest_scale * 8) << "nonsense is a pixel";
}

} // namespace korvane
