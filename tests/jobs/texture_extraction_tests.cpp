#include "Korvane/archives/pack_file.h"
#include "Korvane/jobs/texture_extraction.h"
#include "tests/support/dds_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace korvane
{

namespace
{

using paths = std::vector<std::string>;

// Everything below a folder: path to bytes.
std::map<std::string, std::string> filesBelow(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(toPath(folder)))
        if (!entry.is_directory())
        {
            std::string name = toUtf8(entry.path().lexically_relative(toPath(folder)));
            std::replace(name.begin(), name.end(), '\\', '/');
            files[name] = test::readBytes(toUtf8(entry.path()));
        }
    return files;
}

// A model of one group with these textures.
RMV2_FILE_DATA modelOf(const std::vector<std::pair<std::uint32_t, std::string>>& textures)
{
    RMV2_FILE_DATA model;
    model.lods.resize(1);
    model.lods[0].groups.resize(1);
    for (const auto& [type, path] : textures)
    {
        model.lods[0].groups[0].textures.emplace_back();
        model.lods[0].groups[0].textures.back().type = type;
        model.lods[0].groups[0].textures.back().path = path;
    }
    return model;
}

class texture_extraction_test : public testing::Test
{
protected:
    void enter(const std::string& name, const std::vector<test::test_entry>& entries)
    {
        test::test_pack pack;
        pack.entries = entries;
        test::writeBytes(m_folder.file(name), pack.bytes());
        pack_file file(*m_tree);
        failure why;
        ASSERT_TRUE(file.open(m_folder.file(name), why)) << describe(why);
        file.enter();
    }

    texture_extraction_result extract(const RMV2_FILE_DATA& model, texture_extraction_options options = {})
    {
        std::vector<wanted_texture> wanted;
        addWantedTextures(model, wanted);
        options.folder = m_folder.file("inner/out");
        return extractTextures(game_data(m_tree), wanted, options);
    }
    std::map<std::string, std::string> written() const { return filesBelow(m_folder.file("inner")); }

    test::temporary_folder m_folder;
    std::shared_ptr<path_tree> m_tree = std::make_shared<path_tree>();
};

TEST_F(texture_extraction_test, theCopyThatCountsIsWrittenOnceWhateverTheSpelling)
{
    enter("old.pack", {{"tex\\a.dds", "old"}, {"tex\\b.dds", "b"}, {"tex\\empty.dds", ""}, {"odd/path\\c.dds", "c"}});
    enter("new.pack", {{"tex\\a.dds", "new"}, {"tex\\unwanted.dds", "u"}});
    const texture_extraction_result result = extract(modelOf({{0, "Tex/A.dds"},
                                                              {1, "tex\\\\a.DDS"},
                                                              {0, "tex/b.dds"},
                                                              {0, "odd\\path\\c.dds"},
                                                              {0, "tex/empty.dds"},
                                                              {0, "tex/missing.dds"},
                                                              {0, ""}}));
    EXPECT_EQ(written(), (std::map<std::string, std::string>{
                             {"out/tex/a.dds", "new"}, {"out/tex/b.dds", "b"}, {"out/odd/path/c.dds", "c"}}));
    ASSERT_EQ(result.files.size(), 3u);
    EXPECT_TRUE(result.files[0].is_normal_map);
    EXPECT_EQ(result.files[0].archive, m_folder.file("new.pack"));
    EXPECT_EQ(result.missing, paths{"tex\\missing.dds"});
    EXPECT_EQ(result.empty, paths{"tex\\empty.dds"});
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(extractedText(result.files.size()), "3 DDS files extracted.");
}

// An archive first, then the disk around the models, each of which has surroundings of its own.
TEST_F(texture_extraction_test, looseFilesAndBlanksInArchives)
{
    enter("a.pack", {{" tex\\blank.dds", "blank"}, {"tex\\both.dds", "archive"}});
    for (const char* folder : {"one/tex", "one/deep", "two"})
        std::filesystem::create_directories(toPath(m_folder.file(folder)));
    test::writeBytes(m_folder.file("one/tex/both.dds"), "disk");
    test::writeBytes(m_folder.file("one/tex/loose.dds"), "loose");
    test::writeBytes(m_folder.file("two/second.dds"), "second");
    const RMV2_FILE_DATA model = modelOf(
        {{0, " tex/blank.dds"}, {0, "tex/both.dds"}, {0, "TEX/Loose.dds"}, {0, "tex/second.dds"}, {0, "../a.pack"}});
    std::vector<wanted_texture> wanted;
    addWantedTextures(model, wanted, m_folder.file("one/deep/m.rigid_model_v2"));
    addWantedTextures(model, wanted, m_folder.file("two/m.rigid_model_v2"));
    const texture_extraction_result result =
        extractTextures(game_data(m_tree), wanted, {.folder = m_folder.file("inner/out")});
    EXPECT_EQ(written(), (std::map<std::string, std::string>{{"out/tex/blank.dds", "blank"},
                                                             {"out/tex/both.dds", "archive"},
                                                             {"out/tex/loose.dds", "loose"},
                                                             {"out/tex/second.dds", "second"}}));
    ASSERT_EQ(result.files.size(), 4u);
    EXPECT_TRUE(result.files[1].source.empty());
    EXPECT_TRUE(result.files[2].archive.empty());
    EXPECT_TRUE(result.files[2].source.ends_with("loose.dds"));
    EXPECT_EQ(result.missing, paths{"..\\a.pack"});
}

TEST_F(texture_extraction_test, hostilePathsWriteNothingOutside)
{
    const paths hostile = {"..\\evil.dds",     "..\\..\\evil.dds", "tex\\..\\..\\..\\evil.dds",
                           "c:\\evil.dds",     "c:evil.dds",       "tex\\a.dds:stream",
                           "nul.dds",          "tex\\con",         "com1.dds\\x.dds",
                           "trailing.\\x.dds", "blank \\x.dds",    ".\\x.dds",
                           "tex\\x\x01.dds",   "\xe2\x80\xa6\\..", "wild*.dds"};
    std::vector<test::test_entry> entries = {{"\\\\server\\share\\x.dds", "inside"}, {"/root.dds", "inside"}};
    std::vector<std::pair<std::uint32_t, std::string>> textures = {{0, "\\\\server\\share\\x.dds"}, {0, "/root.dds"}};
    for (const std::string& path : hostile)
    {
        entries.push_back({path, "evil"});
        textures.emplace_back(0, path);
    }
    enter("evil.pack", entries);
    for (const bool is_flat : {false, true})
    {
        const auto before = filesBelow(m_folder.file(""));
        const texture_extraction_result result = extract(modelOf(textures), {.is_flat = is_flat});
        EXPECT_EQ(result.failures.size() + result.missing.size(), hostile.size());
        for (const failure& why : result.failures)
            EXPECT_EQ(why.kind, failure_kind::refused) << describe(why);
        auto after = filesBelow(m_folder.file(""));
        std::erase_if(after, [](const auto& file) { return file.first.starts_with("inner/out/"); });
        EXPECT_EQ(after, before) << "nothing outside the folder";
        // A network path and a path from the root lose what makes them so.
        EXPECT_EQ(written(),
                  is_flat ? (std::map<std::string, std::string>{{"out/x.dds", "inside"}, {"out/root.dds", "inside"}})
                          : (std::map<std::string, std::string>{{"out/server/share/x.dds", "inside"},
                                                                {"out/root.dds", "inside"}}));
        std::filesystem::remove_all(toPath(m_folder.file("inner")));
    }
}

TEST_F(texture_extraction_test, flatNamesAreNumberedAndPicturesDecoded)
{
    // Red 255, green 128, blue 0, alpha 128, as the games store X 128, Y 128.
    test::test_dds normal;
    normal.pixels.clear();
    for (int i = 0; i < 16; ++i)
        normal.pixels += std::string("\xff\x80\0\x80", 4);
    enter("a.pack", {{"one\\n.dds", normal.bytes()},
                     {"two\\N.dds", normal.bytes()},
                     {"broken.dds", "DDS but no more"},
                     {"..\\esc.dds", "x"}});
    const RMV2_FILE_DATA model = modelOf({{1, "one/n.dds"}, {0, "two/n.dds"}, {0, "broken.dds"}, {0, "../esc.dds"}});

    texture_extraction_result result =
        extract(model, {.is_flat = true, .form = picture_kind::png, .makes_normals_blue = true});
    ASSERT_EQ(result.files.size(), 2u);
    ASSERT_EQ(result.failures.size(), 2u);
    EXPECT_EQ(result.failures[0].path, "..\\esc.dds");
    EXPECT_EQ(result.failures[1].path, "broken.dds");
    const std::pair<const char*, rgba_pixel> expected[] = {{"inner/out/n.png", rgba(128, 128, 254, 255)},
                                                           {"inner/out/n_2.png", rgba(255, 128, 0, 128)}};
    for (const auto& [name, colour] : expected)
    {
        picture image;
        failure why;
        ASSERT_TRUE(readPictureFile(m_folder.file(name), image, why)) << describe(why);
        EXPECT_EQ(image.pixels()[5], colour) << name;
    }
    std::filesystem::remove_all(toPath(m_folder.file("inner")));

    result = extract(model, {.makes_normals_blue = true}); // only the normal map becomes a picture
    paths names;
    for (const auto& [name, bytes] : written())
        names.push_back(name);
    EXPECT_EQ(names, (paths{"out/broken.dds", "out/one/n.tga", "out/two/n.dds"}));
}

TEST_F(texture_extraction_test, stopsWhenAskedAndTellsProgress)
{
    std::vector<test::test_entry> entries;
    std::vector<wanted_texture> wanted;
    for (int i = 0; i < 40; ++i)
    {
        wanted.push_back({std::to_string(i) + ".dds", false});
        entries.push_back({wanted.back().path, "x"});
    }
    enter("many.pack", entries);
    std::stop_source stop;
    const auto requestStop = [&stop](const work_progress& step) {
        EXPECT_EQ(step.total, 40u);
        stop.request_stop();
    };
    const texture_extraction_result result = extractTextures(
        game_data(m_tree), wanted, {.folder = m_folder.file("inner/out")}, {requestStop, stop.get_token(), {}});
    EXPECT_EQ(result.files.size(), written().size());
    EXPECT_EQ(result.files.size() < 40, result.is_stopped);
    stop = {};
    stop.request_stop();
    EXPECT_TRUE(
        extractTextures(game_data(m_tree), wanted, {.folder = m_folder.file("none")}, {{}, stop.get_token(), {}})
            .is_stopped);
}

TEST(texture_paths, theTableHoldsEveryTextureAndEachFileOnce)
{
    const texture_path_table table = texturePathTable(
        modelOf({{0, "Tex/A.dds"}, {1, "tex\\n.DDS"}, {3, "other/a.dds"}}), "D:\\Mods\\Guard.rigid_model_v2");
    ASSERT_EQ(table.rows.size(), 3u);
    EXPECT_EQ(table.rows[1].type, 1u);
    EXPECT_EQ(table.rows[1].model_folder, "d:\\mods");
    EXPECT_EQ(table.rows[1].file, "n.dds");
    EXPECT_EQ(table.text(), "a.dds\r\nn.dds\r\n");
}

} // namespace

} // namespace korvane
