#pragma once

// Notices that a file of a scene was changed by another program while the scene is shown: a texture that was painted,
// one that was missing and is there now or now lies in a folder over the archives, a model or a skeleton that was
// exported again. It asks for size and time when it is told to look, so that it works on every drive; it opens nothing
// but textures that have changed. One thread.

#include "EASY_GUI/services/file_stamp.h"
#include "Korvane/game/game_data.h"
#include "Korvane/scene/loaded_scene.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

// What one look has found.
struct scene_changes
{
    std::vector<std::shared_ptr<const scene_texture>> textures; // changed, and read again
    // Changed models, definitions and skeletons, which stay as they were; each change once.
    std::vector<std::string> models;
    std::vector<std::string> unreadable; // changed textures that cannot be shown; each change once
    std::vector<std::string> lines;      // for the log, one for each of these

    bool empty() const { return lines.empty(); }
    // For a status line: "shield_diffuse.dds was read again", "3 textures were read again", ...
    [[nodiscard]] std::string summary() const;
};

class scene_watch
{
public:
    // What is shown from now on, null for nothing, and the game that it was loaded from. Of a scene that was made from
    // the one that was followed before, by another level of detail or by changed textures, what is known stays known.
    void follow(scene_pointer scene, game_data game);

    // Asks for the stamps of the files that are shown, and then whether others have come before them; each of the two
    // goes on where the last call has ended it, for at most about that long, but for one file at least. A change counts
    // when two looks find the same of it: until then it is still being written. A file that cannot be read is tried
    // again; a damaged one when it has changed once more. What is gone stays as it was shown.
    [[nodiscard]] scene_changes look(std::chrono::milliseconds patience = std::chrono::milliseconds(15));

private:
    struct watched_file
    {
        std::string path = {}; // as the scene names it: internal, or of a model that was opened on the disk
        bool is_texture = false;
        std::shared_ptr<const scene_texture> texture = nullptr; // null: missing or damaged when the scene was made
        file_place shown = {};                                  // that the scene was made of
        file_place seen = {};                                   // at the last look
        file_place refused = {};                                // was told to be unreadable or damaged
        bool is_damaged = false;                                // the refused one
        bool is_known = true;                                   // false: shown is what the first look finds
        bool is_skeleton = false;                               // on the disk; those in archives do not change
        unsigned last_look = 0;
    };

    void add(watched_file file, const std::vector<watched_file>& known, bool is_derived);
    bool mayHaveChanged(const watched_file& file) const;
    void lookAt(watched_file& file, scene_changes& changes) const;
    void readAgain(watched_file& file, const file_place& now, scene_changes& changes) const;
    game_file find(const watched_file& file) const;

    scene_pointer m_scene;
    game_data m_game;
    std::vector<watched_file> m_files;
    std::size_t m_next_stamp = 0; // which file goes on with
    std::size_t m_next_search = 0;
    unsigned m_look = 0;
};

} // namespace korvane
