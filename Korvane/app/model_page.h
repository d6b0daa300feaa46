#pragma once

// The page "Model": the panels of the open model, from its file down to the textures of the chosen group.

#include "Korvane/app/empty_state.h"
#include "Korvane/app/information_panels.h"
#include "Korvane/app/page.h"
#include "Korvane/app/panel_column.h"
#include "Korvane/app/texture_field_group.h"

#include <functional>
#include <string>

namespace korvane
{

class model_page : public page
{
public:
    model_page(page_host& host, const texture_ports& ports);
    ~model_page() override { destroy(); }

    void showDocument() override;
    void showSelection() override;
    HWND firstControl() const override;
    help_topic helpTopic() const override;
    std::string copiedText() const override;      // the path of a texture row, or the group as a text
    bool paste(const std::string& text) override; // a path, into a texture row
    void takeTyped() override { m_textures.takeTyped(); }
    void follow() override { m_textures.follow(); }
    texture_field_group& textures() { return m_textures; }
    int preferredHeight(); // of the panels

protected:
    DWORD extraStyle() const override { return WS_VSCROLL; }
    bool onCreated() override;
    bool createControls(failure& why) override; // the panels: there is only an empty state without a model
    void applyFont(const font& used) override;
    void onSize(int width, int height, size_change change) override;
    void onVerticalScroll(int request) override;
    bool onMouseWheel(int delta, const mouse_event& event) override;
    void onControlFocused(HWND control) override;

private:
    void actOn(int control);
    empty_content emptyContent() const;

    std::function<void(const std::string& path)> m_open_folder;
    information_panels m_panels;
    texture_field_group m_textures;
    panel_column m_column;
    empty_state m_empty;
};

} // namespace korvane
