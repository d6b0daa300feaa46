#pragma once

// The model that is open and what is selected in it. No window is known here; texts are UTF-8. One thread.

#include "EASY_GUI/services/failure.h"
#include "Korvane/document/panel_contents.h"
#include "Korvane/models/rmv2_file.h"

#include <memory>
#include <string>

namespace korvane
{

class open_model
{
public:
    // Reads the model at a path, on the disk or with "pack:" in the archives. On failure what was open stays open, with
    // its selection. The former selection is kept as far as the new model has it, else the first LOD and group are
    // chosen.
    [[nodiscard]] bool open(const std::string& path, failure& why);

    bool hasModel() const { return m_po_file != nullptr; }
    const rmv2_file* file() const { return m_po_file.get(); } // null: none
    // The decoded model for others to keep; null: none. It lives as long as anybody holds it.
    std::shared_ptr<const RMV2_FILE_DATA> data() const;

    const model_selection& selection() const { return m_selection; }
    void select(model_selection wanted); // clamped to what the model has
    // The selected group; null when there is none.
    const group_data* selectedGroup() const;

private:
    std::shared_ptr<const rmv2_file> m_po_file;
    model_selection m_selection;
};

} // namespace korvane
