#include "Korvane/document/kept_edits.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/document/open_files.h"
#include "Korvane/game/game_path.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <thread>
#include <utility>

namespace korvane
{

namespace
{

constexpr const char* model_name = "model.rigid_model_v2";
constexpr const char* note_name = "origin.txt";
constexpr int most_keeps = 1000;

// Tells a file that was changed since from the one that was edited; no defence against intent.
std::string fingerprintOf(std::span<const std::byte> bytes)
{
    std::uint64_t hash = 0xcbf29ce484222325; // FNV-1a
    for (const std::byte value : bytes)
        hash = (hash ^ static_cast<std::uint64_t>(value)) * 0x100000001b3;
    char text[48];
    std::snprintf(text, sizeof text, "%llu bytes, %016llx", static_cast<unsigned long long>(bytes.size()),
                  static_cast<unsigned long long>(hash));
    return text;
}

std::string noteText(const edit_origin& origin, const std::string& kept)
{
    return "Changes to a model that were not saved when the program ended. The next start offers to open them.\n"
           "model: " +
           origin.path + "\nbefore the changes: " + origin.fingerprint + "\nwith the changes: " + kept + "\n";
}

// A keep as it was read and found whole.
struct kept_model
{
    edit_origin origin;
    std::shared_ptr<rmv2_file> po_model = std::make_shared<rmv2_file>();
};

bool readNote(const std::string& path, edit_origin& origin, std::string& kept, failure& why)
{
    memory_file note;
    if (!note.read(path, why))
        return false;
    std::map<std::string_view, std::string> values;
    for (std::string_view rest = note.text(); !rest.empty();)
    {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (const std::size_t colon = line.find(": "); colon != std::string_view::npos)
            values[line.substr(0, colon)] = line.substr(colon + 2);
    }
    origin = {values["model"], values["before the changes"], {}};
    kept = values["with the changes"];
    return (!origin.path.empty() && !origin.fingerprint.empty() && !kept.empty()) ||
           fail(why, failure_kind::malformed, "the note is not whole", path);
}

bool readKeep(const std::string& folder, kept_model& keep, failure& why)
{
    std::string fingerprint;
    memory_file bytes;
    if (!readNote(folder + note_name, keep.origin, fingerprint, why) || !bytes.read(folder + model_name, why))
        return false;
    if (fingerprintOf(bytes.bytes()) != fingerprint)
        return fail(why, failure_kind::malformed, "the file is not the one that was kept", folder + model_name);
    const bool is_mixed = isVersion7OverVersion6(bytes.bytes()); // the model was patched before it was edited
    if (is_mixed ? openMixedVersions(*keep.po_model, std::move(bytes), keep.origin.path, why)
                 : keep.po_model->openFromMemory(std::move(bytes), keep.origin.path, why))
        return true;
    why.path = folder + model_name;
    return false;
}

bool hasChanged(const edit_origin& origin)
{
    memory_file now;
    failure gone;
    return !game_path(origin.path).isInternal() && // nothing is saved there anyway
           (!now.read(origin.path, gone) || fingerprintOf(now.bytes()) != origin.fingerprint);
}

// With a separator at the end.
std::string keepFolder(const std::string& folder, int number)
{
    return toUtf8(toPath(folder) / std::to_string(number) / "");
}

// In the order in which they were made.
std::vector<std::string> keepsIn(const std::string& folder)
{
    std::vector<std::string> keeps;
    std::error_code error;
    for (int i = 1; i <= most_keeps; ++i)
        if (std::string keep = keepFolder(folder, i); std::filesystem::is_directory(toPath(keep), error))
            keeps.push_back(std::move(keep));
    return keeps;
}

void removeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::remove_all(toPath(folder), error);
}

} // namespace

keep_claim::~keep_claim()
{
    if (m_is_removed_at_end)
        removeFolder(m_folder);
}

bool keep_claim::take(failure& why)
{
    return m_lock.take(m_folder + note_name, std::chrono::milliseconds(0), why);
}

std::string defaultKeepFolder()
{
    return executableFolder() + "kept_edits";
}

void edit_keeper::hold(const edit_origin& origin, std::span<const std::byte> image, std::vector<image_patch> edits)
{
    memory_file copy(image);
    edit_origin own = origin;
    const std::lock_guard lock(m_mutex);
    m_image = std::move(copy);
    m_origin = std::move(own);
    m_edits = std::move(edits);
    m_is_holding = true;
}

void edit_keeper::update(std::vector<image_patch> edits)
{
    const std::lock_guard lock(m_mutex);
    m_edits = std::move(edits);
}

void edit_keeper::release()
{
    const std::lock_guard lock(m_mutex);
    m_is_holding = false;
    m_image = {};
    m_edits.clear();
}

edit_keeper::outcome edit_keeper::keep(std::string& where, failure& why) noexcept
{
    try
    {
        // Not lock(): a thread that crashed while it handed edits over never gives the mutex back.
        std::unique_lock lock(m_mutex, std::defer_lock);
        for (int tries = 0; !lock.try_lock(); ++tries)
        {
            if (tries == 200)
                return fail(why, failure_kind::refused, "the edits are in use"), outcome::failed;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return std::exchange(m_is_holding, false) ? write(where, why) : outcome::nothing;
    }
    catch (...) // nothing below throws but for lack of memory
    {
        why.kind = failure_kind::refused;
        why.what = "no memory"; // short enough to need none
        return outcome::failed;
    }
}

edit_keeper::outcome edit_keeper::write(std::string& where, failure& why)
{
    if (m_origin.fingerprint.empty())
        m_origin.fingerprint = fingerprintOf(m_image.bytes());
    for (const image_patch& edit : m_edits)
        std::copy(edit.bytes.begin(), edit.bytes.end(),
                  m_image.mutableBytes().begin() + static_cast<std::ptrdiff_t>(edit.file_offset));

    std::error_code error;
    std::filesystem::create_directories(toPath(m_folder), error);
    for (int i = 1; i <= most_keeps && !error; ++i)
    {
        const std::string folder = keepFolder(m_folder, i);
        if (!std::filesystem::create_directory(toPath(folder).parent_path(), error)) // somebody else's
            continue;
        where = folder;
        if (writeWholeFile(folder + model_name, m_image.bytes(), why) &&
            writeWholeFile(folder + note_name, noteText(m_origin, fingerprintOf(m_image.bytes())), why))
        {
            if (!m_origin.keep.empty())
                removeFolder(m_origin.keep);
            return outcome::kept;
        }
        removeFolder(folder);
        return outcome::failed;
    }
    return fail(why, failure_kind::refused, "no folder can be made there", m_folder), outcome::failed;
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
        if (!readKeep(keep, kept, why))
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
