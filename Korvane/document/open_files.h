#pragma once

// The document of the program: a model and a variant mesh definition are open independently of each other, and the view
// shows the one that was opened last. What is opened by which path, the title, the status line and the texts of a
// failure are decided here. No window is known; texts are UTF-8. One thread.

#include "Korvane/document/disk_follower.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/document/open_model.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// The texts of the message box for a file that could not be opened.
struct open_error
{
    std::string title;
    std::string text;
};
[[nodiscard]] open_error describeOpenFailure(const std::string& path, const failure& why, const game_data& game);

// Of several files that are given at once, those that can be open at the same time: the first model, the first
// definition and the first FBX file, in the order in which they were given.
struct file_choice
{
    std::vector<std::string> opened;
    std::vector<std::string> left_out;

    [[nodiscard]] std::string describeLeftOut() const; // for a message box
};
[[nodiscard]] file_choice chooseFiles(const std::vector<std::string>& paths);

// True when a file goes to the FBX import: by the ending of its path, in any case.
[[nodiscard]] bool isFbxPath(const std::string& path);

// A file that was read and is not open yet.
struct opened_file
{
    std::shared_ptr<rmv2_file> model; // null: it is a definition
    open_definition definition;
    std::string disk_path; // where it lies; empty: in an archive
    file_stamp stamp;
};

// A file that is open and was changed by another program.
struct disk_change
{
    std::string path; // as it was opened
    bool is_model = true;
    bool is_gone = false; // else it is another one now
};

class open_files
{
public:
    enum class kind
    {
        nothing,
        model,
        definition
    };

    // Out of which game paths are opened from now on: without one the disk alone.
    void setGame(std::shared_ptr<const game_data> game) { m_po_game = std::move(game); }
    const std::shared_ptr<const game_data>& game() const { return m_po_game; } // never null

    // Reads a path by its ending, on the disk or with "pack:" out of the game. Any thread.
    [[nodiscard]] static bool read(const std::string& path, const game_data& game, opened_file& file, failure& why);
    void take(opened_file file); // opens what was read
    // Both at once. On failure nothing changes.
    [[nodiscard]] bool open(const std::string& path, failure& why);
    // After another game was set: opens again what came out of it, and the definition, whose references do.
    // What can no longer be opened stays as it was; a message for each. A model with edits is left alone.
    [[nodiscard]] std::vector<open_error> reopen();

    void openKept(std::shared_ptr<rmv2_file> model, edit_origin origin, bool is_elsewhere,
                  std::unique_ptr<keep_claim> claim); // open_model.h

    // Reads one of the files that are open again; which is shown stays.
    [[nodiscard]] bool reread(const std::string& path, failure& why);

    // What other programs have changed since the last call, each change once. Cheap; called now and then.
    [[nodiscard]] std::vector<disk_change> lookAtDisk();
    // True when a save would write over what another program has put into the model's place.
    bool isModelChangedOnDisk() const { return m_model_follower.isOther(); }
    void modelWasWritten() { followModel(m_model.file()->path()); } // by this program

    kind shown() const { return m_shown; } // what was opened last
    // "Reset": nothing is open any more.
    void close();

    const open_model& model() const { return m_model; }
    open_model& model() { return m_model; }
    const open_definition& definition() const { return m_definition; }
    bool chooseAlternatives(const figure_choice& alternatives) { return m_definition.choose(alternatives); }
    void select(model_selection wanted) { m_model.select(wanted); }

    // "Korvane 1.2.3a   RMV2: [body.rigid_model_v2] VMD: [no file loaded]", and "*[edited]" behind it.
    [[nodiscard]] std::string title() const;
    // File name without its ending of what is shown; empty: nothing is.
    [[nodiscard]] std::string shownName() const;
    // One line about what is shown; drawn is what the view made of a definition.
    [[nodiscard]] std::string status(const std::optional<drawn_models>& drawn) const;

private:
    std::shared_ptr<const game_data> m_po_game = std::make_shared<const game_data>();
    void followModel(const std::string& path);

    open_model m_model;
    open_definition m_definition;
    disk_follower m_model_follower;
    disk_follower m_definition_follower;
    kind m_shown = kind::nothing;
};

} // namespace korvane
