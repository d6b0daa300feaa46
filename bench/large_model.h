#pragma once

// A model of 50,000 vertices in one group, its triangles one beside the other.

#include "tests/support/model_builder.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace korvane::bench
{

inline std::string largeModel()
{
    constexpr std::size_t vertex_count = 50000;
    test::test_group group;
    group.vertex_count = vertex_count;
    group.vertices.clear();
    for (std::size_t i = 0; i < vertex_count; ++i)
        group.vertices += std::string(group.stride, static_cast<char>(0x30 + i % 16));
    group.indices.clear();
    for (std::size_t i = 0; i + 2 < vertex_count; ++i)
        for (std::size_t corner = 0; corner < 3; ++corner)
            group.indices.push_back(static_cast<std::uint16_t>(i + corner));
    test::test_model model;
    model.lods = {{group}};
    return model.bytes();
}

} // namespace korvane::bench
