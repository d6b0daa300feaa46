#pragma once

// Where a model's textures come from: the games' archives when they are loaded, else the disk around the model, or
// around the definition that names it.

#include "D3D11_RENDER_LIB/disk_texture_source.h"
#include "D3D11_RENDER_LIB/texture_source.h"

#include <functional>
#include <optional>
#include <string>

namespace korvane
{

class model_texture_source : public texture_source
{
public:
    // A path with "pack:" in front has no disk around it. log gets a line for an archive entry that is there but cannot
    // be read; may be empty.
    explicit model_texture_source(const std::string& path, std::function<void(const std::string&)> log = {});

    [[nodiscard]] std::optional<memory_file> read(const std::string& internal_path) const override;

private:
    std::optional<disk_texture_source> m_disk;
    std::function<void(const std::string&)> m_log;
};

} // namespace korvane
