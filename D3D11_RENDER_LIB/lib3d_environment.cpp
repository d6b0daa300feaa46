// The environment's textures on the device.

#include "D3D11_RENDER_LIB/environment_images.h"
#include "D3D11_RENDER_LIB/lib3d.h"

#include <algorithm>
#include <span>
#include <vector>

namespace korvane
{

namespace
{

constexpr char lib3d_environment_source[] = "lib3d";

struct device_image
{
    std::uint32_t size;
    UINT faces;
    UINT levels;
    DXGI_FORMAT format;
    std::span<const D3D11_SUBRESOURCE_DATA> contents; // the levels of a face together
};

HRESULT createImage(lib3d& library, const device_image& image, com_ptr<ID3D11ShaderResourceView>& view)
{
    CD3D11_TEXTURE2D_DESC description(image.format, image.size, image.size, image.faces, image.levels,
                                      D3D11_BIND_SHADER_RESOURCE, D3D11_USAGE_IMMUTABLE);
    description.MiscFlags = image.faces == 6 ? UINT{D3D11_RESOURCE_MISC_TEXTURECUBE} : 0u;
    com_ptr<ID3D11Texture2D> texture;
    const HRESULT answer = library.device().CreateTexture2D(&description, image.contents.data(), texture.put());
    return FAILED(answer) ? answer : library.device().CreateShaderResourceView(texture.get(), nullptr, view.put());
}

bool createCube(lib3d& library, const std::vector<cube_level>& levels, const char* name,
                com_ptr<ID3D11ShaderResourceView>& view)
{
    std::vector<D3D11_SUBRESOURCE_DATA> contents;
    for (std::size_t face = 0; face < 6; ++face)
        for (const cube_level& level : levels)
        {
            const UINT face_texels = level.size * level.size;
            contents.push_back({level.texels.data() + face * face_texels * 4, level.size * 8, face_texels * 8});
        }
    return library.isMade(createImage(library,
                                      {levels.front().size, 6, static_cast<UINT>(levels.size()),
                                       DXGI_FORMAT_R16G16B16A16_FLOAT, contents},
                                      view),
                          view, name, lib3d_environment_source);
}

HRESULT createImage(lib3d& library, const block_image& image, com_ptr<ID3D11ShaderResourceView>& view)
{
    std::vector<D3D11_SUBRESOURCE_DATA> contents;
    for (std::size_t face = 0; face < image.faces; ++face)
        for (std::size_t i = 0; i < image.levels.size(); ++i)
        {
            const UINT row_bytes = std::max(image.size >> i >> 2, 1u) * 16;
            const std::size_t face_bytes = image.levels[i].size() / image.faces;
            contents.push_back({image.levels[i].data() + face * face_bytes, row_bytes, static_cast<UINT>(face_bytes)});
        }
    return createImage(
        library, {image.size, image.faces, static_cast<UINT>(image.levels.size()), DXGI_FORMAT_BC6H_UF16, contents},
        view);
}

} // namespace

bool lib3d::createEnvironment()
{
    return createCube(*this, specularEnvironment(), "specular environment", m_specular_cube) &&
           createCube(*this, {diffuseEnvironment()}, "diffuse environment", m_diffuse_cube);
}

bool lib3d::exchangeEnvironment(const environment_images& images)
{
    com_ptr<ID3D11ShaderResourceView> specular, diffuse, table;
    m_has_whole_environment = true;
    HRESULT answer = S_OK;
    if (SUCCEEDED(answer = createImage(*this, images.specular, specular)) &&
        SUCCEEDED(answer = createImage(*this, images.diffuse, diffuse)))
        answer = createImage(*this, images.reflectance, table);
    if (answer == E_OUTOFMEMORY)
        return true;
    if (!isMade(answer, specular, "specular environment, whole", lib3d_environment_source) ||
        !isMade(answer, diffuse, "diffuse environment, whole", lib3d_environment_source) ||
        !isMade(answer, table, "reflectance of the environment", lib3d_environment_source))
        return false;
    m_specular_cube = std::move(specular);
    m_diffuse_cube = std::move(diffuse);
    m_reflectance_table = std::move(table);
    return true;
}

} // namespace korvane
