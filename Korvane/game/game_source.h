#pragma once

// Where work that takes paths gets the game from. A window has it loaded; the console loads it when the first path asks
// for it, so that a command on files of the disk alone starts at once. One thread at a time.

#include "Korvane/game/game_data.h"
#include "Korvane/game/game_model.h"

#include <memory>
#include <utility>

namespace korvane
{

class game_source
{
public:
    virtual ~game_source() = default;

    // Whether there are data folders, so that archives() has something to give.
    virtual bool hasFolders() const = 0;
    // The game with its archives; null, and the reason, when they cannot be loaded.
    [[nodiscard]] virtual std::shared_ptr<const game_data> archives(failure& why) = 0;
    // Told of each path before it is worked on.
    virtual void workOn(const game_path&) {}

    // Without data folders the disk alone.
    [[nodiscard]] std::shared_ptr<const game_data> archivesOrDisk(failure& why)
    {
        return hasFolders() ? archives(why) : std::make_shared<const game_data>();
    }
    // What this path needs: the archives, or no more than the disk.
    [[nodiscard]] std::shared_ptr<const game_data> gameFor(const game_path& path, failure& why)
    {
        workOn(path);
        return path.isInternal() ? archives(why) : std::make_shared<const game_data>();
    }
    [[nodiscard]] bool read(const game_path& path, memory_file& bytes, failure& why)
    {
        const std::shared_ptr<const game_data> game = gameFor(path, why);
        return game && game->read(path, bytes, why);
    }
};

// A game that is loaded already.
class loaded_game : public game_source
{
public:
    explicit loaded_game(std::shared_ptr<const game_data> game) : m_po_game(std::move(game)) {}

    bool hasFolders() const override { return m_po_game->hasArchives(); }
    std::shared_ptr<const game_data> archives(failure& why) override
    {
        if (!m_po_game->hasArchives())
            fail(why, failure_kind::not_found, "no archives are loaded");
        return m_po_game->hasArchives() ? m_po_game : nullptr;
    }

private:
    std::shared_ptr<const game_data> m_po_game;
};

} // namespace korvane
