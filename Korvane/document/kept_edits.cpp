#include "Korvane/document/kept_edits.h"

#include "EASY_GUI/services/file_system.h"
#include "Korvane/document/keep_folder.h"
#include "Korvane/document/open_files.h"
#include "Korvane/game/game_path.h"
#include "Korvane/models/rmv2_writer.h"

#include <memory>
#include <utility>

namespace korvane
{

namespace
{

// A keep as it was read and found whole.
struct kept_model
{
    edit_origin origin;
    std::shared_ptr<rmv2_file> po_model = std::make_shared<rmv2_file>();
};

bool readModel(const std::string& keep, kept_model& kept, failure& why)
{
    std::string path;
    memory_file bytes;
    if (!readKeep(keep, kept.origin, bytes, path, why))
        return false;
    const bool is_mixed = isVersion7OverVersion6(bytes.bytes()); // the model was patched before it was edited
    if (is_mixed ? openMixedVersions(*kept.po_model, std::move(bytes), kept.origin.path, why)
                 : kept.po_model->openFromMemory(std::move(bytes), kept.origin.path, why))
        return true;
    why.path = path;
    return false;
}

bool hasChanged(const edit_origin& origin)
{
    memory_file now;
    failure gone;
    return !game_path(origin.path).isInternal() && // nothing is saved there anyway
           (!now.read(origin.path, gone) || fingerprintOf(now.bytes()) != origin.fingerprint);
}

} // namespace

std::string defaultKeepFolder()
{
    return executableFolder() + "kept_edits";
}

bool offerKeptEdits(const std::string& folder, open_files& document, user_prompt& prompt, const log_port& log)
{
    const std::string title = "Unsaved changes";
    for (const std::string& keep : keepsIn(folder))
    {
        kept_model kept;
        failure why;
        auto claim = std::make_unique<keep_claim>(keep);
        if (!claim->take(why))
        {
            log("kept edits: " + keep + " is left alone: " + describe(why));
            continue;
        }
        if (!hasNote(keep))
        {
            log("kept edits: " + keep + " was never whole, and is removed");
            claim->removeAtEnd();
            continue;
        }
        if (!readModel(keep, kept, why))
        {
            log("kept edits: " + describe(why));
            prompt.show(title,
                        "Changes that were kept when the program ended cannot be opened. They are left where they are:"
                        "\r\n" +
                            keep + "\r\n\r\n" + describe(why),
                        prompt_icon::warning);
            continue;
        }
        const bool has_changed = hasChanged(kept.origin);
        const bool is_wanted = prompt.confirm(
            title,
            "The program ended before the changes to this model were saved:\r\n" + kept.origin.path +
                "\r\n\r\nOpen the model with these changes?" +
                (has_changed ? "\r\n\r\nThe file itself is not what it was then; saving will ask where to." : ""),
            prompt_answer::yes);
        const bool is_unwanted =
            !is_wanted && prompt.confirm(title,
                                         "Discard the changes to this model for good?\r\n" + kept.origin.path +
                                             "\r\n\r\nNo keeps them until the next start.",
                                         prompt_answer::no);
        log("kept edits: " + keep + (is_wanted ? " opened" : is_unwanted ? " discarded" : " left for later"));
        if (is_wanted || is_unwanted)
            claim->removeAtEnd();
        if (!is_wanted)
            continue;
        kept.origin.keep = keep;
        document.openKept(std::move(kept.po_model), std::move(kept.origin), has_changed, std::move(claim));
        return true;
    }
    return false;
}

} // namespace korvane
