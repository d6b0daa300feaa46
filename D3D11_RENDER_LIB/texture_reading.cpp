#include "D3D11_RENDER_LIB/texture_reading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

// In software each look at a block unpacks it again: BC7 and BC6H cost ten times what plain texels do. Formats that no
// device has or that this one refuses, and sizes that devices refuse for blocks, are converted, too.
bool mustUnpack(const dds_image& image, const device_formats& device)
{
    const bool is_block = isBlockCompressed(image.format);
    return image.format == dds_format::unknown || (is_block && device.is_software) ||
           device.refused.test(static_cast<std::size_t>(image.format)) ||
           (is_block && (image.width % 4 != 0 || image.height % 4 != 0));
}

std::size_t bytesOf(const dds_image& image)
{
    std::size_t bytes = 0;
    for (const dds_subresource& part : image.subresources)
        bytes += part.bytes.size();
    return bytes;
}

void keepFirstSurface(dds_image& image)
{
    image.array_size = 1;
    image.is_cube = false;
    image.subresources.resize(image.mip_count);
}

using byte_map = std::array<std::byte, 256>;

byte_map gammaOfSrgb()
{
    byte_map result{};
    for (std::size_t i = 0; i < result.size(); ++i)
    {
        const double encoded = static_cast<double>(i) / 255;
        const double light = encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
        result[i] = static_cast<std::byte>(std::lround(std::pow(light, 1 / 2.2) * 255));
    }
    return result;
}

// Four bytes a texel, alpha last.
void keepAsGamma(std::span<std::byte> texels)
{
    static const byte_map gamma = gammaOfSrgb();
    for (std::size_t i = 0; i + 3 < texels.size(); i += 4)
        for (std::size_t channel = 0; channel < 3; ++channel)
            texels[i + channel] = gamma[static_cast<std::size_t>(texels[i + channel])];
}

bool readWhole(const texture_request& wanted, const device_formats& device, read_texture& result)
{
    result.file = wanted.texture->bytes(result.why);
    if (!result.file || !readDds(result.file->bytes(), result.image, result.why))
        return false;
    keepFirstSurface(result.image);
    if (!mustUnpack(result.image, device))
        return true;
    if (!unpackDds(result.image, result.unpacked, result.why))
        return false;
    result.image = result.unpacked.image;
    if (device.is_software && wanted.is_colour && result.image.format == dds_format::rgba8_srgb)
    {
        keepAsGamma({result.unpacked.bytes.get(), bytesOf(result.image)});
        result.image.format = dds_format::rgba8;
    }
    result.file.reset();
    return true;
}

std::unique_ptr<read_texture> readTexture(const texture_request& wanted, const device_formats& device)
{
    auto result = std::make_unique<read_texture>();
    result->wanted = wanted;
    try
    {
        if (readWhole(wanted, device, *result))
            return result;
    }
    catch (const std::bad_alloc&)
    {
        fail(result->why, failure_kind::unsupported, "there is not enough memory for the texture");
    }
    result->why.path = wanted.texture->path();
    return result;
}

} // namespace

texture_reading::~texture_reading()
{
    {
        const std::lock_guard held(m_mutex);
        m_must_end = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

void texture_reading::request(std::vector<texture_request> wanted, const device_formats& device)
{
    const lock held(m_mutex);
    std::deque<std::unique_ptr<read_texture>> kept;
    const auto takeFrom = [&](const texture_request& texture) {
        const auto found = std::find(wanted.begin(), wanted.end(), texture);
        const bool is_wanted = device == m_device && texture.texture && found != wanted.end();
        if (is_wanted)
            wanted.erase(found);
        return is_wanted;
    };
    m_waiting_bytes = 0;
    for (std::unique_ptr<read_texture>& ready : std::exchange(m_ready, {}))
        if (takeFrom(ready->wanted))
        {
            m_waiting_bytes += bytesOf(ready->image);
            m_ready.push_back(std::move(ready));
        }
    if (!takeFrom(m_current))
        m_current = {};
    m_device = device;
    m_wanted.assign(wanted.begin(), wanted.end());
    if (!m_thread.joinable() && !m_wanted.empty())
        try
        {
            m_thread = std::thread([this] { run(); });
        }
        catch (const std::system_error&) // wait() and take() read instead
        {
        }
    m_changed.notify_all();
}

void texture_reading::readNext(lock& held)
{
    m_current = m_wanted.front();
    m_wanted.pop_front();
    const texture_request texture = m_current;
    const device_formats device = m_device;
    held.unlock();
    std::unique_ptr<read_texture> result = readTexture(texture, device);
    held.lock();
    if (m_current == texture)
    {
        m_waiting_bytes += bytesOf(result->image);
        m_ready.push_back(std::move(result));
        m_current = {};
    }
    m_changed.notify_all();
}

void texture_reading::run()
{
    lock held(m_mutex);
    for (;;)
    {
        m_changed.wait(held, [this] { return m_must_end || mayRead(); });
        if (m_must_end)
            return;
        readNext(held);
        held.unlock();
        if (m_has_news)
            m_has_news();
        held.lock();
    }
}

std::unique_ptr<read_texture> texture_reading::takeReady()
{
    if (m_ready.empty())
        return nullptr;
    std::unique_ptr<read_texture> taken = std::move(m_ready.front());
    m_ready.pop_front();
    m_waiting_bytes -= bytesOf(taken->image);
    m_changed.notify_all();
    return taken;
}

std::unique_ptr<read_texture> texture_reading::take()
{
    lock held(m_mutex);
    if (!m_thread.joinable() && m_ready.empty() && !m_wanted.empty())
        readNext(held);
    return takeReady();
}

std::unique_ptr<read_texture> texture_reading::wait()
{
    lock held(m_mutex);
    if (!m_thread.joinable() && m_ready.empty() && !m_wanted.empty())
        readNext(held);
    m_changed.wait(held, [this] { return !m_ready.empty() || (m_wanted.empty() && !m_current.texture); });
    return takeReady();
}

} // namespace korvane
