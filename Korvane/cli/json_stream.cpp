#include "Korvane/cli/json_stream.h"

#include <array>
#include <charconv>
#include <cmath>

namespace korvane
{

namespace
{

constexpr std::size_t printed_at_once = 64 * 1024;

} // namespace

void json_stream::printWhenFull()
{
    if (m_text.size() < printed_at_once)
        return;
    m_context.print(m_text);
    m_text.clear();
}

void json_stream::separate()
{
    if (m_needs_comma)
        m_text += ',';
    m_needs_comma = true;
}

void json_stream::begin(char mark)
{
    separate();
    m_text += mark;
    m_needs_comma = false;
}

void json_stream::end(char mark)
{
    m_text += mark;
    m_needs_comma = true;
    printWhenFull();
}

void json_stream::key(std::string_view name)
{
    separate();
    m_text += json(name).dump();
    m_text += ':';
    m_needs_comma = false;
}

void json_stream::value(const json& small)
{
    separate();
    m_text += small.dump();
    printWhenFull();
}

void json_stream::member(std::string_view name, const json& small)
{
    key(name);
    value(small);
}

template <typename type>
void json_stream::appendNumber(type value)
{
    separate();
    if (!std::isfinite(value))
    {
        m_text += std::isnan(value) ? "\"nan\"" : value < 0 ? "\"-inf\"" : "\"inf\"";
        return;
    }
    // As everywhere else in the program's JSON: digits as far as these are readable, and never a whole number.
    const type size = std::abs(value);
    const bool is_plain = size == 0 || (size >= type(1e-4) && size < type(1e15));
    std::array<char, 48> written{};
    const auto behind = std::to_chars(written.data(), written.data() + written.size(), value,
                                      is_plain ? std::chars_format::fixed : std::chars_format::scientific)
                            .ptr;
    const std::string_view digits(written.data(), static_cast<std::size_t>(behind - written.data()));
    m_text += digits;
    if (is_plain && digits.find('.') == std::string_view::npos)
        m_text += ".0";
    printWhenFull();
}

void json_stream::number(float value)
{
    appendNumber(value);
}

void json_stream::number(double value)
{
    appendNumber(value);
}

void json_stream::textPart(std::string_view part)
{
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char letter : part)
    {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20)
            m_text.append("\\u00").append({digits[code >> 4], digits[code & 15]});
        else if (letter == '"' || letter == '\\')
            m_text.append({'\\', letter});
        else
            m_text += letter;
    }
    printWhenFull();
}

void json_stream::endDocument()
{
    m_context.print(m_text + "\n");
    m_text.clear();
}

} // namespace korvane
