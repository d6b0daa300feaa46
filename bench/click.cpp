// A click on the largest model that a file can sensibly hold, 255 groups of 65,535 skinned vertices, or on one of fewer
// groups; with a file name the model is written there, to be opened in the program.

#include "EASY_GUI/services/memory_file.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/viewer/posed_mesh.h"
#include "tests/support/model_builder.h"

#include <glm/gtc/packing.hpp>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numbers>

namespace korvane
{

namespace
{

constexpr std::size_t rings = 257, around = 255; // 65,535 vertices

// A ball of which each ring hangs on two of forty bones.
test::test_group ball(std::size_t number)
{
    constexpr float turn = std::numbers::pi_v<float>;
    const glm::vec3 centre(static_cast<float>(number % 16) * 0.6f, static_cast<float>(number / 16) * 0.6f,
                           static_cast<float>(number % 3) * 0.3f);
    test::bytes_out out;
    for (std::size_t ring = 0; ring < rings; ++ring)
        for (std::size_t step = 0; step < around; ++step)
        {
            const float up = static_cast<float>(ring) / (rings - 1) * turn;
            const float side = static_cast<float>(step) / around * 2 * turn;
            const glm::vec3 way(std::sin(up) * std::cos(side), std::cos(up), std::sin(up) * std::sin(side));
            for (int axis = 0; axis < 3; ++axis)
                out.u16(glm::packHalf1x16((axis == 0 ? -1.0f : 1.0f) * (centre[axis] + way[axis] * 0.5f)));
            out.u16(0);
            for (const std::size_t bone : {ring / 8, ring / 8 + 1, std::size_t{0}, std::size_t{0}})
                out.u8(static_cast<unsigned>(bone));
            const auto weight = static_cast<unsigned>(255 - ring % 8 * 30);
            for (const unsigned byte : {weight, 255 - weight, 0u, 0u})
                out.u8(byte);
            for (int axis = 0; axis < 3; ++axis)
                out.u8(static_cast<unsigned>(127.5f + (axis == 0 ? -127.0f : 127.0f) * way[axis]));
            out.u8(0);
            out.zeros(12);
        }
    test::test_group group;
    group.vertex_format = 4;
    group.stride = 32;
    group.vertex_count = rings * around;
    group.vertices = out.str();
    group.textures.clear();
    group.indices.clear();
    for (std::size_t ring = 0; ring + 1 < rings; ++ring)
        for (std::size_t step = 0; step < around; ++step)
        {
            const std::size_t right = (step + 1) % around;
            for (const std::size_t corner :
                 {ring * around + step, ring * around + right, (ring + 1) * around + step, ring * around + right,
                  (ring + 1) * around + right, (ring + 1) * around + step})
                group.indices.push_back(static_cast<std::uint16_t>(corner));
        }
    return group;
}

double milliseconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since).count();
}

int measure(std::size_t groups, const char* path)
{
    test::test_model model;
    model.skeleton_id = "humanoid01";
    model.lods = {{}};
    for (std::size_t i = 0; i < groups; ++i)
        model.lods[0].push_back(ball(i));
    std::string bytes = model.bytes();
    model.lods.clear();
    if (path != nullptr)
        std::ofstream(path, std::ios::binary) << bytes;
    const auto file = std::make_shared<rmv2_file>();
    failure why;
    auto begin = std::chrono::steady_clock::now();
    if (!file->openFromMemory(memory_file(std::string_view(bytes)), "huge", why))
    {
        std::printf("%s\n", describe(why).c_str());
        return 1;
    }
    std::printf("%zu groups, %zu MB: read in %.0f ms", groups, bytes.size() >> 20, milliseconds(begin));
    begin = std::chrono::steady_clock::now();
    const scene_pointer scene =
        scene_loader{game_data()}.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), "huge");
    std::printf(", its scene made in %.0f ms\n", milliseconds(begin));
    auto without = std::make_shared<loaded_scene>(*scene);
    for (scene_part& part : without->parts)
        part.boxes.reset();
    const posed_scene pose(scene), slow(without);
    const glm::vec3 middle = scene->bounds.centre(), size = scene->bounds.extent();
    for (const float shift : {0.0f, 0.11f, 0.27f, 2.0f})
    {
        const view_ray ray{middle + glm::vec3(shift * size.x, shift * size.y * 0.5f, -20), {0, 0, 1}};
        double least = 1e9;
        std::optional<picked_triangle> hit;
        for (int i = 0; i < 5; ++i)
        {
            begin = std::chrono::steady_clock::now();
            hit = pickTriangle(pose, ray);
            least = std::min(least, milliseconds(begin));
        }
        begin = std::chrono::steady_clock::now();
        const auto same = pickTriangle(slow, ray);
        std::printf("a click %.2f of the size beside the middle: %.2f ms, %s; every vertex looked at: %.0f ms, %s\n",
                    static_cast<double>(shift), least, hit ? "a hit" : "none", milliseconds(begin),
                    same.has_value() == hit.has_value() && (!hit || same->distance == hit->distance) ? "the same"
                                                                                                     : "ANOTHER ONE");
    }
    return 0;
}

} // namespace

} // namespace korvane

int main(int count, char** values)
{
    return korvane::measure(count > 1 ? std::strtoul(values[1], nullptr, 10) : 255, count > 2 ? values[2] : nullptr);
}
