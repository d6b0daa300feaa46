#pragma once

// What the main window asks of the three-dimensional view. The program gives it the Direct3D window; tests of the main
// window record.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/textures/picture.h"

#include <functional>
#include <memory>
#include <string>
#include <windows.h>

namespace korvane
{

// Draws what the view shows at the moment it was asked for: on any thread, also when the view is gone. False and a
// reason without a graphics device.
using picture_maker = std::function<bool(picture& made, failure& why)>;

class model_view
{
public:
    virtual ~model_view() = default;

    // In place of what was shown. A notice is shown instead of the picture; empty: there is a picture.
    virtual void setScene(scene_pointer scene, const std::string& notice) = 0;
    virtual void show() = 0;       // and bring to the front, with the focus
    virtual void showBeside() = 0; // the same, but leave the focus where it is
    virtual bool isVisible() const = 0;
    virtual HWND handle() const = 0;
    virtual picture_maker pictureMaker() const = 0; // in the size of the view; empty: there is nothing to see
};

// Makes a view that shows nothing yet and is hidden; null and a reason when there is no usable graphics device. The log
// function takes one line.
using model_view_factory = std::function<std::unique_ptr<model_view>(log_port log, failure& why)>;

} // namespace korvane
