#pragma once

// Skeletons and animations in words: tables whose columns stay in line and apart whatever a file's numbers and names
// are. Widths count characters.

#include "Korvane/animation/anim_file.h"
#include "Korvane/posing/skeleton_node.h"

#include <cstddef>
#include <string>
#include <vector>

namespace korvane
{

// At most six digits, as short as they allow.
[[nodiscard]] std::string number(double value);
// A blank and the number, right-aligned. One that is too long for that many decimals has fewer digits; the narrowest
// width that holds any number is 6.
[[nodiscard]] std::string column(float value, std::size_t width, int decimals);
[[nodiscard]] std::string columns(const glm::vec3& value, std::size_t width, int decimals);

// The text with blanks behind it.
[[nodiscard]] std::string padded(const std::string& text, std::size_t width);

// A bone's line in a drawing of the tree: the branches that lead to it, and its name.
struct tree_row
{
    const skeleton_node* node;
    std::string label;
};

// All bones, parents before their children. Roots come first, then bones that stand alone although they name a parent,
// which their lines say.
[[nodiscard]] std::vector<tree_row> treeRows(const skeleton_tree& tree);
// The width of the longest label; at least that of a heading.
[[nodiscard]] std::size_t labelWidth(const std::vector<tree_row>& rows, const std::string& heading);

// What a skeleton or an animation holds: length, counts and bones, with the place of each bone or, of an animation,
// where its values are kept. The name is shown above.
[[nodiscard]] std::string describeAnimation(const anim_data& data, const std::string& name, bool is_skeleton);

} // namespace korvane
