#include "D3D11_RENDER_LIB/render_variant.h"

#include "Korvane/archives/pack_file.h"

#include <algorithm>

namespace korvane
{

void render_variant::report(const std::string& line) const
{
    if (m_log)
        m_log(line);
}

variant_outcome render_variant::create(ID3D11Device& device, const variant_source& source)
{
    release();
    variant_outcome outcome;
    const std::size_t count = std::min(source.models.size(), max_parts);
    for (std::size_t i = 0; i < count; ++i)
        if (!addRigidModelByInternalPath(device, source.models[i], source.lod, source.textures))
            ++outcome.failed;
    if (count < source.models.size())
        report("the definition names " + std::to_string(source.models.size()) + " models; only the first " +
               std::to_string(max_parts) + " are drawn");
    outcome.failed += source.models.size() - count;
    outcome.parts = m_parts.size();
    for (const rigid_model& part : m_parts)
        outcome.triangles += part.triangleCount();
    return outcome;
}

bool render_variant::addRigidModelByInternalPath(ID3D11Device& device, const std::string& path, std::size_t lod,
                                                 const texture_source* textures)
{
    rmv2_file model;
    failure why;
    if (!rigid_model::getFromInternalPath(path, model, why))
    {
        // The first line is for those who search the log for it, the second names the model.
        if (why.kind == failure_kind::not_found && pack_file::sm_poPathTree)
            report("render_variant::addRigidModelByInternalPath: pfn = nullptr");
        report(describe(why));
        return false;
    }
    rigid_model& part = m_parts.emplace_back(m_log);
    if (part.create(device, {&model.data(), path, lod, textures}, -1))
        return true;
    m_parts.pop_back();
    return false;
}

void render_variant::draw(lib3d& library)
{
    for (rigid_model& part : m_parts)
        part.draw(library);
}

void render_variant::release()
{
    d3d_drawable::release();
    m_parts.clear();
}

void render_variant::setWireframe(bool is_wireframe)
{
    for (rigid_model& part : m_parts)
        part.setWireframe(is_wireframe);
}

model_bounds render_variant::bounds() const
{
    model_bounds all;
    for (const rigid_model& part : m_parts)
        if (!part.bounds().isEmpty())
        {
            all.add(part.bounds().least);
            all.add(part.bounds().most);
        }
    return all;
}

} // namespace korvane
