#pragma once

// The page "Problems": what a check says of all that is open, the worst first. Made in three steps, so that the window
// goes on meanwhile: the document's thread makes a request, a value; a worker checks it; the document's thread shows
// the result. Texts are UTF-8.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/document/open_files.h"
#include "Korvane/jobs/finding.h"
#include "Korvane/jobs/model_snapshot.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

struct problem_check
{
    std::shared_ptr<const game_data> game; // never null
    std::optional<model_snapshot> model;   // with its unsaved edits
    std::string definition;                // path; empty: none is open
};
// By the document's thread; the model's image is copied.
[[nodiscard]] problem_check problemCheckOf(const open_files& document);

struct problem_check_result
{
    std::vector<finding> findings; // sorted: by severity, then in the order of the files
    std::size_t files = 0;         // that were checked
    std::string model;             // path of the open one; empty: none
    std::string definition;        // likewise
    bool is_stopped = false;
};
// A worker's. Progress counts files.
[[nodiscard]] problem_check_result checkProblems(const problem_check& check, const work_port& work);

class problem_list : public list_model
{
public:
    void show(problem_check_result result);
    void clear(); // nothing is open, or another file, which is not checked yet
    // The model was edited since: what is listed may no longer be so.
    void markOutdated() { m_is_outdated = m_is_checked; }
    bool isOutdated() const { return m_is_outdated; }
    bool isChecked() const { return m_is_checked; }

    std::span<const list_column> columns() const override; // severity, where, what, file
    std::size_t rowCount() const override { return m_result.findings.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;
    std::string tip(std::size_t row) const override; // the whole sentence

    // "Problems (3)"; notes do not count.
    std::string caption() const;
    // Over an empty list: "Nothing is wrong with guard.rigid_model_v2".
    std::string heading() const;
    // "2 errors, 1 warning in 3 files", or why the list is empty and what to do.
    std::string summary() const;

    // Where a row leads: in the open model to a LOD, group and texture row, as far as the finding has them; else to a
    // file, on the disk or with "pack:", that can be opened.
    struct problem_target
    {
        bool is_in_open_model = false;
        finding_place place = {};
        std::string file = {};
    };
    problem_target target(std::size_t row) const;

    // For the clipboard: the finding with its file on one line; all of them.
    std::string copyText(std::size_t row) const;
    std::string copyText() const;

private:
    problem_check_result m_result;
    bool m_is_checked = false;
    bool m_is_outdated = false;
};

} // namespace korvane
