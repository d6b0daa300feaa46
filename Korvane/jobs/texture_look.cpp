#include "Korvane/jobs/texture_look.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <array>
#include <new>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_bytes_read = std::uint64_t{1} << 30;

} // namespace

bool isTexturePath(std::string_view path)
{
    return endsWithIgnoringCase(path, ".dds") || pictureKind(path).has_value();
}

bool looked_texture::open(const game_file& file, failure& why)
try
{
    if (!file.read(m_file, why, most_bytes_read))
        return false;
    if (m_file.empty())
        return fail(why, failure_kind::malformed, "the file is empty", file.path());
    if (m_file.text().starts_with("DDS "))
    {
        if (!readDds(m_file.bytes(), m_image, why))
            return false;
        m_text = textureText(m_image);
        return true;
    }
    auto pixels = std::make_shared<picture>();
    if (!readPicture(m_file.bytes(), *pixels, why))
        return false;
    m_text = std::to_string(pixels->width()) + " x " + std::to_string(pixels->height()) + ", a picture, not a DDS file";
    m_po_picture = std::move(pixels);
    return true;
}
catch (const std::bad_alloc&)
{
    return fail(why, failure_kind::refused, "there is not enough memory to show this texture");
}

std::vector<std::string> looked_texture::levels() const
{
    const auto named = [](std::size_t level, std::uint32_t width, std::uint32_t height) {
        return std::to_string(level) + ": " + std::to_string(width) + " x " + std::to_string(height);
    };
    if (m_po_picture)
        return {named(0, m_po_picture->width(), m_po_picture->height())};
    std::vector<std::string> result;
    for (std::uint32_t level = 0; level < m_image.mip_count; ++level)
    {
        const dds_subresource& part = m_image.subresource(0, level);
        result.push_back(named(level, part.width, part.height));
    }
    return result;
}

std::vector<std::string> looked_texture::surfaces() const
{
    constexpr std::array<const char*, 6> faces = {"+X", "-X", "+Y", "-Y", "+Z", "-Z"};
    std::vector<std::string> result;
    const std::uint32_t faces_each = m_image.is_cube ? 6 : 1;
    const std::uint32_t layers = m_po_picture ? 1 : m_image.array_size / faces_each;
    for (std::uint32_t layer = 0; layer < layers; ++layer)
        for (std::uint32_t face = 0; face < faces_each; ++face)
        {
            std::string name = layers > 1 ? "Layer " + std::to_string(layer) : "";
            if (faces_each > 1)
                name += (name.empty() ? "" : ", ") + std::string(faces[face]);
            result.push_back(name.empty() ? "The only one" : name);
        }
    return result;
}

std::shared_ptr<const picture> looked_texture::decode(std::size_t surface, std::size_t level, failure& why) const
try
{
    if (m_po_picture)
        return m_po_picture;
    const dds_subresource& part =
        m_image.subresource(static_cast<std::uint32_t>(std::min<std::size_t>(surface, m_image.array_size - 1)),
                            static_cast<std::uint32_t>(std::min<std::size_t>(level, m_image.mip_count - 1)));
    auto pixels = std::make_shared<picture>(part.width, part.height);
    decodeSubresource(m_image, part, pixels->pixels());
    return pixels;
}
catch (const std::bad_alloc&)
{
    fail(why, failure_kind::refused, "there is not enough memory to show this mip map");
    return nullptr;
}

std::string pixelText(const picture& of, std::int64_t x, std::int64_t y)
{
    if (x < 0 || y < 0 || x >= of.width() || y >= of.height())
        return {};
    const rgba_pixel pixel = of.row(static_cast<std::uint32_t>(y))[static_cast<std::size_t>(x)];
    const auto channel = [pixel](unsigned number) { return std::to_string(pixel >> 8 * number & 255); };
    return "at " + std::to_string(x) + ", " + std::to_string(y) + ": red " + channel(0) + ", green " + channel(1) +
           ", blue " + channel(2) + ", alpha " + channel(3);
}

} // namespace korvane
