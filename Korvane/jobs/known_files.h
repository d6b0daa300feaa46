#pragma once

// What a check asks of the world around a file: which textures and skeletons exist, in the archives or on the disk
// around the file. Answers are remembered, because the models of a folder name the same files again and again. For one
// thread at a time.

#include "Korvane/archives/loose_neighbours.h"
#include "Korvane/archives/path_neighbours.h"
#include "Korvane/game/game_data.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace korvane
{

class known_files
{
public:
    explicit known_files(game_data game) : m_game(std::move(game)) {}

    bool hasArchives() const { return m_game.hasArchives(); }

    struct texture_answer
    {
        bool exists = false;
        bool is_dds = false;  // false for an existing file that does not begin as a DDS file does
        bool is_read = false; // false when its first bytes cannot be read
    };
    // around: the model's path on the disk; empty for a model out of an archive.
    const texture_answer& texture(const std::string& internal_path, const std::string& around);

    struct skeleton_answer
    {
        std::string path;           // internal, or on the disk; empty: it is nowhere
        std::size_t bone_count = 0; // 0: it cannot be read
        std::string problem;        // why not
    };
    // In the archives; without any, on the disk around the model.
    const skeleton_answer& skeleton(const std::string& id, const std::string& around);

    bool isInGame(std::string_view internal_path) const { return static_cast<bool>(m_game.find(internal_path)); }
    // The existing internal path that a path was most likely meant to be, among the files with an extension (lower
    // case, without the dot) in the archives and, around a file on the disk, there; empty when none is near.
    std::string nearest(std::string_view internal_path, const std::string& extension, const std::string& around = {});

private:
    texture_answer lookUpTexture(const std::string& internal_path, const std::string& around) const;
    skeleton_answer lookUpSkeleton(const std::string& id, const std::string& around) const;

    game_data m_game;
    std::unordered_map<std::string, texture_answer> m_textures; // by folder and path
    std::unordered_map<std::string, skeleton_answer> m_skeletons;
    std::unordered_map<std::string, std::string> m_nearest;
    std::map<std::string, path_neighbours> m_neighbours; // by extension
    loose_neighbours m_loose_neighbours;
};

} // namespace korvane
