#pragma once

// Reads the textures of a scene on a thread of its own, one after the other, up to what a device takes: the file's
// bytes and where each mip map lies in them, unpacked where the device wants that. Portable; request(), take() and
// wait() belong to one thread, the one that draws.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/scene/scene_texture.h"
#include "Korvane/textures/dds_unpacker.h"

#include <bitset>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace korvane
{

struct texture_request
{
    std::shared_ptr<const scene_texture> texture;
    // Nothing but colours that the shader decodes: what is unpacked of sRGB is kept as gamma 2.2 then, as of textures
    // that are not sRGB. Decoding each texel that is looked at costs where the processor draws.
    bool is_colour = false;

    texture_request(std::shared_ptr<const scene_texture> of = {}, bool is_of_colour = false)
        : texture(std::move(of))
        , is_colour(is_of_colour)
    {
    }
    bool operator==(const texture_request&) const = default;
};

// What a device makes a texture of. One two-dimensional picture with its mip maps: of a cube or an array the first.
struct read_texture
{
    texture_request wanted;
    std::shared_ptr<const memory_file> file; // owns the bytes, or unpacked does
    unpacked_dds unpacked;
    dds_image image;
    failure why; // set: it cannot be read
};

// What a device does with textures.
struct device_formats
{
    bool is_software = false;   // blocks are unpacked for it
    std::bitset<128> refused{}; // by the number of the DXGI format: not sampled, or not with a filter

    bool operator==(const device_formats&) const = default;
};

class texture_reading
{
public:
    // Ready textures wait until they take so much memory; the thread rests then.
    static constexpr std::size_t most_waiting_bytes = std::size_t{256} << 20;

    // has_news is called by the reading thread for each texture that is ready; it must not wait for the one that draws.
    explicit texture_reading(std::function<void()> has_news = {}) : m_has_news(std::move(has_news)) {}
    ~texture_reading(); // waits for the texture that is being read
    texture_reading(const texture_reading&) = delete;
    texture_reading& operator=(const texture_reading&) = delete;

    // These, in their order, in place of what was wanted before: what of that is ready or under way and wanted again is
    // kept.
    void request(std::vector<texture_request> wanted, const device_formats& device);
    // The next one that is ready; null: none is.
    [[nodiscard]] std::unique_ptr<read_texture> take();
    // The same, but waits for it; null: none is wanted any more.
    [[nodiscard]] std::unique_ptr<read_texture> wait();

private:
    using lock = std::unique_lock<std::mutex>;

    void run();
    void readNext(lock& held); // without the lock while it reads
    std::unique_ptr<read_texture> takeReady();
    bool mayRead() const { return !m_wanted.empty() && m_waiting_bytes < most_waiting_bytes; }

    std::function<void()> m_has_news;
    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    std::deque<texture_request> m_wanted; // not begun
    texture_request m_current;            // being read; null: none, or nobody wants it any more
    std::deque<std::unique_ptr<read_texture>> m_ready;
    std::size_t m_waiting_bytes = 0; // of those
    device_formats m_device;
    bool m_must_end = false;
    std::thread m_thread; // from the first request on; without one the thread that asks reads
};

} // namespace korvane
