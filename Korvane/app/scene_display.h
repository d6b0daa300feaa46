#pragma once

// What the three-dimensional view shows of the document. The view is made when it is needed first, and placed beside
// the main window; it gets a scene whenever something else is to be seen, and a text where there is nothing to draw.
// Scenes are loaded by a worker: until one is there the view keeps what it shows. Files of the scene that other
// programs change are followed. Window thread.

#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/app/model_view.h"
#include "Korvane/document/open_files.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/scene/scene_watch.h"

#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class scene_display
{
public:
    struct listeners
    {
        log_port log;                                       // lines of the view, too
        std::function<void()> changed;                      // another scene is shown: drawn() has changed
        std::function<void(const work_progress&)> progress; // of a scene of several models
        std::function<bool(HWND view)> restore_place = {};  // where it stood last; false: nowhere
        view_events events = {};                            // but for the log
    };
    // The main window, the document and the thread outlive it.
    scene_display(const window& owner, const open_files& document, const ui_thread& thread,
                  model_view_factory make_view, listeners told);

    const model_view* view() const { return m_po_view.get(); } // null until it was shown first
    model_view* view() { return m_po_view.get(); }
    const scene_pointer& scene() const { return m_scene; } // what the view shows; null: it was given nothing yet
    // What the view made of the definition; nothing while it has not shown it.
    const std::optional<drawn_models>& drawn() const { return m_drawn; }

    // Shows the view, and what is open in it. It gets the focus when the person asks for it; when a file was opened it
    // stays where it is, unless the view hides the main window. False and a reason without a graphics device.
    enum class focus
    {
        stays,
        moves
    };
    [[nodiscard]] bool show(focus wanted, failure& why);
    void close(); // ends the render thread

    // These do nothing while there is no view.
    void showDocument();  // anew: the files are read
    void showEdited();    // the open model with other textures or alpha modes, if the view shows that
    void showFigure();    // the open definition with other alternatives, if the view shows that
    void showSelection(); // outlines the group that was chosen in the panels; what is opened has no outline at first
    void exchange(scene_pointer scene) { take(std::move(scene)); } // of the same models: another skeleton
    void showLevel(); // another level of detail of the open model, if the view shows that
    bool isLoading() const { return m_loading.isRunning(); }
    // Has changed textures read again. A text for the status line; empty: nothing has changed.
    std::string followFiles();

private:
    using load = std::function<scene_pointer(scene_loader& loader)>; // on the worker
    void start(load work);
    void take(scene_pointer scene);
    void setScene(scene_pointer scene);
    std::string notice() const;
    void placeView() const;
    bool coversOwner() const;

    const window& m_owner;
    const open_files& m_document;
    model_view_factory m_make_view;
    listeners m_told;
    std::optional<drawn_models> m_drawn;
    bool m_outlines_selection = false; // the person has chosen a group since the scene's file was opened
    scene_pointer m_scene;             // what the view shows; null: it was given nothing yet
    scene_watch m_watch;               // of its files
    std::unique_ptr<model_view> m_po_view;
    background_task m_loading; // the last member: its work ends first
};

} // namespace korvane
