#pragma once

// The port through which the renderer gets the bytes of a model's textures. A model names its textures by internal
// path; where the bytes come from (the disk beside the model, archives) is the source's business.

#include "EASY_GUI/services/memory_file.h"

#include <optional>
#include <string>

namespace korvane
{

class texture_source
{
public:
    virtual ~texture_source() = default;

    // The bytes of the DDS file with that internal path ('\' or '/', any case); nothing when there is no such file or
    // it cannot be read. Called by the thread that hands a model over.
    [[nodiscard]] virtual std::optional<memory_file> read(const std::string& internal_path) const = 0;
};

} // namespace korvane
