#include "Korvane/document/keep_folder.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>

namespace korvane
{

namespace
{

constexpr const char* model_names[] = {"model.rigid_model_v2", "model_2.rigid_model_v2"};
constexpr const char* note_name = "origin.txt";
constexpr int most_keeps = 1000;

struct keep_note
{
    edit_origin origin;
    std::string file;
    std::string fingerprint; // of that file
};

std::string noteText(const keep_note& note)
{
    return "Changes to a model that were not saved when the program ended. The next start offers to open them.\n"
           "model: " +
           note.origin.path + "\nbefore the changes: " + note.origin.fingerprint + "\nfile: " + note.file +
           "\nwith the changes: " + note.fingerprint + "\n";
}

bool readNote(const std::string& path, keep_note& note, failure& why)
{
    memory_file bytes;
    if (!bytes.read(path, why))
        return false;
    std::map<std::string_view, std::string> values;
    for (std::string_view rest = bytes.text(); !rest.empty();)
    {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (const std::size_t colon = line.find(": "); colon != std::string_view::npos)
            values[line.substr(0, colon)] = line.substr(colon + 2);
    }
    // Without a file: of a version of the program that knew one name only.
    note = {{values["model"], values["before the changes"], {}},
            values["file"] == model_names[1] ? model_names[1] : model_names[0],
            values["with the changes"]};
    return (!note.origin.path.empty() && !note.origin.fingerprint.empty() && !note.fingerprint.empty()) ||
           fail(why, failure_kind::malformed, "the note is not whole", path);
}

// 0: another folder.
int keepNumber(const std::string& name)
{
    int number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool is_keep = error == std::errc() && number >= 1 && number <= most_keeps && name == std::to_string(number);
    return is_keep ? number : 0;
}

// With a separator at the end.
std::string keepFolder(const std::string& folder, int number)
{
    return toUtf8(toPath(folder) / std::to_string(number) / "");
}

} // namespace

keep_claim::~keep_claim()
{
    if (m_is_removed_at_end)
        removeKeep(m_folder);
}

bool keep_claim::take(failure& why)
{
    return m_lock.take(m_folder + note_name, std::chrono::milliseconds(0), why);
}

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

std::vector<std::string> keepsIn(const std::string& folder)
{
    std::set<int> numbers; // the folder lists them in any order
    std::error_code error;
    for (std::filesystem::directory_iterator at(toPath(folder), error), end; at != end && !error; at.increment(error))
        if (const int number = keepNumber(toUtf8(at->path().filename())); number != 0 && at->is_directory(error))
            numbers.insert(number);
    std::vector<std::string> keeps;
    for (const int number : numbers)
        keeps.push_back(keepFolder(folder, number));
    return keeps;
}

std::unique_ptr<keep_claim> makeKeep(const std::string& folder, failure& why)
{
    std::error_code error;
    std::filesystem::create_directories(toPath(folder), error);
    for (int i = 1; i <= most_keeps && !error; ++i)
    {
        const std::string keep = keepFolder(folder, i);
        if (!std::filesystem::create_directory(toPath(keep).parent_path(), error)) // somebody else's
            continue;
        auto po_claim = std::make_unique<keep_claim>(keep);
        failure taken;
        if (po_claim->take(taken) && std::filesystem::is_directory(toPath(keep), error))
            return po_claim;
        removeKeep(keep); // its number is still another program's, which has just removed its own
    }
    fail(why, failure_kind::refused, "no folder can be made there", folder);
    return nullptr;
}

// The note first: what is left when that is the end of the program is nobody's.
void removeKeep(const std::string& keep)
{
    std::error_code error;
    std::filesystem::remove(toPath(keep + note_name), error);
    std::filesystem::remove_all(toPath(keep), error);
}

bool hasNote(const std::string& keep)
{
    std::error_code error;
    return std::filesystem::exists(toPath(keep + note_name), error);
}

bool writeKeep(const std::string& keep, const edit_origin& origin, std::span<const std::byte> model, failure& why)
{
    keep_note former;
    failure none;
    const bool has_former = readNote(keep + note_name, former, none);
    const bool is_second = has_former && former.file == model_names[0];
    const keep_note note{origin, model_names[is_second ? 1 : 0], fingerprintOf(model)};
    std::error_code error;
    const bool is_written =
        writeWholeFile(keep + note.file, model, why) && writeWholeFile(keep + note_name, noteText(note), why);
    if (!is_written || has_former)
        std::filesystem::remove(toPath(keep + (is_written ? former.file : note.file)), error);
    return is_written;
}

bool readKeep(const std::string& keep, edit_origin& origin, memory_file& model, std::string& model_path, failure& why)
{
    keep_note note;
    if (!readNote(keep + note_name, note, why))
        return false;
    model_path = keep + note.file;
    if (!model.read(model_path, why))
        return false;
    origin = std::move(note.origin);
    return fingerprintOf(model.bytes()) == note.fingerprint ||
           fail(why, failure_kind::malformed, "the file is not the one that was kept", model_path);
}

} // namespace korvane
