#pragma once

// Textures in memory for scenes of tests; remembers what was asked for.

#include "Korvane/scene/scene_texture.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace korvane::test
{

struct texture_map
{
    std::map<std::string, std::string> files;
    std::vector<std::string> asked;

    // Used while the map lives.
    texture_reader reader()
    {
        return [this](const std::string& path, memory_file& bytes, file_place&, failure& why) {
            asked.push_back(path);
            const auto found = files.find(path);
            if (found == files.end())
                return fail(why, failure_kind::not_found, "there is no such texture", path);
            bytes = memory_file(std::string_view(found->second));
            return true;
        };
    }
};

} // namespace korvane::test
