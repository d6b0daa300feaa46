#pragma once

// Where a model's textures come from: the games' archives when they are loaded, else the disk around the model.

#include "D3D11_RENDER_LIB/disk_texture_source.h"
#include "D3D11_RENDER_LIB/texture_source.h"

#include <functional>
#include <string>
#include <utility>

namespace korvane
{

class model_texture_source : public texture_source
{
public:
    // log gets a line for an archive entry that is there but cannot be read; may be empty.
    explicit model_texture_source(std::string model_path, std::function<void(const std::string&)> log = {})
        : m_disk(std::move(model_path))
        , m_log(std::move(log))
    {
    }

    [[nodiscard]] std::optional<memory_file> read(const std::string& internal_path) const override;

private:
    disk_texture_source m_disk;
    std::function<void(const std::string&)> m_log;
};

} // namespace korvane
