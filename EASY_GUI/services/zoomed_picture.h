#pragma once

// Where a picture lies in a view that shows it larger or smaller, or a part of it. All in pixels; a value of the thread
// that owns it. Until somebody zooms, the picture is as large as fits.

namespace korvane
{

struct picture_point
{
    double x = 0;
    double y = 0;
};

class zoomed_picture
{
public:
    static constexpr double largest_scale = 64;
    static constexpr double smallest_side = 16; // of the view: smaller no picture becomes

    // A picture of another size shows the same part, as large as before: another mip level of one texture.
    void setPicture(int width, int height);
    void setView(int width, int height); // what is in the middle stays there

    void fit();            // all of it, however the view changes
    void showActualSize(); // a pixel is a pixel; what is in the middle stays there
    // By steps of a quarter, above 0 closer; what is at the point of the view stays there. Passing the actual size it
    // stops there.
    void zoom(int steps, picture_point at);
    void zoom(int steps) { zoom(steps, {m_view_width / 2, m_view_height / 2}); }
    void move(double x, double y); // of the view

    bool isFitted() const { return m_is_fitted; }
    double scale() const { return m_scale; } // pixels of the view for one of the picture
    double left() const { return m_left; }   // where the picture begins in the view; below 0: it is cut there
    double top() const { return m_top; }
    bool canMove() const; // not all of it is seen
    picture_point pictureAt(picture_point of_view) const
    {
        return {(of_view.x - m_left) / m_scale, (of_view.y - m_top) / m_scale};
    }

private:
    double fittingScale() const;
    void place(double scale, picture_point kept, picture_point at); // a point of the picture at one of the view
    void keepInside();

    double m_width = 1, m_height = 1;
    double m_view_width = 1, m_view_height = 1;
    double m_scale = 1, m_left = 0, m_top = 0;
    bool m_is_fitted = true;
};

} // namespace korvane
