#pragma once

// The game of the console program: that of --data or of the configuration, loaded when the first path asks for it.
// Damaged archives are named on standard error and left out.

#include "EASY_GUI/services/config_file.h"
#include "Korvane/cli/cli_context.h"
#include "Korvane/game/game_loader.h"
#include "Korvane/game/game_source.h"

#include <memory>

namespace korvane
{

class console_game : public game_source
{
public:
    explicit console_game(cli_context& context) : m_context(context) {}

    bool hasFolders() const override;
    std::shared_ptr<const game_data> archives(failure& why) override;
    void workOn(const game_path& path) override { m_context.workOn(path.text()); }

private:
    game_loader loader(config_file& config) const;

    cli_context& m_context;
    std::shared_ptr<const game_data> m_po_game; // null: not loaded yet
};

} // namespace korvane
