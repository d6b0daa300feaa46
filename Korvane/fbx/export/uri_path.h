#pragma once

#include <string>
#include <string_view>

namespace korvane
{

// A path with '/' as a relative URI: what may not stand in one becomes "%20" and so on.
inline std::string uriOf(std::string_view path)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string uri;
    for (const char character : path)
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool is_plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                              (byte >= '0' && byte <= '9') ||
                              std::string_view("-_.~/!$&'()*+,;=@").find(character) != std::string_view::npos;
        if (is_plain)
            uri += character;
        else
            ((uri += '%') += digits[byte >> 4]) += digits[byte & 15];
    }
    return uri;
}

} // namespace korvane
