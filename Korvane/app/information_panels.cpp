#include "Korvane/app/information_panels.h"

#include "Korvane/models/catalogue.h"

namespace korvane
{

namespace
{

using kind = panel_field::kind;

constexpr int short_width = 90;

panel_field firstName(std::string_view text)
{
    return {kind::name, 0, text, panel_field::name_width};
}

panel_field name(std::string_view text, int width)
{
    return {kind::name, 0, text, width};
}

panel_field text(int id, int width = panel_field::rest)
{
    return {kind::text, id, {}, width};
}

panel_field list(int id, int width = panel_field::rest)
{
    return {kind::list, id, {}, width};
}

// Mnemonics are unique in the window, with its menus (F, E, A, V, H) and its last button (3).
field_panel::field_rows fileRows()
{
    return {{firstName("File &Path: "),
             {kind::path, control_file_path},
             {kind::button, control_open_folder, "Open Fol&der", short_width}},
            {firstName("Format Version: "), text(control_file_version)},
            {firstName("Used in: "), text(control_file_game)},
            {firstName("S&keleton Id String:"), text(control_file_skeleton)}};
}

field_panel::field_rows choiceRows()
{
    return {{firstName("&LOD:"),
             list(control_lod),
             name("&Group:", 50),
             list(control_group),
             {kind::check, control_fill_all_lods, "F&ill all LODs in GROUP", 160}}};
}

field_panel::field_rows groupRows()
{
    return {
        {firstName("Material String - and Id Num&ber: "), text(control_material_name),
         text(control_material_id, short_width)},
        {firstName("Group &name:"), text(control_group_name)},
        {firstName("&Shader Name:"), text(control_shader_name)},
        {firstName("Verte&x Format - and Id #"), text(control_vertex_label), text(control_vertex_format, short_width)}};
}

field_panel::field_rows toolRows()
{
    return {
        {firstName("Gro&up:"), text(control_tool_caption, short_width), text(control_tool_group_name)},
        {firstName("Ve&rtex Format:"), text(control_tool_vertex_format, short_width), text(control_tool_vertex_label)},
        {firstName("&Material Flags:"), list(control_tool_material_flags, short_width), name("Alpha M&ode:", 80),
         list(control_tool_alpha_mode)}};
}

void fill(combo_box& list, const std::vector<std::string>& entries, int selected)
{
    list.clear();
    for (const std::string& entry : entries)
        list.add(entry);
    list.select(selected);
    list.setEnabled(!entries.empty());
}

} // namespace

information_panels::information_panels(const std::function<void(int id)>& acted)
    : m_file("File Info: ", fileRows(), acted)
    , m_choice("Select LOD/Group", choiceRows(), acted)
    , m_group("Group Info:", groupRows())
    , m_tool("Group Tool:", toolRows(), acted)
    , m_panels{&m_file, &m_choice, &m_group, &m_tool}
{
}

bool information_panels::createIn(HWND parent, failure& why)
{
    for (field_panel* const panel : m_panels)
    {
        if (!panel->createIn(parent, why))
            return false;
        window::answerOthers();
    }
    return true;
}

void information_panels::showFile(const open_model& model)
{
    const std::string empty(empty_file_field);
    const file_info_content content =
        model.hasModel() ? fileInfo(*model.file()) : file_info_content{empty, false, empty, empty, empty};
    const std::pair<int, std::string_view> texts[] = {{control_file_path, content.path},
                                                      {control_file_version, content.version},
                                                      {control_file_game, content.game},
                                                      {control_file_skeleton, content.skeleton_id}};
    for (const auto& [id, text] : texts)
    {
        m_file.setColour(id, model.hasModel() ? std::optional(loaded_colour) : std::nullopt);
        m_file.setText(id, text);
    }
    m_file.setEnabled(control_open_folder, content.is_on_disk);
}

void information_panels::showSelection(const open_model& model)
{
    const model_selection selection = model.selection();
    const RMV2_FILE_DATA nothing;
    const RMV2_FILE_DATA& data = model.hasModel() ? *model.data() : nothing;
    fill(m_choice.list(control_lod), lodEntries(data), selection.lod);
    fill(m_choice.list(control_group), groupEntries(data, selection.lod), selection.group);
    showGroup(model.selectedGroup(), selection);
}

model_selection information_panels::chosen() const
{
    return {m_choice.list(control_lod).selected(), m_choice.list(control_group).selected()};
}

void information_panels::showGroup(const group_data* group, model_selection selection)
{
    const group_info_content info = group != nullptr ? groupInfo(*group) : group_info_content{};
    m_group.setText(control_material_name, info.material_name);
    m_group.setText(control_material_id, info.material_id);
    m_group.setText(control_group_name, info.group_name);
    m_group.setText(control_shader_name, info.shader_name);
    m_group.setText(control_vertex_format, info.vertex_format);
    if (info.vertex_label) // else the field keeps its text
        m_group.setText(control_vertex_label, *info.vertex_label);

    const group_tool_content tool = group != nullptr ? groupTool(*group, selection) : group_tool_content{};
    m_tool.setText(control_tool_caption, tool.caption);
    m_tool.setText(control_tool_group_name, tool.group_name);
    m_tool.setText(control_tool_vertex_format, tool.vertex_format);
    m_tool.setText(control_tool_vertex_label, tool.vertex_label);
    fill(m_tool.list(control_tool_material_flags),
         group != nullptr ? std::vector{tool.material_flags} : std::vector<std::string>(), 0);
    combo_box& modes = m_tool.list(control_tool_alpha_mode);
    modes.clear();
    modes.setEnabled(group != nullptr);
    if (group == nullptr)
        return;
    for (const alpha_mode_entry& entry : alphaModes())
        modes.add(entry.label, entry.value);
    modes.select(tool.alpha_mode);
}

} // namespace korvane
