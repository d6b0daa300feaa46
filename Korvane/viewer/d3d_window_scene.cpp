// What the view does with its scene: animations, groups under the mouse, the menu.

#include "Korvane/viewer/d3d_window.h"

#include "EASY_GUI/win32/menu.h"
#include "Korvane/viewer/posed_mesh.h"
#include "Korvane/viewer/render_worker.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr float turns_per_second = 0.08f;
constexpr float bone_reach = 24; // pixels of 96 to the inch, around a click, in which a bone is found

std::vector<menu_row> shownRows(std::vector<view_menu_row> rows)
{
    std::vector<menu_row> shown;
    for (view_menu_row& row : rows)
        shown.push_back(
            {row.number, std::move(row.text), row.is_enabled, row.is_checked, shownRows(std::move(row.rows))});
    return shown;
}

} // namespace

playback_control& d3d_window::playback()
{
    return m_po_worker->playback();
}

std::vector<std::string> d3d_window::publishMotion()
{
    auto motion = std::make_shared<scene_motion>();
    motion->scene = m_scene;
    std::vector<std::string> problems;
    if (m_scene)
        for (const std::shared_ptr<const anim_data>& animation : m_animations)
        {
            motion->animations.push_back(fitAnimation(*m_scene, animation));
            for (const std::string& problem : motion->animations.back().problems)
                problems.push_back(problem);
        }
    m_po_worker->animate(std::move(motion));
    postMoving();
    return problems;
}

std::vector<std::string> d3d_window::setAnimations(std::vector<std::shared_ptr<const anim_data>> animations)
{
    m_animations = std::move(animations);
    std::vector<std::string> problems = publishMotion();
    playback().restart();
    return problems;
}

void d3d_window::playbackChanged()
{
    postMoving();
    redraw();
}

void d3d_window::postMoving()
{
    const bool is_playing = !m_animations.empty() && playback().state() == play_state::playing;
    m_po_worker->pacer().postMoving(is_playing);
    if (m_view.is_turntable == (m_last_turn != 0))
        return;
    m_last_turn = m_view.is_turntable ? GetTickCount64() : 0;
    if (m_view.is_turntable)
        SetTimer(handle(), turn_timer, turn_interval, nullptr);
    else
        KillTimer(handle(), turn_timer);
}

void d3d_window::turnByItself()
{
    const ULONGLONG now = GetTickCount64();
    const float seconds = static_cast<float>(now - std::exchange(m_last_turn, now)) / 1000.0f;
    m_view.eye.turn(seconds * turns_per_second * 6.2831853f, 0);
    redraw();
}

bool d3d_window::onPlaybackKey(unsigned virtual_key)
{
    switch (virtual_key)
    {
    case VK_SPACE:
        playback().restart();
        break;
    case 'J':
    case 'L':
        playback().setState(play_state::paused);
        virtual_key == 'J' ? playback().stepBack() : playback().stepForward();
        break;
    case 'K':
        playback().toggle();
        break;
    default:
        return false;
    }
    playbackChanged();
    if (m_ports.played)
        m_ports.played();
    return true;
}

void d3d_window::select(std::optional<shown_group> group)
{
    if (std::exchange(m_view.selected, group) != group)
        redraw();
}

glm::vec2 d3d_window::clientSize() const
{
    const RECT client = clientRectangle();
    return {static_cast<float>(std::max(client.right, 1L)), static_cast<float>(std::max(client.bottom, 1L))};
}

// As the view shows it at this moment. The one that is drawn belongs to the render thread.
std::unique_ptr<posed_scene> d3d_window::poseNow() const
{
    if (!m_scene || m_scene->parts.empty())
        return nullptr;
    auto pose = std::make_unique<posed_scene>(m_scene);
    for (const std::shared_ptr<const anim_data>& animation : m_animations)
        pose->setAnimation(animation);
    if (pose->hasAnimation())
        pose->show(m_po_worker->playback().shown());
    return pose;
}

std::optional<shown_group> d3d_window::groupAt(const posed_scene& pose, POINT at) const
{
    const glm::vec2 size = clientSize();
    const glm::mat4 to_world = glm::inverse(m_view.eye.toClip(size.x / size.y));
    const auto isShown = [this](std::size_t part, std::size_t group) {
        return !m_view.isHidden({static_cast<std::uint32_t>(part), static_cast<std::uint32_t>(group)});
    };
    const auto found =
        pickTriangle(pose, rayThrough(to_world, size, {static_cast<float>(at.x), static_cast<float>(at.y)}), isShown);
    if (!found)
        return std::nullopt;
    return shown_group{static_cast<std::uint32_t>(found->part), static_cast<std::uint32_t>(found->group)};
}

void d3d_window::pickGroup(POINT at)
{
    const std::unique_ptr<posed_scene> pose = poseNow();
    const std::optional<shown_group> found = pose ? groupAt(*pose, at) : std::nullopt;
    select(found);
    if (found && m_ports.picked)
        m_ports.picked(*found);
}

void d3d_window::openMenu(POINT at)
{
    const std::unique_ptr<posed_scene> pose = poseNow();
    view_menu_subject subject{m_view, pose.get(), {}, {}, m_is_enlarged};
    if (pose)
    {
        subject.under_mouse = groupAt(*pose, at);
        const glm::vec2 size = clientSize();
        const int joint = pose->jointAt(m_view.eye.toClip(size.x / size.y), size,
                                        {static_cast<float>(at.x), static_cast<float>(at.y)},
                                        bone_reach * static_cast<float>(dpi()) / 96);
        if (joint >= 0)
            subject.joint_there = static_cast<std::size_t>(joint);
    }
    POINT on_screen = at;
    ClientToScreen(handle(), &on_screen);
    const int chosen = chooseFromMenu(handle(), on_screen, shownRows(viewMenu(subject)));
    view_state changed = m_view;
    const view_command command = chosen > 0 ? applyViewMenu(chosen, subject, changed) : view_command::none;
    m_view = std::move(changed);
    postMoving();
    redraw();
    doCommand(command);
}

void d3d_window::doCommand(view_command command)
{
    switch (command)
    {
    case view_command::none:
        break;
    case view_command::start_view:
        showStart();
        break;
    case view_command::play_or_pause:
        onPlaybackKey('K');
        break;
    case view_command::choose_animation:
        if (m_ports.choose_animation)
            m_ports.choose_animation();
        break;
    case view_command::enlarge:
        toggleEnlarged();
        break;
    case view_command::save_picture:
        if (m_ports.save_picture)
            m_ports.save_picture();
        break;
    case view_command::show_all_groups:
        m_view.hidden.reset();
        redraw();
        break;
    }
}

} // namespace korvane
