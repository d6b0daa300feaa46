#pragma once

// Materials of the games, diffuse and specular colour with smoothness, as metal and roughness, which glTF has: the
// conversion that the glTF formats' own guidance gives (KHR_materials_pbrSpecularGlossiness, "Best Practices"), pixel
// by pixel in linear light. Colours are stored with the curve of sRGB, smoothness in red, as it is.

#include "Korvane/textures/picture.h"

namespace korvane
{

// Null: there is none, and the defaults of the view count: reflectance 0.04, smoothness 0.4.
struct gloss_material
{
    const picture* diffuse = nullptr; // not null
    const picture* specular = nullptr;
    const picture* gloss = nullptr;
    bool keeps_alpha = false; // of the diffuse picture; else the base colour is opaque
};

inline constexpr double default_smoothness = 0.4;

struct metal_material // both of the diffuse picture's size; others are looked up at the nearest pixel
{
    picture base_colour;
    picture metal_roughness; // green: roughness, blue: metal; empty without specular and gloss
};
[[nodiscard]] metal_material metalMaterial(const gloss_material& source);

} // namespace korvane
