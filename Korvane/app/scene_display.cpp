#include "Korvane/app/scene_display.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace korvane
{

namespace
{

constexpr int view_margin = 8; // at 96 dots per inch

// "14:03:22": the same text about the same file is seen to be new.
std::string timeOfDay()
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    char text[16];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u", now.wHour, now.wMinute, now.wSecond);
    return text;
}

std::size_t lodOf(const open_model& model)
{
    return static_cast<std::size_t>(std::max(0, model.selection().lod));
}

} // namespace

scene_display::scene_display(const window& owner, const open_files& document, const ui_thread& thread,
                             model_view_factory make_view, listeners told)
    : m_owner(owner)
    , m_document(document)
    , m_make_view(std::move(make_view))
    , m_told(std::move(told))
    , m_loading(thread, {[this](const work_progress& now) { m_told.progress(now); }, m_told.log,
                         [this](const std::string& what) { tell(m_told.log, "scene_display: " + what); }})
{
}

void scene_display::close()
{
    m_loading.stop();
    m_po_view.reset();
}

bool scene_display::show(focus wanted, failure& why)
{
    if (m_po_view == nullptr)
    {
        view_events events = m_told.events;
        events.log = m_told.log;
        m_po_view = m_make_view(std::move(events), why);
        if (m_po_view == nullptr)
            return false;
        placeView();
        showDocument();
    }
    if (wanted == focus::moves || coversOwner())
        m_po_view->show();
    else if (!m_po_view->isVisible() || GetForegroundWindow() != m_po_view->handle())
        m_po_view->showBeside();
    return true;
}

void scene_display::showDocument()
{
    m_drawn = std::nullopt;
    if (m_po_view == nullptr)
        return;
    const open_model& model = m_document.model();
    const open_definition& definition = m_document.definition();
    if (m_document.shown() == open_files::kind::model)
        start([drawn = sceneModel(model.data(), model.file()->path()), lod = lodOf(model)](scene_loader& loader) {
            return loader.loadModel(drawn, drawn->path, lod);
        });
    else if (m_document.shown() == open_files::kind::definition)
        start([models = definition.figure(), path = definition.path()](scene_loader& loader) {
            return loader.loadFigure(models, path);
        });
    else
    {
        m_loading.stop();
        setScene(std::make_shared<const loaded_scene>());
    }
}

void scene_display::showEdited()
{
    const open_model& model = m_document.model();
    if (m_po_view == nullptr || m_document.shown() != open_files::kind::model)
        return;
    start([drawn = sceneModel(model.data(), model.file()->path()), lod = lodOf(model),
           former = m_scene](scene_loader& loader) { return loader.loadModel(drawn, drawn->path, lod, -1, former); });
}

void scene_display::showFigure()
{
    const open_definition& definition = m_document.definition();
    if (m_po_view == nullptr || m_document.shown() != open_files::kind::definition)
        return;
    start([models = definition.figure(), path = definition.path(), former = m_scene](scene_loader& loader) {
        return loader.loadFigure(models, path, 0, former);
    });
}

void scene_display::showLevel()
{
    if (m_loading.isRunning()) // of the former level, or not even that
        return showEdited();
    if (m_document.shown() == open_files::kind::model && m_scene)
        start([former = m_scene, lod = lodOf(m_document.model())](scene_loader& loader) {
            return loader.loadLevel(*former, lod);
        });
}

void scene_display::showSelection()
{
    const model_selection chosen = m_document.model().selection();
    m_outlines_selection = true;
    if (m_po_view == nullptr || !m_scene)
        return;
    const bool is_drawn = m_document.shown() == open_files::kind::model && chosen.group >= 0 &&
                          m_scene->parts.size() == 1 && chosen.lod == static_cast<int>(m_scene->parts.front().lod);
    m_po_view->select(is_drawn ? std::optional(shown_group{0, static_cast<std::uint32_t>(chosen.group)})
                               : std::nullopt);
}

void scene_display::start(load work)
{
    m_loading.start([this, game = m_document.game(), work = std::move(work)](const work_port& port) {
        scene_loader loader(*game, port);
        return background_task::answer([this, scene = work(loader)] { take(scene); });
    });
}

void scene_display::take(scene_pointer scene)
{
    if (!scene || m_po_view == nullptr)
        return;
    m_drawn = std::nullopt;
    if (m_document.shown() == open_files::kind::definition)
        m_drawn = drawn_models{scene->failed, scene->triangles};
    setScene(std::move(scene));
    m_told.changed();
}

// The model itself is never read again unasked: it may be edited, and the selection would be lost.
std::string scene_display::followFiles()
{
    if (!m_scene || m_po_view == nullptr || m_loading.isRunning() || !m_po_view->isVisible())
        return {};
    const scene_changes changes = m_watch.look();
    for (const std::string& line : changes.lines)
        tell(m_told.log, line);
    if (!changes.textures.empty())
        setScene(scene_loader(*m_document.game()).exchangeTextures(*m_scene, changes.textures));
    return changes.empty() ? std::string() : changes.summary() + " (" + timeOfDay() + ")";
}

// Instead of a picture of nothing.
std::string scene_display::notice() const
{
    if (m_drawn)
        return m_document.definition().emptyNotice(*m_drawn);
    if (!m_scene || m_scene->parts.empty() || m_scene->triangles > 0)
        return {};
    return "This level of detail has no triangle that can be drawn.\r\nThe page Problems says what is wrong with it.";
}

void scene_display::setScene(scene_pointer scene)
{
    m_outlines_selection = m_outlines_selection && m_scene && scene && m_scene->path == scene->path;
    m_scene = std::move(scene);
    m_po_view->setScene(m_scene, notice());
    m_watch.follow(m_scene, *m_document.game());
    if (m_outlines_selection) // of another level of detail, too
        showSelection();
}

// Where it was. Else beside the main window, at least as high as that and otherwise as large as it wants; where there
// is no room for it, at the right edge of the screen, so that it hides as little as it can.
void scene_display::placeView() const
{
    const HWND view = m_po_view->handle();
    RECT own{};
    RECT wanted{};
    if (view == nullptr || (m_told.restore_place && m_told.restore_place(view)) ||
        !GetWindowRect(m_owner.handle(), &own) || !GetWindowRect(view, &wanted))
        return;
    const RECT area = window::workArea(m_owner.handle());
    const LONG margin = m_owner.scaled(view_margin);
    const LONG beside = area.right - margin - (own.right + margin);
    const bool has_room = beside >= m_owner.scaled(320);
    const LONG width = std::min(has_room ? beside : (area.right - area.left) / 2, wanted.right - wanted.left);
    const LONG x = has_room ? own.right + margin : area.right - margin - width;
    const LONG height =
        std::min(area.bottom - own.top - margin, std::max(wanted.bottom - wanted.top, own.bottom - own.top));
    SetWindowPos(view, nullptr, x, own.top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

// Most of it: then the person who asked for the view would look for it, or for the window behind it.
bool scene_display::coversOwner() const
{
    const auto areaOf = [](const RECT& place) {
        return static_cast<long long>(place.right - place.left) * (place.bottom - place.top);
    };
    RECT own{}, view{}, both{};
    GetWindowRect(m_owner.handle(), &own);
    GetWindowRect(m_po_view->handle(), &view);
    return IntersectRect(&both, &own, &view) != FALSE && 2 * areaOf(both) > areaOf(own);
}

} // namespace korvane
