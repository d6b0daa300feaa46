#include "D3D11_RENDER_LIB/device_faults.h"
#include "D3D11_RENDER_LIB/environment_images.h"
#include "D3D11_RENDER_LIB/lib3d.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/viewer/model_scene.h"
#include "tests/support/dds_builder.h"
#include "tests/support/mesh_builder.h"
#include "tests/support/silhouette.h"
#include "tests/support/texture_map.h"
#include "tests/windows/render/one_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvane
{

namespace
{

using test::modelOf;
using test::render_result;
using test::renderToImage;
using test::sphereGroup;
using test::squareGroup;
using test::test_dds;
using test::texture_map;
using test::textured;

constexpr std::uint32_t width = 320;
constexpr std::uint32_t height = 180;
constexpr float straight_on = 3.1415927f; // the yaw that turns +z to the viewer

struct pixel
{
    int red, green, blue;
    int brightness() const { return red + green + blue; }
};

pixel pixelAt(const render_result& result, std::uint32_t x, std::uint32_t y)
{
    const std::uint8_t* bytes = result.rgba.data() + (std::size_t{y} * width + x) * 4;
    return {bytes[0], bytes[1], bytes[2]};
}

// At a place of the picture given in 0..1.
pixel pixelAt(const render_result& result, double x, double y)
{
    return pixelAt(result, static_cast<std::uint32_t>(x * width), static_cast<std::uint32_t>(y * height));
}

struct test_options : render_options
{
    texture_map* textures = nullptr;
};

test_options straightOn()
{
    test_options options;
    options.width = width;
    options.height = height;
    options.yaw = straight_on;
    options.pitch = 0;
    return options;
}

scene_pointer sceneOf(const RMV2_FILE_DATA& model, texture_map* textures, const log_port& log = {})
{
    work_port work;
    work.log = log;
    scene_loader loader({}, std::move(work));
    if (textures != nullptr)
        loader.setTextureReader(textures->reader());
    return loader.loadModel(test::lent(model), "Z:/nowhere/model.rigid_model_v2");
}

// A device that cannot be made fails the test: without pictures nothing here is proved.
render_result drawn(const RMV2_FILE_DATA& model, const test_options& options)
{
    render_result result;
    failure why;
    EXPECT_TRUE(renderToImage(sceneOf(model, options.textures, options.log), options, result, why)) << describe(why);
    EXPECT_EQ(result.rgba.size(), std::size_t{options.width} * options.height * 4);
    return result;
}

// A 4 x 4 RGBA texture of one colour; optionally other colours for its right half and its lower half.
std::string colourDds(std::uint32_t rgba, std::uint32_t right, std::uint32_t lower)
{
    test_dds file;
    file.pixels.clear();
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
        {
            const std::uint32_t value = y >= 2 ? lower : x >= 2 ? right : rgba;
            for (int shift = 24; shift >= 0; shift -= 8)
                file.pixels += static_cast<char>(static_cast<unsigned char>(value >> shift));
        }
    return file.bytes();
}
std::string colourDds(std::uint32_t rgba)
{
    return colourDds(rgba, rgba, rgba);
}

TEST(render, theSilhouetteIsThatOfTheMesh)
{
    RMV2_FILE_DATA model = modelOf(sphereGroup({0, 1, 0}, 0.5f, 16), sphereGroup({0.6f, 0.2f, 0.3f}, 0.2f, 12));
    test_options options = straightOn();
    options.yaw += 0.7f;
    options.pitch = -0.3f;
    options.view.shows_normals = true; // no shading that could come near the background
    const render_result result = drawn(model, options);
    test::silhouette expected(width, height, result.eye.toClip(static_cast<float>(width) / height));
    for (const group_data& group : model.lods[0].groups)
    {
        const auto corner = [&group](std::size_t i) { return group.store.vertices[group.store.indices[i]].position; };
        for (std::size_t i = 0; i + 2 < group.store.indices.size(); i += 3)
            expected.add({corner(i), corner(i + 1), corner(i + 2)});
    }
    const pixel background = pixelAt(result, 2u, 2u);
    std::size_t covered = 0;
    std::size_t different = 0;
    for (std::uint32_t y = 1; y + 1 < height; ++y)
        for (std::uint32_t x = 1; x + 1 < width; ++x)
        {
            if (expected.isEdge(x, y)) // softened by the final pass
                continue;
            const pixel seen = pixelAt(result, x, y);
            const int distance = std::abs(seen.red - background.red) + std::abs(seen.green - background.green) +
                                 std::abs(seen.blue - background.blue);
            covered += expected.covers(x, y);
            different += (distance > 12) != expected.covers(x, y);
        }
    EXPECT_GT(covered, 4000u);
    EXPECT_EQ(different, 0u) << "of " << covered;
}

TEST(render, aModelWithoutTexturesIsLitClay)
{
    const render_result result = drawn(modelOf(sphereGroup({0, 0, 0}, 1, 32)), straightOn());
    const pixel lit = pixelAt(result, 0.44, 0.35);
    const pixel shaded = pixelAt(result, 0.56, 0.72);
    EXPECT_GT(lit.brightness(), shaded.brightness() + 90) << "the key light comes from the upper left";
    EXPECT_GT(shaded.brightness(), 120) << "no black side";
    EXPECT_LT(lit.brightness(), 720) << "not burnt out";
    EXPECT_LT(std::max({lit.red, lit.green, lit.blue}) - std::min({lit.red, lit.green, lit.blue}), 25) << "grey";
}

TEST(render, theSideLightHasAMarkerOrTheLogSaysWhyNot)
{
    render_options options;
    std::vector<std::string> lines;
    options.log = [&lines](const std::string& line) { lines.push_back(line); };
    options.width = options.height = 200;
    options.view.lights[1].point.position = {0.9f, 0.8f, -1};
    failure why;
    render_result without, with;
    const RMV2_FILE_DATA model = modelOf(sphereGroup({0, 0, 0}, 1, 12));
    const scene_pointer scene = sceneOf(model, nullptr);
    ASSERT_TRUE(renderToImage(scene, options, without, why)) << describe(why);
    options.view.shows_light = true;
    ASSERT_TRUE(renderToImage(scene, options, with, why)) << describe(why);
    const bool is_said = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("d3dcompiler_47.dll") != line.npos;
    });
    EXPECT_NE(is_said, without.rgba != with.rgba);
}

TEST(render, backFacesAreNotDrawnUnlessTheGroupIsAlphaTested)
{
    for (const bool has_alpha : {false, true})
    {
        group_data square = squareGroup(1);
        square.alpha_mode = has_alpha ? 1 : 0;
        test_options options = straightOn();
        options.yaw = 0; // from behind
        const render_result result = drawn(modelOf(std::move(square)), options);
        const bool is_visible =
            std::abs(pixelAt(result, 0.5, 0.5).brightness() - pixelAt(result, 2u, 2u).brightness()) > 60;
        EXPECT_EQ(is_visible, has_alpha);
    }
}

TEST(render, texturesAreTheRightWayUp)
{
    texture_map textures;
    textures.files = {{"d", colourDds(0xff0000ff, 0x00ff00ff, 0x0000ffff)}, {"n", colourDds(0x8080ffff)}};
    test_options options = straightOn();
    options.textures = &textures;
    options.view.shows_plain = true;
    const render_result result = drawn(modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}})), options);
    const pixel upper_left = pixelAt(result, 0.44, 0.35);
    const pixel upper_right = pixelAt(result, 0.56, 0.35);
    const pixel lower = pixelAt(result, 0.5, 0.68);
    EXPECT_TRUE(upper_left.red > 200 && upper_left.green < 60) << upper_left.red << ' ' << upper_left.green;
    EXPECT_TRUE(upper_right.green > 200 && upper_right.red < 60) << upper_right.red << ' ' << upper_right.green;
    EXPECT_TRUE(lower.blue > 200 && lower.red < 60);
}

// The normal as drawn into the second target: 127.5 + 127.5 * component, x to the right in world space.
TEST(render, bothKindsOfNormalMapsTiltTheSurfaceTheSameWay)
{
    const struct
    {
        const char* name;
        std::uint32_t rgba; // x = 0.5
    } rows[] = {{"x in alpha, red at one", 0xff8000c0}, {"x in red, alpha at one", 0xc080ddff}};
    std::vector<pixel> seen;
    for (const auto& row : rows)
    {
        texture_map textures;
        textures.files = {{"d", colourDds(0x808080ff)}, {"n", colourDds(row.rgba)}};
        test_options options = straightOn();
        options.textures = &textures;
        options.view.shows_normals = true;
        seen.push_back(pixelAt(drawn(modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}})), options), 0.5, 0.5));
    }
    // u grows to the right of the viewer: the normal leans there. 0xc0 is 0.5059.
    EXPECT_NEAR(seen[0].red, seen[1].red, 1);
    EXPECT_NEAR(seen[0].red, 192, 1);
    EXPECT_NEAR(seen[0].green, 128, 1);
}

TEST(render, normalsAreShownValueForValue)
{
    test_options options = straightOn();
    options.view.shows_normals = true;
    const render_result result = drawn(modelOf(squareGroup(1)), options);
    const pixel flat = pixelAt(result, 0.5, 0.5);
    EXPECT_NEAR(flat.red, 128, 1);
    EXPECT_NEAR(flat.green, 128, 1);
    EXPECT_EQ(flat.blue, 0) << "towards the viewer, who looks along +z";
    const pixel around = pixelAt(result, 2u, 2u);
    std::size_t mixed = 0;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            mixed += pixelAt(result, x, y).brightness() != flat.brightness() &&
                     pixelAt(result, x, y).brightness() != around.brightness();
    EXPECT_EQ(mixed, 0u) << "edges are not softened";
}

TEST(render, normalMapsChangeTheLight)
{
    const auto brightness = [](std::uint32_t normal) {
        texture_map textures;
        textures.files = {{"d", colourDds(0x808080ff)}, {"n", colourDds(normal)}};
        test_options options = straightOn();
        options.textures = &textures;
        const RMV2_FILE_DATA model = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
        return pixelAt(drawn(model, options), 0.5, 0.5).brightness();
    };
    const int flat = brightness(0x8080ffff);
    EXPECT_GT(brightness(0x3080ddff), flat - 30) << "towards the key light on the left";
    EXPECT_LT(brightness(0xe080ddff), flat - 30) << "away from it";
}

TEST(render, alphaTestCutsHolesOnlyInAlphaMode)
{
    texture_map textures;
    textures.files = {{"d", colourDds(0xffffff00)}, {"n", colourDds(0x8080ffff)}};
    for (const bool has_alpha : {false, true})
    {
        group_data square = textured(squareGroup(1), {{0, "d"}, {1, "n"}});
        square.alpha_mode = has_alpha ? 1 : 0;
        test_options options = straightOn();
        options.textures = &textures;
        const render_result result = drawn(modelOf(std::move(square)), options);
        const bool is_hole =
            std::abs(pixelAt(result, 0.5, 0.5).brightness() - pixelAt(result, 2u, 2u).brightness()) < 15;
        EXPECT_EQ(is_hole, has_alpha);
    }
}

TEST(render, colourSpacesOfTheDiffuseAreTreatedAlike)
{
    const auto plain = [](std::uint32_t format) {
        test_dds file = test_dds::dx10(format, 64);
        file.pixels = std::string(64, '\x90');
        texture_map textures;
        textures.files = {{"d", file.bytes()}, {"n", colourDds(0x8080ffff)}};
        test_options options = straightOn();
        options.textures = &textures;
        options.view.shows_plain = true;
        return pixelAt(drawn(modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}})), options), 0.5, 0.5).green;
    };
    EXPECT_NEAR(plain(28), 0x90, 8);
    EXPECT_NEAR(plain(29), 0x90, 1);
}

TEST(render, thePlainViewKeepsDarkColoursApart)
{
    for (const int value : {2, 5, 9, 14, 40})
    {
        test_dds file = test_dds::dx10(29, 64);
        file.pixels = std::string(64, static_cast<char>(value));
        texture_map textures;
        textures.files = {{"d", file.bytes()}, {"n", colourDds(0x8080ffff)}};
        test_options options = straightOn();
        options.textures = &textures;
        options.view.shows_plain = true;
        const render_result result = drawn(modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}})), options);
        EXPECT_NEAR(pixelAt(result, 0.5, 0.5).green, value, 1) << "in eight linear bits it would be 0, 13, 22, ...";
    }
}

TEST(render, skinnedGroupsStandInTheirBindPose)
{
    group_data square = squareGroup(1);
    square.header.vertex_format = 4;
    for (vertex_record& record : square.store.vertices.records())
    {
        record.bones = {5, 6, 5, 5};
        record.weights = {0.75f, 0.25f, 0.0f, 0.0f};
    }
    RMV2_FILE_DATA model = modelOf(std::move(square));
    const render_result still = drawn(model, straightOn());
    model.skeleton_id = "humanoid01";
    EXPECT_EQ(drawn(model, straightOn()).rgba, still.rgba);

    // A format without weights cannot be skinned; it must not shrink to a point.
    group_data rigid = squareGroup(1);
    model.lods[0].groups.clear();
    model.lods[0].groups.push_back(std::move(rigid));
    EXPECT_EQ(drawn(model, straightOn()).rgba, still.rgba);
}

TEST(render, sizesOutOfRangeAreRefused)
{
    const RMV2_FILE_DATA model = modelOf(squareGroup(1));
    for (const std::uint32_t size : {0u, largest_picture + 1})
    {
        test_options options = straightOn();
        options.height = size;
        render_result result;
        failure why;
        EXPECT_FALSE(renderToImage(sceneOf(model, nullptr), options, result, why));
        EXPECT_EQ(why.kind, failure_kind::refused);
    }
}

TEST(render, aPictureSurvivesTheLossOfItsDeviceOnceAndReadsItsTexturesAgain)
{
    texture_map textures;
    textures.files = {{"d", colourDds(0x20c040ff)}, {"n", colourDds(0x8080ffff)}};
    const RMV2_FILE_DATA model = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    device_faults faults;
    test_options options = straightOn();
    options.textures = &textures;
    const std::vector<std::uint8_t> expected = drawn(model, options).rgba;
    options.faults = &faults;
    textures.asked.clear();
    faults.lose(device_step::present, 1);
    EXPECT_EQ(drawn(model, options).rgba, expected);
    EXPECT_EQ(textures.asked, (std::vector<std::string>{"d", "n", "d", "n"}));

    faults.lose(device_step::present, 2);
    render_result result;
    failure why;
    EXPECT_FALSE(renderToImage(sceneOf(model, &textures), options, result, why));
    EXPECT_NE(why.what.find("887A0005"), std::string::npos) << why.what;
}

// Only a person would see it otherwise: the squares are there, the log names the file, and the rest is drawn.
TEST(render, aTextureThatCannotBeReadIsACheckerboard)
{
    test_dds cube;
    cube.caps2 = 0xfe00;
    cube.pixels = colourDds(0x20c040ff).substr(128);
    for (int face = 1; face < 6; ++face)
        cube.pixels += colourDds(0xff0000ff).substr(128);
    std::string lines;
    texture_map textures;
    textures.files = {{"d", "DDS garbage"}, {"cube", cube.bytes()}, {"n", colourDds(0x8080ffff)}};
    test_options options = straightOn();
    options.textures = &textures;
    options.view.shows_plain = true;
    options.log = [&lines](const std::string& line) { lines += line + '\n'; };
    const render_result damaged = drawn(modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}})), options);
    int violet = 0, dark = 0;
    for (std::uint32_t x = width / 2 - 40; x < width / 2 + 40; ++x)
    {
        const pixel seen = pixelAt(damaged, x, height / 2 + 5); // within a row of squares
        violet += seen.red > 200 && seen.green < 60 && seen.blue > 200;
        dark += seen.brightness() < 120;
    }
    EXPECT_GT(violet, 20);
    EXPECT_GT(dark, 20);
    EXPECT_NE(lines.find("d: "), std::string::npos) << lines;

    const pixel first_face =
        pixelAt(drawn(modelOf(textured(squareGroup(1), {{0, "cube"}, {1, "n"}})), options), 0.5, 0.5);
    EXPECT_GT(first_face.green, first_face.red + 60) << "of a cube the first face is shown";
}

// Whichever object it is at which the device goes: the making ends there, with nothing worse than that.
TEST(render, everyCreationMayBeTheOneThatIsLost)
{
    device_faults faults;
    lib3d library(&faults);
    failure why;
    ASSERT_TRUE(library.createDevice(device_kind::best, {}, why)) << describe(why);
    texture_map textures;
    textures.files = {{"d", colourDds(0x20c040ff)}, {"n", colourDds(0x8080ffff)}};
    const RMV2_FILE_DATA model = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    const scene_pointer scene = sceneOf(model, &textures);
    int lost = 0;
    for (;; ++lost)
    {
        ASSERT_LT(lost, 100);
        faults.lose(device_step::creation, 1, lost);
        model_scene shown;
        scene_targets targets;
        picture_target picture;
        if (library.createAll() && shown.create(library, scene) && shown.finishTextures(library) &&
            targets.create(library, 32, 32) && picture.create(library, 32, 32))
            break;
    }
    EXPECT_GT(lost, 40);
}

// As a graphics card draws: balls from mirror to wall first with the small cubes, then with the large ones, which a
// decoder that is not ours unpacks. The picture stays, for both hold the same smooth light.
TEST(render, theWholeEnvironmentShowsTheLightOfTheSmallOne)
{
    texture_map textures;
    textures.files = {{"d", colourDds(0x404040ff)}, {"n", colourDds(0x8080ffff)}, {"s", colourDds(0xf0f0f0ff)}};
    std::vector<group_data> balls;
    for (int i = 0; i < 5; ++i)
    {
        const auto smooth = static_cast<std::uint32_t>(255 - i * 60);
        const std::string name = "g" + std::to_string(i);
        textures.files[name] = colourDds(smooth << 24 | smooth << 16 | smooth << 8 | 255);
        balls.push_back(textured(sphereGroup({static_cast<float>(i) * 1.1f, 0, 0}, 0.5f, 48),
                                 {{0, "d"}, {1, "n"}, {11, "s"}, {12, name}}));
    }
    RMV2_FILE_DATA model = modelOf(std::move(balls[0]));
    for (std::size_t i = 1; i < balls.size(); ++i)
        model.lods[0].groups.push_back(std::move(balls[i]));
    const scene_pointer scene = sceneOf(model, &textures);
    lib3d library;
    failure why;
    ASSERT_TRUE(library.createDevice(device_kind::best, {}, why)) << describe(why);
    library.assumeSoftware(false);
    model_scene shown;
    scene_targets targets;
    picture_target picture;
    ASSERT_TRUE(library.createAll() && shown.create(library, scene) && shown.finishTextures(library) &&
                targets.create(library, width, height) && picture.create(library, width, height));
    view_state view;
    view.eye.yaw = straight_on;
    view.eye.pitch = 0;
    view.eye.frame(scene->bounds, static_cast<float>(width) / height);
    std::vector<std::uint8_t> pictures[2];
    for (std::vector<std::uint8_t>& made : pictures)
    {
        shown.draw(library, targets, picture.view(), view);
        ASSERT_TRUE(picture.read(library, made));
        if (&made == pictures)
        {
            const std::atomic<bool> must_stop{false};
            const auto images = makeEnvironmentImages(must_stop);
            ASSERT_TRUE(library.exchangeEnvironment(*images) && library.hasWholeEnvironment());
        }
    }
    double sum = 0;
    int most = 0, changed = 0; // of 255; values
    for (std::size_t i = 0; i < pictures[0].size(); ++i)
    {
        const int difference = std::abs(pictures[0][i] - pictures[1][i]);
        sum += difference;
        most = std::max(most, difference);
        changed += difference > 0;
    }
    EXPECT_GT(changed, 100) << "not the same textures";
    EXPECT_LT(most, 8);
    EXPECT_LT(sum / static_cast<double>(pictures[0].size()), 0.1);
}

} // namespace

} // namespace korvane
