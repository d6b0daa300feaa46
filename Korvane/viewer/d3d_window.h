#pragma once

// The model viewer: a top-level window of its own with a Direct3D 11 device, a swap chain and a render thread "Draw".
// The window and all its functions belong to the thread that created it, the one with the message loop; what the render
// thread owns is in render_worker.h. Drawing happens when something has changed, never while the window is minimised,
// hidden, covered by a locked screen or empty.

#include "D3D11_RENDER_LIB/render_variant.h"
#include "D3D11_RENDER_LIB/texture_source.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/models/rmv2_data.h"
#include "Korvane/viewer/view_state.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class render_worker;

// What the viewer needs of the program around it. Both are called by the window's own thread and may be empty.
struct viewer_ports
{
    std::function<void(const std::string&)> log; // one line of the log, UTF-8
    std::function<void()> closed;                // the person has closed the window; it is hidden, not destroyed
};

class d3d_window : public window
{
public:
    // Creates the window (1280 x 720, still hidden), the device and everything else, builds the model when there is
    // one, and starts the render thread. The owner may be null. Without a hardware device the software one is used and
    // the log says so; null and a reason when neither can be had.
    [[nodiscard]] static std::unique_ptr<d3d_window> create(HINSTANCE instance, HWND owner, viewer_ports ports,
                                                            std::shared_ptr<const RMV2_FILE_DATA> model,
                                                            const std::string& model_path, failure& why);
    ~d3d_window() override; // stops the render thread, then destroys the window

    // Replaces the model; null shows an empty view. The data is read only during the call. The path (UTF-8) says where
    // the model lies, for its textures; with a null source they are looked for on the disk around it. A level of detail
    // beyond the last one means the last one. The camera is framed anew unless the path stays the same.
    void setModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& model_path, std::size_t lod = 0,
                  std::shared_ptr<const texture_source> textures = nullptr);
    // Shows the models of a definition in place of what was shown, out of the archives; the path (UTF-8) is the
    // definition's, for the textures on the disk around it. What cannot be drawn is named in the log. The camera is
    // framed around all of them, unless the path stays the same and the person has moved it.
    variant_outcome setVariant(const std::vector<std::string>& models, const std::string& definition_path);

    void show(); // shows the window and brings it to the front
    void hide();
    bool isVisible() const;

    std::uint64_t framesDrawn() const; // presented so far
    void redraw();                     // asks for a new frame although nothing has changed
    const view_state& view() const { return m_view; }

protected:
    void onClose() override;
    void onSize(int width, int height, size_change change) override;
    bool onKeyDown(unsigned virtual_key, bool is_repeat) override;
    bool onMouseWheel(int delta, const mouse_event& event) override;
    bool onMouseButton(const mouse_event& event) override;
    bool onMouseMove(const mouse_event& event) override;
    void onCaptureLost() override;
    bool onPaint() override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    explicit d3d_window(viewer_ports ports);
    [[nodiscard]] bool initialise(HWND owner, std::shared_ptr<const RMV2_FILE_DATA> model,
                                  const std::string& model_path, failure& why);
    [[nodiscard]] bool createOuterWindow(HWND owner, failure& why);
    void log(const char* text) const;
    void showChanged(const std::string& path, bool is_framed_anew);
    void frameModel();
    void toggleEnlarged();
    void leaveEnlarged();

    viewer_ports m_ports;
    std::unique_ptr<render_worker> m_po_worker;
    view_state m_view;        // the window thread's; copies go to the render thread
    std::string m_shown_path; // of the model or the definition
    POINT m_last_mouse{};
    bool m_is_turning = false;
    bool m_is_shifting = false;
    bool m_is_framed = true; // the camera still stands where the model was framed: it follows the window's size
    bool m_is_enlarged = false;
    RECT m_saved_rectangle{}; // outer, screen pixels; valid while enlarged
};

} // namespace korvane
