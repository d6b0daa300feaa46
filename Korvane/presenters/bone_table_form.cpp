#include "Korvane/presenters/bone_table_form.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/bone_table.h"
#include "Korvane/game/game_path.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr list_column table_columns[] = {{"Order", 50, true}, {"Bone", 200}, {"Parent", 160}, {"Type", 0}};

// Of a skeleton's name, which may be any bytes, a name that a file can have.
std::string asFileName(const std::string& name)
{
    std::string plain;
    for (const char character : displayText(name))
        plain += static_cast<unsigned char>(character) < 0x20 ||
                         std::string_view("\\/:*?\"<>|").find(character) != std::string_view::npos
                     ? '_'
                     : character;
    return plain.empty() ? "skeleton" : plain;
}

} // namespace

void bone_table_form::show(std::string path, std::shared_ptr<const anim_data> anim, const failure& why)
{
    m_path = std::move(path);
    m_po_anim = std::move(anim);
    m_why = why;
}

std::span<const list_column> bone_table_form::columns() const
{
    return table_columns;
}

std::string bone_table_form::text(std::size_t row, std::size_t column) const
{
    const anim_bone& bone = m_po_anim->bones[row];
    switch (column)
    {
    case 0:
        return std::to_string(row);
    case 1:
        return displayText(bone.name);
    case 2:
    {
        const auto parent = static_cast<std::size_t>(bone.parent);
        return bone.parent >= 0 && parent < m_po_anim->bones.size() ? displayText(m_po_anim->bones[parent].name) : "";
    }
    default:
        return std::string(boneType(bone).substr(0, boneType(bone).size() - 1));
    }
}

std::string bone_table_form::summary() const
{
    if (m_path.empty())
        return "Choose a skeleton's .anim file, or an animation of it.";
    if (!m_po_anim)
        return displayText(describe(m_why));
    return "Skeleton \"" + displayText(m_po_anim->skeleton_name) + "\", " + counted(rowCount(), "bone") + ".";
}

save_suggestion bone_table_form::suggestion() const
{
    save_suggestion suggested;
    suggested.name = asFileName(m_po_anim ? m_po_anim->skeleton_name : "") + ".bone_table";
    if (!game_path(m_path).isInternal())
        suggested.folder = toUtf8(toPath(m_path).parent_path());
    return suggested;
}

} // namespace korvane
