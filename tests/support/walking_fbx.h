#pragma once

// A small FBX file of the text form for tests of conversions.

#include <cstdint>
#include <string>

namespace korvane::test
{

// Bones root and spine, text form, one take of two seconds in which the root turns.
inline std::string walkingFbx()
{
    const std::string ticks = std::to_string(2 * std::int64_t{46186158000});
    return "; FBX 7.4.0 project file\nFBXHeaderExtension: {\nFBXVersion: 7400\n}\nObjects: {\n"
           "Model: 1, \"Model::rig:root\", \"LimbNode\" {\n}\nModel: 2, \"Model::rig:spine\", \"LimbNode\" {\n}\n"
           "AnimationStack: 3, \"AnimStack::walk\", \"\" {\n}\nAnimationLayer: 4, \"AnimLayer::Base\", \"\" {\n}\n"
           "AnimationCurveNode: 5, \"AnimCurveNode::R\", \"\" {\n}\nAnimationCurve: 6, \"AnimCurve::\", \"\" {\n"
           "KeyTime: *2 {\na: 0," +
           ticks +
           "\n}\nKeyValueFloat: *2 {\na: 0,90\n}\nKeyAttrFlags: *1 {\na: 4\n}\nKeyAttrDataFloat: *4 {\na: 0,0,0,0\n}\n"
           "KeyAttrRefCount: *1 {\na: 2\n}\n}\n}\nConnections: {\nC: \"OO\",1,0\nC: \"OO\",2,1\nC: \"OO\",4,3\n"
           "C: \"OO\",5,4\nC: \"OP\",5,1, \"Lcl Rotation\"\nC: \"OP\",6,5, \"d|Z\"\n}\n";
}

} // namespace korvane::test
