#pragma once

// Text helpers. Texts inside the program are UTF-8; texts from game files are bytes until they are shown.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

// ASCII letters only: other bytes belong to multi-byte characters and are kept.
[[nodiscard]] std::string toLower(std::string_view text);
void lowerInPlace(char* text, std::size_t size);
// One byte of an internal path as comparisons see it: ASCII letters small, '/' as '\\'.
[[nodiscard]] constexpr char foldedCharacter(char character)
{
    if (character == '/')
        return '\\';
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}
[[nodiscard]] bool equalsIgnoringCase(std::string_view left, std::string_view right);
[[nodiscard]] bool endsWithIgnoringCase(std::string_view text, std::string_view ending);

// True for well-formed UTF-8 (no overlong forms, no surrogates).
[[nodiscard]] bool isUtf8(std::string_view text);
// What to show of a text from a file: the text when it is UTF-8, else its bytes read as Latin-1.
[[nodiscard]] std::string displayText(std::string_view bytes);
// The same for a menu: an '&' is doubled, so that it is shown.
[[nodiscard]] std::string menuText(std::string_view bytes);
// The same for a terminal: control characters, which could move the cursor or colour the screen, become \x1b and so on.
[[nodiscard]] std::string terminalText(std::string_view bytes);
// How many bytes of a text to keep so that at most limit are kept and no character is cut in two.
[[nodiscard]] std::size_t utf8Cut(std::string_view text, std::size_t limit);
[[nodiscard]] std::string utf8FromUtf16(std::u16string_view text); // unpaired surrogates become U+FFFD
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view text); // malformed bytes become U+FFFD

// The part of a fixed-width field before its first zero.
[[nodiscard]] std::string_view untilZero(std::span<const std::byte> field);

// The last component of a path with '\' or '/' separators.
[[nodiscard]] std::string_view fileName(std::string_view path);

// Insertions, deletions and exchanged characters that make one name of the other; more than limit when there are more,
// or when a name is too long to be compared.
inline constexpr std::size_t longest_compared_name = 255;
[[nodiscard]] std::size_t nameDistance(std::string_view left, std::string_view right, std::size_t limit);
// Of the known names the one that was most likely meant by an unknown one; empty when none is within a third of its
// characters, and three of them.
[[nodiscard]] std::string nearestName(std::string_view wanted, std::span<const std::string> known);

// The shortest decimal text that reads back to the same value; "nan", "inf", "-inf".
[[nodiscard]] std::string floatText(float value);

// "12,345": the digits in groups of three.
[[nodiscard]] std::string grouped(std::uint64_t number);
// "1 frame", "12,345 frames"; with a plural of its own "2 vertices".
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view singular);
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view singular, std::string_view plural);

} // namespace korvane
