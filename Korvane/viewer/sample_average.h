#pragma once

// One picture out of several that show the same a fraction of a pixel apart. Colours are averaged as light, and as much
// as their alpha says, so that nothing of what a transparent pixel holds shows at an edge. Portable.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

enum class sample_content
{
    colour, // sRGB
    data    // value for value
};

class sample_average
{
public:
    // Of so many pixels; what was added before is forgotten.
    void begin(std::size_t pixels, sample_content content);
    // Four bytes for each pixel: red, green, blue and straight alpha.
    void add(std::span<const std::uint8_t> rgba);
    // What was added, once at least, in the same form. A pixel with no alpha is 0.
    void finish(std::span<std::uint8_t> rgba) const;

private:
    std::vector<float> m_sums; // four for each pixel, colours times alpha
    std::size_t m_added = 0;
    sample_content m_content = sample_content::colour;
};

} // namespace korvane
