#pragma once

// The panel of the chosen group's settings: vertex format in words, material flags and alpha mode.

#include "EASY_GUI/win32/combo_box.h"
#include "Korvane/app/panel.h"
#include "Korvane/document/panel_contents.h"

namespace korvane
{

class group_tool_window : public panel
{
public:
    group_tool_window() : panel(3) {}
    ~group_tool_window() override { destroy(); }

    void show(const std::optional<group_tool_content>& content); // nothing: no group is chosen

protected:
    bool createFields() override;
    void placeFields() override;

private:
    label m_group_caption, m_vertex_caption, m_flags_caption, m_alpha_caption;
    edit_box m_caption, m_group_name, m_vertex_format, m_vertex_label;
    combo_box m_material_flags, m_alpha_mode;
};

} // namespace korvane
