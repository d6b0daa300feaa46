#pragma once

// The three entries of a binary file that readers compare with each other: CreationTime, FileId and the first bytes of
// the footer (docs/formats/fbx.md, "Identity").

#include <array>
#include <cstddef>
#include <string_view>

namespace korvane
{

using fbx_id = std::array<std::byte, 16>;

// creation_time: "YYYY-MM-DD hh:mm:ss:mmm".
[[nodiscard]] fbx_id fileId(std::string_view creation_time);
[[nodiscard]] fbx_id footerId(std::string_view creation_time);

} // namespace korvane
