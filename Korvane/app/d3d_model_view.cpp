#include "Korvane/app/d3d_model_view.h"

#include "Korvane/app/resources.h"
#include "Korvane/viewer/d3d_window.h"
#include "Korvane/viewer/offscreen.h"

#include <utility>

namespace korvane
{

namespace
{

class d3d_model_view : public model_view
{
public:
    explicit d3d_model_view(std::unique_ptr<d3d_window> window) : m_po_d3d_window(std::move(window)) {}

    void setScene(scene_pointer scene, const std::string& notice) override
    {
        m_po_d3d_window->setScene(std::move(scene), notice);
    }
    void show() override { m_po_d3d_window->show(); }
    void showBeside() override { m_po_d3d_window->showBeside(); }
    bool isVisible() const override { return m_po_d3d_window->isVisible(); }
    HWND handle() const override { return m_po_d3d_window->handle(); }
    void select(std::optional<shown_group> group) override { m_po_d3d_window->select(group); }
    std::vector<std::string> setAnimations(std::vector<std::shared_ptr<const anim_data>> animations) override
    {
        return m_po_d3d_window->setAnimations(std::move(animations));
    }
    playback_control& playback() override { return m_po_d3d_window->playback(); }
    void playbackChanged() override { m_po_d3d_window->playbackChanged(); }
    picture_maker pictureMaker() const override;

private:
    std::unique_ptr<d3d_window> m_po_d3d_window;
};

picture_maker d3d_model_view::pictureMaker() const
{
    static_assert(picture_settings::most_pixels == largest_picture);
    static_assert(picture_settings::sample_choices == sample_choices);
    const d3d_window& window = *m_po_d3d_window;
    const scene_pointer scene = window.scene();
    const RECT size = window.clientRectangle();
    if (!scene || scene->parts.empty() || size.right <= 0 || size.bottom <= 0)
        return {};
    render_options options;
    options.view = window.view();
    options.view.selected.reset(); // what belongs to working in the view
    options.view.mouse.reset();
    options.view.shows_help = false;
    options.view.shows_light = false;
    options.frames_scene = false;
    options.animations = window.animations();
    const picture_wish wish{m_po_d3d_window->playback().shown()};
    const auto draw = [scene, options, wish](const picture_request& wanted, const work_port& work, picture& made,
                                             failure& why) {
        render_options its = options;
        its.width = wanted.size.width;
        its.height = wanted.size.height;
        its.samples = wanted.samples;
        its.view.is_background_clear = wanted.is_transparent;
        its.log = work.log;
        return picture_session(scene, std::move(its)).draw(wish, work, made, why);
    };
    return {{static_cast<std::uint32_t>(size.right), static_cast<std::uint32_t>(size.bottom)}, draw};
}

void showProgramIcon(HWND window)
{
    for (const auto& [kind, metric] : {std::pair(ICON_SMALL, SM_CXSMICON), std::pair(ICON_BIG, SM_CXICON)})
    {
        const int size = GetSystemMetrics(metric);
        const HANDLE icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource_program_icon), IMAGE_ICON,
                                       size, size, LR_SHARED);
        SendMessageW(window, WM_SETICON, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(icon));
    }
}

} // namespace

std::unique_ptr<model_view> makeD3dModelView(view_events events, failure& why)
{
    viewer_ports ports;
    ports.log = std::move(events.log);
    ports.picked = std::move(events.picked);
    ports.choose_animation = std::move(events.choose_animation);
    ports.save_picture = std::move(events.save_picture);
    ports.played = std::move(events.played);
    // No owner: the view is a window of its own, which may lie behind the main window.
    std::unique_ptr<d3d_window> window = d3d_window::create(nullptr, std::move(ports), nullptr, why);
    if (window == nullptr)
        return nullptr;
    showProgramIcon(window->handle());
    return std::make_unique<d3d_model_view>(std::move(window));
}

} // namespace korvane
