#include "Korvane/app/group_tool_window.h"

#include "Korvane/app/command_ids.h"
#include "Korvane/models/catalogue.h"

namespace korvane
{

bool group_tool_window::createFields()
{
    using access = edit_box::access;
    return m_group_caption.create(handle(), 0, "Group:") &&
           m_caption.create(handle(), control_tool_caption, access::read_only) &&
           m_group_name.create(handle(), control_tool_group_name, access::read_only) &&
           m_vertex_caption.create(handle(), 0, "Vertex Format:") &&
           m_vertex_format.create(handle(), control_tool_vertex_format, access::read_only) &&
           m_vertex_label.create(handle(), control_tool_vertex_label, access::read_only) &&
           m_flags_caption.create(handle(), 0, "Material Flags:") &&
           m_material_flags.create(handle(), control_tool_material_flags) &&
           m_alpha_caption.create(handle(), 0, "Alpha Mode:") && m_alpha_mode.create(handle(), control_tool_alpha_mode);
}

void group_tool_window::placeFields()
{
    placeRow(0, {{&m_group_caption, nameColumn()}, {&m_caption, 90}, {&m_group_name}});
    placeRow(1, {{&m_vertex_caption, nameColumn()}, {&m_vertex_format, 90}, {&m_vertex_label}});
    placeRow(2, {{&m_flags_caption, nameColumn()}, {&m_material_flags, 90}, {&m_alpha_caption, 80}, {&m_alpha_mode}});
}

void group_tool_window::show(const std::optional<group_tool_content>& content)
{
    m_material_flags.clear();
    m_alpha_mode.clear();
    m_material_flags.setEnabled(content.has_value());
    m_alpha_mode.setEnabled(false); // shown, not edited
    const group_tool_content& texts = content ? *content : group_tool_content{};
    m_caption.setText(texts.caption);
    m_group_name.setText(texts.group_name);
    m_vertex_format.setText(texts.vertex_format);
    m_vertex_label.setText(texts.vertex_label);
    if (!content)
        return;
    m_material_flags.add(texts.material_flags);
    m_material_flags.select(0);
    for (const alpha_mode_entry& entry : alphaModes())
        m_alpha_mode.add(entry.label, entry.value);
    m_alpha_mode.select(texts.alpha_mode);
}

} // namespace korvane
