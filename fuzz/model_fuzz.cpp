// Reads any bytes as a model. What loads must hold together, and its fields written back must give the same bytes.

#include "Korvane/models/description.h"
#include "Korvane/models/rmv2_file.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkField(const rmv2_file& model, const fixed_field& field)
{
    const auto image = model.image().bytes();
    require(field.fileOffset() + field.width() <= image.size());
    require(field.width() == 0 ||
            std::memcmp(image.data() + field.fileOffset(), field.bytes().data(), field.width()) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    rmv2_file model;
    failure why;
    if (!model.openFromMemory(memory_file(std::as_bytes(std::span(data, size))), "input", why))
    {
        require(static_cast<bool>(why) && why.offset <= size);
        return 0;
    }
    for (const lod_data& lod : model.data().lods)
        for (const group_data& group : lod.groups)
        {
            std::size_t out_of_range = 0;
            for (const std::uint16_t index : group.store.indices)
                out_of_range += index >= group.store.vertices.size() ? 1u : 0u;
            require(out_of_range == group.store.indices_out_of_range);
            for (const texture_entry& texture : group.textures)
                checkField(model, texture.path_field);
            checkField(model, group.alpha_mode_field);
            checkField(model, group.shader_name_field);
            static_cast<void>(model.influences(group));
        }
    describeModel(model, true, [](const std::string& text) { require(text.find('\x1b') == std::string::npos); });
    return 0;
}
