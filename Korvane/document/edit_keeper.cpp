#include "Korvane/document/edit_keeper.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

void applyEdits(memory_file& image, const std::vector<image_patch>& edits)
{
    for (const image_patch& edit : edits)
        std::copy(edit.bytes.begin(), edit.bytes.end(),
                  image.mutableBytes().begin() + static_cast<std::ptrdiff_t>(edit.file_offset));
}

} // namespace

edit_keeper::~edit_keeper()
{
    if (!m_worker.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_is_ending = true;
    }
    m_changed.notify_all();
    m_worker.join();
}

void edit_keeper::hold(const edit_origin& origin, std::span<const std::byte> image, std::vector<image_patch> edits)
{
    auto po_copy = std::make_shared<memory_file>(image);
    edit_origin own = origin;
    {
        const std::lock_guard lock(m_mutex);
        m_po_image = std::move(po_copy);
        m_origin = std::move(own);
        m_edits = std::move(edits);
        m_is_holding = true;
        wanted();
    }
    m_changed.notify_all();
    if (!m_worker.joinable())
        try
        {
            m_worker = std::thread([this] { work(); });
        }
        catch (const std::system_error&) // the next edit tries again, and keep() needs none
        {
        }
}

void edit_keeper::update(std::vector<image_patch> edits)
{
    {
        const std::lock_guard lock(m_mutex);
        m_edits = std::move(edits);
        wanted();
    }
    m_changed.notify_all();
}

// The pause begins with the first edit, so that a person who never rests is kept, too.
void edit_keeper::wanted()
{
    if (m_edit == m_tried)
        m_due = clock::now() + m_pause;
    ++m_edit;
}

void edit_keeper::release()
{
    {
        const std::lock_guard lock(m_mutex);
        m_is_holding = false;
        m_po_image.reset();
        m_edits.clear();
        m_tried = m_edit;
        m_is_stale = true;
    }
    m_changed.notify_all();
}

void edit_keeper::work()
{
    std::unique_ptr<keep_claim> po_claim; // of the live keep
    std::unique_lock lock(m_mutex);
    for (;;)
    {
        if (m_is_stale)
        {
            m_is_stale = false;
            const std::string stale = std::exchange(m_live, {});
            if (!stale.empty())
            {
                lock.unlock();
                removeKeep(stale);
                lock.lock();
                continue;
            }
        }
        if (m_live.empty())
            po_claim.reset();
        if (m_is_ending)
            return;
        if (!m_is_holding || m_edit == m_tried)
            m_changed.wait(lock);
        else if (clock::now() < m_due)
            m_changed.wait_until(lock, m_due);
        else
            writeNow(lock, po_claim);
    }
}

void edit_keeper::writeNow(std::unique_lock<std::mutex>& lock, std::unique_ptr<keep_claim>& po_claim)
{
    const std::uint64_t edit = m_tried = m_edit;
    failure why;
    bool is_kept = false;
    edit_origin origin;
    try
    {
        origin = m_origin;
        const std::vector<image_patch> edits = m_edits;
        const std::shared_ptr<const memory_file> po_image = m_po_image;
        lock.unlock();
        if (origin.fingerprint.empty())
            origin.fingerprint = fingerprintOf(po_image->bytes());
        memory_file model(po_image->bytes());
        applyEdits(model, edits);
        if (po_claim == nullptr && (po_claim = makeKeep(m_folder, why)) != nullptr)
        {
            lock.lock();
            m_live = po_claim->folder();
            lock.unlock();
        }
        is_kept = po_claim != nullptr && writeKeep(po_claim->folder(), origin, model.bytes(), why);
        if (is_kept && !origin.keep.empty())
            removeKeep(origin.keep);
    }
    catch (const std::exception&)
    {
        why = {};
        fail(why, failure_kind::refused, "no memory", m_folder);
    }
    if (!is_kept && m_log)
        m_log("kept edits: the changes could not be kept: " + describe(why));
    if (!lock.owns_lock())
        lock.lock();
    if (is_kept)
        m_kept = edit;
    if (is_kept && m_origin.keep == origin.keep)
        m_origin.keep.clear();
    if (po_claim != nullptr && (m_live.empty() || !hasNote(po_claim->folder())))
    {
        m_live.clear(); // keep() was quicker, or nothing whole was ever written there
        removeKeep(po_claim->folder());
    }
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
        const outcome result = std::exchange(m_is_holding, false) ? keepHeld(where, why) : outcome::nothing;
        lock.unlock();
        m_changed.notify_all();
        return result;
    }
    catch (...) // nothing below throws but for lack of memory
    {
        why.kind = failure_kind::refused;
        why.what = "no memory"; // short enough to need none
        return outcome::failed;
    }
}

edit_keeper::outcome edit_keeper::keepHeld(std::string& where, failure& why)
{
    m_tried = m_edit;
    const std::string live = std::exchange(m_live, {}); // from now on it is not this program's
    if (!live.empty() && m_kept == m_edit)
        return where = live, outcome::kept;
    m_is_stale = true; // what the worker may be writing just now
    if (m_origin.fingerprint.empty())
        m_origin.fingerprint = fingerprintOf(m_po_image->bytes());
    memory_file model = m_po_image.use_count() == 1 ? std::move(*m_po_image) : memory_file(m_po_image->bytes());
    applyEdits(model, m_edits);
    const std::unique_ptr<keep_claim> po_claim = makeKeep(m_folder, why);
    if (po_claim == nullptr)
        return outcome::failed;
    where = po_claim->folder();
    if (!writeKeep(where, m_origin, model.bytes(), why))
    {
        removeKeep(where);
        return outcome::failed;
    }
    for (const std::string& former : {live, m_origin.keep})
        if (!former.empty())
            removeKeep(former);
    return outcome::kept;
}

} // namespace korvane
