#include "Korvane/presenters/bone_match_rows.h"

namespace korvane
{

namespace
{

constexpr list_column match_columns[] = {{"Bone of the template", 190}, {"Bone of the FBX file", 190}, {"State", 0}};

} // namespace

std::span<const list_column> bone_match_rows::columns() const
{
    return match_columns;
}

std::string bone_match_rows::text(std::size_t row, std::size_t column) const
{
    const convert_look::bone& bone = m_bones[row];
    if (column < 2)
        return column == 0 ? bone.template_name : bone.fbx_name;
    if (bone.isMatched())
        return "Matched";
    const std::string near_text = bone.near_name.empty() ? "" : "; near: " + bone.near_name;
    return (bone.fbx_name.empty() ? "Not in the FBX file" : "Not in the template") + near_text;
}

row_mark bone_match_rows::mark(std::size_t row) const
{
    const convert_look::bone& bone = m_bones[row];
    return bone.isMatched() ? row_mark::plain : bone.fbx_name.empty() ? row_mark::warning : row_mark::note;
}

} // namespace korvane
