// The archives of the demo data, read by the program's reader. tests/cli reads them with a reader of its own.

#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "tests/demo_data/made_files.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"
#include "tools/demo_data/figure.h"
#include "tools/demo_data/materials.h"
#include "tools/demo_data/pack_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace korvane::demo
{

namespace
{

// The archives as a folder on disk and as the tree that the program makes of them.
class demo_archives_test : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const file& each : allFiles())
        {
            if (each.path.ends_with(".pack"))
            {
                ASSERT_TRUE(writeWholeFile(m_folder.file(each.path), each.bytes, m_why));
            }
        }
        pack_reader reader({m_prompt, {}, {}});
        ASSERT_TRUE(reader.loadAllArchives({m_folder.file("")}));
        ASSERT_TRUE(m_prompt.shown.empty()) << m_prompt.shown[0].second;
        m_tree = pack_file::sm_poPathTree;
    }
    void TearDown() override
    {
        m_tree.reset();
        pack_file::sm_poPathTree.reset();
    }

    const pack_file_node* find(std::string_view path) const
    {
        const path_node* const node = m_tree->find(path);
        return node ? node->file() : nullptr;
    }
    std::string contentOf(const pack_file_node& entry)
    {
        memory_file bytes;
        EXPECT_TRUE(readEntry(entry, bytes, m_why)) << m_why.what << " " << m_why.path;
        return std::string(bytes.text());
    }

    test::temporary_folder m_folder;
    test::recording_prompt m_prompt;
    std::shared_ptr<const path_tree> m_tree;
    failure m_why;
};

std::string textOf(const file& from)
{
    return {reinterpret_cast<const char*>(from.bytes.data()), from.bytes.size()};
}

vec3 averageOf(const image& pixels, const std::vector<surface>& texels, bool inside)
{
    vec3 sum;
    double weight = 0;
    for (std::size_t i = 0; i < texels.size(); ++i)
    {
        if ((texels[i].mask.x > 0.5) != inside)
            continue;
        const std::uint8_t* const p = pixels.pixels.data() + i * 4;
        sum = sum + vec3{double(p[0]), double(p[1]), double(p[2])};
        weight += 1;
    }
    return sum * (1 / std::max(weight, 1.0));
}

} // namespace

TEST_F(demo_archives_test, the_archive_read_last_wins)
{
    const std::string figure = "variantmeshes/wh_variantmodels/hu1/demo/";
    const std::string definitions = "variantmeshes/variantmeshdefinitions/";
    struct row
    {
        std::string path;
        std::size_t copies;
        std::string winner, holds; // the archive, and a text that only its copy has
    };
    const row rows[] = {
        {"demo/readme.txt", 3, "a_demo_mod.pack", "This text comes from a_demo_mod.pack"},
        {figure + "tex/guard_shield_diffuse.dds", 3, "a_demo_mod.pack", "DDS"},
        {figure + "tex/guard_tunic_diffuse.dds", 2, "a_demo_mod.pack", "DDS"},
        {figure + "tex/guard_plume_diffuse.dds", 2, "a_demo_mod.pack", "DDS"},
        {figure + "tex/guard_cape_diffuse.dds", 1, "data.pack", "DDS"},
        {figure + "tex/demo_wood_diffuse.dds", 1, "data_1.pack", "DDS"},
        {"rigidmodels/demo/demo_barrel.rigid_model_v2", 1, "data_1.pack", "RMV2"},
        {figure + "demo_guard_body.rigid_model_v2", 1, "data.pack", "RMV2"},
        {figure + "demo_guard_spear.rigid_model_v2", 1, "a_demo_mod.pack", "RMV2"},
        {definitions + "demo_guard.variantmeshdefinition", 2, "data.pack", "VARIANT_MESH_REFERENCE definition"},
        {definitions + "demo_guard_weapons.variantmeshdefinition", 2, "a_demo_mod.pack", "demo_guard_spear"},
    };
    std::map<std::string_view, std::size_t> copies;
    for (const auto& entries : m_tree->entries())
        for (const pack_file_node& entry : entries)
            ++copies[entry.internalPath()];
    for (const row& each : rows)
    {
        SCOPED_TRACE(each.path);
        const pack_file_node* const entry = find(each.path);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(copies[entry->internalPath()], each.copies);
        EXPECT_EQ(entry->archive().name, each.winner);
        EXPECT_NE(contentOf(*entry).find(each.holds), std::string::npos);
    }
}

TEST_F(demo_archives_test, every_entry_of_every_archive_opens_and_all_compressions_occur)
{
    std::map<std::string, int> formats, compressions;
    for (const auto& entries : m_tree->entries())
        for (const pack_file_node& entry : entries)
        {
            EXPECT_FALSE(contentOf(entry).empty());
            std::uint32_t words[2] = {};
            ASSERT_TRUE(entry.archive().file.readAt(entry.offset(), std::as_writable_bytes(std::span(words))));
            ++compressions[entry.compression() == 0 ? "none"
                           : words[1] == 0xfd2fb528 ? "zstd"
                           : words[1] == 0x184d2204 ? "lz4"
                                                    : "lzma"];
            EXPECT_EQ(entry.timeStamp(), entry.archive().name == "a_demo_mod.pack" ? pack_writer::time_stamp : 0u);
        }
    for (const auto& archive : m_tree->archives())
        ++formats[archive->format];
    EXPECT_EQ(formats, (std::map<std::string, int>{{"PFH4", 1}, {"PFH5", 2}}));
    for (const char* each : {"none", "zstd", "lz4", "lzma"})
        EXPECT_GE(compressions[each], 5) << each;
}

TEST_F(demo_archives_test, what_lies_beside_the_archives_is_in_them_byte_for_byte_or_overridden)
{
    const std::set<std::string_view> overridden = {"guard_shield_diffuse.dds", "guard_tunic_diffuse.dds",
                                                   "guard_plume_diffuse.dds",
                                                   "demo_guard_weapons.variantmeshdefinition", "hu1_wave.anim"};
    std::size_t compared = 0, different = 0;
    for (const file& each : allFiles())
    {
        const pack_file_node* const entry = find(each.path);
        if (!entry)
            continue;
        const bool is_same = contentOf(*entry) == textOf(each);
        EXPECT_NE(is_same, overridden.contains(entry->fileName())) << each.path;
        ++(is_same ? compared : different);
    }
    EXPECT_EQ(different, overridden.size());
    EXPECT_EQ(compared + different + 1, m_tree->files().size()) << "all but the read-me text lie beside the archives";
}

TEST_F(demo_archives_test, what_a_definition_names_is_in_the_archives)
{
    std::size_t named = 0;
    for (const auto& entries : m_tree->entries())
        for (const pack_file_node& entry : entries)
        {
            if (entry.extension() != "variantmeshdefinition")
                continue;
            const std::string text = contentOf(entry);
            for (std::size_t at = text.find("variantmeshes"); at != text.npos; at = text.find("variantmeshes", at + 1))
            {
                const std::string path = text.substr(at, text.find('"', at) - at);
                EXPECT_NE(find(path), nullptr) << path;
                ++named;
            }
        }
    EXPECT_GE(named, 9u);
}

TEST(demo_pack_writer, both_formats_with_and_without_time_stamps_read_back)
{
    const std::string short_text = "twelve bytes", long_text(100'000, 'x');
    struct row
    {
        pack_format format;
        bool has_time_stamps;
        std::vector<std::string> names;
        const char* magic;
        std::size_t size_uncompressed; // 28 of header, then names, records and the three entries, added by hand
    };
    const row rows[] = {
        {pack_format::pfh4, false, {}, "PFH4", 28 + (4 + 6) + (4 + 4) + (4 + 2) + 12 + 100'000},
        {pack_format::pfh4, true, {"b.pack"}, "PFH4", 28 + 7 + (8 + 6) + (8 + 4) + (8 + 2) + 12 + 100'000},
        {pack_format::pfh5, false, {"b.pack"}, "PFH5", 28 + 7 + (5 + 6) + (5 + 4) + (5 + 2) + 12 + 100'000},
        {pack_format::pfh5, true, {}, "PFH5", 28 + (9 + 6) + (9 + 4) + (9 + 2) + 12 + 100'000},
    };
    const test::temporary_folder folder;
    for (const row& each : rows)
        for (const auto compression :
             {pack_compression::none, pack_compression::zstd, pack_compression::lz4, pack_compression::lzma})
        {
            if (each.format == pack_format::pfh4 && compression != pack_compression::none)
                continue;
            SCOPED_TRACE(each.magic + std::to_string(each.has_time_stamps) + std::to_string(int(compression)));
            pack_writer writer(each.format, each.has_time_stamps, each.names);
            writer.add("A/b.c", std::as_bytes(std::span(short_text)), compression);
            writer.add("b\\d", std::as_bytes(std::span(long_text)), compression);
            writer.add("e", {}, compression);
            const std::vector<std::byte> bytes = writer.take();
            if (compression == pack_compression::none)
            {
                EXPECT_EQ(bytes.size(), each.size_uncompressed);
            }
            else
            {
                EXPECT_LT(bytes.size(), 2000u);
            }
            failure why;
            ASSERT_TRUE(writeWholeFile(folder.file("x.pack"), bytes, why));
            path_tree tree;
            pack_file archive(tree);
            ASSERT_TRUE(archive.open(folder.file("x.pack"), why)) << why.what;
            EXPECT_EQ(archive.header().magic, each.magic);
            EXPECT_EQ(archive.header().hasTimeStamps(), each.has_time_stamps);
            EXPECT_EQ(archive.archiveNames(), each.names);
            archive.enter();
            for (const auto& [path, content] :
                 {std::pair{"a\\b.c", short_text}, {"b\\d", long_text}, {"e", std::string()}})
            {
                memory_file read;
                ASSERT_TRUE(readEntry(*tree.find(path)->file(), read, why)) << path << ": " << why.what;
                EXPECT_EQ(read.text(), content) << path;
            }
        }
}

TEST(demo_pieces, together_they_are_the_whole_guard)
{
    std::map<std::string, std::size_t> pieces, whole;
    for (const auto piece :
         {guard_piece::body, guard_piece::cape, guard_piece::head, guard_piece::shield, guard_piece::sword})
        for (const figure_part& part : buildGuardPiece(piece, 0.3))
            pieces[part.name + " " + part.texture] += part.shape.indices.size();
    for (const figure_part& part : buildGuard(0.3))
        whole[part.name + " " + part.texture] += part.shape.indices.size();
    EXPECT_EQ(pieces, whole);
    EXPECT_EQ(whole.size(), 16u);
}

TEST(demo_recolouring, changes_what_the_mask_names_and_nothing_else)
{
    for (const material& each : materials())
    {
        if (each.name != "guard_tunic")
            continue;
        const std::vector<surface> texels = paintSurface(each, 1);
        const image before = imagesOf(each, texels)[0].pixels;
        const image after = recoloured(each, texels, {0.2, 2, 0.2}).pixels;
        EXPECT_GT(averageOf(before, texels, true).z, averageOf(before, texels, true).y); // blue
        EXPECT_GT(averageOf(after, texels, true).y, 2 * averageOf(after, texels, true).z);
        const vec3 gold = averageOf(before, texels, false) - averageOf(after, texels, false);
        EXPECT_EQ(dot(gold, gold), 0);
        return;
    }
    FAIL() << "no tunic";
}

} // namespace korvane::demo
