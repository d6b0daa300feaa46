#pragma once

// One function per material of materials.h. u runs to the right, v downwards, both 0..1.

#include "tools/demo_data/materials.h"

namespace korvane::demo
{

surface paintSteel(double u, double v, std::uint32_t seed);
surface paintBlade(double u, double v, std::uint32_t seed);
surface paintLeather(double u, double v, std::uint32_t seed);
surface paintTunic(double u, double v, std::uint32_t seed);
surface paintCape(double u, double v, std::uint32_t seed);
surface paintWool(double u, double v, std::uint32_t seed);
surface paintPlume(double u, double v, std::uint32_t seed);
surface paintSkin(double u, double v, std::uint32_t seed);
surface paintHead(double u, double v, std::uint32_t seed);
surface paintShield(double u, double v, std::uint32_t seed);
surface paintBanner(double u, double v, std::uint32_t seed);
surface paintWood(double u, double v, std::uint32_t seed);
surface paintStone(double u, double v, std::uint32_t seed);
surface paintGrass(double u, double v, std::uint32_t seed);
surface paintCoat(double u, double v, std::uint32_t seed);
surface paintHair(double u, double v, std::uint32_t seed);

} // namespace korvane::demo
