#include "EASY_GUI/win32/image_list.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace korvane
{

image_list::image_list(int size) : m_handle(ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, 4, 4)), m_size(size) {}

int image_list::add(HICON icon)
{
    if (icon == nullptr)
        return add(std::span<const std::byte>());
    return ImageList_ReplaceIcon(m_handle.get(), -1, icon);
}

int image_list::add(std::span<const std::byte> rgba)
{
    const std::size_t bytes = static_cast<std::size_t>(m_size) * static_cast<std::size_t>(m_size) * 4;
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof description.bmiHeader;
    description.bmiHeader.biWidth = m_size;
    description.bmiHeader.biHeight = -m_size; // from above
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    const HBITMAP colours = CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (colours == nullptr)
        return -1;
    auto* const out = static_cast<std::byte*>(pixels);
    std::memset(out, 0, bytes);
    if (rgba.size() == bytes)
        for (std::size_t i = 0; i < bytes; i += 4) // blue comes first here
        {
            out[i] = rgba[i + 2];
            out[i + 1] = rgba[i + 1];
            out[i + 2] = rgba[i];
            out[i + 3] = rgba[i + 3];
        }
    // A mask of ones: what the alpha leaves out stays transparent on systems that look at the mask only.
    std::vector<std::uint8_t> mask_bits(
        static_cast<std::size_t>((m_size + 15) / 16 * 2) * static_cast<std::size_t>(m_size), rgba.empty() ? 0xff : 0);
    const HBITMAP mask = CreateBitmap(m_size, m_size, 1, 1, mask_bits.data());
    const int number = ImageList_Add(m_handle.get(), colours, mask);
    DeleteObject(mask);
    DeleteObject(colours);
    return number;
}

} // namespace korvane
