// Previews of the page Archives: what is drawn and what is said when nothing is; mip maps and surfaces of textures.

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/jobs/file_preview.h"
#include "Korvane/jobs/scene_preview.h"
#include "Korvane/jobs/texture_look.h"
#include "tests/support/anim_builder.h"
#include "tests/support/dds_builder.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

class recorded_pictures : public scene_pictures
{
public:
    bool draw(const scene_pointer& scene, std::uint32_t width, std::uint32_t height, const work_port&, picture& made,
              failure& why) override
    {
        m_po_scene = scene;
        made = picture(width, height);
        return m_has_device || fail(why, failure_kind::unsupported, "no graphics device");
    }
    scene_pointer m_po_scene;
    bool m_has_device = true;
};

class preview_test : public testing::Test
{
protected:
    void SetUp() override
    {
        test::test_pack pack;
        const std::string model = test::test_model().bytes();
        pack.entries = {{"a.rigid_model_v2", model},
                        {"damaged.rigid_model_v2", model.substr(0, model.size() / 2)},
                        {"both.variantmeshdefinition", R"(<VARIANT_MESH model="a.rigid_model_v2"/>)"},
                        {"none.variantmeshdefinition", R"(<VARIANT_MESH model="gone.rigid_model_v2"/>)"},
                        {"empty.variantmeshdefinition", "<VARIANT_MESH/>"}};
        test::writeBytes(m_folder.file("a.pack"), pack.bytes());
        const auto tree = std::make_shared<path_tree>();
        pack_file archive(*tree);
        failure why;
        ASSERT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
        m_game = std::make_shared<const game_data>(tree);
    }
    scene_preview preview(const char* path, const work_port& work = {})
    {
        return drawPreview(m_game->find(path), m_game, m_pictures, 20, 10, work);
    }

    test::temporary_folder m_folder;
    std::shared_ptr<const game_data> m_game;
    recorded_pictures m_pictures;
};

std::string levelBytes(std::initializer_list<std::pair<int, char>> levels) // of four bytes a pixel
{
    std::string bytes;
    for (const auto& [side, fill] : levels)
        bytes += std::string(static_cast<std::size_t>(side * side * 4), fill);
    return bytes;
}

test::test_dds pyramid()
{
    test::test_dds file;
    file.width = file.height = 8;
    file.mips = 4;
    file.pixels = levelBytes({{8, '\x10'}, {4, '\x20'}, {2, '\x30'}, {1, '\x40'}});
    return file;
}

} // namespace

TEST_F(preview_test, modelsAndFiguresAreDrawnOrSayWhyNot)
{
    const struct
    {
        const char* path;
        const char* text; // part of it
        bool is_drawn;
    } rows[] = {{"a.rigid_model_v2", "triangle", true},
                {"both.variantmeshdefinition", "triangle", true},
                {"damaged.rigid_model_v2", "No picture: ", false},
                {"none.variantmeshdefinition", "No picture: none of its models can be read", false},
                {"empty.variantmeshdefinition", "No picture: the definition names no models", false}};
    for (const auto& row : rows)
    {
        m_pictures.m_po_scene = nullptr;
        const scene_preview made = preview(row.path);
        EXPECT_NE(made.text.find(row.text), std::string::npos) << row.path << ": " << made.text;
        EXPECT_EQ(made.pixels.width(), row.is_drawn ? 20u : 0u) << row.path;
        EXPECT_EQ(m_pictures.m_po_scene != nullptr, row.is_drawn) << row.path;
    }
    m_pictures.m_has_device = false;
    const scene_preview made = preview("a.rigid_model_v2");
    EXPECT_NE(made.text.find(". No picture: no graphics device"), std::string::npos) << made.text;
    EXPECT_EQ(made.pixels.pixelCount(), 0u);
}

TEST_F(preview_test, aStoppedOneIsNotDrawn)
{
    std::stop_source stop;
    stop.request_stop();
    const scene_preview made = preview("a.rigid_model_v2", {{}, stop.get_token(), {}, {}});
    EXPECT_EQ(made.text, "");
    EXPECT_EQ(m_pictures.m_po_scene, nullptr);
}

TEST(file_preview, showsWhatAFileIsOrSaysWhyNot)
{
    using namespace std::string_literals;
    const std::string model = test::test_model().bytes(), anim = test::test_anim().bytes();
    const std::string long_text = std::string((256 << 10) - 1, 'x') + "\xc3\xa9 and more";
    const struct
    {
        const char* name;
        std::string bytes;
        const char* caption; // its beginning
        const char* text;    // part of it
    } rows[] = {{"empty.txt", "", "This file is empty.", ""},
                {"a.rigid_model_v2", model, "Model, version ", "\r\n"},
                {"half.rigid_model_v2", model.substr(0, model.size() / 2), "Cannot be shown: ", ""},
                {"only its name.rigid_model_v2", "RMV2", "Cannot be shown: ", ""},
                {"walk.anim", anim, "Animation of ", "\r\n"},
                {"half.anim", anim.substr(0, 30), "Cannot be shown: ", ""},
                {"a.dds", "DDS garbage", "", ""},
                {"a.tga", "\1\1", "", ""},
                {"lines.txt", "a\nb\rc\r\nd", "Text, UTF-8", "a\r\nb\r\nc\r\nd"},
                {"mark.txt", "\xef\xbb\xbf\xe6\x9d\x8e", "Text, UTF-8", "\xe6\x9d\x8e"},
                {"old.txt", "caf\xe9", "Text, Latin-1", "caf\xc3\xa9"},
                {"wide.txt", "\xff\xfe\x4e\x67\x3d"s, "Text, UTF-16", "\xe6\x9d\x8e"}, // ends inside of one
                {"odd.txt", "\xfe\xff\0a\0"s, "Text, UTF-16", "a"},
                {"long.txt", long_text, "Text, UTF-8, the first 256 KB", "xxx"},
                {"x.bin", "\0A\x7f"s, "Bytes of the whole file", "00000000  00 41 7f"},
                {"y.bin", std::string(9000, '\1'), "The first 8 KB, as bytes", "00001ff0  01 01"}};
    const test::temporary_folder folder;
    for (const auto& row : rows)
    {
        test::writeBytes(folder.file(row.name), row.bytes);
        const file_preview made = previewFile(game_file(folder.file(row.name)), {});
        EXPECT_TRUE(made.caption.starts_with(row.caption)) << row.name << ": " << made.caption;
        EXPECT_FALSE(made.caption.empty()) << row.name;
        EXPECT_NE(made.text.find(row.text), std::string::npos) << row.name << ": " << made.text.substr(0, 200);
        EXPECT_TRUE(isUtf8(made.text)) << row.name;
    }
    EXPECT_TRUE(previewFile(game_file(folder.file("gone")), {}).caption.starts_with("Cannot be shown: "));
}

TEST(texture_look, texturesLoseTheirLargeLevelsAlone)
{
    const memory_file smaller = withoutLargeLevels(memory_file(std::string_view(pyramid().bytes())), 3);
    test::test_dds expected;
    expected.width = expected.height = 2;
    expected.mips = 2;
    expected.pixels = levelBytes({{2, '\x30'}, {1, '\x40'}});
    EXPECT_EQ(smaller.text(), expected.bytes());
    const std::string whole = pyramid().bytes();
    EXPECT_EQ(withoutLargeLevels(memory_file(std::string_view(whole)), 8).text(), whole);
    EXPECT_EQ(withoutLargeLevels(memory_file(std::string_view("no texture")), 1).text(), "no texture");
    test::test_dds single;
    EXPECT_EQ(withoutLargeLevels(memory_file(std::string_view(single.bytes())), 1).text(), single.bytes());
}

TEST(texture_look, levelsAndSurfacesAreNamedAndDecoded)
{
    const test::temporary_folder folder;
    test::writeBytes(folder.file("a.dds"), pyramid().bytes());
    looked_texture texture;
    failure why;
    ASSERT_TRUE(texture.open(game_file(folder.file("a.dds")), why)) << describe(why);
    EXPECT_EQ(texture.levels(), (std::vector<std::string>{"0: 8 x 8", "1: 4 x 4", "2: 2 x 2", "3: 1 x 1"}));
    EXPECT_EQ(texture.surfaces(), std::vector<std::string>{"The only one"});
    const auto third = texture.decode(0, 2, why);
    ASSERT_NE(third, nullptr) << describe(why);
    EXPECT_EQ(pixelText(*third, 1, 1), "at 1, 1: red 48, green 48, blue 48, alpha 48");
    EXPECT_EQ(pixelText(*third, 2, 1), "");
    test::test_dds cubes = test::test_dds::dx10(28, 12 * 64, 4, 2); // two of 4 x 4
    test::writeBytes(folder.file("cubes.dds"), cubes.bytes());
    ASSERT_TRUE(texture.open(game_file(folder.file("cubes.dds")), why)) << describe(why);
    ASSERT_EQ(texture.surfaces().size(), 12u);
    EXPECT_EQ(texture.surfaces()[7], "Layer 1, -X");
    test::writeBytes(folder.file("bad.dds"), pyramid().bytes().substr(0, 200));
    EXPECT_FALSE(looked_texture().open(game_file(folder.file("bad.dds")), why));
}

} // namespace korvane
