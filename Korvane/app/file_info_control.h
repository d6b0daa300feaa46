#pragma once

// The panel "File Info: ": where the open model lies, its version and skeleton, and a button that opens its folder.

#include "Korvane/app/panel.h"
#include "Korvane/document/panel_contents.h"

#include <functional>

namespace korvane
{

class file_info_control : public panel
{
public:
    // Called when the folder button is pressed.
    explicit file_info_control(std::function<void()> open_folder) : panel(4), m_open_folder(std::move(open_folder)) {}
    ~file_info_control() override { destroy(); }

    void show(const std::optional<file_info_content>& content); // nothing: no model is open

protected:
    bool createFields() override;
    void placeFields() override;
    bool onCommand(int id, int notification, HWND control) override;

private:
    std::function<void()> m_open_folder;
    label m_path_name, m_version_name, m_game_name, m_skeleton_name;
    edit_box m_path, m_version, m_game, m_skeleton;
    button m_folder;
};

} // namespace korvane
