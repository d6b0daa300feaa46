#include "Korvane/game/game_loader.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/scene/scene_watch.h"
#include "tests/support/anim_builder.h"
#include "tests/support/dds_builder.h"
#include "tests/support/mesh_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{

namespace
{

class scene_watch_test : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(toPath(m_folder.file("mod/tex")));
        config_file config;
        game_loader archives(config, m_folder.file("config.cfg"));
        archives.useModFolders({m_folder.file("mod") + "/"});
        m_game = *archives.load({}).game;
        m_loader = scene_loader(m_game);
        writeBytes(m_model, "a model");
        paint("n.dds", '1');
    }
    // Another size each time, too: the clock of a disk may be coarse.
    void paint(const std::string& name, char colour)
    {
        test_dds file;
        file.pixels = std::string(64, colour) + std::string(++m_paintings, ' ');
        writeBytes(m_folder.file(name), file.bytes());
    }
    void show()
    {
        m_scene = m_loader.loadModel(lent(m_data), m_model);
        m_watch.follow(m_scene, m_game);
    }
    scene_changes look() { return m_watch.look(std::chrono::seconds(60)); }
    // The summary of what two looks find, which is shown then.
    std::string seen()
    {
        EXPECT_TRUE(look().empty()) << "it may still be written";
        const scene_changes changes = look();
        if (!changes.textures.empty())
        {
            m_scene = m_loader.exchangeTextures(*m_scene, changes.textures);
            m_watch.follow(m_scene, m_game);
        }
        return changes.summary();
    }
    char colour(texture_slot slot) const
    {
        const auto& texture = m_scene->parts[0].textures[0][slot];
        failure why;
        return texture ? texture->bytes(why)->text()[128] : '-';
    }

    temporary_folder m_folder;
    std::string m_model = m_folder.file("guard.rigid_model_v2");
    RMV2_FILE_DATA m_data = modelOf(textured(squareGroup(1), {{0, "tex/d.dds"}, {1, "tex/n.dds"}}));
    game_data m_game;
    scene_loader m_loader{{}};
    scene_pointer m_scene;
    scene_watch m_watch;
    std::size_t m_paintings = 0;
};

TEST_F(scene_watch_test, whatIsPaintedIsShownWhereverItLies)
{
    show();
    EXPECT_EQ(colour(diffuse_slot), '-');
    EXPECT_EQ(colour(normal_slot), '-') << "textures end at the missing one";
    EXPECT_EQ(seen(), "");

    const struct
    {
        const char* name;
        const char* file;
        char painted;
        std::string said;
        char diffuse, normal;
    } rows[] = {
        {"a missing one appears", "d.dds", '2', "d.dds was read again", '2', '1'},
        {"and is painted", "d.dds", '3', "d.dds was read again", '3', '1'},
        {"another one", "n.dds", '4', "n.dds was read again", '3', '4'},
        {"one over the disk in the mod's folder", "mod/tex/d.dds", '5', "d.dds was read again", '5', '4'},
        {"the hidden one does not matter", "d.dds", '6', "", '5', '4'},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        paint(row.file, row.painted);
        EXPECT_EQ(seen(), row.said);
        EXPECT_EQ(colour(diffuse_slot), row.diffuse);
        EXPECT_EQ(colour(normal_slot), row.normal);
        EXPECT_EQ(seen(), "");
    }
    std::filesystem::remove(toPath(m_folder.file("mod/tex/d.dds")));
    EXPECT_EQ(seen(), "d.dds was read again");
    EXPECT_EQ(colour(diffuse_slot), '6') << "the one below counts again";
    std::filesystem::remove(toPath(m_folder.file("d.dds")));
    EXPECT_EQ(seen(), "");
    EXPECT_EQ(colour(diffuse_slot), '6') << "what is gone stays as it was shown";
}

TEST_F(scene_watch_test, whatIsHalfWrittenOrDamagedWaits)
{
    paint("d.dds", '1');
    show();
    for (int step = 0; step < 3; ++step)
    {
        paint("d.dds", '2'); // still growing
        EXPECT_TRUE(look().empty());
    }
    EXPECT_EQ(look().textures.size(), 1u);

    writeBytes(m_folder.file("d.dds"), "DDS garbage");
    EXPECT_EQ(seen(), "d.dds cannot be read, the former picture stays (see log.txt)");
    EXPECT_EQ(seen(), "") << "once";
    paint("d.dds", '3');
    const auto normal_map = m_scene->parts[0].textures[0][normal_slot];
    EXPECT_EQ(seen(), "d.dds was read again");
    EXPECT_EQ(m_scene->parts[0].textures[0][normal_slot], normal_map) << "only what has changed is read";
}

TEST_F(scene_watch_test, aChangedModelIsToldOnceAndALookIsBounded)
{
    show();
    writeBytes(m_model, "a longer model");
    EXPECT_EQ(seen(), "guard.rigid_model_v2 was changed by another program: open it again to see that");
    EXPECT_EQ(seen(), "");
    m_scene = m_loader.loadLevel(*m_scene, 1);
    m_watch.follow(m_scene, m_game);
    EXPECT_EQ(seen(), "") << "another level of detail of the model";

    writeBytes(m_model, "another model");
    std::size_t told = 0;
    for (int step = 0; step < 6; ++step) // two rounds of three files
        told += m_watch.look(std::chrono::milliseconds(0)).models.size();
    EXPECT_EQ(told, 1u);
    m_watch.follow(nullptr, {});
    EXPECT_TRUE(look().empty());
}

TEST_F(scene_watch_test, aSkeletonThatWasWrittenAgainIsNamed)
{
    const std::string path = m_folder.file("mod/animations/skeletons/arm.anim");
    std::filesystem::create_directories(toPath(path).parent_path());
    test_anim bones = testSkeleton(5);
    writeBytes(path, bones.bytes());
    m_data.skeleton_id = "arm";
    show();
    ASSERT_EQ(m_scene->rigs.size(), 1u);
    ASSERT_TRUE(m_scene->rigs[0].skeleton) << m_scene->rigs[0].problem;
    EXPECT_EQ(m_scene->rigs[0].skeleton->bones.size(), 3u);
    EXPECT_EQ(m_scene->parts[0].rig, 0);
    bones.skeleton_name = "a longer name";
    writeBytes(path, bones.bytes());
    EXPECT_EQ(seen(), "arm.anim was changed by another program: open it again to see that");
    EXPECT_EQ(seen(), "") << "each change once";
    m_scene = m_loader.loadLevel(*m_scene, 0);
    EXPECT_EQ(m_scene->rigs.at(0).id, "arm");
}

} // namespace

} // namespace korvane::test
