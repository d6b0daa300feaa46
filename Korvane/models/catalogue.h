#pragma once

// The tables that give names to the numbers in a rigid_model_v2 file. The spellings are fixed: people and
// scripts search for them (docs/known_behaviour.md).

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace korvane
{

[[nodiscard]] std::string_view versionLabel(std::uint32_t version); // "<error or unknown>" for others than 6, 7, 8
[[nodiscard]] std::optional<std::string_view> vertexFormatShortLabel(std::uint16_t format);
[[nodiscard]] std::optional<std::string_view> vertexFormatLongLabel(std::uint16_t format);
[[nodiscard]] std::string_view materialName(std::uint32_t material_id);     // "<UNKNOWN>" when absent
[[nodiscard]] std::string_view textureTypeName(std::uint32_t texture_type); // "[unknown type]" when absent

struct named_number
{
    std::uint32_t number;
    std::string_view name;
};
// All kinds of texture, by number.
[[nodiscard]] std::span<const named_number> textureTypes();

struct alpha_mode_entry
{
    std::string_view label;
    std::uint32_t value;
};
// In the order in which the choices are offered.
[[nodiscard]] std::span<const alpha_mode_entry> alphaModes();
// The position of the value, or of the entry "UNKNOWN!" when no entry has it.
[[nodiscard]] std::size_t alphaModeIndex(std::uint32_t value);

} // namespace korvane
