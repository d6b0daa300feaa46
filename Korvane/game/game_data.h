#pragma once

// The game's files as one value: mod folders laid over the archives (a person's own work), the archives, and the disk
// around a file. Immutable: made by game_loader.h, handed around as a const reference, between threads as a shared
// pointer to const, and used from any thread. Paths may be spelled with '\' or '/', in any case, with blanks at their
// ends; nothing that a path says leads out of the folders in which it is looked for.

#include "EASY_GUI/services/log_port.h"
#include "Korvane/archives/path_tree.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/game/game_file.h"
#include "Korvane/game/game_path.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class game_data
{
public:
    game_data() = default; // no archives and no folders: the disk alone
    // A null tree: nothing is loaded. The mod folders are those of the tree (mod_folder.h); the last one that has a
    // file counts.
    explicit game_data(std::shared_ptr<const path_tree> archives);

    // False, too, when there are mod folders alone: what they lack is not missing in the game.
    bool hasArchives() const { return m_has_archives; }
    // Whether what lies in that folder counts; one that was not there when the archives were read does not.
    [[nodiscard]] bool hasModFolder(const std::string& folder) const;
    // For listings and searches, with the files that the mod folders had when they were loaded; null: nothing is
    // loaded.
    const std::shared_ptr<const path_tree>& archives() const { return m_po_archives; }

    // The game's file of that internal path: in a mod folder as it is now, else in the archives; behind the name of an
    // archive and '|' that archive's copy (game_path.h).
    [[nodiscard]] game_file find(std::string_view internal_path) const;
    // As the game itself has it, whatever lies in the mod folders; what the game has not, as find().
    [[nodiscard]] game_file findInGame(std::string_view internal_path) const;
    // As find(), and where neither has it, on the disk around another file (loose_file.h), as for the textures of a
    // model. An internal path has no disk around it.
    [[nodiscard]] game_file findAround(std::string_view internal_path, const game_path& around) const;
    // The skeleton of an id: below "animations\skeletons" in a mod folder; the first entry whose path
    // ends with "skeletons\ID.anim"; without any archives below "animations\skeletons" around a file on the disk.
    [[nodiscard]] game_file findSkeleton(std::string_view id, const game_path& around) const;

    // Reads what a path names, from the disk or, with "pack:", out of the game. On failure bytes stays as it is, and
    // not_found says whether there are no archives, or none that holds it.
    [[nodiscard]] bool read(const game_path& path, memory_file& bytes, failure& why) const;
    // The same for an internal path; one with more bytes than the limit is refused before memory is taken for it.
    [[nodiscard]] bool readInternal(std::string_view internal_path, memory_file& bytes, failure& why,
                                    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max()) const;
    // For a definition's references; empty when there are neither archives nor folders. A copy of the game serves it.
    [[nodiscard]] definition_reader definitionReader() const;
    // The bytes of a model's texture, found around the model; nothing when there is none or it cannot be read. For an
    // entry that is there but damaged the log, which may be empty, gets a line.
    [[nodiscard]] std::optional<memory_file> readTexture(std::string_view internal_path, const game_path& around,
                                                         const log_port& log) const;

private:
    game_file findOver(std::string_view internal_path) const;
    game_file findEntry(std::string_view internal_path) const;
    game_file findCopy(std::string_view internal_path) const;
    game_file ofEntry(const pack_file_node* entry) const;

    std::shared_ptr<const path_tree> m_po_archives;
    std::vector<std::string> m_mod_folders; // in the order in which they are asked
    bool m_has_archives = false;
};

} // namespace korvane
