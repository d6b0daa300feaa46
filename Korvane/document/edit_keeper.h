#pragma once

// Keeps the edits of a model that are not saved, so that a program that is killed, crashes or loses its power costs a
// few seconds of work. While a model is edited it holds all that is needed to write it: a copy of the file image, made
// with the first edit, and the edited fields, brought up to date with each edit. A worker writes that to the disk a
// pause after an edit, in a keep (keep_folder.h) that goes when the edits are saved, discarded or undone. And when the
// program has to end any thread can write them at any moment, also the render thread while the document's thread is in
// the middle of an edit, and without asking anybody.

#include "EASY_GUI/services/log_port.h"
#include "Korvane/document/keep_folder.h"
#include "Korvane/models/rmv2_writer.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace korvane
{

class edit_keeper
{
public:
    enum class outcome
    {
        nothing, // there were no unsaved edits
        kept,
        failed
    };

    // The folder is made when something is kept. The log is written to by the worker, when it could not keep.
    explicit edit_keeper(std::string folder, log_port log = {},
                         std::chrono::milliseconds pause = std::chrono::seconds(10))
        : m_folder(std::move(folder))
        , m_log(std::move(log))
        , m_pause(pause)
    {
    }
    ~edit_keeper(); // what is held still is left on the disk as it is
    edit_keeper(const edit_keeper&) = delete;
    edit_keeper& operator=(const edit_keeper&) = delete;

    const std::string& folder() const { return m_folder; }

    // By the document's thread; none waits for the disk. hold replaces what was held; the image is copied.
    void hold(const edit_origin& origin, std::span<const std::byte> image, std::vector<image_patch> edits);
    void update(std::vector<image_patch> edits); // of the model that is held
    void release();                              // they are saved, or not wanted

    // By any thread, when the program ends. Writes what is held, once; where is its folder then.
    outcome keep(std::string& where, failure& why) noexcept;

private:
    using clock = std::chrono::steady_clock;

    void wanted();
    void work();
    void writeNow(std::unique_lock<std::mutex>& lock, std::unique_ptr<keep_claim>& po_claim);
    outcome keepHeld(std::string& where, failure& why);

    const std::string m_folder;
    const log_port m_log;
    const std::chrono::milliseconds m_pause;
    std::thread m_worker; // since the first edit; the document's thread has it

    std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    bool m_is_ending = false;
    bool m_is_holding = false;
    edit_origin m_origin;
    std::shared_ptr<memory_file> m_po_image; // not changed while the worker has it, too
    std::vector<image_patch> m_edits;
    std::uint64_t m_edit = 0;  // counts edits
    std::uint64_t m_tried = 0; // the last edit that the worker has written, or tried to
    std::uint64_t m_kept = 0;  // the last one that lies in the live keep
    clock::time_point m_due;   // while edits were not tried
    std::string m_live;        // the worker's keep; empty: none, or it is nobody's to remove any more
    bool m_is_stale = false;   // the live keep, if there is one, is to be removed
};

} // namespace korvane
