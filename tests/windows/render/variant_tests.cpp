// Figures of several models, out of archives that override each other.

#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/viewer/d3d_window.h"
#include "tests/support/dds_builder.h"
#include "tests/support/mesh_builder.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"
#include "tests/windows/render/one_picture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvane::test
{
namespace
{

constexpr std::uint32_t width = 320;
constexpr std::uint32_t height = 180;

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
    model.skeleton_id.clear();
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
        pack_reader reader;
        ASSERT_TRUE(reader.loadAllArchives({m_folder.file("")}));
        pack_file::sm_poPathTree = reader.tree();
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
    scene_pointer load(const std::vector<std::string>& models, const std::string& path)
    {
        work_port work;
        work.log = [this](const std::string& line) { m_lines.push_back(line); };
        return scene_loader(game_data(pack_file::sm_poPathTree), std::move(work))
            .loadFigure({models.begin(), models.end()}, path);
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

TEST_F(render_variant_test, allPartsAreDrawnWithTheTexturesOfTheArchiveThatWins)
{
    makeSquare();
    render_options options;
    options.width = width;
    options.height = height;
    options.yaw = 3.1415927f;
    options.pitch = 0;
    options.view.shows_plain = true;
    failure why;
    const scene_pointer scene =
        load({"men\\left.rigid_model_v2", "Men/Right.rigid_model_v2"}, "pack:men/guard.variantmeshdefinition");
    ASSERT_TRUE(renderToImage(scene, options, m_result, why)) << describe(why);
    const pixel left = at(0.42, 0.5);
    const pixel right = at(0.58, 0.5);
    EXPECT_TRUE(left.red > 200 && left.green < 60) << left.red << ' ' << left.green << ' ' << left.blue;
    EXPECT_TRUE(right.green > 200 && right.red < 60) << right.red << ' ' << right.green << ' ' << right.blue;
    EXPECT_NEAR(m_result.eye.model_extent.x, 2, 1e-3) << "framed around both";
    EXPECT_TRUE(m_lines.empty()) << m_lines.front();
}

TEST_F(render_variant_test, theWindowShowsEitherAModelOrAFigureAndFramesIt)
{
    makeSquare();
    failure why;
    const auto window = d3d_window::create(nullptr, {}, nullptr, why);
    ASSERT_TRUE(window) << describe(why);
    const auto extent = [&] { return window->view().eye.model_extent.x; };
    const std::vector<std::string> both = {"men\\left.rigid_model_v2", "men\\right.rigid_model_v2"};
    window->setScene(load(both, "pack:a"));
    EXPECT_NEAR(extent(), 2, 1e-3);
    RMV2_FILE_DATA model = modelOf(sphereGroup({0, 0, 0}, 3, 12));
    model.lods.emplace_back().groups.push_back(sphereGroup({0, 0, 0}, 2, 12));
    scene_loader loader({});
    const scene_pointer fine = loader.loadModel(lent(model), "Z:/nowhere/b");
    window->setScene(fine);
    EXPECT_NEAR(extent(), 6, 1e-2) << "nothing of the figure is left";
    window->setScene(loader.loadLevel(*fine, 1));
    EXPECT_NEAR(extent(), 6, 1e-2) << "another level does not move the camera";
    window->setScene(load({both[0], "none"}, "pack:c"));
    EXPECT_NEAR(extent(), 1, 1e-3);
    window->setScene(load(both, "pack:c")); // read again, and larger
    EXPECT_NEAR(extent(), 2, 1e-3);
    SendMessageW(window->handle(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    window->setScene(load({both[0]}, "pack:c"));
    EXPECT_NEAR(extent(), 2, 1e-3) << "the camera stays where the person has put it";
}

} // namespace
} // namespace korvane::test
