#include "Korvane/presenters/picture_settings.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace korvane
{

namespace
{

constexpr picture_size full_hd_size{1920, 1080};
constexpr picture_size four_k_size{3840, 2160};
constexpr std::string_view view_word = "view", transparent_word = "transparent", free_word = "free",
                           samples_word = "samples";

// A whole number that a picture can have in a direction.
std::optional<std::uint32_t> pixelCount(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    std::uint32_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size() || count == 0 || count > picture_settings::most_pixels)
        return std::nullopt;
    return count;
}

std::optional<picture_size> readPixels(std::string_view text) // "1920x1080"
{
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos)
        return std::nullopt;
    const auto width = pixelCount(text.substr(0, cross));
    const auto height = pixelCount(text.substr(cross + 1));
    return width && height ? std::optional(picture_size{*width, *height}) : std::nullopt;
}

std::uint32_t scaled(std::uint32_t value, std::uint32_t to, std::uint32_t from)
{
    const std::uint64_t product = std::uint64_t{value} * to;
    return static_cast<std::uint32_t>(std::max<std::uint64_t>((product + from / 2) / from, 1));
}

std::string sizeText(picture_size size)
{
    return std::to_string(size.width) + " x " + std::to_string(size.height);
}

} // namespace

picture_settings::picture_settings(shared_config& config, picture_size view) : m_config(config), m_view(view)
{
    showSize(m_view);
    std::optional<picture_size> own;
    for (const std::string& word : config.get(config_keys::picture_choices))
        if (word == transparent_word)
            m_is_transparent = true;
        else if (word == free_word)
            m_keeps_proportions = false;
        else if (word.starts_with(samples_word))
        {
            const auto count = pixelCount(std::string_view(word).substr(samples_word.size()));
            const auto found = std::find(sample_choices.begin(), sample_choices.end(), count.value_or(0));
            if (found != sample_choices.end())
                m_samples = static_cast<std::size_t>(found - sample_choices.begin());
        }
        else if (const auto size = readPixels(word))
            own = size;
    if (own && (*own == full_hd_size || *own == four_k_size))
        setSize(*own == full_hd_size ? size_choice::full_hd : size_choice::four_k);
    else if (own)
    {
        showSize(*own);
        setSize(size_choice::own); // the view may have other proportions by now
    }
}

std::string picture_settings::sizeName(size_choice choice) const
{
    switch (choice)
    {
    case size_choice::view:
        return "As the view (" + sizeText(m_view) + ")";
    case size_choice::full_hd:
        return sizeText(full_hd_size) + " (Full HD)";
    case size_choice::four_k:
        return sizeText(four_k_size) + " (4K)";
    case size_choice::own:
        break;
    }
    return "Own size";
}

void picture_settings::showSize(picture_size size)
{
    m_width = std::to_string(size.width);
    m_height = std::to_string(size.height);
}

void picture_settings::setSize(size_choice choice)
{
    m_choice = choice;
    if (choice != size_choice::own) // which begins with what was there
        showSize(choice == size_choice::view ? m_view : choice == size_choice::full_hd ? full_hd_size : four_k_size);
    else if (m_keeps_proportions)
        typeWidth(m_width);
}

void picture_settings::typeWidth(const std::string& text)
{
    m_choice = size_choice::own;
    m_width = text;
    if (const auto width = pixelCount(text); width && m_keeps_proportions)
        m_height = std::to_string(scaled(*width, m_view.height, m_view.width));
}

void picture_settings::typeHeight(const std::string& text)
{
    m_choice = size_choice::own;
    m_height = text;
    if (const auto height = pixelCount(text); height && m_keeps_proportions)
        m_width = std::to_string(scaled(*height, m_view.width, m_view.height));
}

void picture_settings::keepProportions(bool keeps)
{
    m_keeps_proportions = keeps;
    if (keeps && m_choice == size_choice::own)
        typeWidth(m_width);
}

std::optional<picture_size> picture_settings::pixels() const
{
    const auto width = pixelCount(m_width);
    const auto height = pixelCount(m_height);
    return width && height ? std::optional(picture_size{*width, *height}) : std::nullopt;
}

std::optional<std::string> picture_settings::problem() const
{
    if (pixels())
        return std::nullopt;
    return "Width and height are whole numbers from 1 to " + std::to_string(most_pixels) + ".";
}

std::string picture_settings::note() const
{
    if (const auto wrong = problem())
        return *wrong;
    constexpr std::uint64_t quick_samples = 40'000'000;
    const picture_request wanted = request();
    const std::uint64_t drawn = std::uint64_t{wanted.size.width} * wanted.size.height * wanted.samples;
    return drawn > quick_samples ? "This may take a while; you can stop it." : "";
}

picture_request picture_settings::request() const
{
    return {pixels().value_or(m_view), m_is_transparent, sample_choices[m_samples]};
}

void picture_settings::remember()
{
    const picture_size size = request().size;
    std::vector<std::string> words{m_choice == size_choice::view
                                       ? std::string(view_word)
                                       : std::to_string(size.width) + "x" + std::to_string(size.height),
                                   std::string(samples_word) + std::to_string(sample_choices[m_samples])};
    if (m_is_transparent)
        words.emplace_back(transparent_word);
    if (!m_keeps_proportions)
        words.emplace_back(free_word);
    m_config.set(config_keys::picture_choices, words);
}

} // namespace korvane
