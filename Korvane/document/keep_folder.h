#pragma once

// Edits that were not saved, as they lie on the disk: a folder with a number for its name.
//
//   1/model.rigid_model_v2   what a save would have written
//   1/origin.txt             where it came from, and which file beside it is the model; without it a keep is not whole
//
// A keep that is written anew gets its model under the other of two names, then the note that says so, and only then
// the former model goes: a program that dies at any moment leaves one that is whole.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/file_lock.h"
#include "EASY_GUI/services/memory_file.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

// Where edits that are to be kept belong.
struct edit_origin
{
    std::string path;        // of the model, on the disk or with "pack:"
    std::string fingerprint; // of the file that the first of the edits was made to; empty: of the image handed over
    std::string keep = {};   // in which they were before; goes when they are kept anew; empty: in none
};

// A keep that this program has: no other one is offered it meanwhile. By the thread that made it.
class keep_claim
{
public:
    explicit keep_claim(std::string folder) : m_folder(std::move(folder)) {}
    ~keep_claim();
    keep_claim(const keep_claim&) = delete;
    keep_claim& operator=(const keep_claim&) = delete;

    const std::string& folder() const { return m_folder; } // with a separator at its end
    [[nodiscard]] bool take(failure& why);                 // false: another program has it
    void removeAtEnd() { m_is_removed_at_end = true; }

private:
    std::string m_folder;
    file_lock m_lock;
    bool m_is_removed_at_end = false;
};

// Tells a file that was changed since from the one that was edited; no defence against intent.
[[nodiscard]] std::string fingerprintOf(std::span<const std::byte> bytes);

// Keeps below a folder, in the order in which they were made, with a separator at the end of each.
[[nodiscard]] std::vector<std::string> keepsIn(const std::string& folder);
// An empty new one, claimed; null: none can be made there.
[[nodiscard]] std::unique_ptr<keep_claim> makeKeep(const std::string& folder, failure& why);
void removeKeep(const std::string& keep);
[[nodiscard]] bool hasNote(const std::string& keep);

// The origin has a fingerprint. On failure what was there before stays.
[[nodiscard]] bool writeKeep(const std::string& keep, const edit_origin& origin, std::span<const std::byte> model,
                             failure& why);
// model_path: of the model's file, when that was known.
[[nodiscard]] bool readKeep(const std::string& keep, edit_origin& origin, memory_file& model, std::string& model_path,
                            failure& why);

} // namespace korvane
