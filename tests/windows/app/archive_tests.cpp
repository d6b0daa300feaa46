// The main window with archives and the definitions that take their models from them.

#include "tests/windows/app/main_window_fixture.h"

namespace korvane::test
{
namespace
{

TEST_F(main_window_test, theArchivesAreReadBeforeAnythingElse)
{
    const std::string data = m_folder + "Data\\";
    std::filesystem::create_directories(toPath(data));
    test::test_pack pack;
    pack.entries = {{"Tex\\A.dds", "bytes"}};
    failure why;
    ASSERT_TRUE(writeWholeFile(data + "one.pack", pack.bytes(), why));
    ASSERT_TRUE(writeWholeFile(data + "two.pack", std::string("PFH1"), why));
    m_config.add("DATA_PATHS", {data}, false);
    openWindow();
    ASSERT_TRUE(pack_file::sm_poPathTree);
    EXPECT_NE(pack_file::sm_poPathTree->find("tex/a.dds"), nullptr);
    ASSERT_EQ(m_prompt.shown.size(), 1u); // the damaged one is named, and the program runs
    EXPECT_NE(m_prompt.shown[0].second.find("two.pack"), std::string::npos);
    memory_file log;
    ASSERT_TRUE(log.read(m_folder + "log.txt", why));
    std::size_t at = 0;
    for (const char* line : {"Initializing virtual file system (.pack reading)...", ".pack files being sorted...",
                             "[PACK FILE] 0 : ", "[PACK FILE] 1 : ", "assigning accelerators "})
    {
        at = log.text().find(line, at);
        ASSERT_NE(at, std::string_view::npos) << line;
    }
}

TEST_F(main_window_test, aDefinitionOfTheCommandLineIsShownBesideAModel)
{
    writeArchive({{"men\\body.rigid_model_v2", soldier().bytes()}});
    openWindow(write("guard.VARIANTMESHDEFINITION", std::string(guard_definition)));
    EXPECT_EQ(counts(), "guard: 2 models, 2 triangles; 1 could not be opened (see log.txt)");
    EXPECT_EQ(text(control_file_path), "...");
    EXPECT_TRUE(IsWindowEnabled(find(control_show_view)));
    ASSERT_EQ(m_view.definitions.size(), 1u);
    EXPECT_EQ(m_view.shown, 1);

    EXPECT_TRUE(openFile(write("soldier.rigid_model_v2", soldier())));
    EXPECT_EQ(m_window->title(), m_window->document().title());
    EXPECT_EQ(counts(), "2 LODs; LOD 1: 2 groups, 6 vertices, 2 triangles");
    ASSERT_EQ(m_view.models.size(), 1u);

    pressWithControl('2'); // the definition again
    ASSERT_TRUE(pumpUntil([&] { return m_view.definitions.size() == 2; }));
    choose(control_lod, 1); // of the model in the panels; the view keeps showing the definition
    EXPECT_EQ(text(control_tool_caption), "L(1) G(0)");
    EXPECT_EQ(m_view.models.size(), 1u);
    EXPECT_EQ(counts(), "guard: 2 models, 2 triangles; 1 could not be opened (see log.txt)");
}

TEST_F(main_window_test, reReadingReplacesTheArchivesAndWhatIsShownOfThem)
{
    openWindow();
    writeArchive({{"men\\guard.variantmeshdefinition", guard_definition},
                  {"men\\soldier.rigid_model_v2", soldier().bytes()},
                  {"men\\body.rigid_model_v2", soldier().bytes()}});
    choose(document_command::reread_archives);
    EXPECT_NE(logText().find("[PACK FILE] 0 : "), std::string::npos);
    EXPECT_TRUE(openFile("pack:men/soldier.rigid_model_v2"));
    EXPECT_FALSE(IsWindowEnabled(find(control_open_folder))) << "no folder holds it";
    EXPECT_TRUE(openFile("pack:men/guard.variantmeshdefinition"));
    EXPECT_EQ(counts(), "guard: 2 models, 2 triangles; 1 could not be opened (see log.txt)");

    test_model other = soldier();
    other.lods = {{grass()}};
    writeArchive({{"men\\guard.variantmeshdefinition", "<VARIANT_MESH model=\"men\\new.rigid_model_v2\"/>"},
                  {"men\\soldier.rigid_model_v2", other.bytes()},
                  {"men\\new.rigid_model_v2", soldier().bytes()}});
    choose(document_command::reread_archives);
    EXPECT_EQ(m_view.definitions.back(), std::vector<std::string>{"men\\new.rigid_model_v2"});
    EXPECT_EQ(counts(), "guard: 1 model, 2 triangles");
    EXPECT_EQ(text(control_group_name), "grass");
    EXPECT_FALSE(pack_file::sm_poPathTree->find("men/body.rigid_model_v2")) << "what is gone is gone";
    EXPECT_TRUE(m_prompt.shown.empty());
}

} // namespace
} // namespace korvane::test
