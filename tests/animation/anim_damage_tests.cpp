// Damaged .anim files: cut at every length, patched at every byte, and the lies a hostile file can tell. Whatever is
// read must hold together; whatever is refused must say where.

#include "Korvane/animation/anim_dump.h"
#include "Korvane/animation/bone_table.h"
#include "tests/support/anim_builder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using test::test_anim;

constexpr anim_depth all_depths[] = {anim_depth::skeleton, anim_depth::animation, anim_depth::bones_only};

bool load(anim_file& file, anim_depth depth, const std::string& bytes, failure& why)
{
    file.openFromMemory(memory_file(bytes), "damaged");
    return depth == anim_depth::skeleton    ? file.loadSkeleton({}, why)
           : depth == anim_depth::animation ? file.loadAnimation({}, why)
                                            : file.loadTemplate({}, why);
}

test_anim sampleTake(std::uint32_t version)
{
    test_anim source;
    source.version = version;
    source.has_sub_name = true;
    source.sub_name = "sub";
    source.static_translations = {{1.0f, 2.0f, 3.0f}};
    source.static_rotations = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    return source;
}

// What everything that was loaded must keep, however odd its file was.
void validate(const anim_data& data, anim_depth depth, std::size_t size)
{
    const std::size_t bones = data.bones.size();
    ASSERT_TRUE(data.version == 5 || data.version == 7);
    ASSERT_LE(bones, anim_file::max_bones);
    for (const anim_bone& bone : data.bones)
        ASSERT_LE(bone.name.size(), anim_file::max_name);
    ASSERT_EQ(data.translation_map.size(), bones);
    ASSERT_EQ(data.rotation_map.size(), bones);
    ASSERT_TRUE(depth != anim_depth::skeleton || (data.translation_count <= bones && data.rotation_count <= bones));
    ASSERT_LE(data.animated_translations.size(), data.translation_count);
    ASSERT_LE(data.animated_rotations.size(), data.rotation_count);
    for (const std::uint32_t bone : data.animated_translations)
        ASSERT_TRUE(bone < bones && hasTrack(data.translation_map[bone]));
    for (const std::uint32_t bone : data.animated_rotations)
        ASSERT_TRUE(bone < bones && hasTrack(data.rotation_map[bone]));
    const std::size_t frames = depth == anim_depth::animation ? data.frame_count : 0;
    ASSERT_EQ(data.translations.size(), frames * data.translation_count);
    ASSERT_EQ(data.rotations.size(), frames * data.rotation_count);
    for (const std::uint64_t offset : data.first_bone_offsets)
        ASSERT_LE(offset + 12, size);
    ASSERT_FALSE(boneTable(data).empty());
    ASSERT_FALSE(animDump(data, {}).empty());
}

void loadDamaged(anim_depth depth, const std::string& bytes, const std::string& what)
{
    SCOPED_TRACE(what);
    anim_file file;
    failure why;
    if (load(file, depth, bytes, why))
    {
        EXPECT_FALSE(file.lastNotice());
        return validate(file.data(), depth, bytes.size());
    }
    EXPECT_TRUE(why);
    EXPECT_FALSE(why.what.empty());
    EXPECT_EQ(why.path, "damaged");
    EXPECT_FALSE(why.field.empty());
    EXPECT_LE(why.offset, bytes.size());
    EXPECT_TRUE(file.data().bones.empty());
    EXPECT_EQ(file.lastNotice().has_value(), why.kind != failure_kind::unsupported);
}

} // namespace

TEST(anim_damage, everyCutIsRefused)
{
    for (const std::uint32_t version : {5u, 7u})
        for (const anim_depth depth : all_depths)
        {
            const bool is_skeleton = depth == anim_depth::skeleton;
            const std::string bytes = is_skeleton ? test::testSkeleton(version).bytes() : sampleTake(version).bytes();
            const std::size_t frames = depth == anim_depth::bones_only ? 80 : 0; // a template needs none
            for (std::size_t size = 0; size < bytes.size() - frames; ++size)
            {
                anim_file file;
                failure why;
                ASSERT_FALSE(load(file, depth, bytes.substr(0, size), why)) << version << ", " << size;
                ASSERT_EQ(why.kind, failure_kind::truncated) << describe(why);
                ASSERT_LE(why.offset, size);
                ASSERT_TRUE(file.lastNotice());
            }
        }
}

TEST(anim_damage, everyPatchedByteIsReadOrRefused)
{
    for (const std::uint32_t version : {5u, 7u})
        for (const anim_depth depth : all_depths)
            for (const std::string& bytes : {sampleTake(version).bytes(), test::testSkeleton(version).bytes()})
                for (std::size_t at = 0; at < bytes.size(); ++at)
                    for (const int value : {0, 255, bytes[at] + 1, bytes[at] - 1})
                    {
                        std::string patched = bytes;
                        patched[at] = static_cast<char>(static_cast<unsigned char>(value));
                        loadDamaged(depth, patched, "byte " + std::to_string(at) + " = " + std::to_string(value & 255));
                    }
}

TEST(anim_damage, liesAreRefusedWithTheirPlace)
{
    // Version 7: 24 bytes with the name, flag, end time; the bone count is at 32, bone 1 at 46.
    const std::size_t bones = 32, bone_1 = 46, statics = 91, counts = 99;
    const struct
    {
        const char* name;
        anim_depth depth;
        std::size_t at;
        std::uint32_t value;
        failure_kind kind;
        const char* field;
    } rows[] = {
        {"version 4", anim_depth::animation, 0, 4, failure_kind::unsupported, "version"},
        {"version 8", anim_depth::skeleton, 0, 8, failure_kind::unsupported, "version"},
        {"long name", anim_depth::skeleton, 10, 0xffff0000, failure_kind::truncated, "skeleton name"},
        {"sub-name that is none", anim_depth::skeleton, 24, 1, failure_kind::malformed, "bone count"},
        {"257 bones", anim_depth::bones_only, bones, 257, failure_kind::malformed, "bone count"},
        {"negative bones", anim_depth::bones_only, bones, 0xffffffff, failure_kind::malformed, "bone count"},
        {"more bones than bytes", anim_depth::bones_only, bones, 100, failure_kind::truncated, "bone count"},
        {"bone name of 257 bytes", anim_depth::animation, bone_1, 0x01010101, failure_kind::malformed,
         "bone table, bone 1, name length"},
        {"bone name beyond the end", anim_depth::animation, bone_1, 0x00ff00ff, failure_kind::truncated,
         "bone table, bone 1, name"},
        {"static translations", anim_depth::animation, statics, 0x40000000, failure_kind::truncated,
         "static translation count"},
        {"static rotations", anim_depth::bones_only, statics + 4, 0xffffffff, failure_kind::truncated,
         "static rotation count"},
        {"a skeleton with static values", anim_depth::skeleton, statics, 1, failure_kind::malformed, "static block"},
        {"4 translations for 3 bones", anim_depth::skeleton, counts, 4, failure_kind::malformed,
         "translation track count"},
        {"rotations", anim_depth::skeleton, counts + 4, 4, failure_kind::malformed, "rotation track count"},
        {"rotations that are not there", anim_depth::animation, counts + 4, 0xffffffff, failure_kind::truncated,
         "frame count"},
        {"frames", anim_depth::animation, counts + 8, 0xffffffff, failure_kind::truncated, "frame count"},
        {"one frame too many", anim_depth::animation, counts + 8, 2, failure_kind::truncated, "frame count"},
    };
    for (const auto& row : rows)
    {
        test::bytes_out patched;
        patched.text(test::testSkeleton(7).bytes());
        patched.putU32(row.at, row.value);
        anim_file file;
        failure why;
        EXPECT_FALSE(load(file, row.depth, patched.str(), why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name << ": " << describe(why);
        EXPECT_EQ(why.field, row.field) << row.name << ": " << describe(why);
    }
}

TEST(anim_damage, theLimitsThemselvesAreGood)
{
    test_anim source;
    source.bones.assign(anim_file::max_bones, {std::string(anim_file::max_name, 'n'), 7000});
    source.translation_map.assign(anim_file::max_bones, test_anim::none);
    source.rotation_map.assign(anim_file::max_bones, 0);
    source.rotation_count = 256;
    source.translation_count = 0;
    for (auto& frame : source.frames)
        frame = {{}, std::vector<std::array<std::int16_t, 4>>(256)};
    anim_file file;
    failure why;
    ASSERT_TRUE(load(file, anim_depth::animation, source.bytes(), why)) << describe(why);
    validate(file.data(), anim_depth::animation, source.bytes().size());
    EXPECT_EQ(file.data().bones[255].parent, 7000);
    EXPECT_EQ(file.data().animated_rotations.size(), 256u);
}

} // namespace korvane
