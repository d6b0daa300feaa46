#include "Korvane/textures/picture_file.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/png.h"
#include "Korvane/textures/targa.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace korvane
{

namespace
{

bool beginsWith(std::span<const std::byte> file, std::string_view bytes)
{
    return file.size() >= bytes.size() && std::memcmp(file.data(), bytes.data(), bytes.size()) == 0;
}

constexpr std::string_view dds_magic = "DDS ";

// What its name calls a file that then was taken for Targa; empty: it is what it is called, or a Targa by name.
std::string_view missingSignature(const std::string& path, std::span<const std::byte> file)
{
    if (beginsWith(file, png_signature) || beginsWith(file, dds_magic))
        return {};
    return endsWithIgnoringCase(path, ".png") ? "PNG" : endsWithIgnoringCase(path, ".dds") ? "DDS" : "";
}

// The bytes of a file that matter, seen from its start: what is no picture is not read whole.
bool pictureFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why)
{
    if (beginsWith(start, png_signature))
        return pngFileSize(start, size, why);
    return beginsWith(start, dds_magic) ? ddsFileSize(start, size, why) : targaFileSize(start, size, why);
}

} // namespace

std::string_view extensionOf(picture_kind kind)
{
    return kind == picture_kind::png ? ".png" : ".tga";
}

std::optional<picture_kind> pictureKind(std::string_view path)
{
    for (const picture_kind kind : {picture_kind::png, picture_kind::targa})
        if (endsWithIgnoringCase(path, extensionOf(kind)))
            return kind;
    return std::nullopt;
}

bool isForeignPicture(std::string_view path)
{
    constexpr std::string_view endings[] = {".jpg",  ".jpeg", ".jfif", ".bmp", ".gif", ".webp", ".tif",
                                            ".tiff", ".psd",  ".xcf",  ".kra", ".ora", ".heic", ".avif",
                                            ".svg",  ".exr",  ".hdr",  ".ico", ".pcx", ".jp2"};
    return std::any_of(std::begin(endings), std::end(endings),
                       [path](std::string_view ending) { return endsWithIgnoringCase(path, ending); });
}

bool readPicture(std::span<const std::byte> file, picture& target, failure& why)
{
    if (beginsWith(file, png_signature))
        return readPng(file, target, why);
    if (!beginsWith(file, dds_magic))
        return readTarga(file, target, why);
    dds_image image;
    return readDds(file, image, why) && decodeDds(image, target, why);
}

bool readPictureFile(const std::string& path, picture& target, failure& why)
{
    constexpr std::size_t start_bytes = 65536;
    memory_file file;
    std::uint64_t file_bytes = 0, wanted = 0;
    if (!file.readStart(path, start_bytes, file_bytes, why))
        return false;
    if (file_bytes == 0)
        return fail(why, failure_kind::malformed, "the file is empty", path);
    const bool is_read = file_bytes <= start_bytes ||
                         (pictureFileSize(file.bytes(), wanted, why) && file.readStart(path, wanted, file_bytes, why));
    if (is_read && readPicture(file.bytes(), target, why))
        return true;
    if (const std::string_view kind = missingSignature(path, file.bytes()); !kind.empty())
    {
        why = {};
        return fail(why, failure_kind::malformed,
                    "this is no " + std::string(kind) + " file: it does not begin as one, whatever its name says",
                    path);
    }
    if (why.path.empty())
        why.path = path;
    return false;
}

bool encodePicture(const picture& source, picture_kind kind, picture_bytes& file, failure& why)
{
    file = {};
    return kind == picture_kind::png ? writePng(source, file.m_png, why) : writeTarga(source, file.m_targa, why);
}

bool writePictureFile(const std::string& path, picture_kind kind, const picture& source, failure& why,
                      write_safety safety)
{
    picture_bytes file;
    if (encodePicture(source, kind, file, why))
        return writeWholeFile(path, file.bytes(), why, safety);
    if (why.path.empty())
        why.path = path;
    return false;
}

} // namespace korvane
