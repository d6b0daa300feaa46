#pragma once

// What other files a model names, read from its headers alone: for those who look at thousands of models. One thread
// at a time.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/large_memory.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

struct model_names
{
    struct texture
    {
        std::uint32_t type = 0; // textureTypeName() of catalogue.h
        std::string path;       // as the model spells it
        friend auto operator<=>(const texture&, const texture&) = default;
    };
    std::string skeleton_id;
    std::vector<texture> textures; // of all groups of all levels; in order, none twice
};

class model_name_reader
{
public:
    // Fills target with the model's bytes from a position on; false: they cannot be read.
    using read_port = std::function<bool(std::uint64_t position, std::span<std::byte> target)>;

    // A model of so many bytes, of which the headers are read. It is refused where rmv2_file would refuse its headers.
    [[nodiscard]] bool read(std::uint64_t size, const read_port& read, model_names& names, failure& why);
    // One that is in memory.
    [[nodiscard]] static bool read(std::span<const std::byte> image, model_names& names, failure& why);

private:
    // As large as the largest model so far, and filled only where headers are: the rest of it is never touched.
    large_memory m_image;
    std::size_t m_capacity = 0;
};

} // namespace korvane
