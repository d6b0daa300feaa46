#pragma once

// "Take Out...": where files of the archives go and in which form, and what is said of the result. What was chosen is
// remembered. For the thread that owns the configuration.

#include "EASY_GUI/services/shared_config.h"
#include "Korvane/jobs/extract_job.h"

#include <cstddef>
#include <optional>
#include <string>

namespace korvane
{

class take_out_choices
{
public:
    enum class texture_form
    {
        as_they_are,
        png,
        targa
    };

    // The configuration outlives this.
    explicit take_out_choices(shared_config& config);

    const std::string& folder() const { return m_folder; }
    void setFolder(const std::string& typed); // blanks and quotation marks around it are left away
    bool isFlat() const { return m_is_flat; }
    void setFlat(bool is_flat) { m_is_flat = is_flat; }
    texture_form textures() const { return m_textures; }
    void setTextures(texture_form wanted) { m_textures = wanted; }
    bool replaces() const { return m_replaces; }
    void setReplaces(bool replaces) { m_replaces = replaces; }

    // Why nothing can be written, for the person; nothing: it can, as far as that shows before.
    std::optional<std::string> problem() const;
    extract_job_options options() const;
    void remember();

private:
    shared_config& m_config;
    std::string m_folder;
    bool m_is_flat = false;
    texture_form m_textures = texture_form::as_they_are;
    bool m_replaces = false;
};

struct take_out_report
{
    std::string line; // "12 files extracted to C:\out; 2 failed; stopped."
    std::string text; // what is to be known besides, in lines that end in "\r\n"; empty: nothing
};
// Of what was done up to a stop, when there was one.
[[nodiscard]] take_out_report reportOf(const extract_job_result& result, const std::string& folder, bool is_whole);

} // namespace korvane
