#include "tools/shader_compiler/source_hash.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

TEST(shader_sources, theCompiledShadersAreUpToDate)
{
    const fs::path folder = KORVANE_SHADER_FOLDER;
    std::string recorded = contentOf(folder / "compiled" / "sources.hash");
    while (!recorded.empty() && (recorded.back() == '\n' || recorded.back() == '\r'))
        recorded.pop_back();
    EXPECT_EQ(recorded, shaderSourceHash(folder)) << "a shader was edited: run tools/compile_shaders";

    for (const auto& entry : fs::directory_iterator(folder))
    {
        const fs::path compiled = folder / "compiled" / entry.path().stem().concat(".cso");
        if (entry.path().extension() == ".hlsl")
        {
            EXPECT_EQ(contentOf(compiled).substr(0, 4), "DXBC") << compiled;
        }
    }
}

TEST(shader_sources, theHashSeesEveryEditButNoLineEnds)
{
    const fs::path folder = fs::temp_directory_path() / "korvane_shader_hash_test";
    fs::create_directories(folder);
    const auto write = [&folder](const char* name, const char* text) {
        std::ofstream(folder / name, std::ios::binary) << text;
    };
    write("a.hlsl", "float x;\nfloat y;\n");
    write("b.hlsli", "z\n");
    write("note.txt", "one");
    const std::string before = shaderSourceHash(folder);
    write("note.txt", "two");
    write("a.hlsl", "float x;\r\nfloat y;\r\n");
    EXPECT_EQ(shaderSourceHash(folder), before);
    write("b.hlsli", "w\n");
    EXPECT_NE(shaderSourceHash(folder), before);
    for (const char* name : {"a.hlsl", "b.hlsli", "note.txt"})
        fs::remove(folder / name);
    fs::remove(folder);
}

} // namespace

} // namespace korvane
