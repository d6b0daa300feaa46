#include "Korvane/app/group_info_control.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

bool group_info_control::createFields()
{
    using access = edit_box::access;
    return m_material_caption.create(handle(), 0, "Material String - and Id Number: ") &&
           m_material_name.create(handle(), control_material_name, access::read_only) &&
           m_material_id.create(handle(), control_material_id, access::read_only) &&
           m_name_caption.create(handle(), 0, "Group name:") &&
           m_group_name.create(handle(), control_group_name, access::read_only) &&
           m_shader_caption.create(handle(), 0, "Shader Name:") &&
           m_shader_name.create(handle(), control_shader_name, access::read_only) &&
           m_vertex_caption.create(handle(), 0, "Vertex Format - and Id #") &&
           m_vertex_label.create(handle(), control_vertex_label, access::read_only) &&
           m_vertex_format.create(handle(), control_vertex_format, access::read_only);
}

void group_info_control::placeFields()
{
    placeRow(0, {{&m_material_caption, nameColumn()}, {&m_material_name}, {&m_material_id, 90}});
    placeRow(1, {{&m_name_caption, nameColumn()}, {&m_group_name}});
    placeRow(2, {{&m_shader_caption, nameColumn()}, {&m_shader_name}});
    placeRow(3, {{&m_vertex_caption, nameColumn()}, {&m_vertex_label}, {&m_vertex_format, 90}});
}

void group_info_control::show(const std::optional<group_info_content>& content)
{
    const group_info_content& texts = content ? *content : group_info_content{};
    m_material_name.setText(texts.material_name);
    m_material_id.setText(texts.material_id);
    m_group_name.setText(texts.group_name);
    m_shader_name.setText(texts.shader_name);
    m_vertex_format.setText(texts.vertex_format);
    if (texts.vertex_label)
        m_vertex_label.setText(*texts.vertex_label);
}

} // namespace korvane
