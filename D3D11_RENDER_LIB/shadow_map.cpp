#include "D3D11_RENDER_LIB/shadow_map.h"

#include <glm/gtc/matrix_transform.hpp>

#include <cmath>

namespace korvane
{

namespace
{

constexpr char shadow_map_source[] = "shadow_map";
constexpr UINT map_size = 2048;
constexpr float reach = 2.2f; // of the world that is in the map, from the origin: models are 1.8 wide at most
constexpr UINT map_register = 3;
constexpr UINT sampler_register = 5;
constexpr UINT constants_register = 2;

gpu_vertex floorVertex(float x, float y, float z)
{
    gpu_vertex vertex{};
    vertex.position = {x, y, z};
    vertex.normal = {0, 1, 0};
    vertex.weights = {1, 0, 0, 0};
    return vertex;
}

} // namespace

bool shadow_map::create(lib3d& library)
{
    ID3D11Device& device = library.device();
    const CD3D11_TEXTURE2D_DESC description(DXGI_FORMAT_R32_TYPELESS, map_size, map_size, 1, 1,
                                            D3D11_BIND_DEPTH_STENCIL | D3D11_BIND_SHADER_RESOURCE);
    D3D11_DEPTH_STENCIL_VIEW_DESC depth{};
    depth.Format = DXGI_FORMAT_D32_FLOAT;
    depth.ViewDimension = D3D11_DSV_DIMENSION_TEXTURE2D;
    const CD3D11_SHADER_RESOURCE_VIEW_DESC view(D3D11_SRV_DIMENSION_TEXTURE2D, DXGI_FORMAT_R32_FLOAT);
    D3D11_SAMPLER_DESC sampler{};
    sampler.Filter = D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT;
    sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    sampler.MaxAnisotropy = 1;
    sampler.ComparisonFunc = D3D11_COMPARISON_LESS_EQUAL;
    const shadow_buffer constants;
    com_ptr<ID3D11Texture2D> texture;
    return library.isMade(device.CreateTexture2D(&description, nullptr, texture.put()), texture, "shadow map",
                          shadow_map_source) &&
           library.isMade(device.CreateDepthStencilView(texture.get(), &depth, m_depth.put()), m_depth, "shadow map",
                          shadow_map_source) &&
           library.isMade(device.CreateShaderResourceView(texture.get(), &view, m_view.put()), m_view, "shadow map",
                          shadow_map_source) &&
           library.isMade(device.CreateSamplerState(&sampler, m_sampler.put()), m_sampler, "shadow sampler",
                          shadow_map_source) &&
           library.createConstantBuffer(sizeof constants, &constants, "ShadowBuffer", m_constants);
}

bool shadow_map::createFloor(lib3d& library, const glm::vec3& centre, float half_width, float height)
{
    const float left = centre.x - half_width, right = centre.x + half_width;
    const float front = centre.z - half_width, back = centre.z + half_width;
    const gpu_vertex corners[] = {floorVertex(left, height, front),  floorVertex(left, height, back),
                                  floorVertex(right, height, front), floorVertex(right, height, front),
                                  floorVertex(left, height, back),   floorVertex(right, height, back)};
    return library.createBuffer(D3D11_BIND_VERTEX_BUFFER, std::as_bytes(std::span(corners)), "floor", shadow_map_source,
                                m_floor_vertices);
}

void shadow_map::draw(lib3d& library, const id3d_drawable_object& figure, frame_constants& frame,
                      const glm::vec3& direction) const
{
    const glm::vec3 way = glm::normalize(direction);
    const glm::vec3 up = std::abs(way.y) > 0.95f ? glm::vec3(0, 0, 1) : glm::vec3(0, 1, 0);
    const glm::mat4 view = glm::lookAtLH(way * (-2 * reach), glm::vec3(0), up);
    const glm::mat4 projection = glm::orthoLH_ZO(-reach, reach, -reach, reach, reach * 0.5f, reach * 3.5f);

    ID3D11DeviceContext& context = library.context();
    context.OMSetRenderTargets(0, nullptr, m_depth.get());
    context.ClearDepthStencilView(m_depth.get(), D3D11_CLEAR_DEPTH, 1.0f, 0);
    const D3D11_VIEWPORT viewport{0, 0, map_size, map_size, 0.0f, 1.0f};
    context.RSSetViewports(1, &viewport);

    const gpu_matrix seen = frame.vs.View;
    const gpu_matrix projected = frame.vs.Projection;
    const model_pass pass = frame.pass;
    frame.vs.View = gpuMatrix(view);
    frame.vs.Projection = gpuMatrix(projection);
    frame.pass = model_pass::shadow_map;
    figure.draw(library, frame);
    frame.vs.View = seen;
    frame.vs.Projection = projected;
    frame.pass = pass;

    shadow_buffer constants;
    constants.to_light = gpuMatrix(projection * view);
    constants.texel = 1.0f / map_size;
    constants.slope = 3 * 2 * reach / map_size;
    constants.darkness = 0.55f;
    context.UpdateSubresource(m_constants.get(), 0, nullptr, &constants, 0, 0);
    context.OMSetRenderTargets(0, nullptr, nullptr); // before it is read
    ID3D11ShaderResourceView* map = m_view.get();
    ID3D11SamplerState* sampler = m_sampler.get();
    ID3D11Buffer* buffer = m_constants.get();
    context.PSSetShaderResources(map_register, 1, &map);
    context.PSSetSamplers(sampler_register, 1, &sampler);
    context.PSSetConstantBuffers(constants_register, 1, &buffer);
}

void shadow_map::drawFloor(lib3d& library, frame_constants& frame) const
{
    frame.vs.static_model = 1;
    frame.vs.is_weapon = 0;
    library.uploadConstants(frame.vs, frame.ps);
    library.useFloorShaders();
    ID3D11Buffer* vertices = m_floor_vertices.get();
    const UINT stride = sizeof(gpu_vertex);
    const UINT offset = 0;
    library.context().IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
    library.context().Draw(6, 0);
}

void shadow_map::release(lib3d& library) const
{
    ID3D11ShaderResourceView* none = nullptr;
    library.context().PSSetShaderResources(map_register, 1, &none);
}

} // namespace korvane
