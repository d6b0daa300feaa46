#pragma once

// A check of many files: gathers what is to be looked at, then looks at one file after the other, so that whoever runs
// it shows progress and stops when they like. A definition's models are checked as well, each once. For one thread at a
// time.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/game/game_data.h"
#include "Korvane/jobs/finding.h"
#include "Korvane/jobs/known_files.h"
#include "Korvane/jobs/model_snapshot.h"
#include "Korvane/jobs/operand_list.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace korvane
{

class check_run
{
public:
    // Without archives textures and skeletons are looked for on the disk around the models only.
    explicit check_run(game_data game);

    // What to check: a model, a definition, a folder or a pattern, on the disk or with "pack:" in front in the game
    // (operand_list.h). What cannot be found is a finding of its own.
    void add(const std::string& operand);
    // A model that is open: it is checked as it is there, with its edits, not as its file is. Definitions that are
    // added may name it, too.
    void addOpen(model_snapshot model);

    // Checks one file after the other, and hands on what is found in each. Progress counts files and names the next.
    void run(const work_port& work, const std::function<void(const std::vector<finding>&)>& take);
    // Checks the next file and appends what it finds. False when there is none left.
    bool step(std::vector<finding>& found);

    std::size_t fileCount() const { return m_files.size(); } // grows while definitions are met
    std::size_t doneCount() const { return m_next; }

private:
    void addFile(std::string path);
    void checkModel(const std::string& path, std::vector<finding>& found);
    void checkReferences(const std::string& path, const std::vector<variant_problem>& problems,
                         std::vector<finding>& found);
    void checkDefinition(const std::string& path, std::vector<finding>& found);

    game_data m_game;
    known_files m_known;
    operand_list m_operands{definitionOperands()};
    std::vector<std::string> m_files;
    std::unordered_set<std::string> m_listed;
    std::optional<model_snapshot> m_open;
    std::vector<finding> m_not_found; // of add(); handed out by the first step
    std::size_t m_next = 0;
};

} // namespace korvane
