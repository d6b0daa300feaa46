#pragma once

// What holds for every variant mesh definition that was opened, however damaged its text was.

#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/variant_mesh_def.h"

#include <string>

namespace korvane::test
{

struct variant_walk
{
    std::size_t tags = 0;
    std::size_t meshes = 0; // with a model
    std::string fault;      // empty: none

    void visit(const variant_tag& tag, std::size_t level)
    {
        ++tags;
        if (level > variant_mesh_def::max_nesting)
            fault = "nested too deeply";
        if (tag.kind == variant_tag_kind::mesh && !normalInternalPath(tag.attribute("MODEL")).empty())
            ++meshes;
        if (tag.name.empty() && (level != 1 || tag.kind != variant_tag_kind::other || tag.children.size() < 2))
            fault = "a tag without a name";
        for (const variant_tag& child : tag.children)
            visit(child, level + 1);
    }
};

// The first thing that is wrong; empty when all is well.
inline std::string faultOf(const variant_mesh_def& definition)
{
    variant_walk walk;
    walk.visit(definition.root(), 1);
    const std::vector<std::string> models = definition.models();
    if (!walk.fault.empty())
        return walk.fault;
    if (walk.tags > variant_mesh_def::max_tags + 1)
        return "too many tags";
    if (walk.meshes != models.size())
        return "models() has another number than the tree";
    for (const std::string& model : models)
        if (model != normalInternalPath(model) || model.find('/') != std::string::npos)
            return "no internal path: " + model;
    if (definition.problems().size() > variant_mesh_def::max_problems + 1)
        return "too many problems";
    return {};
}

} // namespace korvane::test
