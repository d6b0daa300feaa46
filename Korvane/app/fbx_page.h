#pragma once

// The page "FBX": what opening an FBX file has read. Its tab is there from the first such file on; nothing on it
// belongs to the document.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/tree_view.h"
#include "Korvane/app/rows_page.h"
#include "Korvane/presenters/fbx_report.h"

#include <string>

namespace korvane
{

class fbx_page : public rows_page
{
public:
    explicit fbx_page(page_host& host);
    ~fbx_page() override { destroy(); }

    void show(fbx_report report);
    void showDocument() override;
    HWND firstControl() const override { return m_tree.handle(); }
    help_topic helpTopic() const override { return help_topic::animation_back; }
    std::string copiedText() const override; // the chosen row

protected:
    bool createControls(failure& why) override;

private:
    void showMenu(POINT on_screen);

    fbx_report m_report;
    bool m_is_shown = false; // the report, in the controls
    label m_summary;
    tree_view m_tree;
    button m_convert;
};

} // namespace korvane
