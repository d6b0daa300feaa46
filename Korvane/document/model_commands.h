#pragma once

// The commands that change or write what is open, as a person gives them in the main window: which of them make sense
// now, what is asked before, and what is said when it fails. The window calls, and shows the document again afterwards.
// One thread.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/document/document_command.h"
#include "Korvane/document/open_files.h"
#include "Korvane/textures/texture_paths.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// What the document cannot know of the window.
struct window_facts
{
    bool has_view = false; // the 3D view is open
    bool is_busy = false;  // long work runs: nothing else may begin
};

enum class command_outcome
{
    done,         // show the document again
    opened_other, // the same, and put the model's path into the recent files
    cancelled,    // the person changed their mind
    failed        // and was told why
};

// What "Copy textures paths" gives: the paths of the whole model, each once, as archives spell them.
struct copied_texture_paths
{
    std::string announcement;        // for the log and the status line, before
    std::string clipboard;           // a line each
    std::vector<std::string> wanted; // for extraction
    texture_path_table table;        // for the log
};

class model_commands
{
public:
    // All outlive this.
    model_commands(open_files& document, user_prompt& prompt, const config_file& config)
        : m_document(document)
        , m_prompt(prompt)
        , m_config(config)
    {
    }

    bool isEnabled(document_command command, const window_facts& facts = {}) const;

    // For commands that need the archives, before they begin. False: no data folder is set up, and the person was told
    // so; the window then offers the dialog for them.
    [[nodiscard]] bool mayUseArchives();

    // To the model's own path; without edits only where that file is gone and the person wants it back. A model
    // out of an archive, and one whose file has become another, get one first. A model that was patched is only written
    // after a warning, and the patched file is offered instead.
    command_outcome save();
    command_outcome saveAs();
    command_outcome patch();
    command_outcome reset();
    command_outcome undo();
    command_outcome redo();
    // A texture file for a row of the selected group. notes of the edit are shown.
    command_outcome chooseTexture(std::size_t row);
    command_outcome chooseAlphaMode(int position);
    // As typed into the row's two fields. What is odd about the path is said behind what was done.
    command_outcome setTexturePath(std::size_t row, const std::string& directory, const std::string& file);
    // A text or the path of a file, pasted into the row or dropped on it (pasted_path.h).
    command_outcome pasteIntoTexture(std::size_t row, std::string_view text);
    command_outcome replacePathPrefix(std::string_view wanted, std::string_view replacement);
    [[nodiscard]] copied_texture_paths copyTexturePaths();
    // What the last of these commands did, for the status line: "Saved body.rigid_model_v2", "Undone: alpha mode of LOD
    // 1, group 2: ...". Empty: it did nothing, or has shown a box.
    const std::string& lastAction() const { return m_last_action; }
    // The folder of the file that was last chosen for a row; empty: none yet.
    const std::string& chosenFolder(std::size_t row) const { return m_chosen_folders.at(row); }

    // After lookAtDisk(): asks whether the file is to be read again; edits that are not saved are not lost without that
    // being said. A file that is gone stays open, and lastAction() says so.
    command_outcome offerReread(const disk_change& change);

    // Before the model is replaced or the program ends: asks what becomes of unsaved edits. False: all stays as it is,
    // also when they were to be saved and could not be. outcome: of the save, else cancelled.
    [[nodiscard]] bool mayLeaveModel(command_outcome& outcome);

private:
    bool hasModel() const { return m_document.model().hasModel(); }
    command_outcome saveTo(const std::string& path);
    command_outcome saveUnedited(const std::string& path);
    std::optional<std::string> pickModelPath(const std::string& title, const save_suggestion& suggestion);
    std::string diskPath() const;               // of the open model's file; empty: it lies in an archive
    std::string modFolder() const;              // the one on top; empty: none is set
    bool mayWriteOver(const std::string& path); // what another program has put there meanwhile
    // For a model whose file would say 7 over version 6 headers: done when it is to be written nevertheless.
    command_outcome confirmMixedVersions();
    command_outcome showNotes(const edit_result& result);

    command_outcome done(std::string action);

    open_files& m_document;
    user_prompt& m_prompt;
    const config_file& m_config;
    std::string m_last_action;
    std::array<std::string, texture_row_count> m_chosen_folders;
};

} // namespace korvane
