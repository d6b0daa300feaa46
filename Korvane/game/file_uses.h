#pragma once

// Which other files a model or a definition names: textures and a skeleton, models and further definitions.

#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/path_tree.h"
#include "Korvane/models/model_names.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

enum class use_kind : std::uint8_t
{
    texture,
    skeleton,
    model,
    definition
};

struct file_use
{
    use_kind kind = use_kind::texture;
    std::uint32_t texture_type = 0; // of a texture: textureTypeName() of catalogue.h
    std::string path;               // internal, in the form of the archives; of a skeleton its id, in lower case

    friend auto operator<=>(const file_use&, const file_use&) = default;
};

// What it is called in lists: the kind of texture ("Diffuse"), "skeleton", "model", "reference".
[[nodiscard]] std::string_view nameOf(const file_use& use);

// True for the endings of models and definitions.
[[nodiscard]] bool namesOtherFiles(std::string_view path);

// Reads what a file names. Of models that are stored as they are in an archive only the headers are read. One thread at
// a time: it keeps its buffers.
class use_reader
{
public:
    // In order, none twice. On failure why.path is the internal path, or for bytes empty.
    [[nodiscard]] bool read(const pack_file_node& entry, std::vector<file_use>& uses, failure& why);
    // The path says by its ending what the bytes are.
    [[nodiscard]] static bool read(std::span<const std::byte> bytes, std::string_view path, std::vector<file_use>& uses,
                                   failure& why);

private:
    model_name_reader m_models;
};

} // namespace korvane
