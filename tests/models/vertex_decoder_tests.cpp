#include "Korvane/models/half_float.h"
#include "Korvane/models/vertex_decoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace korvane
{
namespace
{

// A raw vertex whose bytes are named one by one; the rest are zero.
struct raw
{
    std::string bytes;
    explicit raw(std::size_t stride) : bytes(stride, '\0') {}
    raw& b(std::size_t at, unsigned value)
    {
        bytes[at] = static_cast<char>(static_cast<unsigned char>(value));
        return *this;
    }
    raw& h(std::size_t at, unsigned half) { return b(at, half & 0xff).b(at + 1, half >> 8); }
};

vertex_record decode(std::uint16_t format, const raw& vertex, const glm::vec3& pivot = glm::vec3(0.0f))
{
    std::string bytes(vertexLayout(format).skipped_bytes, '\x7f');
    bytes += vertex.bytes;
    vertex_record record{};
    decodeVertices(format, std::as_bytes(std::span(bytes)), vertex.bytes.size(), pivot, {&record, 1});
    return record;
}

void expectVec(const glm::vec3& actual, float x, float y, float z)
{
    EXPECT_EQ(actual.x, x);
    EXPECT_EQ(actual.y, y);
    EXPECT_EQ(actual.z, z);
}

// Halves used below: 0x3c00 = 1, 0x4000 = 2, 0x4200 = 3, 0x3800 = 0.5, 0x3400 = 0.25.
constexpr unsigned one = 0x3c00, two = 0x4000, three = 0x4200, a_half = 0x3800, a_quarter = 0x3400;
const glm::vec3 pivot(10.0f, 20.0f, 30.0f);

} // namespace

TEST(half_float, everyHalfHasTheValueOfItsBits)
{
    for (unsigned half = 0; half < 0x10000; ++half)
    {
        const unsigned exponent = (half >> 10) & 31, mantissa = half & 1023;
        const float value = halfToFloat(static_cast<std::uint16_t>(half));
        ASSERT_EQ(std::signbit(value), half >= 0x8000) << half;
        if (exponent == 31 && mantissa != 0)
            ASSERT_TRUE(std::isnan(value)) << half;
        else if (exponent == 31)
            ASSERT_TRUE(std::isinf(value)) << half;
        else
        {
            const double expected = exponent == 0 ? std::ldexp(mantissa, -24)
                                                  : std::ldexp(1024 + mantissa, static_cast<int>(exponent) - 25);
            ASSERT_EQ(static_cast<double>(std::fabs(value)), expected) << half;
        }
    }
}

TEST(vertex_decoder, staticFormatsNegateXAfterThePivotAndCrossTheBitangent)
{
    const raw vertex = raw(32)
                           .h(0, one)
                           .h(2, two)
                           .h(4, three)
                           .h(8, a_half)
                           .h(10, a_quarter)
                           .b(16, 254)
                           .b(17, 127)
                           .b(18, 0)
                           .b(20, 126)
                           .b(21, 63)
                           .b(22, 252)
                           .b(24, 0)
                           .b(25, 254)
                           .b(26, 127);
    for (const std::uint16_t format : std::initializer_list<std::uint16_t>{0, 6, 7})
    {
        const vertex_record record = decode(format, vertex, pivot);
        expectVec(record.position, -11.0f, 22.0f, 33.0f);
        EXPECT_EQ(record.uv.x, 0.5f);
        EXPECT_EQ(record.uv.y, 0.75f);
        expectVec(record.normal, -1.0f, 0.0f, -1.0f);
        expectVec(record.bitangent, -1.0f, 2.0f, 0.5f); // -126/126, 252/126, 63/126: bytes 22 and 21 crossed
        expectVec(record.tangent, 1.0f, 1.0f, 0.0f);
        EXPECT_EQ(record.weights[0], 0.0f);
    }
}

TEST(vertex_decoder, theCollisionFormatSkipsFourBytesAndNegatesZ)
{
    const raw vertex =
        raw(16).h(0, one).h(2, two).h(4, three).h(6, a_half).h(8, a_quarter).b(10, 254).b(11, 254).b(12, 127);
    const vertex_record record = decode(1, vertex, pivot);
    expectVec(record.position, 11.0f, 22.0f, -33.0f);
    EXPECT_EQ(record.uv.x, 0.5f);
    EXPECT_EQ(record.uv.y, 0.25f); // not flipped
    expectVec(record.normal, -1.0f, 1.0f, 0.0f);
}

TEST(vertex_decoder, theWeightedFormatNegatesXBeforeThePivotAndGivesTheSecondBoneTheRest)
{
    const raw vertex = raw(28)
                           .h(0, one)
                           .h(2, two)
                           .h(4, three)
                           .b(8, 7)
                           .b(9, 9)
                           .b(10, 51)
                           .b(12, 254)
                           .b(13, 127)
                           .b(14, 0)
                           .h(16, a_half)
                           .h(18, a_quarter)
                           .b(20, 254)
                           .b(21, 0)
                           .b(22, 127)
                           .b(24, 127)
                           .b(25, 254)
                           .b(26, 0);
    const vertex_record record = decode(3, vertex, pivot);
    expectVec(record.position, 9.0f, 22.0f, 33.0f);
    EXPECT_EQ(record.uv.y, 0.75f);
    EXPECT_EQ(record.bones, (std::array<std::uint32_t, 4>{7, 9, 0, 0}));
    EXPECT_EQ(record.weights[0], 51.0f / 255.0f);
    EXPECT_EQ(record.weights[1], 1.0f - 51.0f / 255.0f);
    expectVec(record.normal, -1.0f, 0.0f, -1.0f);
    expectVec(record.tangent, -1.0f, -1.0f, 0.0f);
    expectVec(record.bitangent, 0.0f, 1.0f, -1.0f); // -n of 127 is minus zero, which equals zero
}

TEST(vertex_decoder, theCinematicFormatHasFourWeightsAndItsOwnNormalScale)
{
    const raw vertex = raw(32)
                           .h(0, one)
                           .h(2, two)
                           .h(4, three)
                           .b(8, 1)
                           .b(9, 2)
                           .b(10, 3)
                           .b(11, 4)
                           .b(12, 255)
                           .b(13, 51)
                           .b(14, 0)
                           .b(15, 102)
                           .b(16, 255)
                           .b(17, 0)
                           .b(18, 128)
                           .h(20, a_half)
                           .h(22, a_quarter)
                           .b(24, 254)
                           .b(25, 127)
                           .b(26, 0)
                           .b(28, 0)
                           .b(29, 254)
                           .b(30, 127);
    const vertex_record record = decode(4, vertex, pivot);
    expectVec(record.position, 9.0f, 22.0f, 33.0f);
    EXPECT_EQ(record.uv.x, 0.5f);
    EXPECT_EQ(record.bones, (std::array<std::uint32_t, 4>{1, 2, 3, 4}));
    EXPECT_EQ(record.weights, (std::array<float, 4>{1.0f, 51.0f / 255.0f, 0.0f, 102.0f / 255.0f}));
    expectVec(record.normal, -1.0f, -1.0f, 2.0f * 128.0f / 255.0f - 1.0f);
    expectVec(record.bitangent, -1.0f, 0.0f, -1.0f);
    expectVec(record.tangent, 1.0f, 1.0f, 0.0f);
}

TEST(vertex_decoder, theGrassFormatIgnoresThePivotAndReadsFloatCoordinates)
{
    raw vertex = raw(20).h(0, one).h(2, two).h(4, three).b(16, 254).b(17, 127).b(18, 0);
    vertex.b(10, 0x00).b(11, 0x3f); // 0.5f = 3f000000, little-endian at 8
    vertex.b(14, 0x80).b(15, 0x3e); // 0.25f = 3e800000
    const vertex_record record = decode(5, vertex, pivot);
    expectVec(record.position, 1.0f, 2.0f, 3.0f);
    EXPECT_EQ(record.uv.x, 0.5f);
    EXPECT_EQ(record.uv.y, 0.75f);
    expectVec(record.normal, 1.0f, 0.0f, -1.0f);
}

} // namespace korvane
