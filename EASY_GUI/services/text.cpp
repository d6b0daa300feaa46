#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace korvane
{

namespace
{

char lowerCharacter(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

constexpr char32_t replacement_character = 0xfffd;
constexpr char32_t malformed = 0xffffffff;

// The code point at position, which moves behind it; malformed input gives malformed and moves by one byte.
char32_t decodeUtf8(std::string_view text, std::size_t& position)
{
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char lead = byteAt(position);
    if (lead < 0x80)
    {
        ++position;
        return lead;
    }
    const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (lead < 0xc2 || lead > 0xf4 || length > text.size() - position)
    {
        ++position;
        return malformed;
    }
    char32_t code = lead & (0xffu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
    {
        const unsigned char next = byteAt(position + i);
        if ((next & 0xc0) != 0x80)
        {
            ++position;
            return malformed;
        }
        code = (code << 6) | (next & 0x3fu);
    }
    if (code < smallest[length] || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff))
    {
        ++position;
        return malformed;
    }
    position += length;
    return code;
}

void appendUtf8(std::string& text, char32_t code)
{
    const auto put = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (code < 0x80)
        return put(code);
    if (code < 0x800)
        put(0xc0 | (code >> 6));
    else
    {
        if (code < 0x10000)
            put(0xe0 | (code >> 12));
        else
        {
            put(0xf0 | (code >> 18));
            put(0x80 | ((code >> 12) & 0x3f));
        }
        put(0x80 | ((code >> 6) & 0x3f));
    }
    put(0x80 | (code & 0x3f));
}

} // namespace

void lowerInPlace(char* text, std::size_t size)
{
    // Eight characters at a time: archive indexes hold a hundred megabytes of paths. In each byte below 0x80 the high
    // bit of the first sum says "at least 'A'", of the second "above 'Z'".
    constexpr std::uint64_t ones = 0x0101010101010101u;
    constexpr std::uint64_t high_bits = 0x80u * ones;
    for (; size >= 8; size -= 8, text += 8)
    {
        std::uint64_t word;
        std::memcpy(&word, text, 8);
        const std::uint64_t low = word & ~high_bits;
        const std::uint64_t is_letter =
            ((low + (0x80u - 'A') * ones) ^ (low + (0x7fu - 'Z') * ones)) & ~word & high_bits;
        word |= is_letter >> 2;
        std::memcpy(text, &word, 8);
    }
    for (; size > 0; --size, ++text)
        *text = lowerCharacter(*text);
}

std::string toLower(std::string_view text)
{
    std::string lower(text);
    lowerInPlace(lower.data(), lower.size());
    return lower;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerCharacter(a) == lowerCharacter(b); });
}

bool endsWithIgnoringCase(std::string_view text, std::string_view ending)
{
    return ending.size() <= text.size() && equalsIgnoringCase(text.substr(text.size() - ending.size()), ending);
}

bool isUtf8(std::string_view text)
{
    for (std::size_t position = 0; position < text.size();)
        if (decodeUtf8(text, position) == malformed)
            return false;
    return true;
}

std::size_t utf8Cut(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return text.size();
    for (std::size_t begin = limit; begin > 0 && limit - begin < 3;)
    {
        const auto byte = static_cast<unsigned char>(text[--begin]);
        if (byte >= 0xc0) // the last character's first byte: it is whole, or is left out
        {
            const std::size_t length = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2;
            const bool is_cut = limit - begin < length && isUtf8(text.substr(begin, length));
            return is_cut ? begin : limit;
        }
        if (byte < 0x80)
            break;
    }
    return limit;
}

std::string displayText(std::string_view bytes)
{
    if (isUtf8(bytes))
        return std::string(bytes);
    std::string text;
    for (const char byte : bytes)
        appendUtf8(text, static_cast<unsigned char>(byte));
    return text;
}

std::string menuText(std::string_view bytes)
{
    std::string text;
    for (const char character : displayText(bytes))
        text.append(character == '&' ? 2 : 1, character);
    return text;
}

std::string terminalText(std::string_view bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    const std::string shown = displayText(bytes);
    for (std::size_t i = 0; i < shown.size(); ++i)
    {
        auto byte = static_cast<unsigned char>(shown[i]);
        // Of the second row of control characters, U+0080 to U+009F, the second byte names the character.
        const bool is_second_row =
            byte == 0xc2 && i + 1 < shown.size() && static_cast<unsigned char>(shown[i + 1]) < 0xa0;
        if (is_second_row)
            byte = static_cast<unsigned char>(shown[++i]);
        if (byte >= 0x20 && byte != 0x7f && !is_second_row)
            text += shown[i];
        else
            text += std::string("\\x") + digits[byte >> 4] + digits[byte & 15];
    }
    return text;
}

std::string utf8FromUtf16(std::u16string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char32_t code = text[i];
        const bool is_high = code >= 0xd800 && code <= 0xdbff;
        if (is_high && i + 1 < text.size() && text[i + 1] >= 0xdc00 && text[i + 1] <= 0xdfff)
            code = 0x10000 + ((code - 0xd800) << 10) + (text[++i] - char32_t{0xdc00});
        else if (code >= 0xd800 && code <= 0xdfff)
            code = replacement_character;
        appendUtf8(result, code);
    }
    return result;
}

std::u16string utf16FromUtf8(std::string_view text)
{
    std::u16string result;
    for (std::size_t position = 0; position < text.size();)
    {
        char32_t code = decodeUtf8(text, position);
        if (code == malformed)
            code = replacement_character;
        if (code >= 0x10000)
        {
            result += static_cast<char16_t>(0xd800 + ((code - 0x10000) >> 10));
            code = 0xdc00 + ((code - 0x10000) & 0x3ff);
        }
        result += static_cast<char16_t>(code);
    }
    return result;
}

std::string_view untilZero(std::span<const std::byte> field)
{
    const auto end = std::find(field.begin(), field.end(), std::byte{0});
    return {reinterpret_cast<const char*>(field.data()), static_cast<std::size_t>(end - field.begin())};
}

std::string_view fileName(std::string_view path)
{
    const std::size_t separator = path.find_last_of("\\/");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::size_t nameDistance(std::string_view left, std::string_view right, std::size_t limit)
{
    if (left.size() > longest_compared_name || right.size() > longest_compared_name)
        return limit + 1;
    std::array<std::size_t, longest_compared_name + 1> row;
    for (std::size_t i = 0; i <= right.size(); ++i)
        row[i] = i;
    for (std::size_t i = 1; i <= left.size(); ++i)
    {
        std::size_t diagonal = row[0];
        std::size_t smallest = row[0] = i;
        for (std::size_t k = 1; k <= right.size(); ++k)
        {
            const std::size_t exchanged = diagonal + (left[i - 1] == right[k - 1] ? 0 : 1);
            diagonal = row[k];
            row[k] = std::min({exchanged, row[k] + 1, row[k - 1] + 1});
            smallest = std::min(smallest, row[k]);
        }
        if (smallest > limit)
            return limit + 1;
    }
    return std::min(row[right.size()], limit + 1);
}

std::string nearestName(std::string_view wanted, std::span<const std::string> known)
{
    std::string nearest;
    std::size_t best = std::clamp<std::size_t>((wanted.size() + 2) / 3, 1, 3) + 1;
    for (const std::string& name : known)
        if (const std::size_t distance = nameDistance(toLower(wanted), toLower(name), best); distance < best)
        {
            best = distance;
            nearest = name;
        }
    return nearest;
}

std::string floatText(float value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t place = digits.size(); place > 3; place -= 3)
        digits.insert(place - 3, ",");
    return digits;
}

std::string counted(std::uint64_t count, std::string_view singular)
{
    return counted(count, singular, std::string(singular) + 's');
}

std::string counted(std::uint64_t count, std::string_view singular, std::string_view plural)
{
    return grouped(count) + ' ' + std::string(count == 1 ? singular : plural);
}

} // namespace korvane
