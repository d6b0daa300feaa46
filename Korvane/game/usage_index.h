#pragma once

// Which models and definitions of the archives name a file: an index over all of them, archive by archive, so that what
// did not change need not be read again. Immutable once it is made; read from any thread.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/file_uses.h"
#include "Korvane/game/game_data.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

struct file_user
{
    const pack_file_node* user = nullptr; // a model or a definition; valid as long as the archives that were asked
    file_use as;
};

class usage_index
{
public:
    struct section; // what the models and definitions of one archive name

    usage_index() = default; // of no archives

    // The models and definitions that name a file (a texture, model, definition or skeleton by its internal path, as a
    // person spells it), those that count alone, ordered by path. The game is the one that the index was made of.
    [[nodiscard]] std::vector<file_user> usersOf(const game_data& game, std::string_view internal_path) const;

    // False when all of it was taken from the other one and nothing is gone: it need not be written again.
    [[nodiscard]] bool isOtherThan(const usage_index& other) const;
    std::size_t fileCount() const; // models and definitions that were read, hidden copies included
    std::size_t archiveCount() const { return m_sections.size(); }
    // How many archives of the game it has not read as they are.
    [[nodiscard]] std::size_t unknownArchives(const game_data& game) const;
    // Those that could not be read, "PATH in ARCHIVE: why".
    [[nodiscard]] std::vector<std::string> damaged() const;

private:
    friend class usage_store;
    friend usage_index indexUsage(const game_data&, const usage_index&, const work_port&, bool&);

    std::vector<std::shared_ptr<const section>> m_sections; // of the archives that hold any
};

// Reads the models and definitions of all archives on several threads; those of archives that the former index has
// read, with the same path, size and time, are taken from it. is_whole: not stopped; else the index is of no use.
[[nodiscard]] usage_index indexUsage(const game_data& game, const usage_index& former, const work_port& work,
                                     bool& is_whole);

// The index on the disk (docs/formats/usage_cache.md).
class usage_store
{
public:
    static constexpr std::string_view file_name = "usage.cache";
    static constexpr std::string_view identification = "Korvane usage cache 1";

    explicit usage_store(std::string path) : m_path(std::move(path)) {}
    // Beside the cache of the archives (pack_cache.h).
    [[nodiscard]] static usage_store of(const config_file& config, const std::string& config_path);

    const std::string& path() const { return m_path; }
    // An index of no archives, and why, where there is none or it is damaged.
    [[nodiscard]] usage_index load(failure& why) const;
    // Replaces the file, unless what stands there is something else.
    [[nodiscard]] bool write(const usage_index& index, failure& why) const;
    // Deletes the file, if it is a usage index; true as well when there is none.
    bool remove(failure& why) const;

private:
    bool mayReplace(failure& why) const;

    std::string m_path;
};

} // namespace korvane
