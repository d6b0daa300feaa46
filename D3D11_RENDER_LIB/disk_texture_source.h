#pragma once

// Textures from the disk around a model: for a model that lies in a folder tree like the game's, or with its textures
// beside it.

#include "D3D11_RENDER_LIB/texture_source.h"

namespace korvane
{

class disk_texture_source : public texture_source
{
public:
    explicit disk_texture_source(std::string model_path) // UTF-8; need not exist
        : m_model_path(std::move(model_path))
    {
    }

    // Tried in this order, without regard to case: the internal path below the model's folder, below each folder that
    // contains it, and the bare file name in the model's folder. A path that leaves these folders (a drive, a root,
    // "..") finds nothing.
    [[nodiscard]] std::optional<memory_file> read(const std::string& internal_path) const override;

    // Where the file was found; empty when nowhere.
    [[nodiscard]] std::string find(const std::string& internal_path) const;

private:
    std::string m_model_path;
};

} // namespace korvane
