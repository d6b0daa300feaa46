#pragma once

// The model that is open, what is selected in it, and its edits. No window is known here; texts are UTF-8. One thread.

#include "EASY_GUI/services/failure.h"
#include "Korvane/document/edit_keeper.h"
#include "Korvane/document/model_editor.h"
#include "Korvane/document/panel_contents.h"
#include "Korvane/game/game_data.h"
#include "Korvane/models/rmv2_file.h"

#include <memory>
#include <string>

namespace korvane
{

class open_model
{
public:
    // A model that was just read, in place of what was open with its edits. The first LOD and group are chosen; of the
    // same path opened again the former ones, as far as it has them.
    void take(std::shared_ptr<rmv2_file> model);
    void close();
    // Edits that were kept when a program ended, in place of what was open: they are not saved, and there is no undo to
    // before them. is_elsewhere: what stands at the path now is not what was edited, a save has to ask for a path. The
    // keep goes when they are saved, or the model is closed or replaced.
    void openKept(std::shared_ptr<rmv2_file> model, edit_origin origin, bool is_elsewhere,
                  std::unique_ptr<keep_claim> claim);
    bool savesElsewhere() const { return m_saves_elsewhere; }
    // Holds the unsaved edits from now on; outlives the model.
    void setKeeper(edit_keeper& keeper) { m_po_keeper = &keeper; }

    bool hasModel() const { return m_po_file != nullptr; }
    const rmv2_file* file() const { return m_po_file.get(); } // null: none
    // The decoded model for others to keep; null: none. It lives as long as anybody holds it. Edits change it on this
    // thread: who reads it on another one makes a copy first.
    std::shared_ptr<const RMV2_FILE_DATA> data() const;

    const model_selection& selection() const { return m_selection; }
    void select(model_selection wanted); // clamped to what the model has
    // The selected group; null when there is none.
    const group_data* selectedGroup() const;

    // "Fill all LODs in GROUP": the next edits go to the group of the same name in every LOD.
    bool fillsAllLods() const { return m_scope == edit_scope::all_lods; }
    void setFillsAllLods(bool is_wanted) { m_scope = is_wanted ? edit_scope::all_lods : edit_scope::one_group; }

    // The choice at a position of alphaModes(), for the selected group. Without one, and for -1, nothing changes.
    edit_result chooseAlphaMode(int position);
    // The texture in a row of the selected group gets the name of the chosen file behind its own directory.
    edit_result chooseTexture(std::size_t row, const std::string& chosen_file);
    // The path of a row as it was typed into its two fields. A field that still says what textureRows() put there keeps
    // the bytes that it stands for.
    edit_result setTexturePath(std::size_t row, std::string directory, std::string file);
    // model_editor.h
    edit_result replacePathPrefix(std::string_view wanted, std::string_view replacement);
    [[nodiscard]] std::vector<field_change> previewPathPrefix(std::string_view wanted,
                                                              std::string_view replacement) const;
    bool isEdited() const { return m_po_editor != nullptr && m_po_editor->isEdited(); }
    bool canUndo() const { return m_po_editor != nullptr && m_po_editor->canUndo(); }
    bool canRedo() const { return m_po_editor != nullptr && m_po_editor->canRedo(); }
    std::string undo(); // what it changed, for a status line
    std::string redo();
    // Edits that a save would write, and those that none can. Empty without a model.
    [[nodiscard]] std::vector<field_change> changes() const;

    // Korvane/models/rmv2_writer.h, with a model open. Saving clears the edited flag; on failure all stays as it was.
    [[nodiscard]] bool save(const std::string& path, failure& why);
    [[nodiscard]] bool patch(const std::string& path, failure& why);
    // Where the open model was patched to; empty: it was not.
    const std::string& patchedPath() const { return m_patched_path; }

private:
    enum class image_state
    {
        same, // as the keeper got it
        other
    };
    void replace(std::shared_ptr<rmv2_file> model);
    edit_result setPath(std::size_t row, std::string_view path);
    void tellKeeper(image_state state); // after all that changes the edits

    edit_keeper* m_po_keeper = nullptr;
    bool m_is_held = false; // by the keeper
    edit_origin m_origin;   // of kept edits
    std::unique_ptr<keep_claim> m_po_claim;
    bool m_saves_elsewhere = false;
    std::shared_ptr<rmv2_file> m_po_file;
    std::unique_ptr<model_editor> m_po_editor; // of the file
    model_selection m_selection;
    edit_scope m_scope = edit_scope::one_group;
    std::string m_patched_path;
};

} // namespace korvane
