#pragma once

// The model viewer: a top-level window of its own with a Direct3D 11 device, a swap chain and a render thread "Draw".
// The window and all public functions belong to the thread that created it, the one with the message loop; the render
// thread belongs to the window. Drawing happens when something has changed, never while the window is minimised,
// hidden behind a screen lock or empty.

#include "D3D11_RENDER_LIB/texture_source.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/models/rmv2_data.h"

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace korvane
{

// What the viewer needs of the program around it. Both are called by the window's own thread and may be empty.
struct viewer_ports
{
    std::function<void(const std::string&)> log; // one line of the log, UTF-8
    std::function<void()> closed;                // the person has closed the window; it is hidden, not destroyed
};

class d3d_window
{
public:
    // Creates the window (1280 x 720, still hidden), the device and everything that does not depend on a model, builds
    // the model when there is one, and starts the render thread. The owner may be null. Without a hardware device the
    // software one is used and the log says so; null and a reason when neither can be had.
    [[nodiscard]] static std::unique_ptr<d3d_window> create(HINSTANCE instance, HWND owner, viewer_ports ports,
                                                            std::shared_ptr<const RMV2_FILE_DATA> model,
                                                            const std::string& model_path, failure& why);
    ~d3d_window(); // stops the render thread, then destroys the window

    d3d_window(const d3d_window&) = delete;
    d3d_window& operator=(const d3d_window&) = delete;

    // Replaces the model; null shows an empty view. The data is read only during the call. The path (UTF-8) says where
    // the model lies, for its textures; with a null source they are looked for on the disk around it. Level of detail
    // beyond the last one means the last one.
    void setModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& model_path, std::size_t lod = 0,
                  std::shared_ptr<const texture_source> textures = nullptr);

    void show(); // shows the window and brings it to the front
    void hide();
    bool isVisible() const;
    HWND handle() const;

    // The number of frames that were presented so far, and the level of detail that is shown: for the status bar and
    // for tests.
    std::uint64_t framesDrawn() const;
    // Asks for a new frame although nothing has changed.
    void redraw();

private:
    class implementation;
    explicit d3d_window(std::unique_ptr<implementation> inside);
    std::unique_ptr<implementation> m_po_inside;
};

} // namespace korvane
