#pragma once

// The panels of the main window, as tables of fields, and what each field shows of the open model.

#include "Korvane/app/command_ids.h"
#include "Korvane/app/field_panel.h"
#include "Korvane/document/open_model.h"

#include <functional>
#include <vector>

namespace korvane
{

class information_panels
{
public:
    // acted is told of control_lod, control_group, control_fill_all_lods, control_tool_alpha_mode and
    // control_open_folder.
    explicit information_panels(const std::function<void(int id)>& acted);

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    std::vector<column_part*> all() const { return {m_panels.begin(), m_panels.end()}; } // from above
    const std::vector<field_panel*>& panels() const { return m_panels; }

    HWND lodList() const { return m_choice.list(control_lod).handle(); }

    void showFile(const open_model& model);
    void showSelection(const open_model& model);
    // What stands in the lists; the group may lie outside a newly chosen LOD.
    model_selection chosen() const;
    int chosenAlphaMode() const { return m_tool.list(control_tool_alpha_mode).selected(); }
    bool fillsAllLods() const { return m_choice.check(control_fill_all_lods).isChecked(); }

private:
    void showGroup(const group_data* group, model_selection selection);

    field_panel m_file, m_choice, m_group, m_tool;
    std::vector<field_panel*> m_panels;
};

} // namespace korvane
