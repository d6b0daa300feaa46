#include "Korvane/viewer/d3d_window.h"

#include "EASY_GUI/win32/dpi.h"
#include "Korvane/viewer/render_worker.h"

#include <algorithm>
#include <cstdlib>

namespace korvane
{

namespace
{

constexpr int client_width = 1280;
constexpr int client_height = 720;
constexpr int smallest_width = 240; // outer, at 96 dots per inch
constexpr int smallest_height = 180;
constexpr DWORD window_style = WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
constexpr char window_title[] = "Korvane GFX-D3D11 - Move/rotate/Zoom with: A,D,S,W/Q,E,R,T,C,V/Wheel";
constexpr UINT worker_has_news = WM_APP + 1;
constexpr UINT_PTR turn_timer = 1;
constexpr UINT_PTR marker_timer = 2;
constexpr UINT turn_interval = 15; // milliseconds
constexpr UINT marker_stays = 2000;
constexpr char no_device_text[] = "The graphics device was lost, and none could be made again: neither the hardware "
                                  "nor the software device.\r\nWhat you have open is not touched.\r\n\r\n"
                                  "Press Enter to try again.";

bool showsSameModels(const scene_pointer& one, const scene_pointer& other)
{
    return one && other &&
           std::equal(one->parts.begin(), one->parts.end(), other->parts.begin(), other->parts.end(),
                      [](const scene_part& a, const scene_part& b) { return a.model->data == b.model->data; });
}

UINT loseDeviceMessage()
{
    static const UINT message = RegisterWindowMessageW(lose_device_message);
    return message;
}

} // namespace

std::unique_ptr<d3d_window> d3d_window::create(HWND owner, viewer_ports ports, scene_pointer scene, failure& why)
{
    std::unique_ptr<d3d_window> created(new d3d_window(std::move(ports)));
    if (!created->initialise(owner, std::move(scene), why))
        return nullptr;
    return created;
}

d3d_window::d3d_window(viewer_ports ports)
    : m_ports(std::move(ports))
    , m_po_worker(
          std::make_unique<render_worker>(m_ports.log, [this] { PostMessageW(handle(), worker_has_news, 0, 0); }))
{
}

d3d_window::~d3d_window()
{
    m_po_worker->stop(); // it draws into the window: it ends first
    destroy();
}

bool d3d_window::createOuterWindow(HWND owner, failure& why)
{
    const RECT outer = outerRectangle({0, 0, client_width, client_height}, window_style, 0, false, dpi());
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
bool d3d_window::initialise(HWND owner, scene_pointer scene, failure& why)
{
    if (!createOuterWindow(owner, why))
        return false;
    render_worker& worker = *m_po_worker;
    const RECT client = clientRectangle();
    const auto width = static_cast<UINT>(std::max(client.right, 1L));
    const auto height = static_cast<UINT>(std::max(client.bottom, 1L));
    m_scene = std::move(scene);

    log("D3dWindow:GFXinit: Create VienAndPerspective Matrices");
    frameScene();
    log("D3dWindow:GFXinit: Create VienAndPerspective Matrices: SUCCESS");

    log("D3dWindow:GFXinit: Create D3D Device");
    if (!worker.createDevice(why))
        return false;
    log("Device created. Sucess");
    const bool is_complete = createOnDevice(width, height);

    log("Create Render Thread");
    worker.setDpi(dpi());
    worker.pacer().postSize(width, height);
    postRefreshRate();
    worker.start(handle(), is_complete);
    log("DirectX INIT successful!!");
    return true;
}

// False when the device was lost on the way: the render thread makes it again.
bool d3d_window::createOnDevice(UINT width, UINT height)
{
    render_worker& worker = *m_po_worker;
    lib3d& library = worker.library();
    if (!worker.createSwapChain(handle()))
        return false;
    log("Swapchain. Sucess");
    log("D3dWindow:GFXinit: Create D3D Device: SUCCESS");

    log("D3dWindow:GFXinit: createTargetTexture()");
    if (!worker.createTargets(width, height))
        return false;
    log("Render Targe. Sucess");
    log("D3dWindow:GFXinit: createTargetTexture(): SUCCESS");

    log("D3dWindow:GFXinit: Loading Textures"); // and meshes: the render thread takes them from the scene
    log("D3dWindow:GFXinit: Loading Textures: SUCESSS");
    log("D3dWindow:GFXinit: Loading Mesh");
    worker.show(m_scene);
    log("D3dWindow:GFXinit: Loading Mesh: SUCESSS!");

    log("D3dWindow:GFXinit: Create Texures Sampeler for shaders");
    if (!library.createSamplers())
        return false;
    log("D3dWindow:GFXinit: Create Texures Sampeler for shaders: SUCESSS!");

    log("D3dWindow:GFXinit: Create Depth+Stencil");
    if (!library.createStates()) // the depth buffer itself belongs to the targets and changes its size with them
        return false;
    log("D3dWindow:GFXinit: Create Depth+Stencil: SUCCESS");

    log("D3dWindow:GFXinit: Create Cube Maps");
    if (!library.createEnvironment())
        return false;
    log("D3dWindow:GFXinit: Create Cube Maps: Success!");

    log("D3dWindow:GFXinit: Create Costant Buffer");
    frame_constants first;
    m_view.fill(static_cast<float>(width) / static_cast<float>(height), first.vs, first.ps);
    if (!library.createConstantBuffers(first.vs, first.ps) || !library.createShaders())
        return false;
    log("D3dWindow:GFXinit: Create Costant Buffer. SUCCESS");

    log("D3dWindow:GFXinit: Create Index Buffer for oAnimation.");
    if (!library.createLineBuffer())
        return false;
    log("D3dWindow:GFXinit: Create Index Buffer for oAnimation. SUCCESS.");

    log("D3dWindow:GFXinit: Selecting startup Skeleton.");
    log("D3dWindow:GFXinit: Selecting startup Skeleton. SUCCESS!");
    return true;
}

void d3d_window::frameScene()
{
    const RECT client = clientRectangle();
    const float aspect =
        static_cast<float>(std::max(client.right, 1L)) / static_cast<float>(std::max(client.bottom, 1L));
    m_view.eye.frame(m_scene ? m_scene->bounds : model_bounds(), aspect);
    m_is_framed = true;
    redraw();
}

// As a scene is seen at first; the lights stay.
void d3d_window::showStart()
{
    m_view.eye = camera();
    frameScene();
}

void d3d_window::setScene(scene_pointer scene, std::string notice)
{
    const bool is_other_path = !m_scene || !scene || m_scene->path != scene->path;
    const bool has_other_models = is_other_path || !showsSameModels(m_scene, scene);
    if (is_other_path)
        m_animations.clear();
    if (has_other_models)
    {
        m_view.selected.reset();
        m_view.hidden.reset();
        m_view.heat_rig = -1;
    }
    m_scene = std::move(scene);
    m_scene_notice = std::move(notice);
    m_po_worker->show(m_scene);
    static_cast<void>(publishMotion());
    playback().seek(is_other_path ? playback_position() : playback().shown());
    if (has_other_models) // not for a texture that was painted
        m_view.setLightDefaults();
    if (is_other_path)
        showStart();
    else if (m_is_framed && has_other_models)
        frameScene();
    else
        redraw();
    showNotice();
}

void d3d_window::showNotice()
{
    const std::string text = m_is_waiting ? no_device_text : m_scene_notice;
    if (text.empty())
        m_notice.destroy();
    else
        m_notice.cover(handle(), text);
}

device_faults& d3d_window::faults()
{
    return m_po_worker->faults();
}

// What the render thread has to say.
void d3d_window::takeNews()
{
    for (const std::string& line : m_po_worker->takeReports())
        tell(m_ports.log, line);
    m_is_waiting = m_po_worker->hasGivenUp();
    showNotice();
}

// Of the screen that shows the window, for where presenting does not wait for it.
void d3d_window::postRefreshRate()
{
    MONITORINFOEXW monitor{};
    monitor.cbSize = sizeof monitor;
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    const bool is_known = GetMonitorInfoW(MonitorFromWindow(handle(), MONITOR_DEFAULTTONEAREST), &monitor) &&
                          EnumDisplaySettingsW(monitor.szDevice, ENUM_CURRENT_SETTINGS, &mode);
    m_po_worker->pacer().postRefreshRate(is_known ? mode.dmDisplayFrequency : 0);
}

void d3d_window::show()
{
    window::show(IsIconic(handle()) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(handle());
}

void d3d_window::showBeside()
{
    window::show(IsIconic(handle()) ? SW_SHOWNOACTIVATE : SW_SHOWNA);
    SetWindowPos(handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
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
            frameScene();
    }
    m_po_worker->pacer().postVisible(!is_minimised && isVisible());
}

LRESULT d3d_window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_SHOWWINDOW)
        m_po_worker->pacer().postVisible(wparam != FALSE && !IsIconic(handle()));
    if (message == WM_DISPLAYCHANGE || message == WM_EXITSIZEMOVE)
        postRefreshRate();
    if (message == worker_has_news)
        takeNews();
    if (message == WM_TIMER && wparam == turn_timer)
        turnByItself();
    if (message == WM_TIMER && wparam == marker_timer)
    {
        KillTimer(handle(), marker_timer);
        m_view.shows_light = false;
        redraw();
    }
    if (message == WM_CONTEXTMENU && lparam == -1) // by the keyboard
    {
        const RECT client = clientRectangle();
        openMenu({client.right / 2, client.bottom / 2});
        return 0;
    }
    if (message == WM_MOUSELEAVE && m_view.mouse)
    {
        m_view.mouse.reset();
        redraw();
    }
    if (message == loseDeviceMessage() && wparam < device_step_count)
    {
        faults().lose(static_cast<device_step>(wparam), static_cast<int>(lparam));
        redraw();
    }
    const LRESULT result = window::handleMessage(message, wparam, lparam);
    if (message == WM_WINDOWPOSCHANGED)
        m_notice.fit();
    return result;
}

void d3d_window::onMinimumSize(SIZE& outer)
{
    outer.cx = std::max(outer.cx, static_cast<LONG>(scaled(smallest_width)));
    outer.cy = std::max(outer.cy, static_cast<LONG>(scaled(smallest_height)));
}

// The base has moved the window to the rectangle that the system suggests; sizes of the picture are pixels.
void d3d_window::onDpiChanged(unsigned dots)
{
    m_po_worker->setDpi(dots);
    postRefreshRate();
}

bool d3d_window::onPaint()
{
    ValidateRect(handle(), nullptr);
    redraw();
    return true;
}

bool d3d_window::onKeyDown(unsigned virtual_key, bool)
{
    // With these held down a key is a shortcut of the program, which comes by here, too.
    if (GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_MENU) < 0)
        return false;
    if (virtual_key == VK_RETURN && isWaitingForDevice())
    {
        m_po_worker->tryAgain();
        return true;
    }
    if (onPlaybackKey(virtual_key))
        return true;
    if (virtual_key == 'V')
        return showStart(), true;
    if (virtual_key == 'I')
        doCommand(view_command::save_picture);
    else if (virtual_key == VK_ESCAPE && m_is_enlarged)
        leaveEnlarged();
    else if (!m_view.onKey(virtual_key))
        return false;
    m_is_framed = m_is_framed && virtual_key != 'Q' && virtual_key != 'E';
    if (m_view.shows_light)
        SetTimer(handle(), marker_timer, marker_stays, nullptr);
    postMoving();
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

// Left button: turn, with Shift the light; a click selects the group. Right or middle button: move the picture; a click
// with the right one opens the menu. Double click: enlarge.
bool d3d_window::onMouseButton(const mouse_event& event)
{
    m_last_mouse = event.at;
    const bool is_left = event.button == mouse_button::left;
    const bool is_click = !event.is_down && !m_has_dragged;
    const bool was_pressed = is_left ? m_is_turning || m_is_turning_light : m_is_shifting;
    if (event.is_down)
    {
        m_pressed_at = event.at;
        m_has_dragged = false;
    }
    if (is_left)
    {
        m_is_turning_light = event.is_down && (event.keys & MK_SHIFT) != 0;
        m_is_turning = event.is_down && !m_is_turning_light;
    }
    else
        m_is_shifting = event.is_down;
    if (event.is_double && is_left)
    {
        m_is_turning = m_is_turning_light = false;
        toggleEnlarged();
    }
    if (m_is_turning || m_is_turning_light || m_is_shifting)
        SetCapture(handle());
    else
        ReleaseCapture();
    if (is_click && was_pressed && is_left)
        pickGroup(event.at);
    if (is_click && was_pressed && event.button == mouse_button::right)
        openMenu(event.at);
    return true;
}

bool d3d_window::onMouseMove(const mouse_event& event)
{
    if (!m_is_turning && !m_is_turning_light && !m_is_shifting)
    {
        m_view.mouse = glm::vec2(static_cast<float>(event.at.x), static_cast<float>(event.at.y));
        TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, handle(), 0};
        TrackMouseEvent(&leaving);
        if (m_view.shows_skeleton) // the bone there is named
            redraw();
        return true;
    }
    m_has_dragged = m_has_dragged || std::abs(event.at.x - m_pressed_at.x) > GetSystemMetrics(SM_CXDRAG) ||
                    std::abs(event.at.y - m_pressed_at.y) > GetSystemMetrics(SM_CYDRAG);
    if (!m_has_dragged)
        return true;
    const auto dx = static_cast<float>(event.at.x - m_last_mouse.x);
    const auto dy = static_cast<float>(event.at.y - m_last_mouse.y);
    m_last_mouse = event.at;
    if (m_is_turning_light)
        m_view.onLightDrag(dx, dy);
    else if (m_is_turning)
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
    m_is_turning_light = false;
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
