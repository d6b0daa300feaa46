#pragma once

// Textures from the disk around a model, as findLooseFile() of loose_file.h finds them.

#include "D3D11_RENDER_LIB/texture_source.h"

#include <utility>

namespace korvane
{

class disk_texture_source : public texture_source
{
public:
    explicit disk_texture_source(std::string model_path) // UTF-8; need not exist
        : m_model_path(std::move(model_path))
    {
    }

    [[nodiscard]] std::optional<memory_file> read(const std::string& internal_path) const override;

private:
    std::string m_model_path;
};

} // namespace korvane
