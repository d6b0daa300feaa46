#include "Korvane/app/d3d_model_view.h"

#include "Korvane/app/resources.h"
#include "Korvane/viewer/d3d_window.h"

#include <utility>

namespace korvane
{

namespace
{

class d3d_model_view : public model_view
{
public:
    explicit d3d_model_view(std::unique_ptr<d3d_window> window) : m_po_d3d_window(std::move(window)) {}

    void setScene(scene_pointer scene, const std::string& notice) override
    {
        m_po_d3d_window->setScene(std::move(scene), notice);
    }
    void show() override { m_po_d3d_window->show(); }
    void showBeside() override { m_po_d3d_window->showBeside(); }
    bool isVisible() const override { return m_po_d3d_window->isVisible(); }
    HWND handle() const override { return m_po_d3d_window->handle(); }

private:
    std::unique_ptr<d3d_window> m_po_d3d_window;
};

void showProgramIcon(HWND window)
{
    for (const auto& [kind, metric] : {std::pair(ICON_SMALL, SM_CXSMICON), std::pair(ICON_BIG, SM_CXICON)})
    {
        const int size = GetSystemMetrics(metric);
        const HANDLE icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource_program_icon), IMAGE_ICON,
                                       size, size, LR_SHARED);
        SendMessageW(window, WM_SETICON, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(icon));
    }
}

} // namespace

std::unique_ptr<model_view> makeD3dModelView(log_port log, failure& why)
{
    viewer_ports ports;
    ports.log = std::move(log);
    // No owner: the view is a window of its own, which may lie behind the main window.
    std::unique_ptr<d3d_window> window = d3d_window::create(nullptr, std::move(ports), nullptr, why);
    if (window == nullptr)
        return nullptr;
    showProgramIcon(window->handle());
    return std::make_unique<d3d_model_view>(std::move(window));
}

} // namespace korvane
