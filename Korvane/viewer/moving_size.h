#pragma once

// At what size a picture is drawn while it moves, where the processor draws: at the full one while that is quick, else
// at 0.7 or 0.5 of it, enlarged on the screen. A plain value of the render thread. Portable.

#include <cstddef>

namespace korvane
{

class moving_size
{
public:
    static constexpr double wanted_seconds = 1.0 / 60; // of a frame

    double scale() const; // 1, 0.7 or 0.5, of width and height
    // A frame of the picture that moves took so long, at that scale.
    void took(double seconds);

private:
    std::size_t m_level = 0;
    double m_smoothed = 0; // seconds; of the level
    int m_frames = 0;      // at the level
};

} // namespace korvane
