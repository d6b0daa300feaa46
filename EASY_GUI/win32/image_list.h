#pragma once

// Small pictures of one size for lists and trees, made for one density. The owner keeps it as long as a control shows
// it.

#include "EASY_GUI/win32/handle_policies.h"

#include <commctrl.h>
#include <cstddef>
#include <span>

namespace korvane
{

using unique_image_list = unique_handle<simple_handle_policy<HIMAGELIST, &ImageList_Destroy>>;

class image_list
{
public:
    image_list() = default;        // none
    explicit image_list(int size); // pixels, both ways

    HIMAGELIST handle() const { return m_handle.get(); }
    int size() const { return m_size; }
    // The number of the picture; -1 when the system refuses. A null icon is an empty picture.
    int add(HICON icon);
    // size() * size() pixels of four bytes: red, green, blue, alpha.
    int add(std::span<const std::byte> rgba);

private:
    unique_image_list m_handle;
    int m_size = 0;
};

} // namespace korvane
