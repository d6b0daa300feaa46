#include "D3D11_RENDER_LIB/disk_texture_source.h"
#include "D3D11_RENDER_LIB/model_texture_source.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/pack_builder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>

namespace korvane
{

namespace
{

namespace fs = std::filesystem;

class DiskTextureSource : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_root = fs::temp_directory_path() / ("korvane textures " + std::to_string(std::time(nullptr)));
        fs::create_directories(m_root / "data/units/man");
        write("data/VariantMeshes/Body_Diffuse.DDS", "far");
        write("data/units/man/beside.dds", "beside");
        write("data/units/man/maps/near.dds", "near");
        write("data/maps/near.dds", "not this one");
        write("secret.dds", "secret");
    }
    void TearDown() override { fs::remove_all(m_root); }

    void write(const fs::path& name, const char* text) const
    {
        fs::create_directories((m_root / name).parent_path());
        std::ofstream(m_root / name, std::ios::binary) << text;
    }
    std::string found(const std::string& internal_path) const
    {
        const disk_texture_source source(toUtf8(m_root / "data/units/man/man.rigid_model_v2"));
        const std::optional<memory_file> file = source.read(internal_path);
        return file ? std::string(file->text()) : "nothing";
    }

    fs::path m_root;
};

TEST_F(DiskTextureSource, LooksAroundTheModelWithoutRegardToCase)
{
    const struct
    {
        const char* path;
        const char* content;
    } rows[] = {
        {"variantmeshes\\body_diffuse.dds", "far"},
        {"VARIANTMESHES/BODY_DIFFUSE.dds", "far"},
        {"maps\\near.dds", "near"},
        {"some\\other\\folder\\Beside.dds", "beside"},
        {"beside.dds", "beside"},
        {"variantmeshes\\missing.dds", "nothing"},
        {"variantmeshes", "nothing"},
        {"", "nothing"},
        {"..\\..\\..\\secret.dds", "nothing"},
        {"maps/../../../secret.dds", "nothing"},
        {"C:\\secret.dds", "nothing"},
        {"/secret.dds", "nothing"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(row.path), row.content) << row.path;
}

TEST_F(DiskTextureSource, TheArchivesComeFirstWhenTheyAreLoaded)
{
    test::test_pack pack;
    pack.magic = "PFH5";
    pack.entries = {{"VariantMeshes\\Body_Diffuse.dds", "from the archive"}, {"broken.dds", "no compression", 1}};
    std::ofstream(m_root / "data/a.pack", std::ios::binary) << pack.bytes();
    pack_file::sm_poPathTree = std::make_shared<path_tree>();
    pack_file archive(*pack_file::sm_poPathTree);
    failure why;
    ASSERT_TRUE(archive.open(toUtf8(m_root / "data/a.pack"), why)) << describe(why);
    archive.enter();

    std::vector<std::string> log;
    const model_texture_source source(toUtf8(m_root / "data/units/man/man.rigid_model_v2"),
                                      [&](const std::string& line) { log.push_back(line); });
    EXPECT_EQ(source.read("variantmeshes/body_diffuse.dds").value().text(), "from the archive");
    EXPECT_EQ(source.read("beside.dds").value().text(), "beside");
    EXPECT_FALSE(source.read("broken.dds"));
    ASSERT_EQ(log.size(), 1u);
    EXPECT_NE(log[0].find("broken.dds"), std::string::npos);
    EXPECT_FALSE(model_texture_source("pack:units/man/man.rigid_model_v2").read("beside.dds"))
        << "a model inside the archives has no folder on the disk";
    pack_file::sm_poPathTree = nullptr; // the archive is closed before its folder goes
}

} // namespace

} // namespace korvane
