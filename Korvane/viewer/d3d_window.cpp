#include "Korvane/viewer/d3d_window.h"

#include "D3D11_RENDER_LIB/model_texture_source.h"
#include "Korvane/viewer/render_worker.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr int client_width = 1280;
constexpr int client_height = 720;
constexpr DWORD window_style = WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
constexpr char window_title[] = "Korvane GFX-D3D11 - Move/rotate/Zoom with: A,D,S,W/Q,E,R,T,C,V/Wheel";

} // namespace

std::unique_ptr<d3d_window> d3d_window::create(HINSTANCE, HWND owner, viewer_ports ports,
                                               std::shared_ptr<const RMV2_FILE_DATA> model,
                                               const std::string& model_path, failure& why)
{
    std::unique_ptr<d3d_window> created(new d3d_window(std::move(ports)));
    if (!created->initialise(owner, std::move(model), model_path, why))
        return nullptr;
    return created;
}

d3d_window::d3d_window(viewer_ports ports)
    : m_ports(std::move(ports))
    , m_po_worker(std::make_unique<render_worker>(m_ports.log))
{
}

d3d_window::~d3d_window()
{
    m_po_worker->stop(); // it draws into the window: it ends first
    destroy();
}

void d3d_window::log(const char* text) const
{
    if (m_ports.log)
        m_ports.log(text);
}

bool d3d_window::createOuterWindow(HWND owner, failure& why)
{
    RECT outer{0, 0, client_width, client_height};
    AdjustWindowRect(&outer, window_style, FALSE);
    window_settings settings;
    settings.title = window_title;
    settings.style = window_style;
    settings.width = outer.right - outer.left;
    settings.height = outer.bottom - outer.top;
    settings.parent = owner;
    settings.is_opaque = true;
    settings.wants_repeat_clicks = true;
    return window::create(settings, why);
}

// The texts of these log lines are fixed, spelling included: people and scripts look for them.
bool d3d_window::initialise(HWND owner, std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& model_path,
                            failure& why)
{
    if (!createOuterWindow(owner, why))
        return false;
    render_worker& worker = *m_po_worker;
    lib3d& library = worker.library();
    const RECT client = clientRectangle();
    const auto width = static_cast<UINT>(std::max(client.right, 1L));
    const auto height = static_cast<UINT>(std::max(client.bottom, 1L));
    const float aspect = static_cast<float>(width) / static_cast<float>(height);

    log("D3dWindow:GFXinit: Create VienAndPerspective Matrices");
    m_view.fill(aspect, library.vs_constants, library.ps_constants);
    log("D3dWindow:GFXinit: Create VienAndPerspective Matrices: SUCCESS");

    log("D3dWindow:GFXinit: Create D3D Device");
    if (!worker.createDevice(why))
        return false;
    log("Device created. Sucess");
    worker.createSwapChain(handle());
    log("Swapchain. Sucess");
    log("D3dWindow:GFXinit: Create D3D Device: SUCCESS");

    log("D3dWindow:GFXinit: createTargetTexture()");
    worker.createTargets(width, height);
    log("Render Targe. Sucess");
    log("D3dWindow:GFXinit: createTargetTexture(): SUCCESS");

    log("D3dWindow:GFXinit: Loading Textures");
    const model_texture_source own(model_path, m_ports.log);
    log("D3dWindow:GFXinit: Loading Textures: SUCESSS");

    log("D3dWindow:GFXinit: Loading Mesh");
    worker.scene().setModel(library.device(), {model.get(), model_path, 0, &own});
    m_shown_path = model_path;
    log("D3dWindow:GFXinit: Loading Mesh: SUCESSS!");

    log("D3dWindow:GFXinit: Create Texures Sampeler for shaders");
    library.createSamplers();
    log("D3dWindow:GFXinit: Create Texures Sampeler for shaders: SUCESSS!");

    log("D3dWindow:GFXinit: Create Depth+Stencil");
    library.createStates(); // the depth buffer itself belongs to the targets and changes its size with them
    log("D3dWindow:GFXinit: Create Depth+Stencil: SUCCESS");

    log("D3dWindow:GFXinit: Create Cube Maps");
    library.createEnvironment();
    log("D3dWindow:GFXinit: Create Cube Maps: Success!");

    log("D3dWindow:GFXinit: Create Costant Buffer");
    library.createConstantBuffers();
    library.createShaders();
    log("D3dWindow:GFXinit: Create Costant Buffer. SUCCESS");

    log("D3dWindow:GFXinit: Create Index Buffer for oAnimation.");
    library.createLineBuffer();
    log("D3dWindow:GFXinit: Create Index Buffer for oAnimation. SUCCESS.");

    log("D3dWindow:GFXinit: Selecting startup Skeleton.");
    log("D3dWindow:GFXinit: Selecting startup Skeleton. SUCCESS!");

    log("Create Render Thread");
    frameModel();
    worker.pacer().postSize(width, height);
    worker.start();
    log("DirectX INIT successful!!");
    return true;
}

void d3d_window::frameModel()
{
    const RECT client = clientRectangle();
    const float aspect =
        static_cast<float>(std::max(client.right, 1L)) / static_cast<float>(std::max(client.bottom, 1L));
    m_view.eye.frame(m_po_worker->scene().bounds(), aspect);
    m_is_framed = true;
    m_po_worker->pacer().post(m_view);
}

void d3d_window::setModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& model_path, std::size_t lod,
                          std::shared_ptr<const texture_source> textures)
{
    const model_texture_source own(model_path, m_ports.log);
    m_po_worker->changeScene([&](model_scene& scene, ID3D11Device& device) {
        scene.setModel(device, {model.get(), model_path, lod, textures ? textures.get() : &own});
    });
    showChanged(model_path, model_path != m_shown_path);
}

variant_outcome d3d_window::setVariant(const std::vector<std::string>& models, const std::string& definition_path)
{
    const model_texture_source own(definition_path, m_ports.log);
    variant_outcome outcome;
    m_po_worker->changeScene([&](model_scene& scene, ID3D11Device& device) {
        outcome = scene.setVariant(device, {models, 0, &own});
    });
    showChanged(definition_path, m_is_framed || definition_path != m_shown_path);
    return outcome;
}

void d3d_window::showChanged(const std::string& path, bool is_framed_anew)
{
    m_shown_path = path;
    m_view.setLightDefaults();
    if (is_framed_anew)
        frameModel();
    else
        redraw();
}

void d3d_window::show()
{
    window::show(IsIconic(handle()) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(handle());
}

void d3d_window::hide()
{
    window::show(SW_HIDE);
}

bool d3d_window::isVisible() const
{
    return IsWindowVisible(handle()) != FALSE;
}

std::uint64_t d3d_window::framesDrawn() const
{
    return m_po_worker->framesDrawn();
}

void d3d_window::redraw()
{
    m_po_worker->pacer().post(m_view);
}

void d3d_window::onClose()
{
    hide();
    if (m_ports.closed)
        m_ports.closed();
}

void d3d_window::onSize(int width, int height, size_change change)
{
    const bool is_minimised = change == size_change::minimised;
    if (!is_minimised)
    {
        m_po_worker->pacer().postSize(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
        if (m_is_framed)
            frameModel();
    }
    m_po_worker->pacer().postVisible(!is_minimised && isVisible());
}

LRESULT d3d_window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_SHOWWINDOW)
        m_po_worker->pacer().postVisible(wparam != FALSE && !IsIconic(handle()));
    return window::handleMessage(message, wparam, lparam);
}

bool d3d_window::onPaint()
{
    ValidateRect(handle(), nullptr);
    redraw();
    return true;
}

bool d3d_window::onKeyDown(unsigned virtual_key, bool)
{
    if (virtual_key == VK_ESCAPE && m_is_enlarged)
        leaveEnlarged();
    else if (!m_view.onKey(virtual_key))
        return false;
    m_is_framed = m_is_framed && virtual_key != 'Q' && virtual_key != 'E';
    redraw();
    return true;
}

bool d3d_window::onMouseWheel(int delta, const mouse_event&)
{
    m_view.onWheel(static_cast<float>(delta) / WHEEL_DELTA);
    m_is_framed = false;
    redraw();
    return true;
}

// Left button: turn. Right or middle button: move the picture. Double click: enlarge.
bool d3d_window::onMouseButton(const mouse_event& event)
{
    m_last_mouse = event.at;
    bool& is_dragging = event.button == mouse_button::left ? m_is_turning : m_is_shifting;
    is_dragging = event.is_down;
    if (event.is_double && event.button == mouse_button::left)
    {
        m_is_turning = false;
        toggleEnlarged();
    }
    if (m_is_turning || m_is_shifting)
        SetCapture(handle());
    else
        ReleaseCapture();
    return true;
}

bool d3d_window::onMouseMove(const mouse_event& event)
{
    if (!m_is_turning && !m_is_shifting)
        return false;
    const auto dx = static_cast<float>(event.at.x - m_last_mouse.x);
    const auto dy = static_cast<float>(event.at.y - m_last_mouse.y);
    m_last_mouse = event.at;
    if (m_is_turning)
        m_view.onDrag(dx, dy);
    else
        m_view.onShift(dx, dy, static_cast<float>(clientRectangle().bottom));
    m_is_framed = m_is_framed && !m_is_shifting;
    redraw();
    return true;
}

void d3d_window::onCaptureLost()
{
    m_is_turning = false;
    m_is_shifting = false;
}

// The enlarged view covers the whole monitor; Escape or another double click leaves it.
void d3d_window::toggleEnlarged()
{
    if (m_is_enlarged)
        return leaveEnlarged();
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromWindow(handle(), MONITOR_DEFAULTTONEAREST), &monitor))
        return;
    GetWindowRect(handle(), &m_saved_rectangle);
    m_is_enlarged = true;
    const RECT& all = monitor.rcMonitor;
    SetWindowPos(handle(), HWND_TOP, all.left, all.top, all.right - all.left, all.bottom - all.top, SWP_SHOWWINDOW);
}

void d3d_window::leaveEnlarged()
{
    m_is_enlarged = false;
    const RECT& saved = m_saved_rectangle;
    SetWindowPos(handle(), nullptr, saved.left, saved.top, saved.right - saved.left, saved.bottom - saved.top,
                 SWP_NOZORDER | SWP_SHOWWINDOW);
}

} // namespace korvane
