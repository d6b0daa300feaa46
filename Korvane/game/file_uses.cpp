#include "Korvane/game/file_uses.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/models/catalogue.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view model_ending = ".rigid_model_v2";
constexpr std::string_view definition_ending = ".variantmeshdefinition";

void add(std::vector<file_use>& uses, use_kind kind, std::string_view spelled, std::uint32_t texture_type = 0)
{
    std::string path = normalInternalPath(spelled);
    if (!path.empty())
        uses.push_back({kind, texture_type, std::move(path)});
}

void putInOrder(std::vector<file_use>& uses)
{
    std::sort(uses.begin(), uses.end());
    uses.erase(std::unique(uses.begin(), uses.end()), uses.end());
}

void take(const model_names& names, std::vector<file_use>& uses)
{
    uses.clear();
    for (const model_names::texture& texture : names.textures)
        add(uses, use_kind::texture, texture.path, texture.type);
    add(uses, use_kind::skeleton, names.skeleton_id);
    putInOrder(uses);
}

void collect(const variant_tag& tag, std::vector<file_use>& uses)
{
    if (tag.kind == variant_tag_kind::mesh)
        add(uses, use_kind::model, tag.attribute("model"));
    else if (tag.kind == variant_tag_kind::reference)
        add(uses, use_kind::definition, tag.attribute("definition"));
    for (const variant_tag& child : tag.children)
        collect(child, uses);
}

} // namespace

std::string_view nameOf(const file_use& use)
{
    switch (use.kind)
    {
    case use_kind::texture:
        return textureTypeName(use.texture_type);
    case use_kind::skeleton:
        return "skeleton";
    case use_kind::model:
        return "model";
    case use_kind::definition:
        break;
    }
    return "reference";
}

bool namesOtherFiles(std::string_view path)
{
    return endsWithIgnoringCase(path, model_ending) || endsWithIgnoringCase(path, definition_ending);
}

bool use_reader::read(const pack_file_node& entry, std::vector<file_use>& uses, failure& why)
{
    const bool is_stored = !entry.archive().is_folder && entry.compression() == 0;
    if (is_stored && endsWithIgnoringCase(entry.internalPath(), model_ending))
    {
        model_names names;
        const auto readAt = [&entry](std::uint64_t position, std::span<std::byte> target) {
            return entry.archive().file.readAt(entry.offset() + position, target);
        };
        if (m_models.read(entry.size(), readAt, names, why))
            return take(names, uses), true;
        why.path = placeOf(entry);
        return false;
    }
    memory_file bytes;
    if (!readEntry(entry, bytes, why))
        return false;
    if (read(bytes.bytes(), entry.internalPath(), uses, why))
        return true;
    why.path = placeOf(entry);
    return false;
}

bool use_reader::read(std::span<const std::byte> bytes, std::string_view path, std::vector<file_use>& uses,
                      failure& why)
{
    if (endsWithIgnoringCase(path, definition_ending))
    {
        variant_mesh_def definition; // without a reader: what it refers to names files of its own
        if (!definition.openFromMemory(bytes, std::string(path), why))
            return false;
        uses.clear();
        collect(definition.root(), uses);
        putInOrder(uses);
        return true;
    }
    model_names names;
    if (!model_name_reader::read(bytes, names, why))
        return false;
    take(names, uses);
    return true;
}

} // namespace korvane
