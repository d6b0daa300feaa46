#pragma once

// The open variant mesh definition: the models that it names, what could not be followed, and its line for the status
// bar. The models themselves are read by whoever draws them. No window is known here; texts are UTF-8. One thread.

#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/game/game_data.h"
#include "Korvane/scene/figure.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// True when a file is opened as a definition rather than as a model: by the ending of its path, in any case.
[[nodiscard]] bool isDefinitionPath(const std::string& path);

// What a view made of a definition's models.
struct drawn_models
{
    std::size_t failed = 0; // of the figure's that could not be read, or are too many
    std::size_t triangles = 0;
};

// What to do for a person who has not set the data folders yet.
constexpr std::string_view set_folders_advice = "Choose Tools, Setup Game Folders... and add the game's data folder.";

class open_definition
{
public:
    // Reads the definition at a path, on the disk or with "pack:" out of the game, and those that it refers to out of
    // the game. On failure what was open stays.
    [[nodiscard]] bool open(const std::string& path, failure& why, const game_data& game = {});

    bool hasDefinition() const { return !path().empty(); }
    const std::string& path() const { return m_path; }                  // as it was given; empty: none
    const std::vector<std::string>& models() const { return m_models; } // internal paths, in document order
    std::vector<std::string> problems() const { return m_po_definition->problems(); } // references, one line each
    const std::vector<variant_problem>& problemList() const { return m_po_definition->problemList(); }
    // The content for others to keep: it never changes. Never null.
    const std::shared_ptr<const variant_mesh_def>& content() const { return m_po_definition; }

    // Which alternatives of its slots make the figure. False: nothing has changed by that.
    bool choose(const figure_choice& alternatives);
    const figure_choice& choice() const { return m_choice; }
    std::vector<figure_model> figure() const { return figureModels(m_po_definition->root(), m_choice); }

    // "demo_guard: 4 models, 12,345 triangles; 1 could not be opened (see log.txt)"; "4 of 6 models" when slots have
    // alternatives. Without what a view says of them only the models are counted.
    [[nodiscard]] std::string summary(const std::optional<drawn_models>& drawn) const;

    // What a view shows instead of a picture when none of the models could be drawn, and what to do; else empty.
    [[nodiscard]] std::string emptyNotice(const drawn_models& drawn) const;

private:
    std::shared_ptr<const variant_mesh_def> m_po_definition = std::make_shared<const variant_mesh_def>();
    std::string m_path;
    std::vector<std::string> m_models;
    figure_choice m_choice;
    std::size_t m_in_figure = 0; // models
    bool m_has_archives = false; // when it was opened
};

} // namespace korvane
