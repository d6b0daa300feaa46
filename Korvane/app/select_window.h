#pragma once

// The panel "Select LOD/Group": which level of detail and which group of it the other panels show.

#include "EASY_GUI/win32/combo_box.h"
#include "Korvane/app/panel.h"
#include "Korvane/document/panel_contents.h"

#include <functional>
#include <string>
#include <vector>

namespace korvane
{

class select_window : public panel
{
public:
    // Called with what the person has chosen; the group may lie outside a newly chosen LOD.
    explicit select_window(std::function<void(model_selection)> chosen) : panel(1), m_chosen(std::move(chosen)) {}
    ~select_window() override { destroy(); }

    void show(const std::vector<std::string>& lods, const std::vector<std::string>& groups, model_selection selection);
    model_selection selection() const { return {m_lod.selected(), m_group.selected()}; }

protected:
    bool createFields() override;
    void placeFields() override;
    bool onCommand(int id, int notification, HWND control) override;

private:
    std::function<void(model_selection)> m_chosen;
    label m_lod_name, m_group_name;
    combo_box m_lod, m_group;
};

} // namespace korvane
