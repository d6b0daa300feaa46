#pragma once

// "Save Picture...": how large, on which background and how smooth the picture of the 3D view becomes. What was chosen
// is remembered. For the thread that owns the configuration.

#include "EASY_GUI/services/shared_config.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvane
{

struct picture_size // pixels
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const picture_size&) const = default;
};

struct picture_request
{
    picture_size size;
    bool is_transparent = false; // else the background is as the view shows it
    std::uint32_t samples = 1;   // a pixel
};

class picture_settings
{
public:
    static constexpr std::uint32_t most_pixels = 8192; // in each direction
    static constexpr std::array<std::uint32_t, 4> sample_choices{1, 4, 9, 16};
    static constexpr std::array<std::string_view, 4> sample_names{"None", "4 samples a pixel", "9 samples a pixel",
                                                                  "16 samples a pixel (slow)"};
    enum class size_choice
    {
        view,
        full_hd,
        four_k,
        own
    };
    static constexpr std::size_t size_count = 4;

    // The configuration outlives this. The view's size is above zero.
    picture_settings(shared_config& config, picture_size view);

    std::string sizeName(size_choice choice) const; // with its pixels
    size_choice size() const { return m_choice; }
    void setSize(size_choice choice);
    // As the fields show them. Typing one makes the size an own one, and the other follows while proportions are kept.
    const std::string& width() const { return m_width; }
    const std::string& height() const { return m_height; }
    void typeWidth(const std::string& text);
    void typeHeight(const std::string& text);
    bool keepsProportions() const { return m_keeps_proportions; } // the view's
    void keepProportions(bool keeps);

    bool isTransparent() const { return m_is_transparent; }
    void setTransparent(bool is_transparent) { m_is_transparent = is_transparent; }
    std::size_t samples() const { return m_samples; } // a position in the choices
    void setSamples(std::size_t choice) { m_samples = choice; }

    // Why there cannot be such a picture, for the person; nothing: there can.
    std::optional<std::string> problem() const;
    // For a line below the fields: the problem, or what is to be said of a picture that takes long.
    std::string note() const;
    // Without a problem.
    picture_request request() const;
    void remember();

private:
    std::optional<picture_size> pixels() const;
    void showSize(picture_size size);

    shared_config& m_config;
    picture_size m_view;
    size_choice m_choice = size_choice::view;
    std::string m_width, m_height;
    bool m_keeps_proportions = true;
    bool m_is_transparent = false;
    std::size_t m_samples = 1; // 4 samples
};

} // namespace korvane
