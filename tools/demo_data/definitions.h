#pragma once

// The variant mesh definitions of the demo data: the guard put together from several models.

#include <span>
#include <string>
#include <string_view>

namespace korvane::demo
{

struct definition
{
    std::string path; // internal path, with '/'
    std::string about;
    std::string text;
};

inline constexpr std::string_view guard_definition_path =
    "variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition";
inline constexpr std::string_view weapons_definition_path =
    "variantmeshes/variantmeshdefinitions/demo_guard_weapons.variantmeshdefinition";

inline constexpr std::string_view champion_definition_path =
    "variantmeshes/variantmeshdefinitions/demo_champion.variantmeshdefinition";
inline constexpr std::string_view rider_definition_path =
    "variantmeshes/variantmeshdefinitions/demo_rider.variantmeshdefinition";

// The guard, and what it carries: the first refers to the second. The guard with a weapon that hangs in its hand and
// another one to choose; the same on the horse.
[[nodiscard]] std::span<const definition> definitions();

// What other archives than the main one hold at the same paths: the guard as one model, and other weapons.
[[nodiscard]] const std::string& olderGuardDefinition();
[[nodiscard]] const std::string& moddedWeaponsDefinition();

} // namespace korvane::demo
