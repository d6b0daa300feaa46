#include "EASY_GUI/services/positioned_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvane
{

bool positioned_file::open(const std::string& path, failure& why)
{
    close();
    // Without waiting: opening a pipe would wait for its writer.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return fail(why, errno == ENOENT ? failure_kind::not_found : failure_kind::unreadable,
                    std::string("the file cannot be opened: ") + std::strerror(errno), path);
    m_handle = descriptor;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
    {
        close();
        return fail(why, failure_kind::unreadable, "this is not a file", path);
    }
    m_size = static_cast<std::uint64_t>(status.st_size);
    m_modification_time = std::int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec;
    return true;
}

void positioned_file::close()
{
    if (isOpen())
        ::close(static_cast<int>(m_handle));
    m_handle = no_handle;
}

bool positioned_file::readAt(std::uint64_t position, std::span<std::byte> target) const
{
    while (!target.empty())
    {
        const ssize_t count =
            ::pread(static_cast<int>(m_handle), target.data(), target.size(), static_cast<off_t>(position));
        if (count == 0 || (count < 0 && errno != EINTR))
            return false;
        if (count > 0)
        {
            target = target.subspan(static_cast<std::size_t>(count));
            position += static_cast<std::uint64_t>(count);
        }
    }
    return true;
}

} // namespace korvane
