#pragma once

// One texture of a scene: where it comes from, and its bytes where they were read already, until a device has them. A
// new device reads them again. To whoever asks it is one unchanging value, from any thread.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/scene/file_place.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace korvane
{

// Reads a texture by its internal path ('\' or '/', any case). not_found: there is no such file; any other kind: it is
// there and cannot be read. On failure bytes and place stay as they are. Called from any thread, for as long as a scene
// lives.
using texture_reader =
    std::function<bool(const std::string& internal_path, memory_file& bytes, file_place& place, failure& why)>;

// Where a texture lies, without reading it; false: there is no such file. Called as a reader is.
using texture_finder = std::function<bool(const std::string& internal_path, file_place& place)>;

class scene_texture
{
public:
    scene_texture(std::string path, texture_reader reader, memory_file bytes, file_place place);
    scene_texture(std::string path, texture_reader reader, file_place place); // to be read by whoever needs it

    const std::string& path() const { return m_path; }  // internal, as the model names it
    const file_place& place() const { return m_place; } // before its bytes were read for the first time
    // The file's bytes, out of memory or read again; null and the reason when it cannot be read any more.
    [[nodiscard]] std::shared_ptr<const memory_file> bytes(failure& why) const;
    void letGo() const; // a device has them
    bool isHeld() const;

private:
    std::string m_path;
    texture_reader m_reader;
    file_place m_place;
    mutable std::mutex m_mutex; // guards m_bytes
    mutable std::shared_ptr<const memory_file> m_bytes;
};

} // namespace korvane
