#include "Korvane/cli/anim_text.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace korvane
{

namespace
{

std::size_t shownWidth(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
                                                  [](char byte) // one that goes on with a character takes no room
                                                  { return (static_cast<unsigned char>(byte) & 0xc0) != 0x80; }));
}

std::string formatted(const char* format, int digits, double value)
{
    char text[400]; // the largest double with decimals
    std::snprintf(text, sizeof text, format, digits, value);
    return text;
}

// As deep as there are bones, which is at most 256.
void addRows(const skeleton_node& node, const std::string& branch, const std::string& below,
             std::vector<tree_row>& rows)
{
    rows.push_back({&node, branch + terminalText(node.name())});
    const auto children = node.children();
    for (const skeleton_node* child : children)
    {
        const bool is_last = child == children.back();
        addRows(*child, below + (is_last ? "└─ " : "├─ "), below + (is_last ? "   " : "│  "), rows);
    }
}

} // namespace

json arrayJson(const glm::vec3& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z)};
}

json arrayJson(const glm::quat& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z), jsonNumber(value.w)};
}

std::string number(double value)
{
    return std::isfinite(value) ? formatted("%.*g", 6, value) : floatText(static_cast<float>(value));
}

std::string column(float value, std::size_t width, int decimals)
{
    const double wide = static_cast<double>(value);
    std::string text = std::isfinite(wide) ? formatted("%.*f", decimals, wide) : floatText(value);
    for (int digits = 5; text.size() > width && digits > 0; --digits)
        text = formatted("%.*g", digits, wide);
    if (text.find_first_of("123456789naif") == std::string::npos && text.front() == '-') // no minus before a zero
        text.erase(0, 1);
    return std::string(text.size() < width ? width - text.size() + 1 : 1, ' ') + text;
}

std::string columns(const glm::vec3& value, std::size_t width, int decimals)
{
    return column(value.x, width, decimals) + column(value.y, width, decimals) + column(value.z, width, decimals);
}

std::string padded(const std::string& text, std::size_t width)
{
    const std::size_t shown = shownWidth(text);
    return text + std::string(shown < width ? width - shown : 0, ' ');
}

std::vector<tree_row> treeRows(const skeleton_tree& tree)
{
    std::vector<tree_row> rows;
    for (const skeleton_node& node : tree.nodes())
        if (!node.parent() && node.parentIndex() == -1)
            addRows(node, "", "", rows);
    for (const skeleton_node& node : tree.nodes())
        if (!node.parent() && node.parentIndex() != -1)
        {
            const std::size_t row = rows.size();
            addRows(node, "", "", rows);
            const bool is_there = node.parentIndex() >= 0 && tree.find(static_cast<std::uint32_t>(node.parentIndex()));
            rows[row].label += " (its parent " + std::to_string(node.parentIndex()) +
                               (is_there ? " leads back to it)" : " is none of the bones)");
        }
    return rows;
}

std::size_t labelWidth(const std::vector<tree_row>& rows, const std::string& heading)
{
    std::size_t width = shownWidth(heading);
    for (const tree_row& row : rows)
        width = std::max(width, shownWidth(row.label));
    return width;
}

} // namespace korvane
