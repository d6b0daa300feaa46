#pragma once

// Pictures as files: Targa and PNG, and DDS for reading. What a file is, is seen from its first bytes; what is to be
// written, from the name's ending.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/textures/picture.h"
#include "Korvane/textures/png.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

enum class picture_kind
{
    png,
    targa
};
[[nodiscard]] std::string_view extensionOf(picture_kind kind); // ".png"
// By the ending of the name, in any case; nothing for others.
[[nodiscard]] std::optional<picture_kind> pictureKind(std::string_view path);

// A picture of a kind that other programs write and this one does not read, by the ending of the name.
[[nodiscard]] bool isForeignPicture(std::string_view path);

// PNG by its signature, DDS by its magic (decodeDds), anything else is taken for Targa. 16 bits a channel become 8.
[[nodiscard]] bool readPicture(std::span<const std::byte> file, picture& target, failure& why);
[[nodiscard]] bool readPictureFile(const std::string& path, picture& target, failure& why);

class picture_bytes // of a file; owned
{
public:
    std::span<const std::byte> bytes() const { return m_targa.empty() ? m_png.bytes() : m_targa.bytes(); }

private:
    friend bool encodePicture(const picture& source, picture_kind kind, picture_bytes& file, failure& why);

    memory_file m_targa;
    png_bytes m_png;
};
[[nodiscard]] bool encodePicture(const picture& source, picture_kind kind, picture_bytes& file, failure& why);

// Replaces the file at path as a whole, or leaves what stood there.
[[nodiscard]] bool writePictureFile(const std::string& path, picture_kind kind, const picture& source, failure& why,
                                    write_safety safety = write_safety::flushed);

} // namespace korvane
