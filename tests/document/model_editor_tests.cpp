// Edits with undo and redo, and what "Fill all LODs in GROUP" reaches.

#include "Korvane/document/model_editor.h"
#include "Korvane/models/rmv2_writer.h"
#include "tests/support/model_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

test_group named(const char* name, std::vector<std::pair<std::uint32_t, std::string>> textures)
{
    test_group group;
    group.group_name = name;
    group.textures = std::move(textures);
    return group;
}

// Two groups called "arm" in the first LODs, one in the last; the middle LOD has its textures in another order.
test_model armour()
{
    test_model model;
    model.lods = {{named("arm", {{0, "t/d.dds"}, {1, "t/n.dds"}}), named("arm", {{0, "t/e.dds"}})},
                  {named("leg", {}), named("arm", {{1, "t/n.dds"}, {0, "t/d.dds"}}), named("arm", {{0, "t/e.dds"}})},
                  {named("arm", {{1, "t/n.dds"}})}};
    return model;
}

class model_editor_test : public testing::Test
{
protected:
    model_editor_test()
    {
        failure why;
        EXPECT_TRUE(m_model.openFromMemory(memory_file(std::string_view(armour().bytes())), "armour", why));
    }
    std::string path(std::size_t lod, std::size_t group, std::size_t texture) const
    {
        return m_model.data().lods[lod].groups[group].textures[texture].path_field.text();
    }
    edit_result set(texture_place place, const std::string& path, edit_scope scope = edit_scope::one_group)
    {
        edit_result result;
        failure why;
        EXPECT_TRUE(m_editor.setTexturePath(place, path, scope, result, why)) << describe(why);
        return result;
    }

    rmv2_file m_model;
    model_editor m_editor{m_model};
};

TEST_F(model_editor_test, theEditedFlagFollowsUndoRedoAndSaving)
{
    const struct
    {
        const char* step; // s: set a path, S: the same path again, u: undo, r: redo, w: save
        bool is_edited, can_undo, can_redo;
        const char* path;
    } steps[] = {
        {"u", false, false, false, "t/d.dds"}, {"s", true, true, false, "1"},
        {"u", false, false, true, "t/d.dds"},  {"r", true, true, false, "1"},
        {"w", false, true, false, "1"},        {"S", false, true, false, "1"},
        {"s", true, true, false, "2"},         {"u", false, true, true, "1"},
        {"u", true, false, true, "t/d.dds"},   {"s", true, true, false, "3"},
        {"u", true, false, true, "t/d.dds"}, // the saved state is gone
    };
    int next = 0;
    for (const auto& row : steps)
    {
        SCOPED_TRACE(row.step + std::string(" -> ") + row.path);
        if (*row.step == 's')
        {
            EXPECT_EQ(set({0, 0, 0}, std::to_string(++next)).changed, 1u);
        }
        else if (*row.step == 'S')
        {
            EXPECT_EQ(set({0, 0, 0}, std::to_string(next)).changed, 0u);
        }
        else if (*row.step == 'u')
            m_editor.undo();
        else if (*row.step == 'r')
            m_editor.redo();
        else
            m_editor.markSaved();
        EXPECT_EQ(m_editor.isEdited(), row.is_edited);
        EXPECT_EQ(m_editor.canUndo(), row.can_undo);
        EXPECT_EQ(m_editor.canRedo(), row.can_redo);
        EXPECT_EQ(path(0, 0, 0), row.path);
    }
}

TEST_F(model_editor_test, fillingAllLodsReachesTheSameGroupAndTheSameKindOfTextureAndIsOneStep)
{
    const edit_result first = set({0, 0, 1}, "new.dds", edit_scope::all_lods);
    EXPECT_EQ(first.changed, 3u);
    EXPECT_TRUE(first.notes.empty());
    for (const auto& [lod, group, texture] : {texture_place{0, 0, 1}, {1, 1, 0}, {2, 0, 0}})
        EXPECT_EQ(path(lod, group, texture), "new.dds") << lod;
    EXPECT_EQ(path(1, 1, 1), "t/d.dds");
    m_editor.undo();
    EXPECT_FALSE(m_editor.isEdited());
    EXPECT_TRUE(m_editor.changes().empty());

    // The second "arm" has its like in LOD 1 only.
    const edit_result second = set({0, 1, 0}, "other.dds", edit_scope::all_lods);
    EXPECT_EQ(second.changed, 2u);
    EXPECT_EQ(path(1, 2, 0), "other.dds");
    EXPECT_EQ(second.notes, (std::vector<std::string>{"LOD 2 has no group like LOD 0, group 1 (\"arm\")"}));
    // Where the group has no texture of this kind.
    EXPECT_EQ(set({0, 0, 0}, "d.dds", edit_scope::all_lods).notes,
              (std::vector<std::string>{"LOD 2, group 0 has no such texture (Diffuse)"}));
}

TEST_F(model_editor_test, anEditThatIsTakenBackSavesTheVeryBytesOfTheFile)
{
    std::string bytes = armour().bytes();
    bytes[bytes.find("t/d.dds") + 100] = '!'; // behind the text's zero
    failure why;
    rmv2_file model;
    ASSERT_TRUE(model.openFromMemory(memory_file(std::string_view(bytes)), "odd", why));
    model_editor editor(model);
    edit_result result;
    ASSERT_TRUE(editor.setTexturePath({0, 0, 0}, "x", edit_scope::one_group, result, why));
    editor.undo();
    const temporary_folder folder;
    ASSERT_TRUE(saveModel(model, folder.file("saved"), why)) << describe(why);
    EXPECT_EQ(readBytes(folder.file("saved")), bytes);
}

TEST_F(model_editor_test, aFailedSaveChangesNothing)
{
    set({0, 0, 0}, "x.dds");
    const temporary_folder folder;
    failure why;
    EXPECT_FALSE(saveModel(m_model, folder.file("none/saved"), why));
    EXPECT_EQ(why.kind, failure_kind::unwritable);
    EXPECT_EQ(m_model.path(), "armour");
    EXPECT_EQ(m_model.image().text(), armour().bytes());
    EXPECT_EQ(m_editor.changes().size(), 1u);
    failure none;
    ASSERT_TRUE(saveModel(m_model, folder.file("saved"), none)) << describe(none);
    EXPECT_EQ(m_model.path(), folder.file("saved"));
    EXPECT_EQ(m_model.data().lods[0].groups[0].textures[0].path, "x.dds");
    EXPECT_TRUE(m_editor.changes().empty());
}

} // namespace
} // namespace korvane::test
