// shader_compiler SOURCES TARGET: compiles every *_vs.hlsl and *_ps.hlsl of a folder (shader model 5.0, entry point
// main) to TARGET/NAME.cso and writes TARGET/sources.hash. Windows; run by tools/compile_shaders.

#include "tools/shader_compiler/source_hash.h"

#include <windows.h>

#include <d3dcommon.h>

#include <cstdio>

// From the compiler DLL, which is loaded at run time: the import library is not needed then.
using compile_from_file = HRESULT(WINAPI*)(LPCWSTR, const D3D_SHADER_MACRO*, ID3DInclude*, LPCSTR, LPCSTR, UINT, UINT,
                                           ID3DBlob**, ID3DBlob**);

namespace
{

constexpr UINT optimization_level3 = 1u << 15;
constexpr UINT warnings_are_errors = 1u << 18;

bool compile(compile_from_file compiler, const std::filesystem::path& source, const std::filesystem::path& target)
{
    const std::string stem = source.stem().string();
    const char* profile = stem.ends_with("_vs") ? "vs_5_0" : "ps_5_0";
    ID3DBlob* code = nullptr;
    ID3DBlob* messages = nullptr;
    // 1 stands for the compiler's own handling of #include.
    const HRESULT result = compiler(source.c_str(), nullptr, reinterpret_cast<ID3DInclude*>(UINT_PTR{1}), "main",
                                    profile, optimization_level3 | warnings_are_errors, 0, &code, &messages);
    if (messages)
    {
        std::fprintf(stderr, "%s\n", static_cast<const char*>(messages->GetBufferPointer()));
        messages->Release();
    }
    if (FAILED(result))
        return false;
    std::ofstream stream(target / (stem + ".cso"), std::ios::binary);
    stream.write(static_cast<const char*>(code->GetBufferPointer()),
                 static_cast<std::streamsize>(code->GetBufferSize()));
    std::printf("%-14s %s %6u bytes\n", stem.c_str(), profile, static_cast<unsigned>(code->GetBufferSize()));
    code->Release();
    return stream.good();
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 3)
        return 2;
    const HMODULE module = LoadLibraryW(L"d3dcompiler_47.dll");
    const auto compiler =
        module
            ? reinterpret_cast<compile_from_file>(reinterpret_cast<void*>(GetProcAddress(module, "D3DCompileFromFile")))
            : nullptr;
    if (!compiler)
    {
        std::fprintf(stderr, "d3dcompiler_47.dll cannot be loaded\n");
        return 1;
    }
    const std::filesystem::path sources = argv[1];
    const std::filesystem::path target = argv[2];
    for (const auto& entry : std::filesystem::directory_iterator(sources))
        if (entry.path().extension() == ".hlsl" && !compile(compiler, entry.path(), target))
            return 1;
    std::ofstream(target / "sources.hash", std::ios::binary) << korvane::shaderSourceHash(sources) << '\n';
    return 0;
}
