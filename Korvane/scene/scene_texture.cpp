#include "Korvane/scene/scene_texture.h"

#include <utility>

namespace korvane
{

scene_texture::scene_texture(std::string path, texture_reader reader, memory_file bytes, file_place place)
    : m_path(std::move(path))
    , m_reader(std::move(reader))
    , m_place(std::move(place))
    , m_bytes(std::make_shared<const memory_file>(std::move(bytes)))
{
}

scene_texture::scene_texture(std::string path, texture_reader reader, file_place place)
    : m_path(std::move(path))
    , m_reader(std::move(reader))
    , m_place(std::move(place))
{
}

std::shared_ptr<const memory_file> scene_texture::bytes(failure& why) const
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_bytes)
            return m_bytes;
    }
    memory_file again; // not kept: the device that asks takes it over at once
    file_place now;
    if (!m_reader(m_path, again, now, why))
        return nullptr;
    return std::make_shared<const memory_file>(std::move(again));
}

void scene_texture::letGo() const
{
    std::shared_ptr<const memory_file> unused; // freed after the lock
    const std::lock_guard lock(m_mutex);
    unused.swap(m_bytes);
}

bool scene_texture::isHeld() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes != nullptr;
}

} // namespace korvane
