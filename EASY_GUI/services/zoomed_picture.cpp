#include "EASY_GUI/services/zoomed_picture.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

constexpr double step = 1.25;

// Smaller than the view it is in the middle, else it fills the view.
double inside(double begin, double size, double view)
{
    return size <= view ? (view - size) / 2 : std::clamp(begin, view - size, 0.0);
}

} // namespace

void zoomed_picture::setPicture(int width, int height)
{
    const double larger = m_width / std::max(width, 1);
    const picture_point middle = pictureAt({m_view_width / 2, m_view_height / 2});
    m_width = std::max(width, 1);
    m_height = std::max(height, 1);
    if (m_is_fitted)
        return fit();
    place(m_scale * larger, {middle.x / larger, middle.y / larger}, {m_view_width / 2, m_view_height / 2});
}

void zoomed_picture::setView(int width, int height)
{
    const picture_point middle = pictureAt({m_view_width / 2, m_view_height / 2});
    m_view_width = std::max(width, 1);
    m_view_height = std::max(height, 1);
    if (m_is_fitted)
        return fit();
    place(m_scale, middle, {m_view_width / 2, m_view_height / 2});
}

double zoomed_picture::fittingScale() const
{
    return std::min(m_view_width / m_width, m_view_height / m_height);
}

void zoomed_picture::fit()
{
    m_is_fitted = true;
    m_scale = fittingScale();
    keepInside();
}

void zoomed_picture::showActualSize()
{
    const picture_point at{m_view_width / 2, m_view_height / 2};
    place(1, pictureAt(at), at);
}

void zoomed_picture::zoom(int steps, picture_point at)
{
    double scale = m_scale * std::pow(step, steps);
    if ((m_scale < 1 && scale > 1) || (m_scale > 1 && scale < 1))
        scale = 1;
    place(scale, pictureAt(at), at);
}

void zoomed_picture::move(double x, double y)
{
    if (!canMove())
        return;
    m_is_fitted = false;
    m_left += x;
    m_top += y;
    keepInside();
}

bool zoomed_picture::canMove() const
{
    constexpr double nothing = 0.5;
    return m_width * m_scale > m_view_width + nothing || m_height * m_scale > m_view_height + nothing;
}

void zoomed_picture::place(double scale, picture_point kept, picture_point at)
{
    const double smallest = std::min({fittingScale(), 1.0, smallest_side / std::min(m_width, m_height)});
    m_is_fitted = false;
    m_scale = std::clamp(scale, smallest, std::max(largest_scale, fittingScale()));
    m_left = at.x - kept.x * m_scale;
    m_top = at.y - kept.y * m_scale;
    keepInside();
}

void zoomed_picture::keepInside()
{
    m_left = inside(m_left, m_width * m_scale, m_view_width);
    m_top = inside(m_top, m_height * m_scale, m_view_height);
}

} // namespace korvane
