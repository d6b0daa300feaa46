#include "D3D11_RENDER_LIB/gpu_textures.h"

#include "DDSTextureLoader/dds_texture.h"

namespace korvane
{

bool gpu_textures::find(lib3d& library, const std::shared_ptr<const scene_texture>& texture, texture_view& view)
{
    if (!texture)
        return true;
    if (const auto known = m_views.find(texture); known != m_views.end())
    {
        view = known->second;
        return true;
    }
    if (m_po_former != nullptr && m_po_former->m_views.contains(texture))
        view = m_po_former->m_views.at(texture);
    else if (!create(library, *texture, view))
        return false;
    m_views.emplace(texture, view);
    return true;
}

bool gpu_textures::create(lib3d& library, const scene_texture& texture, texture_view& view) const
{
    failure why;
    dds_image image;
    const std::shared_ptr<const memory_file> file = texture.bytes(why);
    if (!file || !readDds(file->bytes(), image, why) || !createDdsTexture(library.device(), image, view, why))
    {
        if (library.isLost())
            return false;
        why.path = texture.path();
        if (m_log)
            m_log(describe(why));
    }
    else if (!library.isMade(S_OK, view, texture.path().c_str(), "sub_mesh"))
        return false;
    texture.letGo();
    return true;
}

} // namespace korvane
