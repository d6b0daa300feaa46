#pragma once

// "Test...": whether this program and the open model's file agree. The file is read again and compared with what is
// open, decoded again and compared with the decoded model, written without an edit and compared byte by byte, and
// checked for what would go wrong in the game. Nothing but a file in the system's temporary folder is written.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"
#include "Korvane/jobs/finding.h"
#include "Korvane/jobs/model_snapshot.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

// A part of a decoded model, as a number that hardly two contents share.
struct model_part
{
    std::string name; // "LOD 0, group 2: vertices"
    std::uint64_t digest = 0;
};

// All that the check needs, as a value: the model may be edited or closed meanwhile.
struct self_check_request
{
    std::shared_ptr<const game_data> game;    // never null
    model_snapshot model;                     // with its unsaved edits
    std::shared_ptr<const memory_file> image; // without them: the file as it was when it was read or saved
    std::vector<model_part> parts;            // of the decoded model
    std::size_t unsaved_edits = 0;            // fields
};
// By the thread that owns the model; of a model with a million vertices this takes some hundredths of a second.
[[nodiscard]] self_check_request selfCheckOf(const rmv2_file& model, std::shared_ptr<const game_data> game);

enum class self_check_outcome
{
    passed,
    noted, // could not be done, or something to know
    failed
};

struct self_check_step
{
    self_check_outcome outcome = self_check_outcome::passed;
    std::string title; // "Saving without edits"
    std::string text;  // one or two sentences
};

struct self_check_report
{
    std::string path;
    std::vector<self_check_step> steps;
    std::vector<finding> findings; // of the last step
    bool is_stopped = false;       // further steps were not done

    [[nodiscard]] self_check_outcome outcome() const; // the worst
    [[nodiscard]] std::string summary() const;        // one line, for a status bar
    [[nodiscard]] std::string text() const;           // all of it, in lines that end in "\r\n", to be shown and copied
};

// A worker's.
[[nodiscard]] self_check_report runSelfCheck(const self_check_request& request, const work_port& work);

} // namespace korvane
