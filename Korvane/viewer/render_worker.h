#pragma once

// The drawing half of the model window: device, swap chain, targets, scene, and the thread "Draw" that puts frames on
// the screen. The window thread creates it, calls its public functions and destroys it. Once the thread runs, the
// immediate context, the swap chain and the targets are the thread's; the scene is changed by the window thread behind
// the closed gate; views and sizes travel through the pacer.

#include "Korvane/viewer/frame_pacer.h"
#include "Korvane/viewer/model_scene.h"
#include "Korvane/viewer/render_gate.h"

#include <windows.h>

#include <dxgi1_2.h>

#include <atomic>
#include <functional>

namespace korvane
{

class render_worker
{
public:
    explicit render_worker(lib3d::log_port log);
    ~render_worker(); // stops the thread
    render_worker(const render_worker&) = delete;
    render_worker& operator=(const render_worker&) = delete;

    // Set-up, before the thread runs, in this order; the shared objects (samplers, shaders, ...) are created through
    // library(). Except for the device, what fails stops the program.
    [[nodiscard]] bool createDevice(failure& why) { return m_library.createDevice(m_log, why); }
    void createSwapChain(HWND window);
    void createTargets(UINT width, UINT height);
    lib3d& library() { return m_library; }
    model_scene& scene() { return m_scene; }
    void start();
    void stop();

    // Changes the scene while nothing is drawn; returns when that is done.
    void changeScene(const std::function<void(model_scene& scene, ID3D11Device& device)>& change);

    frame_pacer& pacer() { return m_pacer; }
    std::uint64_t framesDrawn() const { return m_frames_drawn.load(); }

private:
    static DWORD WINAPI threadEntry(void* worker);
    void run();
    void drawFrame(const frame_request& request);
    bool isOccluded();
    void resize(UINT width, UINT height);

    lib3d::log_port m_log;
    lib3d m_library;
    com_ptr<IDXGISwapChain1> m_swap_chain;
    com_ptr<ID3D11RenderTargetView> m_back_buffer;
    scene_targets m_targets;
    model_scene m_scene;
    render_gate m_gate;
    frame_pacer m_pacer;
    HANDLE m_thread = nullptr; // window thread only
    bool m_was_occluded = false;
    std::atomic<std::uint64_t> m_frames_drawn{0}; // written by the render thread only
};

} // namespace korvane
