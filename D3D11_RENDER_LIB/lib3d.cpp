#include "D3D11_RENDER_LIB/lib3d.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "D3D11_RENDER_LIB/device_probe.h"
#include "D3D11_RENDER_LIB/environment_map.h"
#include "D3D11_RENDER_LIB/shader_resources.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

constexpr char lib3d_source[] = "lib3d";

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

} // namespace

HRESULT lib3d::tryDevice(D3D_DRIVER_TYPE type)
{
    static const D3D_FEATURE_LEVEL levels[] = {D3D_FEATURE_LEVEL_11_1, D3D_FEATURE_LEVEL_11_0};
#ifdef NDEBUG
    constexpr UINT wanted_flags[] = {0};
#else
    constexpr UINT wanted_flags[] = {D3D11_CREATE_DEVICE_DEBUG, 0}; // the debug layer is an optional part of Windows
#endif
    HRESULT result = E_FAIL;
    for (const UINT flags : wanted_flags)
    {
        const auto create = [&](UINT first_level) {
            return D3D11CreateDevice(nullptr, type, nullptr, flags, levels + first_level, 2 - first_level,
                                     D3D11_SDK_VERSION, m_device.put(), nullptr, m_context.put());
        };
        result = create(0);
        if (result == E_INVALIDARG) // systems that do not know 11.1
            result = create(1);
        if (SUCCEEDED(result))
            break;
    }
    return m_po_faults ? m_po_faults->result(device_step::device, result) : result;
}

bool lib3d::createDevice(device_kind kind, const log_port& log, failure& why)
{
    HRESULT result = E_FAIL;
    m_is_software = false;
    if (kind != device_kind::software)
        result = tryDevice(D3D_DRIVER_TYPE_HARDWARE);
    if (FAILED(result) && kind != device_kind::hardware)
    {
        result = tryDevice(D3D_DRIVER_TYPE_WARP);
        m_is_software = true;
        if (SUCCEEDED(result) && log)
            log("No hardware device for Direct3D 11: the software device draws instead.");
    }
    if (SUCCEEDED(result))
    {
        m_is_software =
            m_is_software || drawsOnProcessor(*m_device.get(), *m_context.get(), resourceBytes(KORVANE_FINAL_VS),
                                              resourceBytes(KORVANE_PROBE_PS));
        return true;
    }
    m_loss = result;
    const char* const missing = kind == device_kind::best       ? "device, neither hardware nor software"
                                : kind == device_kind::hardware ? "hardware device"
                                                                : "software device";
    return fail(why, failure_kind::unsupported,
                std::string("this system has no Direct3D 11 ") + missing + " (" + resultText(result) + ")");
}

bool lib3d::hasSucceeded(device_step step, HRESULT answer, const char* source)
{
    if (m_po_faults)
        answer = m_po_faults->result(step, answer);
    if (SUCCEEDED(answer))
        return true;
    if (!isDeviceLost(answer) && !m_is_tolerant)
        requireSuccess(answer, source);
    m_loss = answer;
    return false;
}

bool lib3d::isLost()
{
    return !hasSucceeded(device_step::creation, m_device->GetDeviceRemovedReason(), lib3d_source);
}

void lib3d::setName(ID3D11DeviceChild& object, const char* name)
{
    // WKPDID_D3DDebugObjectName: graphics debuggers and the debug layer show it.
    static const GUID debug_name = {0x429b8c22, 0x9188, 0x4b0c, {0x87, 0x42, 0xac, 0xb0, 0xbf, 0x85, 0xc2, 0x00}};
    object.SetPrivateData(debug_name, static_cast<UINT>(std::strlen(name)), name);
}

bool lib3d::createBuffer(D3D11_BIND_FLAG kind, std::span<const std::byte> contents, const char* name,
                         const char* source, com_ptr<ID3D11Buffer>& buffer)
{
    const CD3D11_BUFFER_DESC description(static_cast<UINT>(contents.size()), static_cast<UINT>(kind));
    D3D11_SUBRESOURCE_DATA data{};
    data.pSysMem = contents.data();
    return isMade(m_device->CreateBuffer(&description, &data, buffer.put()), buffer, name, source);
}

bool lib3d::createBuffer(D3D11_BIND_FLAG kind, std::size_t size_bytes, const char* name, const char* source,
                         com_ptr<ID3D11Buffer>& buffer)
{
    const CD3D11_BUFFER_DESC description(static_cast<UINT>(size_bytes), static_cast<UINT>(kind));
    return isMade(m_device->CreateBuffer(&description, nullptr, buffer.put()), buffer, name, source);
}

void lib3d::fill(ID3D11Buffer& buffer, std::size_t offset_bytes, std::span<const std::byte> contents)
{
    const auto begin = static_cast<UINT>(offset_bytes);
    const D3D11_BOX place{begin, 0, 0, begin + static_cast<UINT>(contents.size()), 1, 1};
    m_context->UpdateSubresource(&buffer, 0, &place, contents.data(), 0, 0);
}

bool lib3d::createConstantBuffer(UINT size, const void* contents, const char* name, com_ptr<ID3D11Buffer>& buffer)
{
    const CD3D11_BUFFER_DESC description(size, D3D11_BIND_CONSTANT_BUFFER);
    D3D11_SUBRESOURCE_DATA data{};
    data.pSysMem = contents;
    return isMade(m_device->CreateBuffer(&description, &data, buffer.put()), buffer, name, lib3d_source);
}

bool lib3d::createVertexShader(int resource, std::span<const D3D11_INPUT_ELEMENT_DESC> elements, const char* name,
                               com_ptr<ID3D11VertexShader>& shader, com_ptr<ID3D11InputLayout>* layout)
{
    const auto code = resourceBytes(resource);
    return isMade(m_device->CreateVertexShader(code.data(), code.size(), nullptr, shader.put()), shader, name,
                  lib3d_source) &&
           (layout == nullptr || isMade(m_device->CreateInputLayout(elements.data(), static_cast<UINT>(elements.size()),
                                                                    code.data(), code.size(), layout->put()),
                                        *layout, name, lib3d_source));
}

bool lib3d::createPixelShader(int resource, const char* name, com_ptr<ID3D11PixelShader>& shader)
{
    const auto code = resourceBytes(resource);
    return isMade(m_device->CreatePixelShader(code.data(), code.size(), nullptr, shader.put()), shader, name,
                  lib3d_source);
}

bool lib3d::createShaders()
{
    return createVertexShader(KORVANE_MODEL_VS, model_elements, "model_vs", m_model_vs, &m_model_layout) &&
           createVertexShader(KORVANE_FRAME_VS, {}, "frame_vs", m_frame_vs, nullptr) &&
           createVertexShader(KORVANE_LINE_VS, line_elements, "line_vs", m_line_vs, &m_line_layout) &&
           createVertexShader(KORVANE_FINAL_VS, {}, "final_vs", m_final_vs, nullptr) &&
           createPixelShader(KORVANE_MODEL_PS, "model_ps", m_model_ps) &&
           createPixelShader(KORVANE_MODEL_SHADOW_PS, "model_shadow_ps", m_model_shadow_ps) &&
           createPixelShader(KORVANE_CHANNEL_PS, "channel_ps", m_channel_ps) &&
           createPixelShader(KORVANE_WIREFRAME_PS, "wireframe_ps", m_wireframe_ps) &&
           createPixelShader(KORVANE_SHADOW_PS, "shadow_ps", m_shadow_ps) &&
           createPixelShader(KORVANE_FLOOR_PS, "floor_ps", m_floor_ps) &&
           createPixelShader(KORVANE_LINE_PS, "line_ps", m_line_ps) &&
           createPixelShader(KORVANE_FINAL_PS, "final_ps", m_final_ps) &&
           createPixelShader(KORVANE_FINAL_OUTLINE_PS, "final_outline_ps", m_final_outline_ps) &&
           createPixelShader(KORVANE_ENLARGED_PS, "enlarged_ps", m_enlarged_ps) &&
           createPixelShader(KORVANE_LINE_ENCODED_PS, "line_encoded_ps", m_line_encoded_ps) &&
           createPixelShader(KORVANE_WIREFRAME_ENCODED_PS, "wireframe_encoded_ps", m_wireframe_encoded_ps) &&
           createPixelShader(KORVANE_FINAL_ENCODED_PS, "final_encoded_ps", m_final_encoded_ps) &&
           createPixelShader(KORVANE_FINAL_ENCODED_OUTLINE_PS, "final_encoded_outline_ps",
                             m_final_encoded_outline_ps) &&
           createPixelShader(KORVANE_SURFACE_PS, "surface_ps", m_surface_ps) &&
           createPixelShader(KORVANE_SURFACE_ALPHA_PS, "surface_alpha_ps", m_surface_alpha_ps) &&
           createPixelShader(KORVANE_FRAME_PS, "frame_ps", m_frame_ps) &&
           createPixelShader(KORVANE_SHADING_PS, "shading_ps", m_shading_ps) &&
           createPixelShader(KORVANE_SHADING_USUAL_PS, "shading_usual_ps", m_shading_usual_ps) &&
           createPixelShader(KORVANE_PACK_PS, "pack_ps", m_pack_ps);
}

bool lib3d::createConstantBuffers(const mvp_buffer& vs, const light_buffer& ps)
{
    const final_pass_buffer final_settings;
    const packing_buffer packing;
    const auto pose = std::make_unique<pose_buffer>();
    fillEnvironment(m_shading);
    return createConstantBuffer(sizeof vs, &vs, "ModelViewProjectionConstantBuffer", m_vs_buffer) &&
           createConstantBuffer(sizeof *pose, pose.get(), "PoseBuffer", m_pose_buffer) &&
           createConstantBuffer(sizeof ps, &ps, "LightBuffer", m_ps_buffer) &&
           createConstantBuffer(sizeof final_settings, &final_settings, "FinalPassBuffer", m_final_buffer) &&
           createConstantBuffer(sizeof packing, &packing, "PackingBuffer", m_packing_buffer) &&
           createConstantBuffer(sizeof m_shading, &m_shading, "ShadingBuffer", m_shading_buffer);
}

bool lib3d::createSamplers()
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
        // Half the texels, and what a processor fetches costs more than a step between two levels shows.
        if (m_is_software && kinds[i].filter == D3D11_FILTER_MIN_MAG_MIP_LINEAR)
            description.Filter = D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT;
        description.AddressU = description.AddressV = description.AddressW = kinds[i].address;
        description.MaxAnisotropy = 1;
        description.MipLODBias = (i == 0 ? -0.5f : 0.0f) + m_texture_bias;
        description.ComparisonFunc = D3D11_COMPARISON_NEVER;
        description.MaxLOD = D3D11_FLOAT32_MAX;
        if (!isMade(m_device->CreateSamplerState(&description, m_samplers[i].put()), m_samplers[i], "sampler",
                    lib3d_source))
            return false;
    }
    return true;
}

bool lib3d::createRasterizer(raster_mode mode, D3D11_FILL_MODE fill, D3D11_CULL_MODE cull, BOOL reversed,
                             INT depth_bias, float slope_bias)
{
    D3D11_RASTERIZER_DESC description{};
    description.FillMode = fill;
    description.CullMode = cull;
    description.FrontCounterClockwise = reversed;
    description.DepthClipEnable = mode == raster_mode::shadow ? FALSE : TRUE;
    description.ScissorEnable = mode == raster_mode::area ? TRUE : FALSE;
    description.DepthBias = depth_bias;
    description.SlopeScaledDepthBias = slope_bias;
    description.MultisampleEnable = TRUE; // nothing on targets with one sample
    com_ptr<ID3D11RasterizerState>& state = m_rasterizers[static_cast<int>(mode)];
    return isMade(m_device->CreateRasterizerState(&description, state.put()), state, "rasterizer", lib3d_source);
}

bool lib3d::createStates()
{
    const CD3D11_BLEND_DESC blend{CD3D11_DEFAULT()};
    const CD3D11_DEPTH_STENCIL_DESC depth{CD3D11_DEFAULT()};
    CD3D11_DEPTH_STENCIL_DESC read = depth;
    read.DepthWriteMask = D3D11_DEPTH_WRITE_MASK_ZERO;
    CD3D11_DEPTH_STENCIL_DESC ignored = depth;
    ignored.DepthEnable = FALSE;
    CD3D11_DEPTH_STENCIL_DESC written = depth;
    written.StencilEnable = TRUE;
    written.FrontFace.StencilPassOp = written.BackFace.StencilPassOp = D3D11_STENCIL_OP_REPLACE;
    CD3D11_DEPTH_STENCIL_DESC tested = ignored;
    tested.StencilEnable = TRUE;
    tested.StencilWriteMask = 0;
    tested.FrontFace.StencilFunc = tested.BackFace.StencilFunc = D3D11_COMPARISON_EQUAL;
    CD3D11_BLEND_DESC floor{CD3D11_DEFAULT()}; // into the target of light alone
    floor.IndependentBlendEnable = TRUE;
    floor.RenderTarget[0].RenderTargetWriteMask = 0;
    floor.RenderTarget[1] = {TRUE,
                             D3D11_BLEND_SRC_ALPHA,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             D3D11_BLEND_ONE,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             D3D11_COLOR_WRITE_ENABLE_ALL};
    floor.RenderTarget[2].RenderTargetWriteMask = 0;
    return createRasterizer(raster_mode::front_faces, D3D11_FILL_SOLID, D3D11_CULL_BACK, FALSE) &&
           createRasterizer(raster_mode::front_faces_reversed, D3D11_FILL_SOLID, D3D11_CULL_BACK, TRUE) &&
           createRasterizer(raster_mode::both_faces, D3D11_FILL_SOLID, D3D11_CULL_NONE, FALSE) &&
           createRasterizer(raster_mode::wireframe, D3D11_FILL_WIREFRAME, D3D11_CULL_NONE, FALSE) &&
           createRasterizer(raster_mode::wireframe_over, D3D11_FILL_WIREFRAME, D3D11_CULL_NONE, FALSE, -200, -1.5f) &&
           createRasterizer(raster_mode::shadow, D3D11_FILL_SOLID, D3D11_CULL_NONE, FALSE, 40, 2.0f) &&
           createRasterizer(raster_mode::area, D3D11_FILL_SOLID, D3D11_CULL_NONE, FALSE) &&
           isMade(m_device->CreateBlendState(&blend, m_blend.put()), m_blend, "blend", lib3d_source) &&
           isMade(m_device->CreateBlendState(&floor, m_floor_blend.put()), m_floor_blend, "floor blend",
                  lib3d_source) &&
           isMade(m_device->CreateDepthStencilState(&depth, m_depth.put()), m_depth, "depth", lib3d_source) &&
           isMade(m_device->CreateDepthStencilState(&written, m_stencil_written.put()), m_stencil_written,
                  "stencil, written", lib3d_source) &&
           isMade(m_device->CreateDepthStencilState(&tested, m_stencil_tested.put()), m_stencil_tested,
                  "stencil, tested", lib3d_source) &&
           isMade(m_device->CreateDepthStencilState(&read, m_depth_read.put()), m_depth_read, "depth, read",
                  lib3d_source) &&
           isMade(m_device->CreateDepthStencilState(&ignored, m_depth_ignored.put()), m_depth_ignored, "depth, ignored",
                  lib3d_source);
}

bool lib3d::createLineBuffer()
{
    const CD3D11_BUFFER_DESC description(line_vertex_capacity * sizeof(gpu_line_vertex), D3D11_BIND_VERTEX_BUFFER,
                                         D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE);
    return isMade(m_device->CreateBuffer(&description, nullptr, m_line_buffer.put()), m_line_buffer, "bone lines",
                  lib3d_source);
}

bool lib3d::createAll()
{
    return createSamplers() && createEnvironment() && createConstantBuffers({}, {}) && createShaders() &&
           createStates() && createLineBuffer();
}

void lib3d::uploadConstants(const mvp_buffer& vs, const light_buffer& ps)
{
    m_context->UpdateSubresource(m_vs_buffer.get(), 0, nullptr, &vs, 0, 0);
    uploadLight(ps);
}

void lib3d::uploadLight(const light_buffer& ps)
{
    m_context->UpdateSubresource(m_ps_buffer.get(), 0, nullptr, &ps, 0, 0);
}

void lib3d::uploadPose(const pose_buffer& pose)
{
    m_context->UpdateSubresource(m_pose_buffer.get(), 0, nullptr, &pose, 0, 0);
}

void lib3d::clearContext()
{
    if (!m_context)
        return;
    m_context->ClearState();
    m_context->Flush();
}

void lib3d::beginScene(bool is_encoded)
{
    m_is_encoded = is_encoded;
    ID3D11ShaderResourceView* views[6] = {
        m_specular_cube.get(), m_reflectance_table.get(), m_diffuse_cube.get(), nullptr, nullptr, nullptr};
    m_context->PSSetShaderResources(0, 6, views);
    ID3D11SamplerState* samplers[5];
    std::transform(std::begin(m_samplers), std::end(m_samplers), samplers, [](const auto& one) { return one.get(); });
    m_context->PSSetSamplers(0, 5, samplers);
    m_context->OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    m_context->OMSetDepthStencilState(m_depth.get(), 0);
}

void lib3d::useModelShaders(model_pass pass, raster_mode faces)
{
    const bool is_over = pass == model_pass::wire_over;
    ID3D11PixelShader* shader = nullptr;
    raster_mode raster = faces;
    switch (pass)
    {
    case model_pass::lit:
        shader = m_model_ps.get();
        break;
    case model_pass::lit_with_shadow:
        shader = m_model_shadow_ps.get();
        break;
    case model_pass::channel:
        shader = m_channel_ps.get();
        break;
    case model_pass::wireframe:
    case model_pass::wire_over:
        shader = (m_is_encoded ? m_wireframe_encoded_ps : m_wireframe_ps).get();
        raster = is_over ? raster_mode::wireframe_over : raster_mode::wireframe;
        break;
    case model_pass::shadow_map:
        shader = m_shadow_ps.get();
        raster = raster_mode::shadow;
        break;
    case model_pass::surfaces:
    case model_pass::shading: // useSurfaceShader(), drawShading()
        break;
    }
    ID3D11Buffer* vs_buffer = m_vs_buffer.get();
    ID3D11Buffer* ps_buffer = m_ps_buffer.get();
    m_context->VSSetConstantBuffers(0, 1, &vs_buffer);
    m_context->PSSetConstantBuffers(0, 1, &ps_buffer);
    m_context->IASetInputLayout(m_model_layout.get());
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    m_context->VSSetShader(m_model_vs.get(), nullptr, 0);
    m_context->PSSetShader(shader, nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster)].get());
    m_context->OMSetDepthStencilState((is_over ? m_depth_read : m_depth).get(), 0);
}

void lib3d::useSurfaceShader(surface_kind kind, UINT group)
{
    ID3D11PixelShader* const shaders[] = {m_frame_ps.get(), m_surface_ps.get(), m_surface_alpha_ps.get()};
    if (kind == surface_kind::framed)
    {
        ID3D11Buffer* const buffer = m_pose_buffer.get();
        m_context->VSSetConstantBuffers(2, 1, &buffer);
        m_context->VSSetShader(m_frame_vs.get(), nullptr, 0);
    }
    m_context->PSSetShader(shaders[static_cast<int>(kind)], nullptr, 0);
    m_context->OMSetDepthStencilState(m_stencil_written.get(), group);
}

void lib3d::drawShading(UINT group, const screen_area& area, std::span<const float> levels)
{
    std::copy(levels.begin(), levels.end(), m_shading.levels.begin());
    m_context->UpdateSubresource(m_shading_buffer.get(), 0, nullptr, &m_shading, 0, 0);
    ID3D11Buffer* ps_buffers[] = {m_ps_buffer.get(), m_shading_buffer.get()};
    m_context->PSSetConstantBuffers(0, 1, &ps_buffers[0]);
    m_context->PSSetConstantBuffers(3, 1, &ps_buffers[1]);
    m_context->OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    m_context->OMSetDepthStencilState(m_stencil_tested.get(), group);
    // No further kinds: a software device compiles each for each kind of texture, and that is what a person waits for.
    m_context->PSSetShader((m_is_encoded ? m_shading_usual_ps : m_shading_ps).get(), nullptr, 0);
    drawArea(area);
}

void lib3d::drawOver(ID3D11PixelShader& shader, const screen_area& area)
{
    m_context->PSSetShader(&shader, nullptr, 0);
    m_context->OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    m_context->OMSetDepthStencilState(m_depth_ignored.get(), 0);
    drawArea(area);
}

void lib3d::drawPacked(const packing_buffer& settings)
{
    m_context->UpdateSubresource(m_packing_buffer.get(), 0, nullptr, &settings, 0, 0);
    ID3D11Buffer* const buffer = m_packing_buffer.get();
    m_context->PSSetConstantBuffers(1, 1, &buffer);
    drawOver(*m_pack_ps.get(), {0, 0, settings.width, settings.height});
}

// One triangle over the bound target, of which the area is drawn.
void lib3d::drawArea(const screen_area& area)
{
    const D3D11_RECT rectangle{area.left, area.top, area.right, area.bottom};
    m_context->RSSetScissorRects(1, &rectangle);
    m_context->IASetInputLayout(nullptr);
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    m_context->VSSetShader(m_final_vs.get(), nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster_mode::area)].get());
    m_context->Draw(3, 0);
}

void lib3d::useFloorShaders()
{
    useModelShaders(model_pass::lit, raster_mode::both_faces);
    m_context->PSSetShader(m_floor_ps.get(), nullptr, 0);
    m_context->OMSetDepthStencilState(m_depth_read.get(), 0);
    m_context->OMSetBlendState(m_floor_blend.get(), nullptr, 0xffffffff);
}

void lib3d::useLineShaders(line_depth depth)
{
    ID3D11Buffer* vs_buffer = m_vs_buffer.get();
    m_context->VSSetConstantBuffers(0, 1, &vs_buffer);
    m_context->IASetInputLayout(m_line_layout.get());
    m_context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_LINELIST);
    m_context->VSSetShader(m_line_vs.get(), nullptr, 0);
    m_context->PSSetShader((m_is_encoded ? m_line_encoded_ps : m_line_ps).get(), nullptr, 0);
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster_mode::both_faces)].get());
    m_context->OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    m_context->OMSetDepthStencilState((depth == line_depth::ignored ? m_depth_ignored : m_depth).get(), 0);
}

void lib3d::drawLines(ID3D11Buffer& vertices, UINT vertex_count)
{
    ID3D11Buffer* buffer = &vertices;
    const UINT stride = sizeof(gpu_line_vertex);
    const UINT offset = 0;
    m_context->IASetVertexBuffers(0, 1, &buffer, &stride, &offset);
    m_context->Draw(vertex_count, 0);
}

void lib3d::drawLines(std::span<const gpu_line_vertex> lines)
{
    lines = lines.first(std::min<std::size_t>(lines.size(), line_vertex_capacity));
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (lines.empty() || FAILED(m_context->Map(m_line_buffer.get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped)))
        return; // a lost device is found when the frame is presented
    std::memcpy(mapped.pData, lines.data(), lines.size_bytes());
    m_context->Unmap(m_line_buffer.get(), 0);
    drawLines(*m_line_buffer.get(), static_cast<UINT>(lines.size()));
}

void lib3d::setFinalPass(const final_pass_buffer& settings)
{
    m_context->UpdateSubresource(m_final_buffer.get(), 0, nullptr, &settings, 0, 0);
}

void lib3d::drawFinalPass(ID3D11ShaderResourceView* shown, ID3D11ShaderResourceView* marks,
                          const final_pass_buffer& settings, const screen_area& area, bool has_outlines)
{
    const auto& plain = m_is_encoded ? m_final_encoded_ps : m_final_ps;
    const auto& outlined = m_is_encoded ? m_final_encoded_outline_ps : m_final_outline_ps;
    drawFinished(shown, marks, settings, area, *(has_outlines ? outlined : plain).get());
}

void lib3d::drawEnlarged(ID3D11ShaderResourceView* shown, const final_pass_buffer& settings, const screen_area& area)
{
    drawFinished(shown, nullptr, settings, area, *m_enlarged_ps.get());
}

void lib3d::drawFinished(ID3D11ShaderResourceView* shown, ID3D11ShaderResourceView* marks,
                         const final_pass_buffer& settings, const screen_area& area, ID3D11PixelShader& shader)
{
    setFinalPass(settings);
    ID3D11Buffer* buffer = m_final_buffer.get();
    ID3D11ShaderResourceView* views[] = {shown, marks};
    m_context->VSSetConstantBuffers(1, 1, &buffer);
    m_context->PSSetConstantBuffers(1, 1, &buffer);
    m_context->PSSetShaderResources(11, 2, views);
    drawOver(shader, area);
    // What is written over the picture reaches all of it.
    m_context->RSSetState(m_rasterizers[static_cast<int>(raster_mode::both_faces)].get());
    ID3D11ShaderResourceView* none[2] = {}; // the targets are drawn into again in the next frame
    m_context->PSSetShaderResources(11, 2, none);
}

} // namespace korvane
