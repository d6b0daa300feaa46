#pragma once

// A small figure as a document of any version: two bones, a body of two polygons that hangs on them, a pose, a take in
// which the upper bone turns about x from 0 to 90 degrees in a second, and a mesh below the body.

#include "tests/fbx/scene_builder.h"

namespace korvane::test
{

namespace figure
{
enum numbers : std::int64_t
{
    root_bone = 101,
    tip_bone,
    body,
    nested,
    body_mesh = 201,
    nested_mesh,
    root_attribute = 301,
    tip_attribute,
    skin = 401,
    root_cluster,
    tip_cluster,
    pose = 501,
    stack = 601,
    layer,
    rotation,
    curve
};
}

inline void addGeometry(scene_builder& builder, fbx_record& record, bool is_whole)
{
    builder.array<double>(record, "Vertices", {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0.5});
    builder.array<std::int32_t>(record, "PolygonVertexIndex", {0, 1, 2, -4, 0, 2, -4});
    if (!is_whole)
        return;
    fbx_record& normals = record.add("LayerElementNormal", std::int32_t{0});
    normals.add("MappingInformationType", std::string("ByVertice"));
    normals.add("ReferenceInformationType", std::string("Direct"));
    builder.array<double>(normals, "Normals", {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0});
    fbx_record& uv = record.add("LayerElementUV", std::int32_t{0});
    uv.add("Name", std::string("map"));
    uv.add("MappingInformationType", std::string("ByPolygonVertex"));
    uv.add("ReferenceInformationType", std::string("IndexToDirect"));
    builder.array<double>(uv, "UV", {0, 0, 1, 0, 1, 1});
    builder.array<std::int32_t>(uv, "UVIndex", {0, 1, 2, -1, 0, 2, 1});
}

inline void addCluster(scene_builder& builder, std::int64_t number, const std::string& name, std::int64_t bone,
                       const std::vector<std::int32_t>& indices, const std::vector<double>& weights)
{
    fbx_record& record = builder.object("Deformer", number, name, "SubDeformer", "Cluster");
    builder.array(record, "Indexes", indices);
    builder.array(record, "Weights", weights);
    builder.array<double>(record, "Transform", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -2, 0, 1});
    builder.array<double>(record, "TransformLink", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 2, 0, 1});
    builder.connect(number, figure::skin);
    builder.connect(bone, number);
}

// The records that version 6100 has in the list of takes.
inline void addTake(scene_builder& builder)
{
    fbx_record& take = builder.top("Takes").add("Take", std::string("walk"));
    take.add("LocalTime", std::int64_t{0}, std::int64_t{ticks_a_second / 2});
    fbx_record& model = take.add("Model");
    model.values.push_back(builder.reference(figure::tip_bone));
    fbx_record& rotation = model.add("Channel", std::string("Transform")).add("Channel", std::string("R"));
    fbx_record& x = rotation.add("Channel", std::string("X"));
    x.add("KeyVer", std::int32_t{4005});
    x.add("KeyCount", std::int32_t{2});
    x.add("Key", std::int64_t{0}, 0.0, 'L', std::int64_t{ticks_a_second}, 90.0, 'L');
    rotation.add("Channel", std::string("Y")).add("Default", 0.0);
    rotation.add("Channel", std::string("Z")).add("Default", 7.0);
}

inline void addFigureNodes(scene_builder& builder)
{
    const bool is_new = builder.isNew();
    builder.property(builder.model(figure::root_bone, "root", is_new ? "LimbNode" : "Root"), "Lcl Translation",
                     {0, 2, 0});
    builder.property(builder.model(figure::tip_bone, "tip", "LimbNode"), "Lcl Translation", {0, 1, 0});
    fbx_record& body = builder.model(figure::body, "body", "Mesh");
    if (!is_new)
        addGeometry(builder, body, true);
    fbx_record& nested = builder.model(figure::nested, "nested", "Mesh");
    if (!is_new)
        addGeometry(builder, nested, false);
    if (!is_new)
        return;
    addGeometry(builder, builder.object("Geometry", figure::body_mesh, "body mesh", "Geometry", "Mesh"), true);
    addGeometry(builder, builder.object("Geometry", figure::nested_mesh, "", "Geometry", "Mesh"), false);
    fbx_record& root = builder.object("NodeAttribute", figure::root_attribute, "", "NodeAttribute", "Root");
    builder.property(root, "Color", {0, 1, 1});
    builder.object("NodeAttribute", figure::tip_attribute, "", "NodeAttribute", "LimbNode");
    builder.connect(figure::root_attribute, figure::root_bone);
    builder.connect(figure::tip_attribute, figure::tip_bone);
    builder.connect(figure::body_mesh, figure::body);
    builder.connect(figure::nested_mesh, figure::nested);
}

inline scene_builder makeFigure(std::uint32_t version)
{
    scene_builder builder(version);
    const bool is_new = builder.isNew();
    addFigureNodes(builder);
    builder.connect(figure::body, 0); // before the bone: the order of the children is that of the connections
    builder.connect(figure::root_bone, 0);
    builder.connect(figure::tip_bone, figure::root_bone);
    builder.connect(figure::nested, figure::body);
    builder.object("Deformer", figure::skin, "skin", "Deformer", "Skin");
    builder.connect(figure::skin, is_new ? figure::body_mesh : figure::body);
    addCluster(builder, figure::root_cluster, "low", figure::root_bone, {0, 1}, {1, 0.5});
    addCluster(builder, figure::tip_cluster, "high", figure::tip_bone, {1, 2, 3}, {0.5, 1, 1});
    fbx_record& pose = builder.object("Pose", figure::pose, "rest", "Pose", "BindPose").add("PoseNode");
    pose.add("Node").values.push_back(builder.reference(figure::root_bone));
    builder.array<double>(pose, "Matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 2, 0, 1});
    if (!is_new)
    {
        addTake(builder);
        return builder;
    }
    addStack(builder, figure::stack, figure::layer, "walk", ticks_a_second / 2.0);
    addCurveNode(builder, figure::rotation, figure::layer, figure::tip_bone, "Lcl Rotation", {0, 0, 7});
    addCurve(builder, figure::curve, {0, ticks_a_second}, {0, 90});
    builder.connect(figure::curve, figure::rotation, "d|X");
    return builder;
}

} // namespace korvane::test
