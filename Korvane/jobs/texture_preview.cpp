#include "Korvane/jobs/texture_preview.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/mip_maps.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <new>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_file_bytes = std::uint64_t{1} << 30;

std::string sizeText(std::uint32_t width, std::uint32_t height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

// The largest level that fits, as an image of its own; the smallest one where none does.
dds_image levelFor(const dds_image& image, std::uint32_t most_pixels)
{
    std::uint32_t mip = 0;
    while (mip + 1 < image.mip_count &&
           std::max(image.subresource(0, mip).width, image.subresource(0, mip).height) > most_pixels)
        ++mip;
    dds_image level = image;
    level.subresources = {image.subresource(0, mip)};
    level.width = level.subresources[0].width;
    level.height = level.subresources[0].height;
    level.mip_count = level.array_size = 1;
    level.is_cube = false;
    return level;
}

void shrink(picture& target, std::uint32_t most_pixels)
{
    if (std::max(target.width(), target.height()) <= most_pixels)
        return;
    picture level;
    {
        mip_maps levels(target, mip_content::numbers); // colours under alpha 0 stay to be seen
        do
            level = levels.next();
        while (std::max(level.width(), level.height()) > most_pixels);
    }
    target = std::move(level);
}

bool decodePreview(const memory_file& file, std::uint32_t most_pixels, texture_preview& preview, failure& why)
{
    dds_image image;
    failure no_dds;
    picture pixels;
    if (file.text().starts_with("DDS "))
    {
        if (!readDds(file.bytes(), image, why))
            return false;
        preview.text = textureText(image);
        if (!decodeDds(levelFor(image, most_pixels), pixels, why))
            return false;
    }
    else
    {
        if (!readPicture(file.bytes(), pixels, why))
            return false;
        preview.text = sizeText(pixels.width(), pixels.height()) + ", a picture, not a DDS file";
    }
    shrink(pixels, most_pixels);
    preview.pixels = std::move(pixels);
    return true;
}

rgba_pixel grey(unsigned value)
{
    return rgba(value, value, value, 255);
}

} // namespace

std::string textureText(const dds_image& image)
{
    const char* const format = formatName(image.format);
    std::string text = sizeText(image.width, image.height) + ", " + (format ? format : "an unusual pixel format") +
                       ", " + counted(image.mip_count, "mip map");
    if (image.is_cube)
        text += ", cube map";
    else if (image.array_size > 1)
        text += ", array of " + std::to_string(image.array_size);
    return text;
}

texture_preview makeTexturePreview(const texture_preview_request& request, const work_port& work)
{
    const game_file found = request.game->findAround(request.path, request.model_path);
    if (!found)
        return {request.path,
                {},
                request.path.empty() ? "No texture is named here." : "The texture is nowhere to be found."};
    texture_preview preview = makeTexturePreview(found, request.most_pixels, work);
    preview.path = request.path;
    return preview;
}

texture_preview makeTexturePreview(const game_file& texture, std::uint32_t most_pixels, const work_port& work)
{
    texture_preview preview{texture.path(), {}, {}};
    try
    {
        memory_file file;
        failure why;
        if ((preview.is_stopped = work.isStopped()))
            return preview;
        if (!texture.read(file, why, most_file_bytes) || (preview.is_stopped = work.isStopped()) ||
            !decodePreview(file, most_pixels, preview, why))
        {
            why.path.clear(); // whoever shows it says it
            preview.text += (preview.text.empty() ? "" : ": ") + ("cannot be shown: " + displayText(describe(why)));
        }
    }
    catch (const std::bad_alloc&)
    {
        preview.text = "There is not enough memory to show this texture.";
    }
    return preview;
}

picture showChannels(const picture& source, preview_channels channels)
{
    picture shown(source.width(), source.height());
    for (std::uint32_t y = 0; y < source.height(); ++y)
        for (std::uint32_t x = 0; x < source.width(); ++x)
        {
            const rgba_pixel pixel = source.row(y)[x];
            rgba_pixel& target = shown.row(y)[x];
            switch (channels)
            {
            case preview_channels::all:
                target = pixel;
                break;
            case preview_channels::colour:
                target = pixel | 0xff000000u;
                break;
            default:
                target =
                    grey(pixel >> 8 * (static_cast<unsigned>(channels) - static_cast<unsigned>(preview_channels::red)) &
                         255);
            }
        }
    return shown;
}

} // namespace korvane
