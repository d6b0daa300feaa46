// What a check says of models with one fault each, and of definitions and folders.

#include "Korvane/archives/pack_file.h"
#include "Korvane/jobs/check_run.h"
#include "tests/support/anim_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace korvane::test
{
namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// Format 4, one vertex: position, bones, weights, the rest zero.
std::string cinematicVertex(std::array<std::uint16_t, 3> halves, std::array<unsigned, 4> bones,
                            std::array<unsigned, 4> weights)
{
    bytes_out out;
    for (const std::uint16_t half : halves)
        out.u16(half);
    out.u16(0);
    for (const unsigned value : bones)
        out.u8(value);
    for (const unsigned value : weights)
        out.u8(value);
    out.zeros(32 - out.size());
    return out.str();
}

// Everything is right with it, in the archive of the fixture.
test_model soundModel()
{
    test_group group;
    group.vertex_format = 4;
    group.textures = {{0, "tex/body_diffuse.dds"}, {1, "TEX\\body_normal.dds"}};
    group.vertices.clear();
    for (int i = 0; i < 3; ++i)
        group.vertices += cinematicVertex({0x3c00, 0, 0xbc00}, {0, 1, 2, 0}, {100, 100, 55, 0}); // 1, 0, -1
    test_model model;
    model.lods = {{group}, {group}};
    return model;
}

class check_test : public testing::Test
{
protected:
    void SetUp() override
    {
        test_pack pack;
        const std::string dds = "DDS and more";
        pack.entries = {{"tex\\body_diffuse.dds", dds},
                        {"tex\\body_normal.dds", dds},
                        {"tex\\other\\helmet.dds", dds},
                        {"tex\\text.dds", "no texture"},
                        {"animations\\skeletons\\humanoid01.anim", test_anim().bytes()},
                        {"animations\\skeletons\\broken.anim", "x"},
                        {"m\\sound.rigid_model_v2", soundModel().bytes()},
                        {"m\\figure.variantmeshdefinition",
                         "<VARIANT_MESH><SLOT><VARIANT_MESH model=\"m/sound.rigid_model_v2\"/>"
                         "<VARIANT_MESH model=\"m/sund.rigid_model_v2\"/></SLOT></VARIANT_MESH>"}};
        writeBytes(m_folder.file("a.pack"), pack.bytes());
        m_tree = std::make_shared<path_tree>();
        pack_file archive(*m_tree);
        failure why;
        ASSERT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
    }
    void TearDown() override { m_tree.reset(); } // closes the archive before its folder goes

    std::vector<finding> check(const std::string& operand) const
    {
        check_run run{game_data(m_tree)};
        run.add(operand);
        std::vector<finding> found;
        while (run.step(found))
            ;
        return found;
    }

    // "error index_range 0.0.-: 1 index names a vertex"
    static std::string line(const finding& each)
    {
        static const char* const severities[] = {"note", "warning", "error"};
        const auto index = [](const std::optional<std::size_t>& value) {
            return value ? std::to_string(*value) : std::string("-");
        };
        return severities[static_cast<std::size_t>(each.severity)] + (" " + each.kind + " ") + index(each.place.lod) +
               "." + index(each.place.group) + "." + index(each.place.texture) + ": " + each.text;
    }
    static std::string lines(const std::vector<finding>& found)
    {
        std::string text;
        for (const finding& each : found)
            text += line(each) + "\n";
        return text;
    }

    temporary_folder m_folder;
    std::shared_ptr<path_tree> m_tree;
};

TEST_F(check_test, aSoundModelHasNoFindings)
{
    EXPECT_EQ(lines(check("pack:m/sound*")), "");
}

TEST_F(check_test, everyFaultIsFoundWhereItIsAndNothingElse)
{
    using model_change = std::function<void(test_model&)>;
    const auto texture = [](std::size_t index, const char* path) -> model_change {
        return [index, path](test_model& model) { model.lods[1][0].textures[index].second = path; };
    };
    const auto group = [](const std::function<void(test_group&)>& change) -> model_change {
        return [change](test_model& model) { change(model.lods[1][0]); };
    };
    const auto vertex = [](std::array<std::uint16_t, 3> halves, std::array<unsigned, 4> bones,
                           std::array<unsigned, 4> weights) -> model_change {
        return [=](test_model& model) {
            model.lods[1][0].vertices.replace(32, 32, cinematicVertex(halves, bones, weights));
        };
    };
    const struct
    {
        const char* line; // how the only finding begins
        model_change change;
        const char* hint = ""; // stands in it as well
    } rows[] = {
        {"error texture_missing 1.0.0: \"tex/body_difuse.dds\" (Diffuse) is in no archive and not beside the model",
         texture(0, "tex/body_difuse.dds"), "did you mean \"tex\\body_diffuse.dds\"?"},
        {"error texture_missing 1.0.1", texture(1, "tex/Helmet.dds"), "\"tex\\other\\helmet.dds\""},
        {"error texture_missing 1.0.1", texture(1, "quite/else.dds"), "beside the model"},
        {"error texture_missing 1.0.0", texture(0, "tex/body_diffuse.dds."), "\"tex\\body_diffuse.dds\"?"},
        {"error texture_missing 1.0.0", texture(0, "tex/body_diffuse.dds.dds"), "\"tex\\body_diffuse.dds\"?"},
        {"error texture_missing 1.0.0", texture(0, "disk/diskonli.dds"), "\"disk\\diskonly.dds\"?"},
        {"error texture_missing 1.0.0", texture(0, "dusk/diskonly.dds"), "\"disk\\diskonly.dds\"?"},
        {"error texture_path 1.0.0: \"data/tex/body_diffuse.dds\" begins with the data folder",
         texture(0, "data/tex/body_diffuse.dds"), "did you mean \"tex\\body_diffuse.dds\"?"},
        {"error texture_path 1.0.0", texture(0, "C:\\mods\\body_diffuse.dds"), "somebody's disk"},
        {"error texture_path 1.0.0", texture(0, "../tex/body_diffuse.dds"), "\"..\""},
        {"error texture_path 1.0.0", texture(0, "tex/body_diffuse.dds "), "ends with a blank"},
        {"error texture_path 1.0.0", texture(0, " tex/body_diffuse.dds"), "begins with a blank"},
        {"error texture_path 1.0.0", texture(0, "tex/body\ndiffuse.dds"), "control character"},
        {"warning texture_path 1.0.0", texture(0, "tex//body_diffuse.dds"), "two separators"},
        {"warning texture_path 1.0.0", texture(0, "/tex/body_diffuse.dds"), "begins with a separator"},
        {"warning texture_path 1.0.1", texture(1, "tex/other\\helmet.dds"), "both separators"},
        {"warning texture_empty 1.0.0", texture(0, ""), "names no file"},
        {"error texture_damaged 1.0.0", texture(0, "tex/text.dds"), "is not a DDS file"},
        {"warning texture_type 1.0.1: texture type 99", group([](test_group& g) { g.textures[1].first = 99; })},
        {"note texture_type 1.0.1: the group has a second", group([](test_group& g) { g.textures[1].first = 0; })},
        {"warning material 1.0.-: material 2 ", group([](test_group& g) { g.material_id = 2; })},
        {"note alpha_mode 1.0.-", group([](test_group& g) { g.alpha_mode = 7; })},
        {"warning vertex_format 1.0.-", group([](test_group& g) { g.vertex_format = 9; })},
        {"error index_range 1.0.-: 2 indices name a vertex", group([](test_group& g) {
             g.indices = {3, 1, 4};
         })},
        {"warning index_count 1.0.-", group([](test_group& g) {
             g.indices = {0, 1};
         })},
        {"warning empty_group 1.0.-: the group has no triangles", group([](test_group& g) { g.indices.clear(); })},
        {"warning bounding_box 1.0.-", group([](test_group& g) { g.bbox_max[2] = -1.5f; }), "0.5 m out of"},
        {"warning bounding_box 1.0.-", group([](test_group& g) { g.bbox_min[1] = nan; }), "no box"},
        {"warning no_terminator 1.0.-: the group's name", group([](test_group& g) { g.group_name.assign(32, 'n'); })},
        {"warning no_terminator 1.0.-: the shader's name",
         group([](test_group& g) { g.shader_name = "twelve_bytes"; })},
        {"warning no_terminator 1.0.-", group([](test_group& g) { g.texture_directory.assign(256, 'n'); })},
        {"warning no_terminator 1.0.-", group([](test_group& g) {
             g.attachments = {{std::string(32, 'a'), 1.0f}};
         })},
        {"error vertex_position 1.0.-: 1 vertex has", vertex({0x7c00, 0, 0}, {0, 0, 0, 0}, {255, 0, 0, 0})},
        {"warning weights 1.0.-", vertex({0, 0, 0}, {0, 1, 0, 0}, {250, 4, 0, 0}), "(vertex 1: 254)"},
        {"error bones 1.0.-: 1 vertex hangs", vertex({0, 0, 0}, {0, 9, 200, 3}, {200, 0, 0, 55}), "(bone 3; it has 3)"},
        {"error lod_empty 1.-.-", [](test_model& model) { model.lods[1].clear(); }},
        {"error lod_empty -.-.-", [](test_model& model) { model.lods.clear(); }},
        {"warning lod_order 1.-.-: the LOD has more triangles (2) than", group([](test_group& g) {
             g.indices.insert(g.indices.end(), {0, 1, 2});
         })},
        {"warning skeleton_missing -.-.-", [](test_model& model) { model.skeleton_id.clear(); }, "names no skeleton"},
        {"error skeleton_missing -.-.-", [](test_model& model) { model.skeleton_id = "humanoid1"; },
         "did you mean \"animations\\skeletons\\humanoid01.anim\"?"},
        {"error skeleton_damaged -.-.-", [](test_model& model) { model.skeleton_id = "broken"; }},
        {"error no_terminator -.-.-", [](test_model& model) { model.skeleton_id.assign(128, 's'); }},
    };
    std::filesystem::create_directories(toPath(m_folder.file("disk")));
    writeBytes(m_folder.file("disk/diskonly.dds"), "DDS and more");
    const std::string path = m_folder.file("model.rigid_model_v2");
    for (const auto& row : rows)
    {
        test_model model = soundModel();
        row.change(model);
        writeBytes(path, model.bytes());
        const std::vector<finding> found = check(path);
        // A skeleton's id of 128 characters is no skeleton's either.
        const std::size_t expected = model.skeleton_id.size() == 128 ? 2 : 1;
        ASSERT_EQ(found.size(), expected) << row.line << "\n" << lines(found);
        EXPECT_TRUE(line(found[0]).starts_with(row.line)) << row.line << "\n" << lines(found);
        EXPECT_NE(found[0].text.find(row.hint), std::string::npos) << row.hint << "\n" << lines(found);
        EXPECT_EQ(found[0].file, path);
    }
}

TEST_F(check_test, lodHeadersOutOfOrder)
{
    const struct
    {
        std::size_t offset; // in the header of LOD 1
        std::uint32_t value;
    } rows[] = {{16, 0x42000000u /* 32 */}, {16, 0x7fc00000u /* not a number */}, {20, 0}};
    for (const auto& row : rows)
    {
        const test_model model = soundModel();
        bytes_out out;
        out.text(model.bytes());
        out.putU32(model.headerSize() + model.lodHeaderSize() + row.offset, row.value);
        writeBytes(m_folder.file("lods.rigid_model_v2"), out.str());
        const std::vector<finding> found = check(m_folder.file("lods.rigid_model_v2"));
        ASSERT_EQ(found.size(), 1u) << lines(found);
        EXPECT_TRUE(line(found[0]).starts_with("warning lod_order 1.-.-")) << lines(found);
    }
}

TEST_F(check_test, definitionsFoldersAndWhatCannotBeRead)
{
    EXPECT_EQ(lines(check("pack:m\\*definition")),
              "error model_missing -.-.-: the model \"m\\sund.rigid_model_v2\" is in no archive; did you mean "
              "\"m\\sound.rigid_model_v2\"?\n");
    writeBytes(m_folder.file("own.variantmeshdefinition"),
               "<VARIANT_MESH><VARIANT_MESH_REFERENCE definition=\"m/figur.variantmeshdefinition\"/>"
               "<VARIANT_MESH model=\"m/sound.rigid_model_v2\"/></VARIANT_MESH>");
    EXPECT_EQ(lines(check(m_folder.file("own.variantmeshdefinition"))),
              "error reference -.-.-: the definition \"m\\figur.variantmeshdefinition\" is in no archive; did you mean "
              "\"m\\figure.variantmeshdefinition\"?\n");
    EXPECT_TRUE(lines(check("pack:none*")).starts_with("error not_found -.-.-"));
    EXPECT_TRUE(lines(check(m_folder.file("none.rigid_model_v2"))).starts_with("error not_found -.-.-"));

    std::filesystem::create_directories(toPath(m_folder.file("mods/sub")));
    EXPECT_TRUE(lines(check(m_folder.file("mods"))).starts_with("error not_found -.-.-"));
    writeBytes(m_folder.file("mods/sub/a.rigid_model_v2"), soundModel().bytes());
    writeBytes(m_folder.file("mods/cut.RIGID_MODEL_V2"), soundModel().bytes().substr(0, 300));
    writeBytes(m_folder.file("mods/readme.txt"), "no model");
    const std::vector<finding> found = check(m_folder.file("mods"));
    ASSERT_EQ(found.size(), 1u) << lines(found);
    EXPECT_EQ(found[0].kind, "unreadable");
    EXPECT_NE(found[0].text.find("(at byte "), std::string::npos) << found[0].text;

    test_model patched = soundModel(); // and saved again
    patched.version = 6;
    for (const std::size_t lods : {std::size_t{1}, std::size_t{3}}) // with one it can be read after all
    {
        patched.lods.assign(lods, patched.lods.front());
        std::string bytes = patched.bytes();
        bytes[4] = 7;
        writeBytes(m_folder.file("mixed.rigid_model_v2"), bytes);
        EXPECT_TRUE(lines(check(m_folder.file("mixed.rigid_model_v2"))).starts_with("error version_word -.-.-"));
    }
}

TEST_F(check_test, withoutArchivesOnlyTheDiskCounts)
{
    const std::string path = m_folder.file("model.rigid_model_v2");
    test_model model = soundModel();
    model.skeleton_id = "nobody";
    writeBytes(path, model.bytes());
    std::filesystem::create_directories(toPath(m_folder.file("tex")));
    writeBytes(m_folder.file("tex/body_diffuse.dds"), "not one");
    const auto checkOnDisk = [](const std::string& operand) {
        check_run run{game_data()};
        run.add(operand);
        std::vector<finding> found;
        while (run.step(found))
            ;
        return found;
    };
    const std::vector<finding> found = checkOnDisk(path);
    // What is missing may be in an archive, whatever lies beside it.
    const std::string normal =
        "\"TEX\\body_normal.dds\" (Normal Map) is not beside the model; no archives were given, so "
        "it may be in them";
    const auto expected = [&](const std::string& severity, const std::string& hint) {
        std::string text =
            "note skeleton_missing -.-.-: the skeleton \"nobody\" is not on the disk around the model; no "
            "archives were given, so it may be in them\n";
        for (const std::string lod : {"0", "1"})
            text += "error texture_damaged " + lod + ".0.0: \"tex/body_diffuse.dds\" is not a DDS file\n" + severity +
                    " texture_missing " + lod + ".0.1: " + normal + hint + "\n";
        return text;
    };
    EXPECT_EQ(lines(found), expected("note", ""));
    writeBytes(m_folder.file("tex/body_norml.dds"), "DDS");
    EXPECT_EQ(lines(checkOnDisk(path)), expected("note", "; did you mean \"tex\\body_norml.dds\"?"));
    model.skeleton_id = "humanoid01";
    writeBytes(path, model.bytes());
    std::filesystem::create_directories(toPath(m_folder.file("animations/skeletons")));
    writeBytes(m_folder.file("animations/skeletons/humanoid01.anim"), test_anim().bytes());
    EXPECT_EQ(lines(checkOnDisk(path)).find("skeleton"), std::string::npos);
}

TEST_F(check_test, theTextsOfAVersion5HeaderNeedAnEnd)
{
    for (const bool is_wide : {false, true})
    {
        test_model model = soundModel();
        model.version = 5;
        std::string bytes = model.bytes();
        for (std::size_t i = 140; i < 268; ++i)
            bytes[i] = is_wide && i % 2 == 1 ? '\0' : 't';
        writeBytes(m_folder.file("old.rigid_model_v2"), bytes);
        EXPECT_EQ(lines(check(m_folder.file("old.rigid_model_v2"))),
                  "warning no_terminator -.-.-: the second text of the header fills its field of 128 bytes and has no "
                  "terminating zero\n");
    }
}

} // namespace
} // namespace korvane::test
