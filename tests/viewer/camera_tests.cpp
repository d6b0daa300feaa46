#include "Korvane/viewer/camera.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <glm/vec4.hpp>
#include <gtest/gtest.h>

namespace korvane
{

namespace
{

// A row vector times a matrix as the shaders do it: constant buffers hold columns one after the other.
glm::vec4 multiply(const glm::vec4& row, const gpu_matrix& stored)
{
    glm::vec4 result(0);
    for (int column = 0; column < 4; ++column)
        for (int i = 0; i < 4; ++i)
            result[column] += row[i] * stored[static_cast<std::size_t>(column)][static_cast<std::size_t>(i)];
    return result;
}

glm::vec3 onScreen(const camera& eye, float aspect, const glm::vec3& point)
{
    mvp_buffer buffer;
    eye.fill(aspect, buffer);
    glm::vec4 clip(point, 1);
    for (const gpu_matrix* matrix : {&buffer.rot_y, &buffer.rot_x, &buffer.mWorld, &buffer.View, &buffer.Projection})
        clip = multiply(clip, *matrix);
    return glm::vec3(clip) / clip.w;
}

model_bounds box(const glm::vec3& least, const glm::vec3& most)
{
    model_bounds bounds;
    bounds.add(least);
    bounds.add(most);
    return bounds;
}

camera facing(float yaw)
{
    camera eye;
    eye.yaw = yaw;
    eye.pitch = 0;
    return eye;
}

TEST(camera, aFramedModelIsSeenWholeFromAllSides)
{
    const model_bounds models[] = {box({-0.4f, 0, -0.3f}, {0.4f, 1.9f, 0.3f}), box({-30, -2, -5}, {30, 14, 5}),
                                   box({0.1f, 0.1f, 0.1f}, {0.11f, 0.1f, 0.4f})};
    for (const model_bounds& bounds : models)
        for (const float aspect : {16.0f / 9.0f, 1.0f, 0.4f})
        {
            camera eye;
            eye.frame(bounds, aspect);
            float largest = 0;
            for (int step = 0; step < 24; ++step)
            {
                for (int corner = 0; corner < 8; ++corner)
                {
                    const glm::vec3 point(corner & 1 ? bounds.min.x : bounds.max.x,
                                          corner & 2 ? bounds.min.y : bounds.max.y,
                                          corner & 4 ? bounds.min.z : bounds.max.z);
                    const glm::vec3 seen = onScreen(eye, aspect, point);
                    largest = std::max({largest, std::abs(seen.x), std::abs(seen.y)});
                    EXPECT_GT(seen.z, 0);
                    EXPECT_LT(seen.z, 1);
                }
                eye.turn(0.2618f, 0);
            }
            EXPECT_LT(largest, 1.0f) << aspect;
            EXPECT_GT(largest, 0.55f) << aspect << ": the model should fill the view";
        }
}

TEST(camera, directionsOnTheScreen)
{
    camera eye = facing(0);
    eye.frame(box({-1, -1, -1}, {1, 1, 1}), 1.0f);
    EXPECT_GT(onScreen(eye, 1, {1, 0, 0}).x, 0.1f);
    EXPECT_GT(onScreen(eye, 1, {0, 1, 0}).y, 0.1f);
    EXPECT_LT(onScreen(eye, 1, {0, 0, -1}).z, onScreen(eye, 1, {0, 0, 1}).z) << "at yaw 0 the -z side is in front";

    camera turned = facing(3.1415927f);
    turned.frame(box({-1, -1, -1}, {1, 1, 1}), 1.0f);
    EXPECT_GT(onScreen(turned, 1, {0, 0, -1}).z, onScreen(turned, 1, {0, 0, 1}).z);
}

TEST(camera, theVerticalFieldOfViewHoldsForEveryAspect)
{
    for (const float aspect : {0.5f, 1.0f, 2.5f})
    {
        camera eye = facing(0);
        eye.distance = 10;
        // At distance d the top of the view is d * tan(pi / 12) above the middle.
        EXPECT_NEAR(onScreen(eye, aspect, {0, 10 * 0.26794919f, 0}).y, 1.0f, 1e-4f);
        EXPECT_NEAR(onScreen(eye, aspect, {10 * 0.26794919f * aspect, 0, 0}).x, 1.0f, 1e-4f);
    }
}

TEST(camera, limitsOfTiltAndDistance)
{
    camera eye;
    eye.turn(0, 100);
    EXPECT_LT(eye.pitch, 1.5708f);
    eye.move(-1000);
    EXPECT_GT(eye.distance, near_plane);
    eye.zoom(1e9f);
    EXPECT_LT(eye.distance, far_plane);

    camera empty;
    empty.frame(model_bounds(), 1.0f);
    EXPECT_TRUE(std::isfinite(onScreen(empty, 1, {0, 0, 0}).z));
}

} // namespace

} // namespace korvane
