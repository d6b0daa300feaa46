#include "Korvane/fbx/scene/fbx_scene.h"

#include "Korvane/fbx/scene/fbx_evaluator.h"
#include "tests/fbx/figure_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace korvane
{
namespace
{

using test::scene_builder;
namespace figure = test::figure;

// The record of an object's entry, say the Vertices of number 201.
fbx_record& entry(scene_builder& builder, std::int64_t number, const std::string& name)
{
    for (fbx_record& object : builder.objects().children)
        if (object.integerAt(0) == number)
            for (fbx_record& child : object.children)
                if (child.name == name)
                    return child;
    throw std::logic_error("no " + name);
}

template <class type>
std::vector<type>& arrayOf(fbx_record& record)
{
    return std::get<std::vector<type>>(record.values[0]);
}

fbx_record& layerEntry(scene_builder& builder, const std::string& layer, const std::string& name)
{
    for (fbx_record& child : entry(builder, figure::body_mesh, layer).children)
        if (child.name == name)
            return child;
    throw std::logic_error("no " + name);
}

using change = std::function<void(scene_builder&)>;

void drop(std::vector<fbx_record>& records, const std::string& name)
{
    std::erase_if(records, [&name](const fbx_record& record) { return record.name == name; });
}

// Removes the last of an array's elements.
template <class type>
change shorten(std::int64_t number, const std::string& name)
{
    return [number, name](scene_builder& builder) { arrayOf<type>(entry(builder, number, name)).pop_back(); };
}

template <class type>
change put(std::int64_t number, const std::string& name, std::size_t position, type value)
{
    return [number, name, position, value](scene_builder& builder) {
        arrayOf<type>(entry(builder, number, name))[position] = value;
    };
}

change dropTop(const std::string& name)
{
    return [name](scene_builder& builder) { drop(builder.document().records, name); };
}

change connectFirst(std::int64_t child, std::int64_t parent)
{
    return [child, parent](scene_builder& builder) {
        builder.connect(child, parent);
        auto& all = builder.connections().children;
        std::rotate(all.begin(), all.end() - 1, all.end());
    };
}

} // namespace

TEST(fbx_scene_damage, whatContradictsItselfIsRefusedAndNamed)
{
    using i32 = std::int32_t;
    const struct
    {
        const char* name;
        change damage;
        const char* text;
    } rows[] = {
        {"no objects", dropTop("Objects"), "no record Objects"},
        {"no connections", dropTop("Connections"), "no record Connections"},
        {"old", [](scene_builder& b) { b.document().version = 6000; }, "version 6000"},
        {"number twice", [](scene_builder& b) { b.model(figure::body, "x", "Null"); }, "have the number 103"},
        {"parents in a circle", connectFirst(figure::root_bone, figure::tip_bone), "is its own ancestor"},
        {"its own parent", connectFirst(figure::nested, figure::nested), "\"nested\" is its own ancestor"},
        {"points", shorten<double>(figure::body_mesh, "Vertices"), "Geometry \"body mesh\": Vertices has 11 numbers"},
        {"corner too large", put<i32>(figure::body_mesh, "PolygonVertexIndex", 1, 4),
         "corner 1 of PolygonVertexIndex is control point 4 of 4"},
        {"last corner too large", put<i32>(figure::body_mesh, "PolygonVertexIndex", 6, -2147483647 - 1), "corner 6"},
        {"open polygon", shorten<i32>(figure::body_mesh, "PolygonVertexIndex"), "not closed"},
        {"normals short",
         [](scene_builder& b) { arrayOf<double>(layerEntry(b, "LayerElementNormal", "Normals")).resize(9); },
         "LayerElementNormal has 3 entries for 4 places"},
        {"normals odd",
         [](scene_builder& b) { arrayOf<double>(layerEntry(b, "LayerElementNormal", "Normals")).push_back(0); },
         "has 13 numbers"},
        {"UV indices short",
         [](scene_builder& b) { arrayOf<i32>(layerEntry(b, "LayerElementUV", "UVIndex")).pop_back(); },
         "LayerElementUV has 6 entries for 7 places"},
        {"UV index too large",
         [](scene_builder& b) { arrayOf<i32>(layerEntry(b, "LayerElementUV", "UVIndex"))[2] = 3; },
         "index 2 of LayerElementUV is 3 of 3"},
        {"UV index negative",
         [](scene_builder& b) { arrayOf<i32>(layerEntry(b, "LayerElementUV", "UVIndex"))[2] = -2; }, "is -2 of 3"},
        {"weights short", shorten<double>(figure::tip_cluster, "Weights"), "\"high\" has 3 indices, but 2 weights"},
        {"weight of no point", put<i32>(figure::tip_cluster, "Indexes", 0, 4), "\"high\" moves control point 4 of 4"},
        {"weight below all points", put<i32>(figure::tip_cluster, "Indexes", 0, -1), "control point -1"},
        {"key times short", shorten<std::int64_t>(figure::curve, "KeyTime"), "has 1 key times, but 2 values"},
        {"key times back", put<std::int64_t>(figure::curve, "KeyTime", 0, test::ticks_a_second + 1),
         "before that of the key before"},
        {"attributes short", put<i32>(figure::curve, "KeyAttrRefCount", 0, 1), "attributes for 1 of its 2 keys"},
        {"attributes long", put<i32>(figure::curve, "KeyAttrRefCount", 0, 2147483647), "more than its 2 keys"},
        {"attributes negative", put<i32>(figure::curve, "KeyAttrRefCount", 0, -1), "more than its 2 keys"},
        {"attribute data short", shorten<float>(figure::curve, "KeyAttrDataFloat"), "do not fit together"},
        {"attribute flags missing", shorten<i32>(figure::curve, "KeyAttrFlags"), "do not fit together"},
    };
    for (const auto& row : rows)
    {
        scene_builder builder = test::makeFigure(7400);
        row.damage(builder);
        fbx_scene scene;
        failure why;
        EXPECT_FALSE(readScene(builder.document(), scene, why)) << row.name;
        EXPECT_NE(why.what.find(row.text), std::string::npos) << row.name << ": " << why.what;
        EXPECT_TRUE(scene.nodes.empty()) << row.name;
        const bool is_of_the_file =
            why.what.find("no record") != std::string::npos || builder.document().version < 6100;
        EXPECT_EQ(why.field.starts_with("Objects/"), !is_of_the_file) << row.name << ": " << why.field;
    }
}

TEST(fbx_scene_damage, oldKeyListsThatEndInsideAKeyAreRefused)
{
    const std::int64_t time = 5;
    const struct
    {
        const char* name;
        fbx_record keys;
    } rows[] = {
        {"no value", fbx_record("Key", time)},
        {"no kind", fbx_record("Key", time, 1.0)},
        {"unknown kind", fbx_record("Key", time, 1.0, 'X')},
        {"no mode", fbx_record("Key", time, 1.0, 'U')},
        {"a slope missing", fbx_record("Key", time, 1.0, 'U', 's', 1.0)},
        {"a weight missing", fbx_record("Key", time, 1.0, 'U', 's', 1.0, 1.0, 'a', 0.5)},
        {"letter for time", fbx_record("Key", 'L', 1.0, 'L')},
        {"fewer than counted", fbx_record("Key", time, 1.0, 'L')},
        {"times back", fbx_record("Key", time, 1.0, 'L', time - 1, 1.0, 'L')},
    };
    for (const auto& row : rows)
    {
        fbx_document document = test::makeFigure(6100).document();
        fbx_record& x = document.records[2].children[0].children[1].children[0].children[0].children[0];
        ASSERT_EQ(x.children[2].name, "Key");
        x.children[2] = row.keys;
        fbx_scene scene;
        failure why;
        EXPECT_FALSE(readScene(document, scene, why)) << row.name;
        EXPECT_NE(why.what.find("take \"walk\", node \"tip\", channel X"), std::string::npos) << row.name << why.what;
    }
}

TEST(fbx_scene_damage, whatLeadsNowhereIsLeftOutWithANote)
{
    const struct
    {
        const char* name;
        change damage;
        const char* note;
    } rows[] = {
        {"connection to nobody", connectFirst(figure::body, 77), "1 connections name objects that are not there"},
        {"node without a parent", [](scene_builder& b) { b.model(900, "stray", "Null"); },
         "\"stray\" is connected to no parent"},
        {"cluster without a bone",
         [](scene_builder& b) {
             b.object("Deformer", 900, "stray", "SubDeformer", "Cluster");
             b.connect(900, figure::skin);
         },
         "\"stray\" is connected to no bone"},
        {"pose of nobody", [](scene_builder& b) { b.object("Pose", 900, "stray", "Pose", "BindPose").add("PoseNode"); },
         "1 entries of the pose \"stray\""},
        {"mapping by edge",
         [](scene_builder& b) {
             layerEntry(b, "LayerElementUV", "MappingInformationType").values[0] = std::string("ByEdge");
         },
         "LayerElementUV is mapped"},
    };
    for (const auto& row : rows)
        for (const std::uint32_t version : {7400u, 6100u})
        {
            scene_builder builder = test::makeFigure(version);
            if (version < 7000 && std::string_view(row.name) == "mapping by edge")
                continue; // reaches into a Geometry
            row.damage(builder);
            fbx_scene scene;
            failure why;
            ASSERT_TRUE(readScene(builder.document(), scene, why)) << row.name << ": " << describe(why);
            ASSERT_EQ(scene.notes.size(), 1u) << row.name;
            EXPECT_NE(scene.notes[0].find(row.note), std::string::npos) << row.name << ": " << scene.notes[0];
            EXPECT_EQ(scene.meshes[0].skins[0].clusters.size(), 2u) << row.name;
        }
}

TEST(fbx_scene_damage, deepTreesAndManyNotesHaveLimits)
{
    scene_builder builder(7400);
    for (std::int64_t i = 1; i <= 1030; ++i)
    {
        builder.model(i, "n", "Null");
        builder.connect(i, i - 1);
    }
    fbx_scene scene;
    failure why;
    EXPECT_FALSE(readScene(builder.document(), scene, why));
    EXPECT_NE(why.what.find("more than 1024 deep"), std::string::npos);

    scene_builder strays(7400);
    for (std::int64_t i = 1; i <= 500; ++i)
        strays.model(i, "n", "Null");
    why = {};
    ASSERT_TRUE(readScene(strays.document(), scene, why));
    EXPECT_EQ(scene.nodes.size(), 500u);
    EXPECT_EQ(scene.notes.size(), 101u);
}

} // namespace korvane
