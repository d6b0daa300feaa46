// Figures of several models, out of archives that override each other.

#include "D3D11_RENDER_LIB/render_variant.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/viewer/d3d_window.h"
#include "Korvane/viewer/offscreen.h"
#include "tests/support/dds_builder.h"
#include "tests/support/mesh_builder.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvane::test
{
namespace
{

constexpr std::uint32_t width = 320;
constexpr std::uint32_t height = 180;
constexpr const char* pfn_is_null = "render_variant::addRigidModelByInternalPath: pfn = nullptr";

// Half-precision numbers.
constexpr unsigned minus_one = 0xbc00, zero = 0, one = 0x3c00;

std::string colourDds(const std::string& rgba)
{
    test_dds file;
    file.pixels.clear();
    for (int i = 0; i < 16; ++i)
        file.pixels += rgba;
    return file.bytes();
}
const std::string red("\xff\0\0\xff", 4), green("\0\xff\0\xff", 4), blue("\0\0\xff\xff", 4), flat("\x80\x80\xff\xff");

// An upright rectangle that is seen from both sides, between two x as the file stores them, two units high.
std::string rectangle(unsigned x_from, unsigned x_to, const std::string& texture)
{
    bytes_out vertices;
    const unsigned corners[4][2] = {{x_from, minus_one}, {x_to, minus_one}, {x_to, one}, {x_from, one}};
    for (const auto& corner : corners)
    {
        for (const unsigned half : {corner[0], corner[1], zero, one, zero, zero, zero, zero}) // position, w, u, v
            vertices.u16(half);
        for (const unsigned byte : {127u, 127u, 254u, 0u, 127u, 254u, 127u, 0u, 254u, 127u, 127u, 0u, 0u, 0u, 0u, 0u})
            vertices.u8(byte); // normal, bitangent, tangent
    }
    test_group group;
    group.vertices = vertices.str();
    group.vertex_count = 4;
    group.indices = {0, 1, 2, 0, 2, 3};
    group.alpha_mode = 1;
    group.textures = {{0, texture}, {1, "tex/flat.dds"}};
    test_model model;
    model.lods = {{group}};
    return model.bytes();
}

struct pixel
{
    int red, green, blue;
};

class render_variant_test : public testing::Test
{
protected:
    void TearDown() override { pack_file::sm_poPathTree = nullptr; }

    void addArchive(const std::string& name, const std::vector<test_entry>& entries)
    {
        test_pack pack;
        pack.entries = entries;
        writeBytes(m_folder.file(name), pack.bytes());
    }
    void readArchives()
    {
        recording_prompt prompt;
        ASSERT_TRUE(pack_reader({prompt, {}, {}}).loadAllArchives({m_folder.file("")}));
    }
    // Two halves of a square, the one with negative x in the file on the left for a viewer in front.
    void makeSquare()
    {
        addArchive("base.pack", {{"men\\left.rigid_model_v2", rectangle(minus_one, zero, "tex\\Left.dds")},
                                 {"men\\right.rigid_model_v2", rectangle(zero, one, "tex/right.dds")},
                                 {"tex\\left.dds", colourDds(red)},
                                 {"tex\\right.dds", colourDds(red)},
                                 {"tex\\flat.dds", colourDds(flat)}});
        addArchive("a_mod.pack", {{"tex\\right.dds", colourDds(green)}, {"broken.rigid_model_v2", "RMV2 and no more"}});
        readArchives();
    }
    lib3d::log_port log()
    {
        return [this](const std::string& line) { m_lines.push_back(line); };
    }
    bool logHolds(const std::string& text) const
    {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    }
    bool draw(const std::vector<std::string>& models, failure& why)
    {
        render_options options;
        options.width = width;
        options.height = height;
        options.yaw = 3.1415927f;
        options.pitch = 0;
        options.view.shows_plain = true;
        options.log = log();
        return renderToImage(models, "pack:men/guard.variantmeshdefinition", options, m_result, why);
    }
    pixel at(double x, double y) const
    {
        const std::size_t column = static_cast<std::size_t>(x * width);
        const std::size_t row = static_cast<std::size_t>(y * height);
        const std::uint8_t* bytes = m_result.rgba.data() + (row * width + column) * 4;
        return {bytes[0], bytes[1], bytes[2]};
    }

    temporary_folder m_folder;
    std::vector<std::string> m_lines;
    render_result m_result;
};

TEST_F(render_variant_test, AllPartsAreDrawnWithTheTexturesOfTheArchiveThatWins)
{
    makeSquare();
    failure why;
    ASSERT_TRUE(draw({"men\\left.rigid_model_v2", "Men/Right.rigid_model_v2"}, why)) << describe(why);
    const pixel left = at(0.42, 0.5);
    const pixel right = at(0.58, 0.5);
    EXPECT_TRUE(left.red > 200 && left.green < 60) << left.red << ' ' << left.green << ' ' << left.blue;
    EXPECT_TRUE(right.green > 200 && right.red < 60) << right.red << ' ' << right.green << ' ' << right.blue;
    EXPECT_NEAR(m_result.eye.model_extent.x, 2, 1e-3) << "framed around both";
    EXPECT_TRUE(m_lines.empty()) << m_lines.front();
}

TEST_F(render_variant_test, PartsThatCannotBeAddedAreReportedAndTheOthersStay)
{
    makeSquare();
    lib3d library;
    failure why;
    ASSERT_TRUE(library.createDevice(log(), why)) << describe(why);
    m_lines.clear();
    render_variant variant(log());
    const variant_outcome outcome =
        variant.create(library.device(), {{"men\\left.rigid_model_v2", "men\\gone.rigid_model_v2", "men",
                                           "broken.rigid_model_v2", "men\\right.rigid_model_v2"},
                                          0,
                                          nullptr});
    EXPECT_EQ(outcome.parts, 2u);
    EXPECT_EQ(outcome.failed, 3u);
    EXPECT_EQ(outcome.triangles, 4u);
    EXPECT_EQ(std::count(m_lines.begin(), m_lines.end(), pfn_is_null), 2) << "no such path, and a folder";
    for (const char* text : {"men\\gone.rigid_model_v2: ", "men: ", "broken.rigid_model_v2: "})
        EXPECT_TRUE(logHolds(text)) << text;

    const variant_outcome crowd =
        variant.create(library.device(), {std::vector<std::string>(514, "men\\left.rigid_model_v2"), 0, nullptr});
    EXPECT_EQ(crowd.parts, render_variant::max_parts);
    EXPECT_EQ(crowd.failed, 2u);
    EXPECT_TRUE(variant.bounds().extent().x > 0.99f);
    variant.release();
    EXPECT_TRUE(variant.parts().empty());
    EXPECT_TRUE(variant.bounds().isEmpty());
}

TEST_F(render_variant_test, WithoutArchivesNothingIsFoundAndTheLogSaysWhy)
{
    failure why;
    EXPECT_FALSE(draw({"men\\left.rigid_model_v2"}, why));
    EXPECT_EQ(why.kind, failure_kind::not_found);
    EXPECT_TRUE(logHolds("rigid_model::getFromInternalPath(): pack_file::sm_poPathTree == nullptr"));
    EXPECT_FALSE(logHolds(pfn_is_null));
    failure empty;
    EXPECT_FALSE(draw({}, empty));
    EXPECT_EQ(empty.kind, failure_kind::refused);
}

TEST_F(render_variant_test, TheWindowShowsEitherAModelOrAFigureAndFramesIt)
{
    makeSquare();
    failure why;
    const auto window = d3d_window::create(GetModuleHandleW(nullptr), nullptr, {log(), {}}, nullptr, {}, why);
    ASSERT_TRUE(window) << describe(why);
    const auto extent = [&] { return window->view().eye.model_extent.x; };
    const std::vector<std::string> both = {"men\\left.rigid_model_v2", "men\\right.rigid_model_v2"};
    EXPECT_EQ(window->setVariant(both, "pack:a").triangles, 4u);
    EXPECT_NEAR(extent(), 2, 1e-3);
    window->setModel(std::make_shared<RMV2_FILE_DATA>(modelOf(sphereGroup({0, 0, 0}, 3, 12))), "Z:/nowhere/b");
    EXPECT_NEAR(extent(), 6, 1e-2) << "nothing of the figure is left";
    EXPECT_EQ(window->setVariant({both[0], "none"}, "pack:c").failed, 1u);
    EXPECT_NEAR(extent(), 1, 1e-3);
    window->setVariant(both, "pack:c"); // read again, and larger
    EXPECT_NEAR(extent(), 2, 1e-3);
    SendMessageW(window->handle(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    window->setVariant({both[0]}, "pack:c");
    EXPECT_NEAR(extent(), 2, 1e-3) << "the camera stays where the person has put it";
}

} // namespace
} // namespace korvane::test
