// Whole pictures: of the demo data compared with stored ones, drawn in parts, and against the pose that the processor
// computes. A picture that was meant to change: look at the one that the failed test leaves in the build folder beside
// its difference, then run once with KORVANE_NEW_BASELINES=1 and commit the new baseline.

#include "D3D11_RENDER_LIB/device_faults.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/textures/picture_file.h"
#include "Korvane/viewer/model_scene.h"
#include "Korvane/viewer/offscreen.h"
#include "Korvane/viewer/posed_mesh.h"
#include "Korvane/viewer/preview_pictures.h"
#include "tests/support/silhouette.h"
#include "tests/support/temporary_folder.h"
#include "tools/demo_data/demo_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace korvane::test
{
namespace
{

// Two devices, or two versions of one, round differently: edges move by fractions of a pixel and colours by a step or
// two. Beyond this a person sees the difference: a texture, a bone or a light is not what it was.
constexpr double most_mean_difference = 0.8; // of a channel, of 255
constexpr int visible_difference = 24;       // of a channel
constexpr double most_visible = 0.01;        // of all pixels

struct demo_game
{
    demo_game()
    {
        failure why;
        demo::options wanted;
        wanted.scale = 0.25;
        const auto keepArchives = [this](const demo::file& made) {
            return !made.path.ends_with(".pack") || writeWholeFile(folder.file(made.path), made.bytes, unused);
        };
        EXPECT_TRUE(demo::makeFiles(wanted, keepArchives, why)) << describe(why);
        pack_reader reader;
        EXPECT_TRUE(reader.loadAllArchives({folder.file("")}));
        game = std::make_shared<const game_data>(reader.tree());
    }
    temporary_folder folder;
    failure unused;
    std::shared_ptr<const game_data> game;
};

class pictures : public testing::Test
{
protected:
    static void SetUpTestSuite() { sm_po_demo = std::make_unique<demo_game>(); }
    static void TearDownTestSuite() { sm_po_demo.reset(); }

    // Of a definition, or a model.
    static scene_pointer load(const std::string& name, const std::string& missing = {})
    {
        failure why;
        scene_loader loader(*sm_po_demo->game);
        if (!missing.empty())
            loader.setTextureReader([missing](const std::string& path, memory_file& bytes, file_place&, failure& left) {
                return path.find(missing) == std::string::npos
                           ? sm_po_demo->game->readInternal(path, bytes, left)
                           : fail(left, failure_kind::not_found, "it is missing", path);
            });
        if (name.ends_with(".rigid_model_v2"))
        {
            loaded_game game(sm_po_demo->game);
            const auto file = std::make_shared<rmv2_file>();
            EXPECT_TRUE(openModel(game, "pack:" + name, *file, {}, why)) << describe(why);
            return loader.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), "pack:" + name);
        }
        const std::string path = "pack:variantmeshes/variantmeshdefinitions/" + name + ".variantmeshdefinition";
        open_definition definition;
        EXPECT_TRUE(definition.open(path, why, *sm_po_demo->game)) << describe(why);
        return loader.loadFigure(definition.figure(), path);
    }
    static std::shared_ptr<const anim_data> animation(const std::string& name)
    {
        failure why;
        loaded_game game(sm_po_demo->game);
        const auto loaded = loadAnim(game, "pack:animations/battle/" + name, anim_depth::animation, why);
        EXPECT_TRUE(loaded) << describe(why);
        return loaded;
    }
    static render_options small()
    {
        render_options options;
        options.width = 120;
        options.height = 160;
        options.samples = 4;
        options.view.shadows = shadow_choice::off;
        return options;
    }
    static picture draw(const scene_pointer& scene, const render_options& options, const picture_moment& moment = {})
    {
        picture made;
        failure why;
        EXPECT_TRUE(picture_session(scene, options).draw({moment}, {}, made, why)) << describe(why);
        return made;
    }

    static std::unique_ptr<demo_game> sm_po_demo;
};
std::unique_ptr<demo_game> pictures::sm_po_demo;

int channelOf(rgba_pixel pixel, int channel)
{
    return static_cast<int>(pixel >> (8 * channel) & 0xff);
}

// Leaves both pictures behind when they differ visibly.
void expectLikeBaseline(const std::string& name, const picture& seen)
{
    const std::string path = KORVANE_BASELINES + name + ".png";
    failure why;
    if (std::getenv("KORVANE_NEW_BASELINES") != nullptr)
    {
        EXPECT_TRUE(writePictureFile(path, picture_kind::png, seen, why)) << describe(why);
        return;
    }
    picture wanted;
    ASSERT_TRUE(readPictureFile(path, wanted, why)) << describe(why);
    ASSERT_EQ(wanted.width(), seen.width());
    ASSERT_EQ(wanted.height(), seen.height());
    picture difference(seen.width(), seen.height());
    double sum = 0;
    std::size_t visible = 0;
    for (std::size_t i = 0; i < seen.pixelCount(); ++i)
    {
        int most = 0;
        for (int channel = 0; channel < 4; ++channel)
        {
            const int step = std::abs(channelOf(seen.pixels()[i], channel) - channelOf(wanted.pixels()[i], channel));
            most = std::max(most, step);
            sum += step;
        }
        visible += most > visible_difference;
        const auto shown = static_cast<unsigned>(std::min(most * 8, 255));
        difference.pixels()[i] = rgba(shown, shown, shown, 255);
    }
    const auto pixels = static_cast<double>(seen.pixelCount());
    const double mean = sum / (4 * pixels);
    const double share = static_cast<double>(visible) / pixels;
    if (mean <= most_mean_difference && share <= most_visible)
        return;
    const std::string left = KORVANE_DIFFERENCES + name;
    EXPECT_TRUE(writePictureFile(left + ".png", picture_kind::png, seen, why) &&
                writePictureFile(left + "_difference.png", picture_kind::png, difference, why));
    ADD_FAILURE() << name << ": a channel differs by " << mean << " on average, and " << share * 100
                  << " % of the pixels visibly: see " << left << ".png and " << left << "_difference.png";
}

TEST_F(pictures, lookAsTheyDid)
{
    const char* const grass = "rigidmodels/demo/demo_grass.rigid_model_v2";
    const char* const formats = "rigidmodels/demo/demo_formats.rigid_model_v2";
    const char* const slash = "humanoid01/attack/hu1_attack_slash_01.anim";
    const char* const jog = "humanoid01/run/hu1_jog.anim";
    const auto channel = [](view_channel shown) { return [shown](view_state& view) { view.channel = shown; }; };
    const auto lines = [](view_state& view) {
        view.shows_floor = view.shows_skeleton = view.shows_wire_over = true;
        view.selected = shown_group{0, 0};
    };
    const struct
    {
        const char* name;
        const char* shown;
        const char* animation;
        double seconds;
        std::function<void(view_state& view)> change;
        const char* missing = ""; // textures whose path holds this are not there
        unsigned samples = 4;     // with one a software device shades each pixel once, behind all surfaces
        float yaw = 0;            // added to that of the others
    } rows[] = {
        {"static", "demo_guard", nullptr, 0, {}},
        {"mid_stride", "demo_guard", jog, 0.2, {}},
        {"hanging_weapon", "demo_champion", slash, 0.4, {}},
        {"rider", "demo_rider", "beast01/run/be1_gallop.anim", 0.2, {}},
        {"alpha_test", grass, nullptr, 0, {}},
        {"formats", formats, nullptr, 0, {}},
        {"missing_maps", "demo_guard", nullptr, 0, {}, "cape_normal", 4, 3},
        {"skeleton", "demo_guard", jog, 0.2, [](view_state& view) { view.shows_skeleton = true; }},
        {"names", "demo_guard", jog, 0.2, [](view_state& view) { view.shows_attachments = true; }},
        {"wire_over", "demo_guard", jog, 0.2, [](view_state& view) { view.shows_wire_over = true; }},
        {"wire", "demo_guard", nullptr, 0, [](view_state& view) { view.is_wireframe = true; }},
        {"base", "demo_guard", nullptr, 0, channel(view_channel::base)},
        {"normals", "demo_guard", nullptr, 0, channel(view_channel::normals)},
        {"specular", "demo_guard", nullptr, 0, channel(view_channel::specular)},
        {"gloss", "demo_guard", nullptr, 0, channel(view_channel::gloss)},
        {"mask", "demo_guard", nullptr, 0, channel(view_channel::mask)},
        {"alpha", grass, nullptr, 0, channel(view_channel::alpha)},
        {"uv", "demo_guard", nullptr, 0, channel(view_channel::uv)},
        {"weights", "demo_guard", nullptr, 0, channel(view_channel::weights)},
        {"one_sample", "demo_guard", jog, 0.2, {}, "", 1},
        {"one_sample_lines", "demo_guard", jog, 0.2, lines, "", 1},
        {"transparent", "demo_guard", jog, 0.2, [](view_state& view) { view.is_background_clear = true; }},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        render_options options = small();
        options.view.heat_bone = 3;
        options.samples = row.samples;
        options.yaw += row.yaw;
        if (row.change)
            row.change(options.view);
        if (row.animation != nullptr)
            options.animations = {animation(row.animation)};
        expectLikeBaseline(row.name, draw(load(row.shown, row.missing), options,
                                          row.animation != nullptr ? picture_moment(row.seconds) : picture_moment()));
    }
}

// A shadow changes less of a picture than devices differ by: what it does is counted.
TEST_F(pictures, withAShadowAreDarkerWhereItFalls)
{
    const scene_pointer guard = load("demo_guard");
    render_options options = small();
    options.width = 300;
    options.height = 400;
    options.animations = {animation("humanoid01/run/hu1_jog.anim")};
    options.view.shows_floor = true;
    const picture without = draw(guard, options, 0.2);
    options.view.shadows = shadow_choice::on;
    const picture with = draw(guard, options, 0.2);
    std::size_t darker_above = 0, darker_below = 0, brighter = 0;
    for (std::uint32_t y = 0; y < with.height(); ++y)
        for (std::uint32_t x = 0; x < with.width(); ++x)
        {
            const int step = channelOf(without.row(y)[x], 1) - channelOf(with.row(y)[x], 1);
            (y < with.height() * 3 / 4 ? darker_above : darker_below) += step > 6; // on the body, on the floor
            brighter += step < -6;
        }
    EXPECT_GT(darker_above, 500u);
    EXPECT_GT(darker_below, 500u);
    EXPECT_LT(brighter, 50u);
}

// What lies at the edges of the parts is what lies there in the whole picture: no seam, whatever is drawn. Not all
// bits: the corners of triangles are moved before they are rounded, which turns a last step of a colour here and there.
TEST_F(pictures, drawnInPartsAreThoseDrawnAtOnce)
{
    const scene_pointer guard = load("demo_guard");
    for (const std::uint32_t samples : {1u, 9u})
    {
        render_options options = small();
        options.samples = samples;
        options.animations = {animation("humanoid01/run/hu1_jog.anim")};
        options.view.shows_floor = options.view.shows_bone_names = options.view.shows_counts = true;
        options.view.selected = shown_group{0, 0};
        options.view.shadows = shadow_choice::on;
        const picture whole = draw(guard, options, 0.2);
        options.largest_part = 50;
        const picture parts = draw(guard, options, 0.2);
        std::size_t different = 0;
        int most = 0;
        for (std::size_t i = 0; i < whole.pixelCount(); ++i)
            for (int channel = 0; channel < 4; ++channel)
            {
                const int step =
                    std::abs(channelOf(whole.pixels()[i], channel) - channelOf(parts.pixels()[i], channel));
                different += step != 0;
                most = std::max(most, step);
            }
        EXPECT_LE(different, whole.pixelCount() / 1000) << samples << " samples";
        EXPECT_LE(most, 8) << samples << " samples";
    }
}

TEST_F(pictures, ofAPoseCoverWhatTheProcessorComputes)
{
    const scene_pointer guard = load("demo_champion");
    render_options options = small();
    options.width = 240;
    options.height = 320;
    options.samples = 1;
    options.animations = {animation("humanoid01/attack/hu1_attack_slash_01.anim")};
    options.view.is_background_clear = true;
    options.view.channel = view_channel::alpha; // without the holes of the alpha test
    picture_session session(guard, options);
    picture seen;
    failure why;
    ASSERT_TRUE(session.draw({0.4}, {}, seen, why)) << describe(why);

    posed_scene pose(guard);
    ASSERT_TRUE(pose.setAnimation(options.animations.front()));
    pose.showTime(0.4);
    silhouette expected(240, 320, session.eye().toClip(240.0f / 320));
    for (const scene_part& part : guard->parts)
        for (const scene_group& group : part.groups())
        {
            const auto corner = [&](std::size_t i) {
                return posedVertex(pose, part, group, group.store->vertices[group.store->indices[i]]).position;
            };
            for (std::size_t i = 0; i + 2 < group.store->indices.size(); i += 3)
                expected.add({corner(i), corner(i + 1), corner(i + 2)});
        }
    std::size_t covered = 0, different = 0;
    for (std::uint32_t y = 1; y + 1 < 320; ++y)
        for (std::uint32_t x = 1; x + 1 < 240; ++x)
            if (!expected.isEdge(x, y))
            {
                covered += expected.covers(x, y);
                different += (channelOf(seen.row(y)[x], 3) > 127) != expected.covers(x, y);
            }
    EXPECT_GT(covered, 5000u);
    EXPECT_EQ(different, 0u) << "of " << covered;
}

// What is drawn smaller while it moves does not jump when it stands.
TEST_F(pictures, thatAreEnlargedLieWhereWholeOnesDo)
{
    constexpr int width = 241, height = 321;
    const scene_pointer guard = load("demo_guard");
    failure why;
    lib3d library;
    model_scene drawn;
    scene_targets whole, small;
    picture_target target;
    ASSERT_TRUE(library.createDevice(device_kind::best, {}, why) && library.createAll() &&
                drawn.create(library, guard) && drawn.finishTextures(library) && whole.create(library, width, height) &&
                small.create(library, width / 2, height / 2) && small.enlargeTo(library, width, height) &&
                target.create(library, width, height));
    view_state view;
    view.eye.frame(guard->bounds, static_cast<float>(width) / height);
    view.shadows = shadow_choice::off;
    for (const bool is_marked : {false, true}) // with lines all of the picture is looked at
    {
        view.shows_floor = is_marked;
        if (is_marked)
            view.selected = shown_group{0, 0};
        std::array<std::vector<std::uint8_t>, 2> seen;
        for (std::size_t i = 0; i < 2; ++i)
        {
            drawn.draw(library, i == 0 ? whole : small, target.view(), view);
            ASSERT_TRUE(target.read(library, seen[i]));
        }
        const auto difference = [&seen](int right, int down) { // of the first channel
            double sum = 0;
            for (int y = 2; y < height - 2; ++y)
                for (int x = 2; x < width - 2; ++x)
                    sum += std::abs(seen[0][static_cast<std::size_t>(y * width + x) * 4] -
                                    seen[1][static_cast<std::size_t>((y + down) * width + x + right) * 4]);
            return sum / (width * height);
        };
        const double here = difference(0, 0);
        EXPECT_LT(here, is_marked ? 9 : 6) << "lines are wider";
        for (const auto& [right, down] : {std::pair(-1, 0), {1, 0}, {0, -1}, {0, 1}})
            EXPECT_LT(here, difference(right, down)) << is_marked << " " << right << " " << down;
    }
}

// Each sample sees another place of its pixel: an edge covers any part of one.
TEST_F(pictures, ofSeveralSamplesHaveSmoothEdges)
{
    const scene_pointer guard = load("demo_guard");
    render_options options = small();
    options.view.is_background_clear = true;
    options.samples = 16;
    std::set<int> seen;
    for (const rgba_pixel pixel : draw(guard, options).pixels())
        seen.insert(channelOf(pixel, 3));
    EXPECT_GE(seen.size(), 17u);
}

TEST_F(pictures, ofPreviewsComeFromOneDeviceThatMayBeLost)
{
    render_options options = small();
    options.samples = 1;
    device_faults faults;
    preview_pictures previews(&faults);
    for (const char* const name : {"demo_guard", "demo_champion", "demo_guard"})
    {
        const scene_pointer scene = load(name);
        picture seen;
        failure why;
        ASSERT_TRUE(previews.draw(scene, options.width, options.height, {}, seen, why)) << describe(why);
        const picture expected = draw(scene, options);
        EXPECT_TRUE(std::ranges::equal(seen.pixels(), expected.pixels())) << name;
        faults.lose(device_step::creation, 1); // the next picture begins with a loss
    }
}

TEST_F(pictures, thatAreStoppedFailWithoutAReason)
{
    work_port work;
    std::stop_source stop;
    work.stop = stop.get_token();
    work.progress = [&](const work_progress& now) {
        if (now.done == 1)
            stop.request_stop();
    };
    picture made;
    failure why;
    EXPECT_FALSE(picture_session(load("demo_guard"), small()).draw({}, work, made, why));
    EXPECT_FALSE(why);
    EXPECT_EQ(made.width(), 0u);
}

} // namespace
} // namespace korvane::test
