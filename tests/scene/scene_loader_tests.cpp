#include "Korvane/archives/pack_file.h"
#include "Korvane/scene/scene_loader.h"
#include "tests/support/dds_builder.h"
#include "tests/support/mesh_builder.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/texture_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <new>

namespace korvane::test
{

namespace
{

constexpr const char* pfn_is_null = "render_variant::addRigidModelByInternalPath: pfn = nullptr";

class scene_loader_test : public testing::Test
{
protected:
    scene_loader loader(game_data game = {})
    {
        work_port work;
        work.log = [this](const std::string& line) { m_lines.push_back(line); };
        work.stop = m_stop.get_token();
        scene_loader made(std::move(game), std::move(work));
        made.setTextureReader(m_textures.reader());
        return made;
    }
    // An archive with two models of one triangle and a broken one.
    game_data game()
    {
        test_group triangle;
        triangle.vertices = std::string(3 * 32, '\0');
        triangle.vertex_count = 3;
        triangle.indices = {0, 1, 2};
        test_model model;
        model.lods = {{triangle}};
        test_pack pack;
        pack.entries = {{"men\\left.rigid_model_v2", model.bytes()},
                        {"men\\right.rigid_model_v2", model.bytes()},
                        {"broken.rigid_model_v2", "RMV2 and no more"}};
        writeBytes(m_folder.file("a.pack"), pack.bytes());
        auto tree = std::make_shared<path_tree>();
        pack_file archive(*tree);
        failure why;
        EXPECT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
        return game_data(tree);
    }
    bool logHolds(const std::string& text) const
    {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    }

    temporary_folder m_folder;
    texture_map m_textures;
    std::vector<std::string> m_lines;
    std::stop_source m_stop;
};

std::string textureFile()
{
    return test_dds().bytes();
}

TEST_F(scene_loader_test, texturesTakeTheFirstEntryOfTheirTypeAndAreShared)
{
    for (const char* name : {"d", "second", "n", "g"})
        m_textures.files[name] = textureFile();
    group_data first = textured(squareGroup(1), {{12, "g"}, {0, "d"}, {0, "second"}, {1, "n"}, {5, "unused"}});
    first.alpha_mode = 1;
    first.header.vertex_format = 4;
    const RMV2_FILE_DATA data = modelOf(std::move(first), textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    const scene_pointer scene = loader().loadModel(lent(data), "Z:/m");
    ASSERT_EQ(scene->parts.size(), 1u);
    const scene_part& part = scene->parts[0];
    ASSERT_EQ(part.textures.size(), 2u);
    EXPECT_EQ(part.textures[0][diffuse_slot]->path(), "d");
    EXPECT_EQ(part.textures[0][gloss_slot]->path(), "g");
    EXPECT_EQ(part.textures[0][specular_slot], nullptr);
    EXPECT_EQ(part.textures[0][normal_slot], part.textures[1][normal_slot]);
    EXPECT_EQ(m_textures.asked, (std::vector<std::string>{"d", "n", "g"}));
    EXPECT_TRUE(part.groups()[0].has_alpha && part.groups()[0].has_weights);
    EXPECT_FALSE(part.groups()[1].has_alpha || part.groups()[1].has_weights);
    EXPECT_EQ(scene->triangles, 4u);
    EXPECT_EQ(scene->bounds.extent(), glm::vec3(2, 2, 0));
    EXPECT_TRUE(m_lines.empty());

    RMV2_FILE_DATA edited = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    const std::array<std::byte, 256> stored{};
    fixed_field& path = edited.lods[0].groups[0].textures[0].path_field;
    path = fixed_field(0, stored, field_mode::zero_padded);
    path.setText("second");
    fixed_field& alpha = edited.lods[0].groups[0].alpha_mode_field;
    alpha = fixed_field(0, std::span(stored).first(4), field_mode::raw);
    alpha.setU32(1);
    const scene_pointer shown = loader().loadModel(lent(edited), "Z:/m");
    EXPECT_EQ(shown->parts[0].textures[0][diffuse_slot]->path(), "second");
    EXPECT_TRUE(shown->parts[0].groups()[0].has_alpha);
}

TEST_F(scene_loader_test, texturesEndAtTheFirstGroupWithoutItsMainOnes)
{
    for (const char* name : {"d1", "n1", "d3", "n3"})
        m_textures.files[name] = textureFile();
    const RMV2_FILE_DATA data =
        modelOf(textured(squareGroup(1), {{0, "d1"}, {1, "n1"}, {11, "missing"}}),
                textured(squareGroup(1), {{0, "d2"}, {1, "n2"}}), textured(squareGroup(1), {{0, "d3"}, {1, "n3"}}));
    const scene_pointer scene = loader().loadModel(lent(data), "Z:/m");
    EXPECT_EQ(m_textures.asked, (std::vector<std::string>{"d1", "n1", "missing", "d2"}));
    const std::vector<std::string> said = {
        "Z:/m: group 1: diffuse or normal map was not found; no further textures are loaded"};
    EXPECT_EQ(m_lines, said);
    EXPECT_EQ(scene->problems, said);
    EXPECT_TRUE(scene->parts[0].textures[0][diffuse_slot]);
    EXPECT_EQ(scene->parts[0].groups().size(), 3u) << "the groups are all there";
}

TEST_F(scene_loader_test, whatCannotBeDrawnIsNamedAndDamagedTexturesAreFound)
{
    m_textures.files = {{"d", "DDS garbage"}, {"n", textureFile()}};
    group_data square = textured(squareGroup(1), {{0, "d"}, {1, "n"}});
    square.store.indices.insert(square.store.indices.end(), {0, 1, 60000});
    const RMV2_FILE_DATA data = modelOf(group_data(), std::move(square));
    const scene_pointer scene = loader().loadModel(lent(data), "Z:/m");
    EXPECT_EQ(scene->triangles, 2u);
    EXPECT_TRUE(logHolds("group 1: 1 triangles name vertices that do not exist")) << m_lines.size();

    const RMV2_FILE_DATA alone = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    const group_textures found = loader().loadModel(lent(alone), "Z:/m")->parts[0].textures[0];
    EXPECT_TRUE(found[diffuse_slot]) << "whoever draws it says that it is damaged";
    EXPECT_TRUE(found[normal_slot]);
}

TEST_F(scene_loader_test, modelsOfAFigureThatCannotBeReadAreNamed)
{
    const std::vector<figure_model> models = {{"men\\left.rigid_model_v2"},
                                              {"men\\gone.rigid_model_v2"},
                                              {"men"},
                                              {"broken.rigid_model_v2"},
                                              {"Men/Right.rigid_model_v2"}};
    const scene_pointer scene = loader(game()).loadFigure(models, "pack:guard");
    EXPECT_EQ(scene->parts.size(), 2u);
    EXPECT_EQ(scene->failed, 3u);
    EXPECT_EQ(scene->triangles, 2u);
    EXPECT_EQ(std::count(m_lines.begin(), m_lines.end(), pfn_is_null), 2) << "no such path, and a folder";
    for (const char* text : {"men\\gone.rigid_model_v2: ", "men: ", "broken.rigid_model_v2: "})
        EXPECT_TRUE(logHolds(text)) << text;

    const scene_pointer crowd = loader(game()).loadFigure(
        std::vector<figure_model>(514, std::string("men\\left.rigid_model_v2")), "pack:crowd");
    EXPECT_EQ(crowd->parts.size(), scene_loader::max_parts);
    EXPECT_EQ(crowd->failed, 2u);

    m_lines.clear();
    EXPECT_EQ(loader().loadFigure({std::string("men\\left.rigid_model_v2")}, "pack:guard")->failed, 1u);
    EXPECT_TRUE(logHolds("rigid_model::getFromInternalPath(): pack_file::sm_poPathTree == nullptr"));
    EXPECT_FALSE(logHolds(pfn_is_null));
}

TEST_F(scene_loader_test, anotherLevelStartsFromTheScene)
{
    for (const char* name : {"d", "n", "n2"})
        m_textures.files[name] = textureFile();
    RMV2_FILE_DATA data = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    data.lods.emplace_back().groups.push_back(textured(squareGroup(2, 2), {{0, "d"}, {1, "n2"}}));
    const scene_pointer scene = loader().loadModel(lent(data), "Z:/m", 0, 7);
    m_textures.asked.clear();
    data.lods[1].groups[0].textures.clear(); // an edit: the scene does not follow it
    for (const std::size_t wanted : {1u, 9u})
    {
        const scene_pointer coarse = loader().loadLevel(*scene, wanted);
        const scene_part& part = coarse->parts[0];
        EXPECT_EQ(part.lod, 1u);
        EXPECT_EQ(part.bone, 7);
        EXPECT_EQ(coarse->triangles, 8u);
        EXPECT_EQ(coarse->bounds.extent().x, 4);
        EXPECT_EQ(part.textures[0][diffuse_slot], scene->parts[0].textures[0][diffuse_slot]);
        EXPECT_EQ(part.textures[0][normal_slot]->path(), "n2");
    }
    EXPECT_EQ(m_textures.asked, (std::vector<std::string>{"n2", "n2"}));
    EXPECT_TRUE(loader().loadModel(std::shared_ptr<const scene_model>(), "Z:/m")->parts.empty());
    EXPECT_TRUE(loader().loadModel(std::make_shared<RMV2_FILE_DATA>(), "Z:/m", 3)->parts.at(0).groups().empty());
}

TEST_F(scene_loader_test, bytesOfATextureAreReadAgainWhenTheyWereLetGo)
{
    m_textures.files = {{"d", textureFile()}, {"n", textureFile()}};
    const RMV2_FILE_DATA data = modelOf(textured(squareGroup(1), {{0, "d"}, {1, "n"}}));
    const scene_pointer scene = loader().loadModel(lent(data), "Z:/m");
    const scene_texture& texture = *scene->parts[0].textures[0][diffuse_slot];
    failure why;
    EXPECT_TRUE(texture.isHeld());
    EXPECT_EQ(texture.bytes(why)->text(), textureFile());
    texture.letGo();
    EXPECT_FALSE(texture.isHeld());
    EXPECT_EQ(texture.bytes(why)->text(), textureFile());
    EXPECT_EQ(m_textures.asked, (std::vector<std::string>{"d", "n", "d"}));
    m_textures.files.clear();
    EXPECT_EQ(texture.bytes(why), nullptr);
    EXPECT_EQ(why.kind, failure_kind::not_found);
}

TEST_F(scene_loader_test, stoppedWorkGivesNothing)
{
    m_stop.request_stop();
    EXPECT_EQ(loader(game()).loadFigure({std::string("men\\left.rigid_model_v2")}, "pack:guard"), nullptr);
    EXPECT_TRUE(m_lines.empty());
}

} // namespace

} // namespace korvane::test
