#pragma once

// The panel "Group Info:": material, names and vertex format of the chosen group.

#include "Korvane/app/panel.h"
#include "Korvane/document/panel_contents.h"

namespace korvane
{

class group_info_control : public panel
{
public:
    group_info_control() : panel(4) {}
    ~group_info_control() override { destroy(); }

    // Nothing: no group is chosen. The vertex label keeps its text for formats without a label.
    void show(const std::optional<group_info_content>& content);

protected:
    bool createFields() override;
    void placeFields() override;

private:
    label m_material_caption, m_name_caption, m_shader_caption, m_vertex_caption;
    edit_box m_material_name, m_material_id, m_group_name, m_shader_name, m_vertex_label, m_vertex_format;
};

} // namespace korvane
