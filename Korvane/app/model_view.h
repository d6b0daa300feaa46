#pragma once

// What the main window asks of the three-dimensional view. The program gives it the Direct3D window; tests of the main
// window record.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/posing/playback.h"
#include "Korvane/presenters/picture_settings.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/scene/shown_group.h"
#include "Korvane/textures/picture.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

namespace korvane
{

// Draws what the view showed at the moment it was asked for: on any thread, also when the view is gone. False and a
// reason without a graphics device; without a reason when the work was to stop.
struct picture_maker
{
    picture_size view; // the size of the view
    std::function<bool(const picture_request& wanted, const work_port& work, picture& made, failure& why)> draw;

    explicit operator bool() const { return draw != nullptr; }
};

// What the person does in the view. All but the log may be empty; called by the window thread.
struct view_events
{
    log_port log;                                         // takes one line
    std::function<void(const shown_group& group)> picked; // clicked on
    std::function<void()> choose_animation;               // asked for the picker
    std::function<void()> save_picture;                   // asked for
    std::function<void()> played;                         // a key of playing was pressed
};

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
    // Outlines a group; nothing: none.
    virtual void select(std::optional<shown_group> group) = 0;
    // How the scene moves, from the first frame on, each on the skeletons that it is made for; none: the bind pose.
    // Gives what does not fit, a line each. Another path is shown in its bind pose, the same one goes on.
    virtual std::vector<std::string> setAnimations(std::vector<std::shared_ptr<const anim_data>> animations) = 0;
    virtual playback_control& playback() = 0;
    virtual void playbackChanged() = 0;             // after a wish to it: the frames follow
    virtual picture_maker pictureMaker() const = 0; // empty: there is nothing to see
};

// Makes a view that shows nothing yet and is hidden; null and a reason when there is no usable graphics device.
using model_view_factory = std::function<std::unique_ptr<model_view>(view_events events, failure& why)>;

} // namespace korvane
