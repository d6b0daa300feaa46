// Binary documents from hand-written bytes: every type, width and byte order; then every cut, every patched byte, and
// the particular lies a hostile file can tell.

#include "Korvane/fbx/container/fbx_document.h"
#include "tests/support/fbx_builder.h"

#include <gtest/gtest.h>

#include <functional>

namespace korvane
{
namespace
{

using test::fbx_builder;

bool read(const std::string& bytes, fbx_document& document, failure& why)
{
    return readFbx(std::as_bytes(std::span(bytes)), document, why);
}

std::string everything(std::uint32_t version, bool is_big_endian, bool is_packed)
{
    fbx_builder file(version, is_big_endian);
    file.begin("Objects");
    file.begin("Single",
               {file.whole('C', 1), file.whole('C', 'U'), file.whole('Y', 0xfffe), file.whole('I', 0xfffffffd),
                file.whole('L', 0x123456789abcdef0), file.f32(0.5f), file.f64(-2.25)});
    file.record("Bytes", {file.text(std::string("a\0\1Model", 8)), file.text("\x80\xff", 'R'), file.text("")});
    file.end();
    file.record("Arrays", {file.array('b', {1, 0, 200}, is_packed), file.array('c', {7}, is_packed),
                           file.array('i', {0, 0xffffffff}, is_packed), file.array('l', {1ull << 40}, is_packed),
                           file.array('f', {0x3f000000, 0xc0100000}, is_packed),
                           file.array('d', {0x3ff8000000000000}, is_packed), file.array('d', {}, is_packed)});
    file.begin("EmptyList");
    file.end();
    file.record("");
    file.end();
    file.endList();
    return file.str();
}

const char* const everything_shown = "Objects:\n"
                                     "  Single: C 1, C 'U', Y -2, I -3, L 1311768467463790320, F 0.5, D -2.25\n"
                                     "    Bytes: S \"a\\x00\\x01Model\", R[2] 80ff, S \"\"\n"
                                     "  Arrays: b[3] 1 0 200, b[1] 7, i[2] 0 -1, l[1] 1099511627776, f[2] 0.5 -2.25, "
                                     "d[1] 1.5, d[0]\n"
                                     "  EmptyList:\n"
                                     "  :\n";

void readDamaged(const std::string& bytes, const std::string& what)
{
    SCOPED_TRACE(what);
    fbx_document document;
    failure why;
    if (read(bytes, document, why))
    {
        EXPECT_FALSE(writeFbx(document).empty());
        return;
    }
    EXPECT_TRUE(why);
    EXPECT_FALSE(why.what.empty());
    EXPECT_LE(why.offset, bytes.size());
    EXPECT_TRUE(document.records.empty());
}

std::string nested(int levels)
{
    fbx_builder file;
    for (int level = 0; level < levels; ++level)
        file.begin("A");
    for (int level = 0; level < levels; ++level)
        file.end(level > 0);
    file.endList();
    return file.str();
}

} // namespace

TEST(fbx_binary_reader, everyVersionByteOrderAndEncodingGivesTheSameDocument)
{
    for (const std::uint32_t version : {6100u, 7100u, 7400u, 7499u, 7500u, 7700u})
        for (const bool is_big_endian : {false, true})
            for (const bool is_packed : {false, true})
            {
                fbx_document document;
                failure why;
                ASSERT_TRUE(read(everything(version, is_big_endian, is_packed), document, why)) << describe(why);
                EXPECT_EQ(document.version, version);
                EXPECT_TRUE(document.is_binary);
                EXPECT_EQ(document.is_big_endian, is_big_endian);
                const std::string shown = dumpFbx(document);
                EXPECT_EQ(shown.substr(shown.find('\n') + 1), everything_shown);
                EXPECT_EQ(document.records[0].offset, 27u);
                EXPECT_TRUE(document.records[0].children[2].is_list);
                EXPECT_FALSE(document.records[0].children[1].is_list);
            }
}

TEST(fbx_binary_reader, everyCutIsRefusedButThoseBehindTheLastEmptyRecord)
{
    for (const std::uint32_t version : {7400u, 7500u})
    {
        const std::string whole = everything(version, false, true);
        for (std::size_t size = 0; size < whole.size(); ++size)
        {
            fbx_document document;
            failure why;
            ASSERT_FALSE(read(whole.substr(0, size), document, why)) << size;
            ASSERT_TRUE(why.kind == failure_kind::truncated) << size << ": " << describe(why);
            ASSERT_LE(why.offset, size);
        }
        fbx_document document;
        failure why;
        EXPECT_TRUE(read(whole + "the first bytes of a footer", document, why)) << describe(why);
    }
}

TEST(fbx_binary_reader, everyPatchedByteIsReadOrRefused)
{
    for (const std::uint32_t version : {6100u, 7500u})
    {
        const std::string whole = everything(version, version == 6100, true);
        for (std::size_t at = 0; at < whole.size(); ++at)
            for (const int value : {0, 255, whole[at] + 1, whole[at] - 1})
            {
                std::string patched = whole;
                patched[at] = static_cast<char>(static_cast<unsigned char>(value));
                readDamaged(patched, "byte " + std::to_string(at) + " = " + std::to_string(value & 255));
            }
    }
}

// One record "A" at byte 27 with one value at 41, which a row makes up.
TEST(fbx_binary_reader, liesAreRefusedWithTheirPlace)
{
    const fbx_builder number;
    const auto withValue = [](const std::string& value) {
        fbx_builder file;
        file.record("A", {value});
        file.endList();
        return file.str();
    };
    const auto patched = [&](std::size_t at, std::uint32_t value) {
        std::string file = withValue(number.whole('I', 5));
        return file.replace(at, 4, number.number(value, 4));
    };
    const auto packed = [&](std::uint32_t count, const std::string& stream) {
        return withValue('d' + number.number(count, 4) + number.number(1, 4) + number.number(stream.size(), 4) +
                         stream);
    };
    const std::string stream = number.array('d', {0, 0}, true).substr(13); // two zeros
    std::string flipped = stream;
    flipped[9] = '\1';
    const struct
    {
        const char* name;
        std::string bytes;
        failure_kind kind;
        std::uint64_t offset;
        const char* field;
    } rows[] = {
        {"mark", patched(21, 0x1c000000), failure_kind::malformed, 21, "mark behind the magic"},
        {"byte order 2", std::string(withValue("C\1")).replace(22, 1, "\2"), failure_kind::malformed, 22, "byte order"},
        {"version 6000", patched(23, 6000), failure_kind::unsupported, 23, "version"},
        {"version 7800", patched(23, 7800), failure_kind::unsupported, 23, "version"},
        {"ends in its header", patched(27, 30), failure_kind::malformed, 27, "A, end"},
        {"ends behind the file", patched(27, 0x7fffffff), failure_kind::truncated, 27, "A, end"},
        {"ends before its value", patched(27, 45), failure_kind::malformed, 27, "A, value bytes"},
        {"more values than bytes", patched(31, 0x40000000), failure_kind::malformed, 27, "A, value count"},
        {"one value too many", patched(31, 2), failure_kind::truncated, 46, "A, type of a value"},
        {"one value too few", patched(31, 0), failure_kind::malformed, 41, "A, value bytes"},
        {"more bytes than the record", patched(35, 6), failure_kind::malformed, 27, "A, value bytes"},
        {"no such type", withValue("?\1"), failure_kind::malformed, 41, "A, type of a value"},
        {"text beyond the values", withValue("S" + number.number(0xffffffff, 4)), failure_kind::truncated, 46,
         "A, text"},
        {"encoding 2", withValue("i" + std::string(4, '\0') + number.number(2, 4) + std::string(4, '\0')),
         failure_kind::malformed, 46, "A, array encoding"},
        {"raw array too short",
         withValue("i" + number.number(2, 4) + std::string(4, '\0') + number.number(4, 4) + "abcd"),
         failure_kind::malformed, 42, "A, array length"},
        {"2^30 numbers of 27 bytes", packed(1u << 30, stream), failure_kind::malformed, 42, "A, array length"},
        {"40 MB of a small file", packed(5000000, std::string(40000, '\0')), failure_kind::malformed, 42,
         "A, array length"},
        {"fewer numbers than packed", packed(1, stream), failure_kind::malformed, 54, "A, array data"},
        {"more numbers than packed", packed(3, stream), failure_kind::malformed, 54, "A, array data"},
        {"packed cut off", packed(2, stream.substr(0, stream.size() - 1)), failure_kind::malformed, 54,
         "A, array data"},
        {"bytes behind packed", packed(2, stream + "x"), failure_kind::malformed, 54, "A, array data"},
        {"packed with a wrong sum", packed(2, flipped), failure_kind::malformed, 54, "A, array data"},
    };
    for (const auto& row : rows)
    {
        fbx_document document;
        failure why;
        EXPECT_FALSE(read(row.bytes, document, why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name << ": " << describe(why);
        EXPECT_EQ(why.offset, row.offset) << row.name << ": " << describe(why);
        EXPECT_EQ(why.field, row.field) << row.name << ": " << describe(why);
    }
}

TEST(fbx_binary_reader, whatSomeWritersDoIsRead)
{
    fbx_builder file;
    file.record("A", {"Z\7", file.whole('I', 5)});
    file.record("B");
    file.endList();
    std::string bytes = file.str();
    bytes.replace(27, 4, 4, '\0'); // the end of A
    fbx_document document;
    failure why;
    ASSERT_TRUE(read(bytes, document, why)) << describe(why);
    EXPECT_EQ(dumpFbx(document), "FBX 7400, binary\nA: I 5\nB:\n");
    bytes[35] = '\x40'; // more bytes of values than the file has
    EXPECT_FALSE(read(bytes, document, why));
    EXPECT_EQ(why.field, "A, end") << describe(why);
}

TEST(fbx_binary_reader, listsEndWithAnEmptyRecordAndNothingBehindIt)
{
    const auto outer = [](const std::function<void(fbx_builder&)>& add) {
        fbx_builder file;
        file.begin("List");
        add(file);
        file.end(false);
        file.endList();
        return file.str();
    };
    const std::string without = outer([](fbx_builder& file) { file.record("A"); });
    const std::string behind = outer([](fbx_builder& file) {
        file.endList();
        file.record("A");
    });
    for (const std::string& bytes : {without, behind})
    {
        fbx_document document;
        failure why;
        EXPECT_FALSE(read(bytes, document, why));
        EXPECT_EQ(why.kind, failure_kind::malformed);
        EXPECT_EQ(why.field, "List, end of the list") << describe(why);
    }
}

TEST(fbx_binary_reader, recordsNestSixtyFourLevelsDeepAndNoDeeper)
{
    fbx_document document;
    failure why;
    EXPECT_TRUE(read(nested(64), document, why)) << describe(why);
    EXPECT_FALSE(read(nested(65), document, why));
    EXPECT_EQ(why.kind, failure_kind::malformed);
    EXPECT_NE(why.what.find("64"), std::string::npos);
}

TEST(fbx_binary_reader, ofSeveralDamagedArraysTheFirstIsNamed)
{
    fbx_document written;
    fbx_record& list = written.records.emplace_back("List");
    for (int number = 0; number < 12; ++number) // enough for several threads; the names do not occur by chance
    {
        std::vector<double> numbers(30000);
        for (std::size_t at = 0; at < numbers.size(); ++at)
            numbers[at] = static_cast<double>(at * at) + number;
        list.add("Points" + std::to_string(number), std::move(numbers));
    }
    const std::vector<std::byte> whole = writeFbx(written);
    fbx_document document;
    failure why;
    ASSERT_TRUE(readFbx(whole, document, why)) << describe(why);
    EXPECT_EQ(document.find("List")->children[7].values, list.children[7].values);

    std::string damaged(reinterpret_cast<const char*>(whole.data()), whole.size());
    for (const char* const name : {"Points4d", "Points9d"})
        damaged[damaged.find(name) + 8 + 12 + 500] ^= '\x55';
    document = {};
    EXPECT_FALSE(read(damaged, document, why));
    EXPECT_EQ(why.field, "List/Points4, array data");
    EXPECT_EQ(why.offset, damaged.find("Points4d") + 8 + 12);
    EXPECT_TRUE(document.records.empty());
}

} // namespace korvane
