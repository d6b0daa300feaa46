#include "D3D11_RENDER_LIB/gpu_textures.h"

#include "DDSTextureLoader/dds_texture.h"
#include "Korvane/textures/dds_unpacker.h"

namespace korvane
{

namespace
{

// In software each look at a block unpacks it again: BC7 and BC6H cost ten times what plain texels do. Formats that
// no device has, and sizes that it refuses for blocks, are converted, too.
bool mustUnpack(const lib3d& library, const dds_image& image)
{
    const bool is_block = isBlockCompressed(image.format);
    return image.format == dds_format::unknown || (is_block && library.isSoftware()) ||
           (is_block && (image.width % 4 != 0 || image.height % 4 != 0));
}

} // namespace

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
    unpacked_dds unpacked;
    if (!file || !readDds(file->bytes(), image, why) ||
        (mustUnpack(library, image) && !unpackDds(image, unpacked, why)) ||
        !createDdsTexture(library.device(), unpacked.bytes ? unpacked.image : image, view, why))
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
