#include "Korvane/models/catalogue.h"

#include <algorithm>
#include <iterator>

namespace korvane
{

namespace
{

// Sorted by number: looked up by bisection.
constexpr named_number materials[] = {
    {1, "alpha_blend"},
    {22, "bow_wave"},
    {26, "non_renderable"},
    {29, "texture_combo_vertex_wind"},
    {30, "texture_combo"},
    {31, "decal_waterfall"},
    {32, "standard_simple"},
    {34, "campaign_trees"},
    {38, "point_light"},
    {45, "static_point_light"},
    {49, "custom_terrain"},
    {58, "weighted_cloth"},
    {60, "cloth"},
    {61, "collision"},
    {62, "collision_shape"},
    {63, "tiled_dirtmap"},
    {64, "ship_ambientmap"},
    {65, "weighted"},
    {67, "projected_decal"},
    {68, "default"},
    {69, "grass"},
    {70, "weighted_skin"},
    {71, "decal"},
    {72, "decal_dirtmap"},
    {73, "dirtmap"},
    {74, "tree"},
    {75, "tree_leaf"},
    {77, "weighted_decal"},
    {78, "weighted_decal_dirtmap"},
    {79, "weighted_dirtmap"},
    {80, "weighted_skin_decal"},
    {81, "weighted_skin_decal_dirtmap"},
    {82, "weighted_skin_dirtmap"},
    {83, "water"},
    {84, "unlit"},
    {85, "weighted_unlit"},
    {86, "terrain_blend"},
    {87, "projected_decal_v2"},
    {88, "ignore"},
    {89, "tree_billboard_material"},
    {91, "water_displace_volume"},
    {93, "rope"},
    {94, "campaign_vegetation"},
    {95, "projected_decal_v3"},
    {96, "weighted_texture_blend"},
    {97, "projected_decal_v4"},
    {98, "global_terrain"},
    {99, "decal_overlay"},
};

constexpr named_number texture_types[] = {
    {0, "Diffuse"},
    {1, "Normal Map"},
    {3, "Mask"},
    {5, "Ambient Acclusion"},
    {7, "Tiling Dirt UV2"},
    {8, "Dirt Alpha Mask"},
    {10, "Skin Mask"},
    {11, "Specular"},
    {12, "Gloss Map"},
    {13, "Decal Dirt Map"},
    {14, "Decal Dirt Mask"},
    {15, "Decal Mask"},
    {17, "Diffuse Damage"},
    {27, "Base Colour"},
    {29, "Material Map"},
    {200, "..."},
};

constexpr alpha_mode_entry alpha_modes[] = {
    {"Alpha Off", 0}, {"Alpha On", 1}, {"Metal/Reflections", 0xffffffff}, {"UNKNOWN!", 5}, {"0x40000000", 0x40000000},
};
constexpr std::size_t unknown_alpha_mode = 3;

template <std::size_t count>
std::string_view lookUp(const named_number (&table)[count], std::uint32_t number, std::string_view absent)
{
    static_assert(count > 0);
    const auto found =
        std::lower_bound(std::begin(table), std::end(table), number,
                         [](const named_number& entry, std::uint32_t wanted) { return entry.number < wanted; });
    return found != std::end(table) && found->number == number ? found->name : absent;
}

} // namespace

std::string_view versionLabel(std::uint32_t version)
{
    switch (version)
    {
    case 6:
        return "Rome2/Atilla/Thrones";
    case 7:
        return "WH/WH2";
    case 8:
        return "Three Kingdoms";
    default:
        return "<error or unknown>"; // version 5 too, although it can be read
    }
}

std::optional<std::string_view> vertexFormatShortLabel(std::uint16_t format)
{
    switch (format)
    {
    case 0:
        return "Default";
    case 3:
        return "Weighted";
    case 4:
        return "Cinematic";
    default:
        return std::nullopt;
    }
}

std::optional<std::string_view> vertexFormatLongLabel(std::uint16_t format)
{
    switch (format)
    {
    case 0:
        return "\"Default\" (static)";
    case 1:
        return "\"Collision\" (internal)";
    case 3:
        return "\"Weighted\" (2 weights/verrtx))";
    case 4:
        return "\"Cinematic\" (4 weights/vertex)";
    case 5:
        return "\"Grass\" (internal)";
    default:
        return std::nullopt;
    }
}

std::string_view materialName(std::uint32_t material_id)
{
    return lookUp(materials, material_id, "<UNKNOWN>");
}

std::string_view textureTypeName(std::uint32_t texture_type)
{
    return lookUp(texture_types, texture_type, "[unknown type]");
}

std::span<const named_number> textureTypes()
{
    return texture_types;
}

std::span<const alpha_mode_entry> alphaModes()
{
    return alpha_modes;
}

std::size_t alphaModeIndex(std::uint32_t value)
{
    const auto found = std::find_if(std::begin(alpha_modes), std::end(alpha_modes),
                                    [value](const alpha_mode_entry& entry) { return entry.value == value; });
    return found != std::end(alpha_modes) ? static_cast<std::size_t>(found - std::begin(alpha_modes))
                                          : unknown_alpha_mode;
}

} // namespace korvane
