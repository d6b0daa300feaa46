// Documents that are written: the bytes of a small one, derived by hand from docs/formats/fbx.md; the entries that must
// fit together, against files of other programs; and back through the reader.

#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/container/fbx_identity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace korvane
{
namespace
{

void setVariable(const char* name, const char* value) // null: removes it
{
#ifdef _WIN32
    static_cast<void>(_putenv_s(name, value ? value : ""));
#else
    value ? setenv(name, value, 1) : unsetenv(name);
#endif
}

std::string hex(std::span<const std::byte> bytes)
{
    std::string text;
    for (const std::byte byte : bytes)
        for (const unsigned nibble : {std::to_integer<unsigned>(byte) >> 4, std::to_integer<unsigned>(byte) & 15})
            text += "0123456789abcdef"[nibble];
    return text;
}

fbx_document readBack(const fbx_document& document)
{
    fbx_document back;
    failure why;
    EXPECT_TRUE(readFbx(writeFbx(document), back, why)) << describe(why);
    return back;
}

} // namespace

TEST(fbx_writer, theBytesOfASmallDocument)
{
    fbx_document document;
    document.records.emplace_back("Objects").add("A", 1, "x");
    const std::string expected =
        // 0: "Kaydara FBX Binary  ", version 7400
        "4b61796461726120464258204269"
        "6e617279202000"
        "1a00"
        "e81c0000"
        // 27: FileId, ends at 67, one value of 21 bytes
        "43000000"
        "01000000"
        "15000000"
        "06"
        "46696c654964"
        "52"
        "10000000"
        "28b32aebb624ccc2bfc8b02aa92bfcf1"
        // 67: CreationTime, ends at 120, one value of 28 bytes
        "78000000"
        "01000000"
        "1c000000"
        "0c"
        "4372656174696f6e54696d65"
        "53"
        "17000000"
        "313937302d30312d30312031303a30303a30303a303030"
        // 120: Objects, ends at 178, no values
        "b2000000"
        "00000000"
        "00000000"
        "07"
        "4f626a65637473"
        // 140: A, ends at 165, two values of 11 bytes
        "a5000000"
        "02000000"
        "0b000000"
        "01"
        "41"
        "49"
        "01000000"
        "53"
        "01000000"
        "78"
        // 165 and 178: the ends of Objects and of the top level
        "00000000000000000000000000"
        "00000000000000000000000000"
        // 191: footer, one byte up to 208, version
        "fabcab09d0c8d466b176fb831cf7267e"
        "00"
        "00000000"
        "e81c0000" +
        std::string(240, '0') + "f85a8c6adef5d97eece90ce3758f290b";
    EXPECT_EQ(hex(writeFbx(document)), expected);
}

TEST(fbx_writer, identitiesAreThoseOfOtherPrograms)
{
    const struct
    {
        const char* time;
        const char* file_id;
        const char* footer_id;
    } rows[] = {
        {"1970-01-01 10:00:00:000", "28b32aebb624ccc2bfc8b02aa92bfcf1", "fabcab09d0c8d466b176fb831cf7267e"},
        {"2020-03-31 21:36:23:473", "2ab22be8b625cec0b9c9b221a725f1fa", "fabca908d3cad765b077fc8319fc2d7b"},
        {"2022-05-26 20:06:45:599", "2cb22beeb022c8c1b9c7bc2fa929fef5", "fabcaf08d5ccd764b677fa8d11fc2b77"},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(hex(fileId(row.time)), row.file_id);
        EXPECT_EQ(hex(footerId(row.time)), row.footer_id);
    }
}

TEST(fbx_writer, theCreationTimeFollowsSourceDateEpoch)
{
    const struct
    {
        const char* variable;
        const char* time;
    } rows[] = {
        {nullptr, "1970-01-01 10:00:00:000"},        {"0", "1970-01-01 00:00:00:000"},
        {"1582934399", "2020-02-28 23:59:59:000"},   {"1582934400", "2020-02-29 00:00:00:000"},
        {"253402300799", "9999-12-31 23:59:59:000"}, {"253402300800", "1970-01-01 10:00:00:000"},
        {"-1", "1970-01-01 10:00:00:000"},           {"12x", "1970-01-01 10:00:00:000"},
    };
    for (const auto& row : rows)
    {
        setVariable("SOURCE_DATE_EPOCH", row.variable);
        EXPECT_EQ(creationTime(), row.time) << (row.variable ? row.variable : "none");
        const fbx_document back = readBack(fbx_document());
        EXPECT_EQ(back.find("CreationTime")->textAt(0), row.time);
        EXPECT_EQ(hex(std::get<fbx_bytes>(back.find("FileId")->values[0]).data), hex(fileId(row.time)));
    }
    setVariable("SOURCE_DATE_EPOCH", nullptr);
}

TEST(fbx_writer, everyValueComesBack)
{
    fbx_document document;
    fbx_record& list = document.records.emplace_back("List");
    list.add("Single", true, false, 'Y', std::int16_t{-2}, -3, std::int64_t{1} << 40, 0.5f, -2.25, "text",
             fbx_bytes{{std::byte{0}}});
    list.add("Small", std::vector<std::uint8_t>{1, 2}, std::vector<std::int32_t>{-1}, std::vector<std::int64_t>{5},
             std::vector<float>{0.5f}, std::vector<double>{});
    std::vector<double> noise(1000);
    std::uint64_t state = 1;
    for (double& number : noise)
        number = static_cast<double>(state = state * 6364136223846793005u + 1442695040888963407u);
    list.add("Large", std::vector<std::uint8_t>(1000, 7), std::vector<std::uint8_t>(1001, 7),
             std::vector<std::int32_t>(5000, -9), noise);
    list.add("EmptyList").is_list = true;

    const fbx_document back = readBack(document);
    ASSERT_EQ(back.records.size(), 3u); // FileId and CreationTime before it
    const fbx_record& read = back.records[2];
    ASSERT_EQ(read.children.size(), list.children.size());
    for (std::size_t at = 0; at < list.children.size(); ++at)
    {
        EXPECT_EQ(read.children[at].name, list.children[at].name);
        EXPECT_EQ(read.children[at].values, list.children[at].values) << list.children[at].name;
        EXPECT_EQ(read.children[at].is_list, list.children[at].is_list) << list.children[at].name;
    }
}

TEST(fbx_writer, arraysOfMoreThanThousandBytesAreCompressedWhereThatHelps)
{
    const auto sizeWith = [](std::vector<std::uint8_t> array) {
        fbx_document document;
        document.records.emplace_back("A", std::move(array));
        return writeFbx(document).size();
    };
    EXPECT_GT(sizeWith(std::vector<std::uint8_t>(1000)), 1000u);
    EXPECT_LT(sizeWith(std::vector<std::uint8_t>(1001)), 1000u);
    std::vector<std::uint8_t> noise(4096);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : noise)
        byte = static_cast<std::uint8_t>((state = state * 1664525u + 1013904223u) >> 24);
    EXPECT_EQ(sizeWith(noise) - sizeWith({}), 4096u);
}

TEST(fbx_writer, whatIsSaidOfTheFileItselfIsMadeTrue)
{
    fbx_document document;
    document.version = 7700;
    document.is_big_endian = true;
    document.records.emplace_back("FBXHeaderExtension").add("FBXVersion", 7700);
    document.records.emplace_back("Creator", "x");
    document.records.emplace_back("FileId", fbx_bytes{{std::byte{1}}});
    const fbx_document back = readBack(document);
    EXPECT_EQ(back.version, 7400u);
    EXPECT_FALSE(back.is_big_endian);
    EXPECT_EQ(back.find("FBXHeaderExtension")->find("FBXVersion")->integerAt(0), 7400);
    std::string names;
    for (const fbx_record& record : back.records)
        names += record.name + " ";
    EXPECT_EQ(names, "FBXHeaderExtension CreationTime Creator FileId ");
    EXPECT_EQ(std::get<fbx_bytes>(back.find("FileId")->values[0]).data.size(), 16u);
    EXPECT_EQ(writeFbx(back), writeFbx(document));
}

TEST(fbx_record, valuesAreConvertedWhereThatLosesNothing)
{
    const double huge = 1e19;
    const fbx_record record("A", true, 'Y', 'N', 'U', std::int16_t{-2}, 3, 2.75, huge,
                            std::numeric_limits<double>::quiet_NaN(), "text", std::vector<std::int32_t>{4, 5});
    const std::int64_t integers[] = {1, 1, 0, 99, -2, 3, 2, 99, 99, 99, 99, 99};
    for (std::size_t at = 0; at < std::size(integers); ++at) // the last one is behind the end
        EXPECT_EQ(record.integerAt(at, 99), integers[at]) << at;
    EXPECT_EQ(record.numberAt(6), 2.75);
    EXPECT_EQ(record.numberAt(7), huge);
    EXPECT_EQ(record.numberAt(9, 99), 99);
    EXPECT_EQ(record.textAt(1), "Y");
    EXPECT_EQ(record.textAt(9), "text");
    EXPECT_EQ(record.textAt(5), "");
    const fbx_record mixed("A", 1, std::vector<float>{0.5f, 2}, "x", std::int64_t{7}, 'U', 1e19);
    EXPECT_EQ(mixed.numbers(), (std::vector<double>{1, 0.5, 2, 7, 1e19}));
    EXPECT_EQ(mixed.integers(), (std::vector<std::int64_t>{1, 0, 2, 7, 0}));
}

} // namespace korvane
