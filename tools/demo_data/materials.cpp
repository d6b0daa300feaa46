#include "tools/demo_data/materials.h"

#include "tools/demo_data/painters.h"

namespace korvane::demo
{

namespace
{

image filled(std::size_t size, const std::vector<surface>& texels, const std::function<vec3(const surface&)>& colour,
             bool with_alpha = false)
{
    image result(size, size);
    for (std::size_t i = 0; i < texels.size(); ++i)
    {
        const vec3 value = colour(texels[i]);
        std::uint8_t* pixel = result.pixels.data() + i * 4;
        pixel[0] = toByte(value.x);
        pixel[1] = toByte(value.y);
        pixel[2] = toByte(value.z);
        pixel[3] = with_alpha ? toByte(texels[i].alpha) : std::uint8_t{255};
    }
    return result;
}

image normalMap(std::size_t size, const std::vector<surface>& texels, bool has_alpha)
{
    image result(size, size);
    const auto heightAt = [&](std::size_t x, std::size_t y) {
        return texels[(y % size) * size + x % size].height * static_cast<double>(size);
    };
    for (std::size_t y = 0; y < size; ++y)
        for (std::size_t x = 0; x < size; ++x)
        {
            const double du = (heightAt(x + 1, y) - heightAt(x + size - 1, y)) * 0.5;
            const double dv = (heightAt(x, y + 1) - heightAt(x, y + size - 1)) * 0.5;
            const vec3 normal = normalised({-du, -dv, 1});
            const std::uint8_t along_u = toByte(normal.x * 0.5 + 0.5);
            std::uint8_t* pixel = result.at(x, y);
            pixel[0] = has_alpha ? std::uint8_t{255} : along_u;
            pixel[1] = toByte(normal.y * 0.5 + 0.5);
            pixel[2] = 0;
            pixel[3] = has_alpha ? along_u : std::uint8_t{255};
        }
    return result;
}

} // namespace

std::span<const material> materials()
{
    using enum dds_format;
    static const std::vector<material> all = {
        {"guard_steel", 512, bc1_srgb, bc3, bc1_srgb, paintSteel},
        {"guard_blade", 256, bgra8, bgra8, bc1, paintBlade},
        {"guard_leather", 512, bc1_srgb, bc3, bc1, paintLeather},
        {"guard_tunic", 512, bc1, bc5, bc1, paintTunic},
        {"guard_cape", 512, bc7_srgb, bc3, bc1, paintCape},
        {"guard_wool", 256, bc1, bc5, bc1, paintWool},
        {"guard_plume", 256, bc3_srgb, bc3, bc1, paintPlume},
        {"guard_skin", 256, bc7_srgb, bc3, bc1, paintSkin},
        {"guard_head", 512, rgba8_srgb, bc7, bc1_srgb, paintHead},
        {"guard_shield", 512, bc7_srgb, bc3, bc7_srgb, paintShield},
        {"demo_banner", 512, bc7, bc5, bc1, paintBanner},
        {"demo_wood", 256, bc1_srgb, bc5, bc1, paintWood},
        {"demo_stone", 512, bc1_srgb, bc3, bc1, paintStone},
        {"demo_grass", 256, bc3, bc3, bc1, paintGrass},
        {"beast_coat", 512, bc1_srgb, bc3, bc1, paintCoat},
        {"beast_hair", 256, bc1_srgb, bc3, bc1, paintHair},
    };
    return all;
}

std::vector<surface> paintSurface(const material& source, std::uint32_t seed)
{
    std::vector<surface> texels(source.size * source.size);
    const double step = 1.0 / static_cast<double>(source.size);
    for (std::size_t y = 0; y < source.size; ++y)
        for (std::size_t x = 0; x < source.size; ++x)
            texels[y * source.size + x] =
                source.paint((static_cast<double>(x) + 0.5) * step, (static_cast<double>(y) + 0.5) * step, seed);
    return texels;
}

painted_image recoloured(const material& source, const std::vector<surface>& texels, vec3 colour)
{
    return {"diffuse", source.diffuse,
            filled(
                source.size, texels,
                [colour](const surface& s) {
                    const double light = (s.colour.x + 2 * s.colour.y + s.colour.z) * 0.25;
                    return mix(s.colour, colour * light, s.mask.x);
                },
                true)};
}

std::vector<painted_image> imagesOf(const material& source, const std::vector<surface>& texels)
{
    std::vector<painted_image> images;
    const auto add = [&](const char* suffix, dds_format format, image pixels) {
        images.push_back({suffix, format, std::move(pixels)});
    };
    add("diffuse", source.diffuse,
        filled(
            source.size, texels, [](const surface& s) { return s.colour; }, true));
    add("normal", source.normal, normalMap(source.size, texels, source.normal != dds_format::bc5));
    add("specular", source.specular, filled(source.size, texels, [](const surface& s) { return s.specular; }));
    add("gloss", dds_format::bc1,
        halved(filled(source.size, texels,
                      [](const surface& s) {
                          return vec3{s.gloss, s.gloss, s.gloss};
                      }),
               false));
    add("mask", dds_format::bc1, halved(filled(source.size, texels, [](const surface& s) { return s.mask; }), false));
    return images;
}

std::vector<painted_image> paintMaterial(const material& source, std::uint32_t seed)
{
    return imagesOf(source, paintSurface(source, seed));
}

} // namespace korvane::demo
