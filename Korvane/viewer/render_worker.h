#pragma once

// The drawing half of the model window: device, swap chain, targets, the scene's objects, and the thread "Draw" that
// puts frames on the screen. The window thread creates it, calls its public functions and destroys it. Once the thread
// runs, everything on the device is the thread's; scenes travel as whole values through the gate, views and sizes
// through the pacer, and reports back through a list that the window thread empties.
//
// A device that is lost, at any step, is made again from the scene that was kept: two tries with the hardware device,
// one with the software device. After the last one the worker rests until tryAgain().

#include "D3D11_RENDER_LIB/device_faults.h"
#include "D3D11_RENDER_LIB/environment_images.h"
#include "EASY_GUI/services/kernel_handle_win.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/viewer/frame_pacer.h"
#include "Korvane/viewer/model_scene.h"
#include "Korvane/viewer/moving_size.h"
#include "Korvane/viewer/render_gate.h"

#include <windows.h>

#include <dxgi1_2.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace korvane
{

// Which animations move a scene, in the order in which they were chosen. None: the bind pose.
struct scene_motion
{
    scene_pointer scene;
    std::vector<animation_fit> animations;
};

class render_worker
{
public:
    // The log is called by the window thread only. has_news is called by the render thread when takeReports() or
    // hasGivenUp() has something new; it must not wait for the window thread.
    render_worker(log_port log, std::function<void()> has_news);
    ~render_worker(); // stops the thread
    render_worker(const render_worker&) = delete;
    render_worker& operator=(const render_worker&) = delete;

    // Set-up, before the thread runs, in this order; the shared objects (samplers, shaders, ...) are created through
    // library(). False when the device was lost: start() then, and the thread makes everything again.
    [[nodiscard]] bool createDevice(failure& why) { return m_library.createDevice(device_kind::best, m_log, why); }
    [[nodiscard]] bool createSwapChain(HWND window);
    [[nodiscard]] bool createTargets(UINT width, UINT height);
    lib3d& library() { return m_library; }
    void start(HWND window, bool is_complete); // false: something of the set-up was lost
    void stop();

    // Window thread. The scene is shown from the next frame on, or nothing for null; never waits for a frame.
    void show(scene_pointer scene);
    // How a scene moves; counts while that scene is shown.
    void animate(std::shared_ptr<const scene_motion> motion);
    playback_control& playback() { return m_playback; }
    // For what is written over the picture.
    void setDpi(unsigned dpi) { m_dpi.store(dpi); }
    frame_pacer& pacer() { return m_pacer; }
    std::uint64_t framesDrawn() const { return m_frames_drawn.load(); } // presented so far
    device_faults& faults() { return m_faults; }
    // Lines for the log, in their order.
    [[nodiscard]] std::vector<std::string> takeReports();
    // There is no device, and none is made until tryAgain().
    bool hasGivenUp() const { return m_has_given_up.load(); }
    void tryAgain();

private:
    static DWORD WINAPI threadEntry(void* worker);
    void run();
    void report(const std::string& line);
    void drawFrame(const frame_request& request);
    [[nodiscard]] bool drawOnDevice(const frame_request& request);
    [[nodiscard]] bool showNewScene();
    void move();
    const scene_targets* targetsFor(const frame_request& request); // null: the device was lost
    [[nodiscard]] bool improveEnvironment();
    [[nodiscard]] bool isOccluded();
    [[nodiscard]] bool resize(UINT width, UINT height);
    [[nodiscard]] bool remakeDevice(const frame_request& request);
    void loseDevice();

    log_port m_log;
    std::function<void()> m_has_news;
    device_faults m_faults;
    gated_value<loaded_scene> m_published;
    gated_value<scene_motion> m_published_motion;
    playback_control m_playback;
    frame_pacer m_pacer;
    unique_kernel_handle m_thread; // window thread only
    HWND m_window = nullptr;

    // The render thread's, once it runs.
    lib3d m_library;
    com_ptr<IDXGISwapChain1> m_swap_chain;
    com_ptr<ID3D11RenderTargetView> m_back_buffer;
    scene_targets m_targets;
    scene_targets m_small_targets; // of quick frames on software devices
    moving_size m_moving_size;
    model_scene m_scene;
    environment_making m_environment; // for hardware devices, after the first frame
    scene_pointer m_wanted;           // kept for a new device
    scene_pointer m_shown;            // what m_scene was made of
    std::shared_ptr<const scene_motion> m_wanted_motion;
    std::shared_ptr<const scene_motion> m_shown_motion; // what m_scene was told
    unsigned m_overlay_dpi = 0;                         // that m_scene has the font for
    bool m_has_device = false;
    bool m_was_occluded = false;
    int m_tries = 0; // to make the device again, since the last frame that was presented

    std::atomic<unsigned> m_dpi{96};              // written by the window thread only
    std::atomic<std::uint64_t> m_frames_drawn{0}; // written by the render thread only
    std::atomic<bool> m_has_given_up{false};      // written by the render thread only
    std::atomic<bool> m_must_try_again{false};
    std::mutex m_reports_mutex; // guards m_reports
    std::vector<std::string> m_reports;
};

} // namespace korvane
