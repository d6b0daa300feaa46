#pragma once

// The model viewer: a top-level window of its own with a Direct3D 11 device, a swap chain and a render thread "Draw".
// The window and all its functions belong to the thread that created it, the one with the message loop; what the render
// thread owns is in render_worker.h. Drawing happens when something has changed, never while the window is minimised,
// hidden, covered by a locked screen or empty.

#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/viewer/posed_scene.h"
#include "Korvane/viewer/view_menu.h"
#include "Korvane/viewer/view_notice.h"
#include "Korvane/viewer/view_state.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

class device_faults;
class render_worker;

// What the viewer needs of the program around it. All are called by the window's own thread and may be empty.
struct viewer_ports
{
    log_port log;
    std::function<void()> closed; // the person has closed the window; it is hidden, not destroyed
    std::function<void(const shown_group& group)> picked; // clicked on
    std::function<void()> choose_animation = {};
    std::function<void()> save_picture = {};
    // Playing was begun, ended, stepped or begun anew by a key of the view: also when nothing can be played.
    std::function<void()> played = {};
};

// The name of a registered message for tests of the real program: the next steps lose the device (device_faults.h), of
// the kind in wparam, lparam of them. What is open is never touched by it, and the view comes back or waits for a key.
inline constexpr wchar_t lose_device_message[] = L"korvane_lose_device";

class d3d_window : public window
{
public:
    // Creates the window (1280 x 720, still hidden), the device and everything else, and starts the render thread. The
    // owner may be null, and so may the scene. Without a hardware device the software one is used and the log says so;
    // null and a reason when neither can be had.
    [[nodiscard]] static std::unique_ptr<d3d_window> create(HWND owner, viewer_ports ports, scene_pointer scene,
                                                            failure& why);
    ~d3d_window() override; // stops the render thread, then destroys the window

    // Shows another scene, or nothing for null. The camera is framed anew for another path, and as long as the person
    // has not moved it; another level of detail of the same models leaves it alone, other textures do, too. Another
    // path is seen from the start view. A notice covers the picture. Never waits for a frame.
    void setScene(scene_pointer scene, std::string notice = {});

    // How the scene moves, from its first frame on; none: the bind pose. Of another scene of the same path (another
    // level of detail, painted textures) the animations go on. Gives what does not fit, a line each.
    std::vector<std::string> setAnimations(std::vector<std::shared_ptr<const anim_data>> animations);
    const std::vector<std::shared_ptr<const anim_data>>& animations() const { return m_animations; }
    playback_control& playback();
    void playbackChanged(); // after a wish to it: the frames follow
    // Outlines a group; nothing: none.
    void select(std::optional<shown_group> group);

    void show();       // shows the window and brings it to the front
    void showBeside(); // the same, but does not take the focus
    void hide();
    bool isVisible() const;

    std::uint64_t framesDrawn() const; // presented so far
    void redraw();                     // asks for a new frame although nothing has changed
    const view_state& view() const { return m_view; }
    const scene_pointer& scene() const { return m_scene; }   // null: nothing
    device_faults& faults();                                 // for tests
    bool isWaitingForDevice() const { return m_is_waiting; } // a notice says so; Enter tries again

protected:
    void onClose() override;
    void onSize(int width, int height, size_change change) override;
    bool onKeyDown(unsigned virtual_key, bool is_repeat) override;
    bool onMouseWheel(int delta, const mouse_event& event) override;
    bool onMouseButton(const mouse_event& event) override;
    bool onMouseMove(const mouse_event& event) override;
    void onCaptureLost() override;
    void onMinimumSize(SIZE& outer) override;
    void onDpiChanged(unsigned dpi) override;
    bool onPaint() override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    explicit d3d_window(viewer_ports ports);
    [[nodiscard]] bool initialise(HWND owner, scene_pointer scene, failure& why);
    [[nodiscard]] bool createOuterWindow(HWND owner, failure& why);
    [[nodiscard]] bool createOnDevice(UINT width, UINT height);
    void log(const char* text) const { tell(m_ports.log, text); }
    void frameScene();
    void showStart();
    void showNotice();
    void postRefreshRate();
    void takeNews();
    void toggleEnlarged();
    void leaveEnlarged();
    std::vector<std::string> publishMotion();
    void postMoving();
    bool onPlaybackKey(unsigned virtual_key);
    void doCommand(view_command command);
    void pickGroup(POINT at);
    void openMenu(POINT at);
    [[nodiscard]] std::unique_ptr<posed_scene> poseNow() const;
    [[nodiscard]] std::optional<shown_group> groupAt(const posed_scene& pose, POINT at) const;
    [[nodiscard]] glm::vec2 clientSize() const;
    void turnByItself();

    viewer_ports m_ports;
    std::unique_ptr<render_worker> m_po_worker;
    view_notice m_notice;
    std::string m_scene_notice; // instead of the picture; empty: none
    bool m_is_waiting = false;  // for the person, as no device could be made
    view_state m_view;          // the window thread's; copies go to the render thread
    scene_pointer m_scene;      // what is shown
    std::vector<std::shared_ptr<const anim_data>> m_animations;
    POINT m_last_mouse{};
    POINT m_pressed_at{};       // the mouse
    bool m_has_dragged = false; // since then
    bool m_is_turning = false;
    bool m_is_turning_light = false;
    bool m_is_shifting = false;
    ULONGLONG m_last_turn = 0; // of the turntable, milliseconds
    bool m_is_framed = true;   // the camera still stands where the model was framed: it follows the window's size
    bool m_is_enlarged = false;
    RECT m_saved_rectangle{}; // outer, screen pixels; valid while enlarged
};

} // namespace korvane
