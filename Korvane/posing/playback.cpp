#include "Korvane/posing/playback.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

namespace korvane
{

bool playback_length::canRun() const
{
    return std::isfinite(frame_rate) && frame_rate > 0 && std::isfinite(end_time) && end_time > 0;
}

playback_position positionOfFrame(double frames)
{
    constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();
    if (!(frames > 0))
        return {};
    if (frames >= largest)
        return {largest, 0};
    const double whole = std::trunc(frames);
    return {static_cast<std::uint32_t>(whole), static_cast<float>(frames - whole)};
}

playback_position positionAt(double time_seconds, const playback_length& length)
{
    if (!length.canRun() || !std::isfinite(time_seconds))
        return {};
    double elapsed = std::fmod(time_seconds, length.end_time);
    if (elapsed < 0)
        elapsed += length.end_time;
    return elapsed < length.end_time ? positionOfFrame(elapsed * length.frame_rate) : playback_position{};
}

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void playback::load(const playback_length& length)
{
    m_length = length;
    m_is_loaded = true;
    goOnFrom({});
}

void playback::unload()
{
    m_is_loaded = false;
    m_position = {};
}

void playback::goOnFrom(const playback_position& position)
{
    m_position = position;
    m_start_frames = position.frame + static_cast<double>(position.fraction);
    m_start = m_clock();
}

void playback::tick()
{
    if (!m_is_loaded || m_state != play_state::playing || !m_length.canRun())
        return;
    // In frames, so that a frame that was resumed or stepped to is that frame to the last bit.
    const double frames = m_start_frames + (m_clock() - m_start) * m_length.frame_rate * m_speed;
    double end = m_length.end_time * m_length.frame_rate;
    if (!m_range.isWhole())
        end = std::min(end, m_range.last + 1.0);
    if (frames < end && (m_range.isWhole() || frames >= m_range.first))
        m_position = positionOfFrame(frames);
    else
        goOnFrom({m_range.isWhole() ? 0 : m_range.first, 0});
}

void playback::setSpeed(float speed)
{
    const float usable = std::isfinite(speed) && speed >= 0 ? speed : 1;
    if (usable == m_speed)
        return;
    goOnFrom(m_position);
    m_speed = usable;
}

void playback::setRange(const frame_range& range)
{
    m_range = range;
    if (m_length.frame_count != 0 && range.first >= m_length.frame_count)
        m_range = {};
}

void playback::seek(const playback_position& position)
{
    if (!m_is_loaded || m_length.frame_count == 0)
        return;
    goOnFrom(position.frame < m_length.frame_count ? position : playback_position{m_length.frame_count - 1, 0});
}

void playback::setState(play_state state)
{
    if (state == m_state)
        return;
    m_state = state;
    if (m_is_loaded && state == play_state::playing)
        goOnFrom(m_position);
}

void playback::step(std::int64_t frames)
{
    const std::int64_t count = m_length.frame_count;
    if (!m_is_loaded || frames == 0 || count == 0)
        return;
    const std::int64_t shown = std::min<std::int64_t>(m_position.frame, count - 1);
    const std::int64_t target = (shown + frames % count + count) % count;
    goOnFrom({static_cast<std::uint32_t>(target), 0});
}

void playback_control::setState(play_state state)
{
    m_asked.state = state;
    m_wish.store(std::bit_cast<std::uint64_t>(m_asked));
}

void playback_control::step(std::int32_t frames)
{
    m_asked.steps += static_cast<std::uint32_t>(frames);
    m_wish.store(std::bit_cast<std::uint64_t>(m_asked));
}

void playback_control::seek(const playback_position& position)
{
    m_sought.store(std::bit_cast<std::uint64_t>(position));
    m_seeks.fetch_add(1);
}

void playback_control::advance(playback& player)
{
    const auto wanted = std::bit_cast<wish>(m_wish.load());
    const auto steps = static_cast<std::int32_t>(wanted.steps - m_steps_done);
    m_steps_done = wanted.steps;
    player.setSpeed(m_speed.load());
    player.setRange(range());
    if (const std::uint32_t seeks = m_seeks.load(); seeks != m_seeks_done)
    {
        m_seeks_done = seeks;
        player.seek(std::bit_cast<playback_position>(m_sought.load()));
    }
    // Steps first: playing then goes on from the frame that was stepped to, whole.
    player.step(steps);
    player.setState(wanted.state);
    player.tick();
    m_shown.store(std::bit_cast<std::uint64_t>(player.position()));
}

} // namespace korvane
