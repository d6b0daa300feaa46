#include "EASY_GUI/services/byte_reader.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{
std::span<const std::byte> bytesOf(const std::string& text)
{
    return std::as_bytes(std::span(text));
}
} // namespace

TEST(byte_reader, readsLittleEndianAndStaysAtTheFirstError)
{
    const std::string data("\x01\x02\x03\x04\x05\x00\x00\x80\x3f\xff", 10);
    byte_reader in(bytesOf(data));
    EXPECT_EQ(in.u32("a"), 0x04030201u);
    EXPECT_EQ(in.u8("b"), 5u);
    EXPECT_EQ(in.f32("c"), 1.0f);
    in.enter("record 3");
    EXPECT_EQ(in.u16("first"), 0u); // one byte is left: nothing is read partially
    EXPECT_EQ(in.u8("second"), 0u); // and no later read succeeds
    failure why;
    EXPECT_FALSE(in.finish(why));
    EXPECT_EQ(why.kind, failure_kind::truncated);
    EXPECT_EQ(why.offset, 9u);
    EXPECT_EQ(why.field, "record 3, first");
}

TEST(byte_reader, aBlockReportsPositionsOfTheWholeFile)
{
    const std::string data = "0123456789";
    byte_reader in(bytesOf(data));
    in.skip(4, "head");
    byte_reader block = in.sub(3, "block");
    EXPECT_EQ(in.position(), 7u);
    static_cast<void>(block.u16("x"));
    static_cast<void>(block.u16("y"));
    failure why;
    EXPECT_FALSE(block.finish(why));
    EXPECT_EQ(why.offset, 6u);
    EXPECT_TRUE(in.ok());
}

TEST(byte_reader, sizesNearTheLimitsDoNotWrap)
{
    const std::string data = "0123456789";
    byte_reader in(bytesOf(data));
    in.skip(1, "head");
    EXPECT_FALSE(in.fits(0xffffffffffffffffu, 8));
    EXPECT_TRUE(in.fits(9, 1));
    EXPECT_FALSE(in.fits(10, 1));
    EXPECT_TRUE(in.bytes(0xffffffffffffffffu, "huge").empty());
    EXPECT_FALSE(in.ok());
    byte_reader other(bytesOf(data));
    other.seek(10, "end");
    EXPECT_TRUE(other.ok());
    other.seek(11, "beyond");
    EXPECT_FALSE(other.ok());
}

TEST(byte_reader, textsEndAtAZeroUnit)
{
    const std::string data("ab\0a\0b\0\0\0xy", 11);
    byte_reader in(bytesOf(data));
    EXPECT_EQ(in.zeroTerminated(1, "narrow").size(), 2u);
    EXPECT_EQ(in.zeroTerminated(2, "wide").size(), 4u);
    EXPECT_EQ(in.position(), 9u);
    EXPECT_TRUE(in.zeroTerminated(1, "open").empty());
    EXPECT_FALSE(in.ok());
}

} // namespace korvane
