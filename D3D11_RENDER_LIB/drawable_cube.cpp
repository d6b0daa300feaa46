#include "D3D11_RENDER_LIB/drawable_cube.h"

#include "EASY_GUI/win32/handle_policies.h"

#include <glm/gtc/matrix_transform.hpp>

#include <d3dcommon.h>

#include <string_view>
#include <vector>

namespace korvane
{

namespace
{

constexpr char drawable_cube_source[] = "drawable_cube";
constexpr float edge_half = 0.035f; // in the world of the view
constexpr const wchar_t* compiler_library = L"d3dcompiler_47.dll";

constexpr std::string_view vertex_source = R"(
cbuffer ModelViewProjectionConstantBuffer : register(b0)
{
    matrix mWorld;
    matrix View;
    matrix Projection;
};
struct pixel
{
    float4 clip : SV_Position;
    float4 color : COLOR;
};
pixel main(float3 position : POSITION, float4 color : COLOR)
{
    pixel result;
    result.clip = mul(mul(mul(float4(position, 1), mWorld), View), Projection);
    result.color = color;
    return result;
}
)";
constexpr std::string_view pixel_source = R"(
struct pixel
{
    float4 clip : SV_Position;
    float4 color : COLOR;
};
struct targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};
targets main(pixel input)
{
    targets result;
    result.base = input.color;
    result.lit = input.color;
    result.normal = float4(0.5, 0.5, 0.5, 1);
    return result;
}
)";

const D3D11_INPUT_ELEMENT_DESC cube_elements[] = {
    {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
};

using compile_function = HRESULT(WINAPI*)(LPCVOID, SIZE_T, LPCSTR, const D3D_SHADER_MACRO*, ID3DInclude*, LPCSTR,
                                          LPCSTR, UINT, UINT, UINT, LPCVOID, SIZE_T, ID3DBlob**, ID3DBlob**);

bool compile(compile_function compiler, std::string_view source, const char* name, const char* target,
             com_ptr<ID3DBlob>& code)
{
    com_ptr<ID3DBlob> messages;
    return SUCCEEDED(compiler(source.data(), source.size(), name, nullptr, nullptr, "main", target, 0, 0, 0, nullptr, 0,
                              code.put(), messages.put())) &&
           code;
}

// Twelve triangles; the sides differ a little in brightness.
std::vector<gpu_line_vertex> cubeVertices()
{
    std::vector<gpu_line_vertex> vertices;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (const float side : {-1.0f, 1.0f})
            for (const auto& [u, v] :
                 {std::pair(-1.0f, -1.0f), {-1.0f, 1.0f}, {1.0f, -1.0f}, {1.0f, -1.0f}, {-1.0f, 1.0f}, {1.0f, 1.0f}})
            {
                gpu_line_vertex vertex{};
                vertex.position[axis] = side;
                vertex.position[(axis + 1) % 3] = u;
                vertex.position[(axis + 2) % 3] = v;
                const float light = 0.55f + 0.15f * static_cast<float>(axis);
                vertex.color = {light, light * 0.9f, light * 0.55f, 1};
                vertices.push_back(vertex);
            }
    return vertices;
}

} // namespace

bool drawable_cube::create(lib3d& library, const log_port& log)
{
    const unique_module module(LoadLibraryExW(compiler_library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto compiler =
        module
            ? reinterpret_cast<compile_function>(reinterpret_cast<void*>(GetProcAddress(module.get(), "D3DCompile2")))
            : nullptr;
    com_ptr<ID3DBlob> vertex_code, pixel_code;
    if (compiler == nullptr || !compile(compiler, vertex_source, "VS1.hlsl", "vs_5_0", vertex_code) ||
        !compile(compiler, pixel_source, "PS_WireameFram.hlsl", "ps_5_0", pixel_code))
    {
        tell(log, "d3d_window: there is no shader compiler (d3dcompiler_47.dll): the light has no marker");
        return true;
    }
    ID3D11Device& device = library.device();
    const std::vector<gpu_line_vertex> vertices = cubeVertices();
    return library.isMade(device.CreateVertexShader(vertex_code->GetBufferPointer(), vertex_code->GetBufferSize(),
                                                    nullptr, m_vs.put()),
                          m_vs, "VS1", drawable_cube_source) &&
           library.isMade(device.CreateInputLayout(cube_elements, 2, vertex_code->GetBufferPointer(),
                                                   vertex_code->GetBufferSize(), m_layout.put()),
                          m_layout, "VS1", drawable_cube_source) &&
           library.isMade(device.CreatePixelShader(pixel_code->GetBufferPointer(), pixel_code->GetBufferSize(), nullptr,
                                                   m_ps.put()),
                          m_ps, "PS_WireameFram", drawable_cube_source) &&
           library.createBuffer(D3D11_BIND_VERTEX_BUFFER, std::as_bytes(std::span(vertices)), "cube",
                                drawable_cube_source, m_vertices);
}

void drawable_cube::draw(lib3d& library, frame_constants& frame) const
{
    if (!m_vertices)
        return;
    const gpu_matrix world = frame.vs.mWorld;
    frame.vs.mWorld = gpuMatrix(glm::scale(glm::translate(glm::mat4(1), m_place), glm::vec3(edge_half)));
    library.uploadConstants(frame.vs, frame.ps);
    frame.vs.mWorld = world;
    library.useLineShaders(line_depth::tested);
    ID3D11DeviceContext& context = library.context();
    ID3D11Buffer* vertices = m_vertices.get();
    const UINT stride = sizeof(gpu_line_vertex);
    const UINT offset = 0;
    context.IASetInputLayout(m_layout.get());
    context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    context.VSSetShader(m_vs.get(), nullptr, 0);
    context.PSSetShader(m_ps.get(), nullptr, 0);
    context.IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
    context.Draw(36, 0);
}

} // namespace korvane
