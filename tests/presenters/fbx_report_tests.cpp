#include "Korvane/presenters/fbx_report.h"

#include <gtest/gtest.h>

namespace korvane
{

// A mesh and a bone at the top, a mesh and a bone below them, a take of 0.5 s, and a connection to nobody.
TEST(fbx_report, namesAndCountsOfWhatWasRead)
{
    const std::string file =
        "; FBX 7.4.0 project file\n"
        "GlobalSettings: { Properties70: { P: \"UnitScaleFactor\", \"double\", \"\", \"\",2.54\n"
        "P: \"TimeMode\", \"enum\", \"\", \"\",11 } }\n"
        "Objects: {\n"
        "Geometry: 10, \"Geometry::g\", \"Mesh\" { Vertices: *9 { a: 0,0,0,1,0,0,0,1,0 }\n"
        "PolygonVertexIndex: *3 { a: 0,1,-3 } }\n"
        "Model: 1, \"Model::body\", \"Mesh\" { }\nModel: 2, \"Model::hips\", \"LimbNode\" { }\n"
        "Model: 3, \"Model::head\", \"LimbNode\" { }\nModel: 4, \"Model::hat\", \"Mesh\" { }\n"
        "Material: 5, \"Material::skin\", \"\" { }\n"
        "AnimationStack: 20, \"AnimStack::nod\", \"\" { }\nAnimationLayer: 21, \"AnimLayer::\", \"\" { }\n"
        "AnimationCurveNode: 22, \"AnimCurveNode::T\", \"\" { }\n"
        "AnimationCurve: 23, \"AnimCurve::\", \"\" { KeyTime: *2 { a: 0,23093079000 }\n"
        "KeyValueFloat: *2 { a: 0,1.5 }\nKeyAttrFlags: *1 { a: 4 }\nKeyAttrDataFloat: *4 { a: 0,0,0,0 }\n"
        "KeyAttrRefCount: *1 { a: 2 } }\n}\n"
        "Connections: {\nC: \"OO\",1,0\nC: \"OO\",10,1\nC: \"OO\",5,1\nC: \"OO\",2,0\nC: \"OO\",3,2\n"
        "C: \"OO\",4,3\nC: \"OO\",10,4\nC: \"OO\",21,20\nC: \"OO\",22,21\nC: \"OP\",22,3,\"Lcl Translation\"\n"
        "C: \"OP\",23,22,\"d|X\"\nC: \"OO\",99,0\n}\n";
    fbx_report report;
    failure why;
    EXPECT_FALSE(report.hasFile());
    EXPECT_EQ(report.childCount(tree_model::root), 0u);
    ASSERT_TRUE(readFbxReport("C:\\x\\Nod.FBX", std::as_bytes(std::span(file)), report, why)) << describe(why);
    EXPECT_EQ(report.copyText(), "Nod.FBX: 1 mesh, 1 skeleton node, 1 take. One unit is 2.54 cm, up is +Y.\r\n"
                                 "At the top of the scene: 1 mesh\r\n"
                                 "  body: 3 control points, 1 polygon, material skin\r\n"
                                 "At the top of the scene: 1 skeleton node\r\n"
                                 "  hips: 1 bone below it\r\n"
                                 "Animation: 1 take\r\n"
                                 "  nod: 0.5 s, 13 frames at 24 a second\r\n"
                                 "Deeper, not imported: 1 mesh, 1 skeleton node, 0 other nodes\r\n"
                                 "  hips|head|hat (mesh)\r\n"
                                 "  hips|head (skeleton node)\r\n"
                                 "Left out while reading\r\n"
                                 "  1 connections name objects that are not there\r\n");
    EXPECT_EQ(report.status(), "Nod.FBX: 1 mesh, 1 skeleton node at the top of the scene. No model was made of it.");
    EXPECT_FALSE(readFbxReport("b.fbx", std::as_bytes(std::span(file).first(600)), report, why));
    EXPECT_TRUE(report.path().ends_with("Nod.FBX")) << "stays as it was";
}

} // namespace korvane
