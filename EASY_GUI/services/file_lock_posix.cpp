#include "EASY_GUI/services/file_lock.h"

#include "EASY_GUI/services/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

namespace korvane
{

// The folder is locked, for the file itself is replaced whenever somebody writes it.
struct file_lock::holder
{
    explicit holder(const std::filesystem::path& folder) : descriptor(open(folder.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~holder()
    {
        if (descriptor >= 0)
            close(descriptor); // gives the lock back
    }
    holder(const holder&) = delete;
    holder& operator=(const holder&) = delete;

    int descriptor;
};

file_lock::file_lock() = default;
file_lock::~file_lock() = default;

bool file_lock::take(const std::string& path, std::chrono::milliseconds patience, failure& why)
{
    constexpr std::chrono::milliseconds pause(2);
    std::filesystem::path folder = toPath(path).parent_path();
    if (folder.empty())
        folder = ".";
    auto po_holder = std::make_unique<holder>(folder);
    if (po_holder->descriptor < 0)
        return fail(why, failure_kind::unwritable, std::string("its folder cannot be locked: ") + std::strerror(errno),
                    path);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (flock(po_holder->descriptor, LOCK_EX | LOCK_NB) != 0)
    {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return fail(why, failure_kind::unwritable,
                        std::string("its folder cannot be locked: ") + std::strerror(errno), path);
        if (std::chrono::steady_clock::now() > end)
            return fail(why, failure_kind::unwritable, "another program does not let go of it", path);
        std::this_thread::sleep_for(pause);
    }
    m_po_holder = std::move(po_holder);
    return true;
}

} // namespace korvane
