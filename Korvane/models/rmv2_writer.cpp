#include "Korvane/models/rmv2_writer.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/byte_writer.h"
#include "EASY_GUI/services/file_system.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t version_offset = 4;
constexpr std::size_t old_header_size = 20; // of a LOD, version 6
constexpr std::size_t start_offset_place = 12;
constexpr std::uint64_t header_growth = 8;

void putU32(std::span<std::byte> image, std::size_t position, std::uint32_t value)
{
    std::memcpy(image.data() + position, &value, sizeof value);
}

std::uint32_t imageVersion(const rmv2_file& model)
{
    return littleEndian<std::uint32_t>(model.image().bytes().data() + version_offset);
}

// The edits in the image, for as long as it takes to write it; kept when it was written.
class image_edit
{
public:
    explicit image_edit(rmv2_file& model) : m_image(model.image().mutableBytes())
    {
        for (const image_patch& edit : savedEdits(model))
        {
            const auto place = at(edit.file_offset);
            const auto end = place + static_cast<std::ptrdiff_t>(edit.bytes.size());
            m_former.push_back({edit.file_offset, std::vector<std::byte>(place, end)});
            std::copy(edit.bytes.begin(), edit.bytes.end(), place);
        }
    }
    image_edit(const image_edit&) = delete;
    image_edit& operator=(const image_edit&) = delete;
    ~image_edit()
    {
        for (auto former = m_former.rbegin(); former != m_former.rend(); ++former)
            std::copy(former->bytes.begin(), former->bytes.end(), at(former->file_offset));
    }
    void keep() { m_former.clear(); }

private:
    std::span<std::byte>::iterator at(std::uint64_t offset) const
    {
        return m_image.begin() + static_cast<std::ptrdiff_t>(offset);
    }

    std::span<std::byte> m_image;
    std::vector<image_patch> m_former;
};

} // namespace

std::vector<image_patch> savedEdits(const rmv2_file& model)
{
    std::vector<image_patch> edits;
    const auto add = [&edits](const fixed_field& field) {
        if (field.isEdited())
            edits.push_back({field.fileOffset(), {field.bytes().begin(), field.bytes().end()}});
    };
    for (const lod_data& lod : model.data().lods)
        for (const group_data& group : lod.groups)
        {
            if (!group.textures.empty())
                add(group.alpha_mode_field);
            for (const texture_entry& texture : group.textures)
                add(texture.path_field);
        }
    return edits;
}

bool saveModel(rmv2_file& model, const std::string& path, failure& why)
{
    image_edit edit(model);
    if (!writeImage(model, path, why))
        return false;
    edit.keep();
    for (lod_data& lod : model.data().lods)
        for (group_data& group : lod.groups)
            for (texture_entry& texture : group.textures)
            {
                texture.path = texture.path_field.text();
                group.alpha_mode = group.alpha_mode_field.u32();
            }
    return true;
}

bool writeImage(rmv2_file& model, const std::string& path, failure& why)
{
    if (!writeWholeFile(path, model.image().bytes(), why))
        return false;
    model.setPath(path);
    return true;
}

std::string patchRefusal(const rmv2_file& model)
{
    if (model.version() == 8)
        return "This RigidModel file is version 8 (Three Kingdoms), and cannot be patched!";
    if (model.version() == 7)
        return "This RigidModel file is already version 7!";
    if (model.version() != 6)
        return "This RigidModel file is version " + std::to_string(model.version()) +
               ", and cannot be patched: its texts have other widths than those of version 7!";
    if (imageVersion(model) != 6)
        return "This RigidModel file was patched already: open the patched file instead!";
    return {};
}

bool patchToVersion7(rmv2_file& model, const std::string& path, failure& why)
{
    if (std::string reason = patchRefusal(model); !reason.empty())
        return fail(why, failure_kind::refused, std::move(reason), model.path());

    std::vector<lod_data>& lods = model.data().lods;
    const std::uint64_t growth = lods.size() * header_growth;
    const auto image = model.image().bytes();
    byte_writer patched;
    patched.reserve(image.size() + growth);
    std::size_t copied = 0; // bytes of the image
    for (std::size_t i = 0; i < lods.size(); ++i)
    {
        const std::uint64_t start = lods[i].header.start_offset + growth;
        if (start > std::numeric_limits<std::uint32_t>::max())
            return fail(why, failure_kind::unsupported, "the patched file would be larger than 4 GiB", model.path());
        const auto end = static_cast<std::size_t>(lods[i].header.file_offset) + old_header_size;
        patched.bytes(image.subspan(copied, end - copied));
        patched.putU32(patched.size() - old_header_size + start_offset_place, static_cast<std::uint32_t>(start));
        patched.u32(static_cast<std::uint32_t>(i));
        patched.u32(0);
        copied = end;
    }
    patched.bytes(image.subspan(copied));
    patched.putU32(version_offset, 7);
    if (!writeWholeFile(path, patched.view(), why))
        return false;

    putU32(model.image().mutableBytes(), version_offset, 7);
    for (std::size_t i = 1; i < lods.size(); ++i)
        lods[i].header.file_offset += i * header_growth;
    return true;
}

bool hasMixedVersions(const rmv2_file& model)
{
    return imageVersion(model) != model.version() || isVersion7OverVersion6(model.image().bytes());
}

bool openMixedVersions(rmv2_file& model, memory_file image, const std::string& name, failure& why)
{
    repairVersionWord(image);
    if (!model.openFromMemory(std::move(image), name, why))
        return false;
    putU32(model.image().mutableBytes(), version_offset, 7);
    return true;
}

void repairVersionWord(memory_file& image)
{
    putU32(image.mutableBytes(), version_offset, 6);
}

} // namespace korvane
