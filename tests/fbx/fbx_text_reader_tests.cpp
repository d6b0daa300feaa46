// Text documents: how each way of writing comes out in the shape of binary files, and what is refused.

#include "Korvane/fbx/container/fbx_document.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace korvane
{
namespace
{

bool readText(const std::string& text, fbx_document& document, failure& why)
{
    return readFbx(std::as_bytes(std::span(text)), document, why);
}

const std::string head = "; FBX 7.5.0 project file\n";

std::string shownOf(const std::string& text)
{
    fbx_document document;
    failure why;
    if (!readText(head + text, document, why))
        return describe(why);
    const std::string shown = dumpFbx(document);
    return shown.substr(shown.find('\n') + 1);
}

} // namespace

TEST(fbx_text_reader, everyWayOfWritingHasItsShape)
{
    const struct
    {
        const char* name;
        const char* text;
        const char* shown;
    } rows[] = {
        {"whole numbers by size", "A: 1,-2147483648,2147483647,2147483648,+7",
         "A: I 1, I -2147483648, I 2147483647, L 2147483648, I 7\n"},
        {"fractions", "A: 0.5,1.,-2.5e3,1E-2,1e400,-1e400,1e-400",
         "A: D 0.5, D 1, D -2500, D 0.01, D inf, D -inf, D 0\n"},
        {"what is no number", "A: 1.#INF,-1.#INF,-1.#IND,1.#QNAN,nan,inf,-inf,nan(ind),Infinity",
         "A: D inf, D -inf, D nan, D nan, D nan, D inf, D -inf, D nan, D inf\n"},
        {"an array of what is no number", "A: *3 { a: 1,inf,-1.#IND }", "A: d[3] 1 inf nan\n"},
        {"letters and words", "A: T,U,Linear", "A: C 'T', C 'U', S \"Linear\"\n"},
        {"escapes", "A: \"&quot;'&&quot;&lf;&q;&quot\"", "A: S \"\"'&\"\\x0a&q;&quot\"\n"},
        {"a text with what would end a record", "A: \"{;}\",\"a: b\"", "A: S \"{;}\", S \"a: b\"\n"},
        {"a list over lines", "A: 1,2,\n\t3\n  ,4 ; four\n ,5\nB: 6", "A: I 1, I 2, I 3, I 4, I 5\nB: I 6\n"},
        {"nothing but children", "A:  {\n}\nB: { C: 1 }", "A:\nB:\n  C: I 1\n"},
        {"no value, and a word on the next line", "A:\nBc: 1", "A:\nBc: I 1\n"},
        {"an empty value", "A: ,\n\"x\"", "A: S \"\", S \"x\"\n"},
        {"array of whole numbers", "A: *3 {\n\ta: 0,1,-3\n} ", "A: i[3] 0 1 -3\n"},
        {"array of long numbers", "A: *2 { a: 1,46186158000 }", "A: l[2] 1 46186158000\n"},
        {"array with a fraction, over lines", "A: *4 {\n a: 1,2\n,0.5,\n3\n}\nB: 1", "A: d[4] 1 2 0.5 3\nB: I 1\n"},
        {"empty arrays", "A: *0 {\n a: \n}\nB: *0 {\n}", "A: i[0]\nB: i[0]\n"},
        {"an object's name", "Objects: { Odd: 5, \"Odd::b::c\", \"x::y\" }",
         "Objects:\n  Odd: I 5, S \"b::c\\x00\\x01Odd\", S \"y\\x00\\x01x\"\n"},
        {"a name elsewhere", "Connections: { Connect: \"OO\", \"Model::\", \"Odd::a\" }",
         "Connections:\n  Connect: S \"OO\", S \"\\x00\\x01Model\", S \"Odd::a\"\n"},
        {"a user's text", "Objects: { P: \"Model::a\" }", "Objects:\n  P: S \"Model::a\"\n"},
        {"line ends of Windows", "A: 1,\r\n2\r\nB:  {\r\n}\r\n", "A: I 1, I 2\nB:\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(shownOf(row.text), row.shown) << row.name;
}

TEST(fbx_text_reader, keyAttributesAreTheBitsOfFloats)
{
    fbx_document document;
    failure why;
    ASSERT_TRUE(readText(head + "KeyAttrDataFloat: *3 { a: 218434821,-1090519040,0 }", document, why)) << describe(why);
    const auto* const numbers = std::get_if<std::vector<float>>(&document.records[0].values[0]);
    ASSERT_NE(numbers, nullptr);
    EXPECT_EQ(std::bit_cast<std::uint32_t>((*numbers)[0]), 0x0d050d05u); // 1/3 each as two weights
    EXPECT_EQ((*numbers)[1], -0.5f);
}

TEST(fbx_text_reader, theVersionIsThatOfTheHeaderOrTheComment)
{
    const struct
    {
        const char* text;
        std::uint32_t version; // 0: refused
    } rows[] = {
        {"; FBX 6.1.0 project file\nA: 1", 6100},
        {"; FBX 7.7.0 project file\n", 7700},
        {"\xef\xbb\xbf; FBX 7.4.0 project file\nA: 1", 7400},
        {"; FBX 7.5.0 project file\nFBXHeaderExtension: { FBXVersion: 7300 }", 7300},
        {"FBXHeaderExtension: { FBXVersion: 7100 }", 7100},
        {"FBXHeaderExtension: { FBXVersion: 5000 }", 0},
        {"FBXHeaderExtension: { FBXVersion: -1 }", 0},
        {"; FBX project file\nA: 1", 0},
    };
    for (const auto& row : rows)
    {
        fbx_document document;
        failure why;
        EXPECT_EQ(readText(row.text, document, why), row.version != 0) << row.text;
        if (row.version != 0)
            EXPECT_EQ(document.version, row.version) << row.text;
        else
            EXPECT_EQ(why.kind, failure_kind::unsupported) << row.text;
    }
}

TEST(fbx_text_reader, damageIsRefusedWithItsPlace)
{
    const struct
    {
        const char* name;
        std::string text;
        failure_kind kind;
        std::uint64_t offset; // behind the first line
        const char* field;
    } rows[] = {
        {"ends inside a list", "A: {\n B: 1\n", failure_kind::truncated, 11, "line 4, A"},
        {"ends inside a text", "A: \"x&quo", failure_kind::truncated, 3, "line 2, A, text"},
        {"ends inside an array", "A: *2 {\n a: 1,", failure_kind::truncated, 14, "line 3, A, array"},
        {"a closing brace too many", "A: {\n}\n}\n", failure_kind::malformed, 7, "line 4"},
        {"an opening brace too many", "A: {\n{ B: 1 }\n}", failure_kind::malformed, 5, "line 3, A, name of a record"},
        {"a list that ends in a comma", "A: { B: 1,\n}", failure_kind::malformed, 11, "line 3, A/B, value"},
        {"letters behind a number", "A: 12ab", failure_kind::malformed, 5, "line 2, A, number"},
        {"no number", "A: -x  ", failure_kind::malformed, 3, "line 2, A, number"},
        {"more elements than announced", "A: *1 { a: 1,2 }", failure_kind::malformed, 13, "line 2, A, array"},
        {"fewer elements than announced", "A: *3 { a: 1,2 }", failure_kind::malformed, 15, "line 2, A, array"},
        {"more elements than the file can hold", "A: *9999999999 { a: 1 }", failure_kind::malformed, 14,
         "line 2, A, array length"},
        {"a fraction of an element", "A: *1.5 { a: 1 }", failure_kind::malformed, 7, "line 2, A, array length"},
        {"a text in an array", "A: *1 { a: \"1\" }", failure_kind::malformed, 11, "line 2, A, array"},
        {"no colon", "A { }", failure_kind::malformed, 2, "line 2, name of a record"},
        {"a name too long", std::string(256, 'A') + ": 1", failure_kind::malformed, 256, "line 2, name of a record"},
    };
    for (const auto& row : rows)
    {
        // What may come behind does not make it better.
        const std::string behind = row.kind == failure_kind::truncated ? "" : "\n";
        fbx_document document;
        failure why;
        EXPECT_FALSE(readText(head + row.text + behind, document, why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name << ": " << describe(why);
        EXPECT_EQ(why.offset, head.size() + row.offset) << row.name << ": " << describe(why);
        EXPECT_EQ(why.field, row.field) << row.name << ": " << describe(why);
        EXPECT_TRUE(document.records.empty());
    }
}

TEST(fbx_text_reader, recordsNestSixtyFourLevelsDeepAndNoDeeper)
{
    for (const int levels : {64, 65})
    {
        std::string text = head;
        for (int level = 0; level < levels; ++level)
            text += level + 1 < levels ? "A: {" : "A: 1";
        text += std::string(static_cast<std::size_t>(levels) - 1, '}');
        fbx_document document;
        failure why;
        EXPECT_EQ(readText(text, document, why), levels == 64) << describe(why);
    }
}

TEST(fbx_text_reader, otherFilesAreNoFbxFiles)
{
    for (const std::string& bytes :
         {std::string("hello, this is not a scene\n"), std::string("solid cube\n"),
          std::string("Kaydara FBX binary  \0\x1a\0\xe8\x1c\0\0", 27), std::string("\x89PNG")})
    {
        fbx_document document;
        failure why;
        EXPECT_FALSE(readText(bytes, document, why));
        EXPECT_EQ(why.kind, failure_kind::unsupported) << describe(why);
    }
}

TEST(fbx_text_reader, everyCutAndEveryPatchedByteIsReadOrRefused)
{
    const std::string whole =
        head + "Objects: {\n Model: 5, \"Model::a&quot;\", \"Mesh\" {\n  V: *3 {\n   a: 1,2.5,-3e1\n  }\n"
               "  K: 1,U,s,0.5,n ; comment\n  ,2\n }\n}\n";
    const auto check = [](const std::string& text) {
        fbx_document document;
        failure why;
        if (readText(text, document, why))
            EXPECT_FALSE(writeFbx(document).empty()) << text;
        else
            EXPECT_TRUE(why && !why.what.empty() && why.offset <= text.size()) << text;
    };
    for (std::size_t at = 0; at < whole.size(); ++at)
    {
        check(whole.substr(0, at));
        for (const char value : {'\0', '"', '{', '}', ',', ':', '9', '*', '\n', '\xff'})
        {
            std::string patched = whole;
            patched[at] = value;
            check(patched);
        }
    }
}

} // namespace korvane
