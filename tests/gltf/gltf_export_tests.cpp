// A small scene whose file was worked out by hand. Whole models are judged by other programs in
// tests/cli/gltf_tests.py.

#include "Korvane/gltf/gltf_export.h"

#include "EASY_GUI/services/version.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

namespace korvane
{

namespace
{

constexpr double inch = 39.37008; // a metre

// One bone a metre up, a triangle on it whose points hang half on the bone, and a take of two frames that lifts it.
export_scene smallScene()
{
    export_scene scene;
    export_bone bone;
    bone.name = "b";
    bone.translation = {0, inch, 0};
    bone.global[3] = {0, inch, 0, 1};
    scene.bones = {bone};
    scene.skeletons = {0};
    export_mesh mesh;
    mesh.name = "m";
    mesh.points = {0, 0, 0, inch, 0, 0, 0, 2 * inch, 0};
    mesh.normals = {0, 0, 1, 0, 0, 1, 0, 0, 0}; // the last one has none
    mesh.uvs = {0, 0, 1, 0, 0, 0.75};
    mesh.triangles = {0, 1, 2};
    mesh.clusters = {{0, {0, 1, 2}, {1, 1, 1}}};
    scene.meshes = {mesh};
    scene.materials.resize(1);
    return scene;
}

gltf_take smallTake()
{
    gltf_take take{"lift", {}};
    take.take.frame_rate = 2;
    take.take.frame_count = 2;
    take.take.rotations = {{0, {{0, 0, 180}, {0, 0, 190}}}};
    take.take.translations = {{0, {{0, inch, 0}, {0, 2 * inch, 0}}}};
    return take;
}

void appendFloats(std::string& bytes, std::initializer_list<float> values)
{
    for (const float value : values)
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(std::bit_cast<std::uint32_t>(value) >> shift & 0xff);
}

std::string word(std::size_t value)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

std::string expectedBin()
{
    std::string bin;
    appendFloats(bin, {0, 0, 0, 1, 0, 0, 0, 2, 0}); // 0: points
    appendFloats(bin, {0, 0, 1, 0, 0, 1, 0, 1, 0}); // 36: normals
    appendFloats(bin, {0, 1, 1, 1, 0, 0.25f});      // 72: v counts downwards
    bin += std::string(24, '\0');                   // 96: joints
    for (int i = 0; i < 3; ++i)                     // 120: weights
        appendFloats(bin, {1, 0, 0, 0});
    bin += std::string("\0\0\1\0\2\0\0\0", 8); // 168: indices, and two bytes to the next multiple of four
    appendFloats(bin, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1}); // 176: from the mesh into the bone
    appendFloats(bin, {0, 0.5f});                                         // 240: times
    return bin;                                                           // 248: rotations, looked at below
}

std::string expectedText(std::size_t size)
{
    const auto view = [](int offset, int length, int target) {
        return R"({"buffer":0,"byteOffset":)" + std::to_string(offset) + R"(,"byteLength":)" + std::to_string(length) +
               (target > 0 ? R"(,"target":)" + std::to_string(target) : std::string()) + "}";
    };
    const auto accessor = [](int number, int component, int count, const std::string& type) {
        return R"({"bufferView":)" + std::to_string(number) + R"(,"componentType":)" + std::to_string(component) +
               R"(,"count":)" + std::to_string(count) + R"(,"type":)" + type + "}";
    };
    return R"({"asset":{"version":"2.0","generator":")" + std::string(program_name) + " glTF exchange " +
           std::string(program_version) +
           R"("},"scene":0,"scenes":[{"name":"My Scene","nodes":[1,2]}],)"
           R"("nodes":[{"name":"b","translation":[0.0,1.0,0.0]},{"name":"Skeleton","children":[0]},)"
           R"({"name":"m","mesh":0,"skin":0}],)"
           R"("meshes":[{"name":"m_mesh","primitives":[{"attributes":{"POSITION":0,"NORMAL":1,"TEXCOORD_0":2,)"
           R"("JOINTS_0":3,"WEIGHTS_0":4},"indices":5}]}],)"
           R"("skins":[{"inverseBindMatrices":6,"skeleton":1,"joints":[0]}],)"
           R"("animations":[{"name":"lift","samplers":[{"input":7,"output":8},{"input":7,"output":9}],)"
           R"("channels":[{"sampler":0,"target":{"node":0,"path":"rotation"}},)"
           R"({"sampler":1,"target":{"node":0,"path":"translation"}}]}],)"
           R"("bufferViews":[)" +
           view(0, 36, 34962) + "," + view(36, 36, 34962) + "," + view(72, 24, 34962) + "," + view(96, 24, 34962) +
           "," + view(120, 48, 34962) + "," + view(168, 6, 34963) + "," + view(176, 64, 0) + "," + view(240, 8, 0) +
           "," + view(248, 32, 0) + "," + view(280, 24, 0) + R"(],"accessors":[)" +
           accessor(0, 5126, 3, R"("VEC3","min":[0.0,0.0,0.0],"max":[1.0,2.0,0.0])") + "," +
           accessor(1, 5126, 3, R"("VEC3")") + "," + accessor(2, 5126, 3, R"("VEC2")") + "," +
           accessor(3, 5123, 3, R"("VEC4")") + "," + accessor(4, 5126, 3, R"("VEC4")") + "," +
           accessor(5, 5123, 3, R"("SCALAR")") + "," + accessor(6, 5126, 1, R"("MAT4")") + "," +
           accessor(7, 5126, 2, R"("SCALAR","min":[0.0],"max":[0.5])") + "," + accessor(8, 5126, 2, R"("VEC4")") + "," +
           accessor(9, 5126, 2, R"("VEC3")") + R"(],"buffers":[{"byteLength":)" + std::to_string(size) + "}]}";
}

TEST(gltf_export, aSmallFileIsThatOfTheHand)
{
    const export_scene scene = smallScene();
    const std::vector<gltf_take> takes{smallTake()};
    const std::vector<std::byte> file = gltf_export(scene, {}, false).glb(takes);
    const std::string bytes(reinterpret_cast<const char*>(file.data()), file.size());
    const std::size_t bin_size = 304;
    std::string text = expectedText(bin_size);
    text.resize((text.size() + 3) / 4 * 4, ' ');
    const std::string head = "glTF" + word(2) + word(12 + 8 + text.size() + 8 + bin_size) + word(text.size()) + "JSON" +
                             text + word(bin_size) + std::string("BIN\0", 4) + expectedBin();
    EXPECT_EQ(bytes.substr(0, head.size()), head);
    ASSERT_EQ(bytes.size(), 20 + text.size() + 8 + bin_size);
    // Half a turn about z, and ten degrees more the short way; then the two places.
    const float keys[] = {0, 0, 1, 0, 0, 0, 0.99619470f, -0.08715574f, 0, 1, 0, 0, 2, 0};
    for (std::size_t i = 0; i < std::size(keys); ++i)
    {
        float value = 0;
        std::memcpy(&value, bytes.data() + bytes.size() - 56 + 4 * i, 4);
        EXPECT_NEAR(value, keys[i], 1e-6) << i;
    }
}

TEST(gltf_export, whatTheFormatDoesNotKnowIsLeftOut)
{
    export_scene scene = smallScene();
    scene.meshes[0].triangles.clear(); // empty meshes
    gltf_take still = smallTake();
    still.take.frame_count = 0; // animations without keys
    std::vector<std::byte> bin;
    const std::string text = gltf_export(scene, {}, true).gltf(std::vector{still}, "a b.bin", bin);
    for (const char* word : {"mesh\"", "skin", "animations", "accessors"})
        EXPECT_EQ(text.find(word), std::string::npos) << text;
    EXPECT_NE(text.find("\"name\": \"m\""), std::string::npos) << text; // its node stays
}

} // namespace

} // namespace korvane
