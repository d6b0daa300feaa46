#pragma once

// What every command of the console program shares: the global options, where results go, and the exit status. A
// command lives in a file of its own with one function add…Command(app, context), which registers a subcommand; its
// callback does the work and, when something fails, says so with context.fail().

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/cli/progress_line.h"
#include "Korvane/game/game_source.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

using json = nlohmann::ordered_json; // keys stay in the order in which they were written

class cli_context
{
public:
    // Options that more than one command takes.
    std::vector<std::string> data_folders; // --data, in order; none: those of the configuration
    std::vector<std::string> mod_folders;  // --mod, the last one on top; none: those of the configuration
    std::string config_path;               // --config; empty: "config.cfg" beside the program
    bool is_json = false;                  // --json
    bool is_quiet = false;                 // --quiet
    bool is_without_cache = false;         // --no-cache

    // Where commands get the archives and the files of their operands from. Outlives the context's use.
    game_source& game() { return *m_po_game; }
    void setGame(game_source& game) { m_po_game = &game; }

    // Adds --json to a command that has it.
    void addJsonOption(CLI::App& command);

    // Writes to standard output: bytes as they are.
    void print(std::string_view text);
    // One JSON document and a line feed.
    void printJson(const json& document);
    // A line for the person at the terminal, on standard error; silent with --quiet.
    void note(const std::string& text);
    // The same for a job's log.
    log_port notePort();
    // All that a job tells: notes, what failed, and its progress as the text of each step.
    work_port workPort();
    // Progress of long work, in place on one line; only when standard error is a terminal, --quiet is not given, and
    // the program has been running for more than a second. Whatever is printed next takes the line's place.
    void progress(const std::string& text);
    void showProgressAtOnce() { m_progress.showAtOnce(); } // for tests

    // One of several files failed and the others go on: which, and why, on standard error, also with --quiet.
    void nameFailure(const failure& why);
    void nameFailure(const std::string& line); // for terminals already
    // Prints "korvane: " and the failure on standard error and makes the exit status 1.
    void fail(const failure& why);

    // The file that is being worked on, named when memory runs out.
    void workOn(const std::string& path) { m_current_file = path; }
    const std::string& currentFile() const { return m_current_file; }

    int exitStatus() const { return m_exit_status; }

private:
    void printError(const std::string& text); // behind what was printed before, in place of progress

    game_source* m_po_game = nullptr;
    int m_exit_status = 0;
    std::string m_current_file;
    progress_line m_progress;
};

// Checks of option values: a wrong one is a wrong command line (exit status 2).
[[nodiscard]] CLI::Validator notEmpty();
[[nodiscard]] CLI::Validator endingIn(const std::string& ending); // of a file's name, in any case
[[nodiscard]] CLI::Validator finiteNumber();
[[nodiscard]] CLI::Validator wholeNumber(); // from 0 on, at most ten digits

// A float as JSON: the shortest number that reads back to the same binary32 value, or the text "nan", "inf" or "-inf".
[[nodiscard]] json jsonNumber(float value);

} // namespace korvane
