#pragma once

// Where in an animation the viewer stands: a state machine over a clock that is handed in. It belongs to the render
// thread; the window thread speaks to it through playback_control. All times are seconds in double precision.
//
// What a person sees: playing goes round, from the end time back to frame 0. Pausing keeps the pose that is shown, and
// resuming goes on from there. A step goes to the next or the previous whole frame, from the last to frame 0 and from
// frame 0 to the last; it works while playing, too. Rates and times that make no sense never fail: the animation then
// stands still, but can be stepped through.

#include <atomic>
#include <bit>
#include <cstdint>
#include <functional>

namespace korvane
{

enum class play_state : std::uint32_t
{
    playing = 1,
    paused = 2
};

// What the button shows that leads to the other state.
[[nodiscard]] constexpr const char* playButtonLabel(play_state state)
{
    return state == play_state::playing ? "||" : "|>";
}

// A pose between a frame and the next. The frame may lie beyond the last when a file's end time does.
struct playback_position
{
    std::uint32_t frame = 0;
    float fraction = 0; // 0 to 1

    bool operator==(const playback_position&) const = default;
};

// The length of an animation, as its file says.
struct playback_length
{
    double frame_rate = 0; // frames a second
    double end_time = 0;   // seconds
    std::uint32_t frame_count = 0;

    // True when time can run: both numbers are finite and above 0.
    bool canRun() const;
};

// The position after so many frames; 0 and below, and no number, are frame 0.
[[nodiscard]] playback_position positionOfFrame(double frames);
// The position at a time of an animation that goes round: -0.1 is 0.1 before the end time, the end time is frame 0.
[[nodiscard]] playback_position positionAt(double time_seconds, const playback_length& length);

// Of frames, both shown.
struct frame_range
{
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    bool isWhole() const { return last <= first; } // no range at all: everything is played
    bool operator==(const frame_range&) const = default;
};

using seconds_clock = std::function<double()>;
// Of the machine; never runs backwards. Where it starts means nothing.
[[nodiscard]] double steadySeconds();

class playback
{
public:
    explicit playback(seconds_clock clock = steadySeconds) : m_clock(std::move(clock)) {}

    // Begins an animation at its frame 0; playing or paused stays as it is.
    void load(const playback_length& length);
    void unload();
    bool isLoaded() const { return m_is_loaded; }

    // Once for every picture, before it is drawn.
    void tick();
    void setState(play_state state);
    // How fast time runs: 1 as the file says. What is no number or below 0 means 1.
    void setSpeed(float speed);
    // Playing goes round between these: the last frame is shown whole, until the one after it. A range without frames
    // means all.
    void setRange(const frame_range& range);
    void seek(const playback_position& position); // beyond the end: the last frame
    // So many whole frames forward, or back; with the frame's pose unblended. The position follows at once.
    void step(std::int64_t frames);

    play_state state() const { return m_state; }
    playback_position position() const { return m_position; }

private:
    void goOnFrom(const playback_position& position);

    seconds_clock m_clock;
    playback_length m_length;
    frame_range m_range;
    float m_speed = 1;
    play_state m_state = play_state::playing;
    playback_position m_position; // what is shown
    double m_start = 0;           // clock when time last began to run
    double m_start_frames = 0;    // where it began, in frames
    bool m_is_loaded = false;
};

// How both threads speak to each other: the window thread's wishes and what the render thread shows each travel as one
// whole value, each in an atomic with one writer. Steps are counted, so none is lost between two pictures; in which
// order steps and pauses came does not matter, because they come out the same. Of several places that were sought
// between two pictures the last one counts.
class playback_control
{
public:
    // Window thread.
    void setState(play_state state);
    void toggle() { setState(m_asked.state == play_state::playing ? play_state::paused : play_state::playing); }
    void stepForward() { step(1); }
    void stepBack() { step(-1); }
    void setSpeed(float speed) { m_speed.store(speed); }
    void setRange(const frame_range& range) { m_range.store(std::bit_cast<std::uint64_t>(range)); }
    void seek(const playback_position& position);
    void restart() { seek({}); }
    play_state state() const { return m_asked.state; } // as asked for last
    float speed() const { return m_speed.load(); }
    frame_range range() const { return std::bit_cast<frame_range>(m_range.load()); }
    playback_position shown() const { return std::bit_cast<playback_position>(m_shown.load()); }

    // Render thread, once for every picture: does what was asked for since the last time, then ticks.
    void advance(playback& player);

private:
    struct wish
    {
        play_state state = play_state::playing;
        std::uint32_t steps = 0; // forward less back since the beginning, modulo 2^32
    };
    void step(std::int32_t frames);

    // Whole values in one word each: compilers turn an atomic of a small struct into calls of a library.
    std::atomic<std::uint64_t> m_wish{std::bit_cast<std::uint64_t>(wish{})}; // written by the window thread only
    std::atomic<std::uint64_t> m_shown{0};                                   // a playback_position; the render thread's
    std::atomic<std::uint64_t> m_range{0};                                   // a frame_range; the window thread's
    std::atomic<float> m_speed{1};                                           // the window thread's
    std::atomic<std::uint64_t> m_sought{0};                                  // a playback_position; the window thread's
    std::atomic<std::uint32_t> m_seeks{0};                                   // counted by the window thread
    std::uint32_t m_seeks_done = 0;                                          // render thread only
    wish m_asked;                                                            // window thread only
    std::uint32_t m_steps_done = 0;                                          // render thread only
};

} // namespace korvane
