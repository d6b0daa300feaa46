#include "EASY_GUI/services/file_lock.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/kernel_handle_win.h"
#include "EASY_GUI/services/text.h"

#include <cstdint>

namespace korvane
{

// A mutex named after the file: it needs no right to write beside it.
struct file_lock::holder
{
    explicit holder(const std::wstring& name) : mutex(CreateMutexW(nullptr, FALSE, name.c_str())) {}
    ~holder()
    {
        if (is_held)
            ReleaseMutex(mutex.get());
    }
    holder(const holder&) = delete;
    holder& operator=(const holder&) = delete;

    unique_kernel_handle mutex;
    bool is_held = false;
};

namespace
{

// Names end at 260 characters and have no '\', so that the path's hash stands for it.
std::wstring lockName(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(toPath(path), error);
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char character : toLower(error ? path : toUtf8(whole)))
        hash = (hash ^ static_cast<unsigned char>(character == '/' ? '\\' : character)) * 0x100000001b3u;
    return L"Local\\Korvane-file-" + std::to_wstring(hash);
}

} // namespace

file_lock::file_lock() = default;
file_lock::~file_lock() = default;

bool file_lock::take(const std::string& path, std::chrono::milliseconds patience, failure& why)
{
    auto po_holder = std::make_unique<holder>(lockName(path));
    if (!po_holder->mutex)
        return fail(why, failure_kind::unwritable, "the system gives no lock", path);
    const DWORD outcome = WaitForSingleObject(po_holder->mutex.get(), static_cast<DWORD>(patience.count()));
    po_holder->is_held = outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED; // abandoned: its holder died
    if (!po_holder->is_held)
        return fail(why, failure_kind::unwritable, "another program does not let go of it", path);
    m_po_holder = std::move(po_holder);
    return true;
}

} // namespace korvane
