#include "D3D11_RENDER_LIB/lib3d.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "D3D11_RENDER_LIB/environment_map.h"
#include "D3D11_RENDER_LIB/shader_resources.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace korvane
{

namespace
{

constexpr char source_name[] = "lib3d";

const D3D11_INPUT_ELEMENT_DESC model_elements[] = {
    {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"NORMAL", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"TANGENT", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"BINORMAL", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"BLENDINDICES", 0, DXGI_FORMAT_R32G32B32A32_UINT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"BLENDWEIGHTS", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA,
     0},
};

const D3D11_INPUT_ELEMENT_DESC line_elements[] = {
    {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
};

// The bytes of an embedded shader. They are there: the program would not have linked without.
std::span<const std::byte> resourceBytes(int number)
{
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(number), MAKEINTRESOURCEW(10)); // 10: RCDATA
    requireSuccess(found ? S_OK : HRESULT_FROM_WIN32(GetLastError()), "lib3d, shader resource");
    const void* bytes = LockResource(LoadResource(nullptr, found));
    return {static_cast<const std::byte*>(bytes), SizeofResource(nullptr, found)};
}

com_ptr<ID3D11ShaderResourceView> cubeView(ID3D11Device& device, const std::vector<cube_level>& levels)
{
    D3D11_TEXTURE2D_DESC description{};
    description.Width = description.Height = levels.front().size;
    description.MipLevels = static_cast<UINT>(levels.size());
    description.ArraySize = 6;
    description.Format = DXGI_FORMAT_R16G16B16A16_FLOAT;
    description.SampleDesc.Count = 1;
    description.Usage = D3D11_USAGE_IMMUTABLE;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.MiscFlags = D3D11_RESOURCE_MISC_TEXTURECUBE;
    std::vector<D3D11_SUBRESOURCE_DATA> contents;
    for (std::size_t face = 0; face < 6; ++face)
        for (const cube_level& level : levels)
        {
            const UINT face_texels = level.size * level.size;
            contents.push_back({level.texels.data() + face * face_texels * 4, level.size * 8, face_texels * 8});
        }
    com_ptr<ID3D11Texture2D> texture;
    requireSuccess(device.CreateTexture2D(&description, contents.data(), texture.put()), source_name);
    com_ptr<ID3D11ShaderResourceView> view;
    requireSuccess(device.CreateShaderResourceView(texture.get(), nullptr, view.put()), source_name);
    return view;
}

} // namespace

bool lib3d::createDevice(const log_port& log, failure& why)
{
    static const D3D_FEATURE_LEVEL levels[] = {D3D_FEATURE_LEVEL_11_1, D3D_FEATURE_LEVEL_11_0};
    static const D3D_DRIVER_TYPE kinds[] = {D3D_DRIVER_TYPE_HARDWARE, D3D_DRIVER_TYPE_WARP};
    HRESULT result = E_FAIL;
    for (const D3D_DRIVER_TYPE kind : kinds)
    {
        result = D3D11CreateDevice(nullptr, kind, nullptr, 0, levels, 2, D3D11_SDK_VERSION, m_device.put(), nullptr,
                                   m_context.put());
        if (result == E_INVALIDARG) // systems that do not know 11.1
            result = D3D11CreateDevice(nullptr, kind, nullptr, 0, levels + 1, 1, D3D11_SDK_VERSION, m_device.put(),
                                       nullptr, m_context.put());
        m_is_software = kind == D3D_DRIVER_TYPE_WARP;
        if (SUCCEEDED(result))
        {
            if (m_is_software && log)
                log("No hardware device for Direct3D 11: the software device draws instead.");
            return true;
        }
    }
    char code[16];
    std::snprintf(code, sizeof code, "%08lX", static_cast<unsigned long>(result));
    return fail(why, failure_kind::unsupported,
                std::string("this system has no Direct3D 11 device, neither hardware nor software (") + code + ")");
}

com_ptr<ID3D11Buffer> lib3d::constantBuffer(UINT size, const void* contents) const
{
    const CD3D11_BUFFER_DESC description(size, D3D11_BIND_CONSTANT_BUFFER);
    D3D11_SUBRESOURCE_DATA data{};
    data.pSysMem = contents;
    com_ptr<ID3D11Buffer> buffer;
    requireSuccess(m_device->CreateBuffer(&description, &data, buffer.put()), source_name);
    return buffer;
}

com_ptr<ID3D11VertexShader> lib3d::vertexShader(int resource, const D3D11_INPUT_ELEMENT_DESC* elements, UINT count,
                                                ID3D11InputLayout** layout) const
{
    const auto code = resourceBytes(resource);
    com_ptr<ID3D11VertexShader> shader;
    requireSuccess(m_device->CreateVertexShader(code.data(), code.size(), nullptr, shader.put()), source_name);
    if (layout)
        requireSuccess(m_device->CreateInputLayout(elements, count, code.data(), code.size(), layout), source_name);
    return shader;
}

com_ptr<ID3D11PixelShader> lib3d::pixelShader(int resource) const
{
    const auto code = resourceBytes(resource);
    com_ptr<ID3D11PixelShader> shader;
    requireSuccess(m_device->CreatePixelShader(code.data(), code.size(), nullptr, shader.put()), source_name);
    return shader;
}

void lib3d::createShaders()
{
    m_model_vs = vertexShader(KORVANE_MODEL_VS, model_elements, 7, m_model_layout.put());
    m_line_vs = vertexShader(KORVANE_LINE_VS, line_elements, 2, m_line_layout.put());
    m_final_vs = vertexShader(KORVANE_FINAL_VS, nullptr, 0, nullptr);
    m_model_ps = pixelShader(KORVANE_MODEL_PS);
    m_wireframe_ps = pixelShader(KORVANE_WIREFRAME_PS);
    m_line_ps = pixelShader(KORVANE_LINE_PS);
    m_final_ps = pixelShader(KORVANE_FINAL_PS);
}

void lib3d::createConstantBuffers()
{
    const final_pass_buffer final_settings;
    m_vs_buffer = constantBuffer(sizeof(mvp_buffer), &vs_constants);
    m_ps_buffer = constantBuffer(sizeof(light_buffer), &ps_constants);
    m_final_buffer = constantBuffer(sizeof(final_pass_buffer), &final_settings);
}

void lib3d::createSamplers()
{
    // s0 textures, s1 and s3 clamped for maps that do not repeat, s2 normal maps, s4 single texels. Not anisotropic:
    // already fourfold it more than doubles the time of a frame on a software adapter (38 to 85 ms, 20,000 triangles at
    // 1280 x 720), and models have few surfaces at grazing angles. A small bias keeps the maps crisp instead.
    static const struct
    {
        D3D11_FILTER filter;
        D3D11_TEXTURE_ADDRESS_MODE address;
    } kinds[5] = {
        {D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_WRAP},
        {D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_CLAMP},
        {D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_WRAP},
        {D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP},
        {D3D11_FILTER_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP},
    };
    for (std::size_t i = 0; i < 5; ++i)
    {
        D3D11_SAMPLER_DESC description{};
        description.Filter = kinds[i].filter;
        description.AddressU = description.AddressV = description.AddressW = kinds[i].address;
        description.MaxAnisotropy = 1;
        description.MipLODBias = i == 0 ? -0.5f : 0.0f;
        description.ComparisonFunc = D3D11_COMPARISON_NEVER;
        description.MaxLOD = D3D11_FLOAT32_MAX;
        requireSuccess(m_device->CreateSamplerState(&description, m_samplers[i].put()), source_name);
    }
}

void lib3d::createEnvironment()
{
    m_specular_cube = cubeView(*m_device.get(), specularEnvironment());
    m_diffuse_cube = cubeView(*m_device.get(), {diffuseEnvironment()});
}

void lib3d::createStates()
{
    const auto rasterizer = [this](raster_mode mode, D3D11_FILL_MODE fill, D3D11_CULL_MODE cull, BOOL reversed) {
        D3D11_RASTERIZER_DESC description{};
        description.FillMode = fill;
        description.CullMode = cull;
        description.FrontCounterClockwise = reversed;
        description.DepthClipEnable = TRUE;
        requireSuccess(m_device->CreateRasterizerState(&description, m_rasterizers[static_cast<int>(mode)].put()),
                       source_name);
    };
    rasterizer(raster_mode::front_faces, D3D11_FILL_SOLID, D3D11_CULL_BACK, FALSE);
    rasterizer(raster_mode::front_faces_reversed, D3D11_FILL_SOLID, D3D11_CULL_BACK, TRUE);
    rasterizer(raster_mode::both_faces, D3D11_FILL_SOLID, D3D11_CULL_NONE, FALSE);
    rasterizer(raster_mode::wireframe, D3D11_FILL_WIREFRAME, D3D11_CULL_NONE, FALSE);

    const CD3D11_BLEND_DESC blend{CD3D11_DEFAULT()};
    requireSuccess(m_device->CreateBlendState(&blend, m_blend.put()), source_name);
    const CD3D11_DEPTH_STENCIL_DESC depth{CD3D11_DEFAULT()};
    requireSuccess(m_device->CreateDepthStencilState(&depth, m_depth.put()), source_name);
}

void lib3d::createLineBuffer()
{
    const CD3D11_BUFFER_DESC description(line_vertex_capacity * sizeof(gpu_line_vertex), D3D11_BIND_VERTEX_BUFFER,
                                         D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE);
    requireSuccess(m_device->CreateBuffer(&description, nullptr, m_line_buffer.put()), source_name);
}

void lib3d::createAll()
{
    createSamplers();
    createEnvironment();
    createConstantBuffers();
    createShaders();
    createStates();
    createLineBuffer();
}

void lib3d::uploadConstants()
{
    m_context->UpdateSubresource(m_vs_buffer.get(), 0, nullptr, &vs_constants, 0, 0);
    m_context->UpdateSubresource(m_ps_buffer.get(), 0, nullptr, &ps_constants, 0, 0);
}

void lib3d::beginScene()
{
    ID3D11ShaderResourceView* views[6] = {
        m_specular_cube.get(), nullptr, m_diffuse_cube.get(), nullptr, nullptr, nullptr};
    m_context->PSSetShaderResources(0, 6, views);
    ID3D11SamplerState* samplers[5];
    std::transform(std::begin(m_samplers), std::end(m_samplers), samplers, [](const auto& one) { return one.get(); });
    m_context->PSSetSamplers(0, 5, samplers);
    m_context->OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    m_context->OMSetDepthStencilState(m_depth.get(), 0);
}

void lib3d::useModelShaders(raster_mode mode)
{
    ID3D11Buffer* vs_buffer = m_vs_buffer.get();
    ID3D11Buffer* ps_buffer = m_ps_buffer.get();
    m_context->VSSetConstantBuffers(0, 1, &vs_buffer);
    m_context->PSSetConstantBuffers(0, 1, &ps_buffer);
    m_context->IASetInputLayout(m_model_layout.get());
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    m_context->VSSetShader(m_model_vs.get(), nullptr, 0);
    m_context->PSSetShader(mode == raster_mode::wireframe ? m_wireframe_ps.get() : m_model_ps.get(), nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(mode)].get());
}

void lib3d::useLineShaders()
{
    ID3D11Buffer* vs_buffer = m_vs_buffer.get();
    m_context->VSSetConstantBuffers(0, 1, &vs_buffer);
    m_context->IASetInputLayout(m_line_layout.get());
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_LINELIST);
    m_context->VSSetShader(m_line_vs.get(), nullptr, 0);
    m_context->PSSetShader(m_line_ps.get(), nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster_mode::both_faces)].get());
}

void lib3d::drawFinalPass(ID3D11ShaderResourceView* shown, const final_pass_buffer& settings)
{
    m_context->UpdateSubresource(m_final_buffer.get(), 0, nullptr, &settings, 0, 0);
    ID3D11Buffer* buffer = m_final_buffer.get();
    m_context->PSSetConstantBuffers(1, 1, &buffer);
    m_context->PSSetShaderResources(11, 1, &shown);
    m_context->IASetInputLayout(nullptr);
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    m_context->VSSetShader(m_final_vs.get(), nullptr, 0);
    m_context->PSSetShader(m_final_ps.get(), nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster_mode::both_faces)].get());
    m_context->Draw(3, 0);
    ID3D11ShaderResourceView* none = nullptr; // the target is drawn into again in the next frame
    m_context->PSSetShaderResources(11, 1, &none);
}

} // namespace korvane
