#pragma once

// The environment in the size and format in which graphics cards have it: two cube maps of 1024 x 1024 with all their
// mip levels, and a table of 256 x 256, all BC6H without a sign. Made of the formulas of environment_map.h when a
// program first needs them, for no file could be more exact; about a second of one processor, so on a thread of its
// own. Until they are there, and in pictures that are saved, the small cubes of environment_map.h show the same light
// to within a few of 255 steps. The table is bound at t1 for shaders that want the reflectance summed up instead of
// fitted; those of today use the fit of pbr_lib.hlsli on every device, so that all devices draw one picture.

#include "D3D11_RENDER_LIB/environment_map.h"

#include <glm/vec2.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace korvane
{

inline constexpr std::uint32_t whole_cube_size = 1024;       // 11 levels
inline constexpr std::uint32_t reflectance_table_size = 256; // 9 levels

// In BC6H_UF16.
struct block_image
{
    std::uint32_t size = 0; // pixels in each direction
    std::uint32_t faces = 1;
    std::vector<std::vector<std::byte>> levels; // of all faces, one after the other; at least one block each
};

struct environment_images
{
    block_image specular;    // level / 10 = roughness
    block_image diffuse;     // irradiance / pi in every level
    block_image reflectance; // at (n * v, roughness): environmentReflectance() in red and green
};

// Null when it was to stop.
[[nodiscard]] std::unique_ptr<environment_images> makeEnvironmentImages(const std::atomic<bool>& must_stop);

// How much of an even environment a surface mirrors, summed up over the microfacets that pbr_lib.hlsli lights: scale
// and offset of its specular colour. cosine: of the view to the normal; both 0 to 1.
[[nodiscard]] glm::vec2 environmentReflectance(float cosine, float roughness);

// Makes them on a thread of its own. One thread owns and asks it.
class environment_making
{
public:
    // has_news is called by the thread that makes them; it must not wait for the one that asks.
    explicit environment_making(std::function<void()> has_news) : m_has_news(std::move(has_news)) {}
    ~environment_making(); // stops it, within milliseconds
    environment_making(const environment_making&) = delete;
    environment_making& operator=(const environment_making&) = delete;

    // The images once they are made; null before. The first call begins, and one after the images were taken begins
    // anew: for another device.
    [[nodiscard]] std::unique_ptr<environment_images> take();

private:
    void run();

    std::function<void()> m_has_news;
    std::atomic<bool> m_must_stop{false};
    std::mutex m_mutex; // guards m_made
    std::unique_ptr<environment_images> m_made;
    std::thread m_thread;
};

} // namespace korvane
