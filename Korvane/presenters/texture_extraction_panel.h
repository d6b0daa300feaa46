#pragma once

// "Find+Upack DDS": what is wanted, where it goes and how, and what is said of the result. The folder and the choices
// are remembered. For the thread that owns the configuration, but for the run, which is a worker's.

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/document/open_model.h"
#include "Korvane/jobs/texture_extraction.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class texture_extraction_panel
{
public:
    enum class form
    {
        dds, // as they are
        png,
        targa
    };

    // The configuration outlives this.
    explicit texture_extraction_panel(shared_config& config);

    // "Select Dir...". Empty: none is chosen yet, and the window asks for one.
    const std::string& folder() const { return m_folder; }
    [[nodiscard]] std::string folderText() const; // a line for the panel, while nothing was extracted
    void setFolder(const std::string& folder);
    bool isFlat() const { return m_is_flat; }
    void setFlat(bool is_flat);
    form writtenAs() const { return m_form; }
    void setWrittenAs(form wanted);

    // "Copy textures paths": fills the wanted list from the model; the distinct file names for the clipboard. Until
    // then what is wanted is what the open model names.
    [[nodiscard]] std::string copyPaths(const rmv2_file& model);
    void forgetPaths() { m_wanted.clear(); } // another model was opened

    struct request
    {
        std::shared_ptr<const game_data> game; // never null
        std::vector<wanted_texture> wanted;
        texture_extraction_options options;
    };
    // overwrites: files that differ are written over, after the person was asked (keptQuestion).
    [[nodiscard]] request requestFor(const open_model& model, std::shared_ptr<const game_data> game,
                                     bool overwrites = false) const;
    [[nodiscard]] static texture_extraction_result run(const request& wanted, const work_port& work)
    {
        return extractTextures(*wanted.game, wanted.wanted, wanted.options, work);
    }

    // "12 DDS files extracted."; then what else there is to say, on the same line, and where they are.
    [[nodiscard]] static std::string countText(const texture_extraction_result& result,
                                               const texture_extraction_options& options);
    // Each texture that was not extracted, with the reason, a line each; empty: none.
    [[nodiscard]] static std::string missingText(const texture_extraction_result& result);
    // To be asked when other files were in the way; empty: none were.
    [[nodiscard]] static std::string keptQuestion(const texture_extraction_result& result);

private:
    void remember();

    shared_config& m_config;
    std::string m_folder;
    bool m_is_flat = false;
    form m_form = form::dds;
    std::vector<wanted_texture> m_wanted; // of "Copy textures paths"
};

} // namespace korvane
