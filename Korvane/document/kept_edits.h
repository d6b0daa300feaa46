#pragma once

// What becomes of edits that are not saved when the program has to end. While a model is edited, an edit_keeper holds
// all that is needed to write it: a copy of the file image, made with the first edit, and the edited fields, brought up
// to date with each edit. So any thread can write them at any moment, also the render thread while the document's
// thread is in the middle of an edit, and without asking anybody. Each keep is a new folder below the keeper's:
//
//   1/model.rigid_model_v2   what a save would have written
//   1/origin.txt             where it came from; written last, so a keep without it is not whole
//
// The next start offers what it finds there, and what it opens stays where it is until it is saved or discarded: a
// program that dies in between loses nothing. Of several programs the one that has the keep's lock has the keep.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/file_lock.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/models/rmv2_writer.h"

#include <mutex>
#include <string>
#include <vector>

namespace korvane
{

class open_files;

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

    [[nodiscard]] bool take(failure& why); // false: another program has it
    void removeAtEnd() { m_is_removed_at_end = true; }

private:
    std::string m_folder;
    file_lock m_lock;
    bool m_is_removed_at_end = false;
};

class edit_keeper
{
public:
    enum class outcome
    {
        nothing, // there were no unsaved edits
        kept,
        failed
    };

    explicit edit_keeper(std::string folder) : m_folder(std::move(folder)) {} // made when something is kept

    const std::string& folder() const { return m_folder; }

    // By the document's thread. hold replaces what was held; the image is copied.
    void hold(const edit_origin& origin, std::span<const std::byte> image, std::vector<image_patch> edits);
    void update(std::vector<image_patch> edits); // of the model that is held
    void release();

    // By any thread, when the program ends. Writes what is held, once; where is its folder then.
    outcome keep(std::string& where, failure& why) noexcept;

private:
    outcome write(std::string& where, failure& why);

    const std::string m_folder;
    std::mutex m_mutex; // guards all below
    bool m_is_holding = false;
    edit_origin m_origin;
    memory_file m_image;
    std::vector<image_patch> m_edits;
};

// The folder of the program itself.
[[nodiscard]] std::string defaultKeepFolder();

// At the start: asks for each keep whether it is to be opened, until one is. What is declined is removed when a
// second question allows it, what is opened when it is saved or discarded; what is damaged is named and left alone,
// what another program has open is passed over. True when the document now shows the edits, as edits that are not
// saved.
bool offerKeptEdits(const std::string& folder, open_files& document, user_prompt& prompt, const log_port& log);

} // namespace korvane
