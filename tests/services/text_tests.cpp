#include "EASY_GUI/services/command_line.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <limits>
#include <string>
#include <vector>

namespace korvane
{

TEST(text, utf8IsJudgedStrictly)
{
    const struct
    {
        const char* bytes;
        bool is_utf8;
        const char* shown; // as Latin-1 when it is not UTF-8
    } rows[] = {
        {"plain", true, "plain"},
        {"\xc3\xa4\xe6\x9d\x8e\xf0\x9f\x90\x89", true, "\xc3\xa4\xe6\x9d\x8e\xf0\x9f\x90\x89"},
        {"\xe4", false, "\xc3\xa4"},                                     // Latin-1 a umlaut
        {"\xc0\xaf", false, "\xc3\x80\xc2\xaf"},                         // overlong '/'
        {"\xed\xa0\x80", false, "\xc3\xad\xc2\xa0\xc2\x80"},             // a surrogate
        {"\xf4\x90\x80\x80", false, "\xc3\xb4\xc2\x90\xc2\x80\xc2\x80"}, // beyond U+10FFFF
        {"\xe6\x9d", false, "\xc3\xa6\xc2\x9d"},                         // cut short
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(isUtf8(row.bytes), row.is_utf8) << row.shown;
        EXPECT_EQ(displayText(row.bytes), row.shown);
    }
}

TEST(text, utf16AndUtf8GoBothWays)
{
    const std::string utf8 = "a\xc3\xa4\xe6\x9d\x8e\xf0\x9f\x90\x89";
    EXPECT_EQ(utf16FromUtf8(utf8), u"a\u00e4\u674e\U0001f409");
    EXPECT_EQ(utf8FromUtf16(u"a\u00e4\u674e\U0001f409"), utf8);
    EXPECT_EQ(utf8FromUtf16(std::u16string{char16_t(0xd800), u'x'}), "\xef\xbf\xbdx");
    EXPECT_EQ(utf16FromUtf8("\xffx"), u"\ufffdx");
}

TEST(text, floatsReadBackToTheSameBits)
{
    for (const std::uint32_t bits : {0u, 0x80000000u, 1u, 0x3dcccccdu, 0x7f7fffffu, 0x00800000u, 0xc2f6e979u})
    {
        const std::string text = floatText(std::bit_cast<float>(bits));
        float value = 7;
        std::from_chars(text.data(), text.data() + text.size(), value);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(value), bits) << text;
    }
    EXPECT_EQ(floatText(0.1f), "0.1");
    EXPECT_EQ(floatText(std::numeric_limits<float>::quiet_NaN()), "nan");
    EXPECT_EQ(floatText(-std::numeric_limits<float>::infinity()), "-inf");
}

TEST(text, aTerminalSeesNoControlCharacters)
{
    EXPECT_EQ(terminalText("a\x1b[31m\n\x7f\xe4"), "a\\x1b[31m\\x0a\\x7f\xc3\xa4");
}

TEST(text, lowerCaseTouchesAsciiOnly)
{
    EXPECT_EQ(toLower("AZ[\xc3\x84"), "az[\xc3\x84");
    EXPECT_TRUE(endsWithIgnoringCase("x.RIGID_model_v2", ".rigid_model_v2"));
    EXPECT_FALSE(endsWithIgnoringCase("v2", ".rigid_model_v2"));
    EXPECT_EQ(fileName("a\\b/c.d"), "c.d");
    EXPECT_EQ(counted(1, "frame") + ", " + counted(1234567, "vertex", "vertices"), "1 frame, 1,234,567 vertices");
}

TEST(failure, isOneLineAndTheFirstOneWins)
{
    failure why;
    EXPECT_FALSE(fail(why, failure_kind::truncated, "short", "a\nb"));
    why.offset = 12;
    why.field = "count";
    EXPECT_FALSE(fail(why, failure_kind::refused, "second"));
    EXPECT_EQ(describe(why), "a b: short (at byte 12, count)");
}

TEST(command_line, isTakenApartAsPeopleMeanIt)
{
    using arguments = std::vector<std::string>;
    const struct
    {
        const char* line;
        arguments expected;
    } rows[] = {
        {R"("C:\Program Files\korvane-cli.exe" info  "a b" c)", {"info", "a b", "c"}},
        {R"(k --data "C:\Total War\data\" list)", {"--data", R"(C:\Total War\data\)", "list"}},
        {R"(k add data_paths "C:\a b\" "D:\c\")", {"add", "data_paths", R"(C:\a b\)", R"(D:\c\)"}},
        {R"(k "C:\a b\\" "\\server\share\\" x\y\)", {R"(C:\a b\)", R"(\\server\share\)", R"(x\y\)"}},
        {R"(k "say \"hi\" now" \"x "a""b" "")", {R"(say "hi" now)", R"("x)", R"(a"b)", ""}},
        {"k", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(splitCommandLine(row.line), row.expected) << row.line;
}

} // namespace korvane
