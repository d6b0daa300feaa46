#pragma once

// A child window that shows a picture as large as fits, with its proportions, before a checkerboard where it is
// transparent; without a picture a text. If wanted it can be zoomed and moved, by mouse and keys. Window thread only.

#include "EASY_GUI/services/zoomed_picture.h"
#include "EASY_GUI/win32/window.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

class image_view : public window
{
public:
    enum class use
    {
        look,
        // Wheel, + and - zoom, 0 fits, 1 shows the actual size; dragging and the arrows move. Tab goes there.
        zoom
    };

    std::function<void()> onDoubleClick;
    std::function<void()> onZoomed;                                   // by the person
    std::function<void(const std::optional<POINT>& pixel)> onPointed; // of the picture, below the mouse; nothing: none

    ~image_view() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why, use wanted = use::look);
    // width * height pixels from the upper left one, of four bytes each: red, green, blue, alpha. Does nothing with a
    // span of another size. The bytes are copied, unless an owner is given, which keeps them.
    void setPicture(int width, int height, std::span<const std::byte> rgba, std::shared_ptr<const void> owner = {});
    void setEmpty(std::string_view text); // no picture; the text, in the middle

    bool hasPicture() const { return !m_picture.empty(); }
    void fit();
    void showActualSize();
    void zoom(int steps); // zoomed_picture.h; around the middle
    double scale() const { return m_place.scale(); }

protected:
    bool onPaint() override;
    void onSize(int width, int height, size_change change) override;
    bool onKeyDown(unsigned virtual_key, bool is_repeat) override;
    bool onMouseWheel(int delta, const mouse_event& event) override;
    bool onMouseButton(const mouse_event& event) override;
    bool onMouseMove(const mouse_event& event) override;
    void onCaptureLost() override { m_dragged_from.reset(); }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    struct span_of_pixels // of the picture, that lie below a column or a row of the window
    {
        int begin = 0, end = 0; // the same: none
        int step = 1;           // of so many one is looked at
    };

    void compose(int width, int height);
    std::vector<span_of_pixels> spans(int count, double begin, int size) const;
    std::uint32_t pixelOf(const span_of_pixels& columns, const span_of_pixels& rows, std::uint32_t behind) const;
    void paintOn(HDC context, const RECT& client);
    void zoomed();
    bool isZoomable() const { return m_use == use::zoom && hasPicture(); }

    use m_use = use::look;
    std::span<const std::byte> m_picture;
    std::shared_ptr<const void> m_po_owner; // of its bytes
    SIZE m_size{};
    zoomed_picture m_place;
    std::optional<POINT> m_dragged_from;
    int m_wheel = 0; // of a notch
    std::string m_text;
    HFONT m_font = nullptr;                // the owner's
    std::vector<std::uint32_t> m_composed; // all of the window: 0x00rrggbb
};

} // namespace korvane
