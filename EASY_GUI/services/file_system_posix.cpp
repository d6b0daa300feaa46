#include "EASY_GUI/services/file_system_platform.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvane::platform
{

namespace
{

bool failWithErrno(std::string& reason)
{
    reason = std::strerror(errno);
    return false;
}

} // namespace

std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(text);
}

std::string utf8FromPath(const std::filesystem::path& path)
{
    return path.native();
}

std::filesystem::path executablePath()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

unsigned long processId()
{
    return static_cast<unsigned long>(getpid());
}

bool writeNewFile(const std::filesystem::path& file, std::span<const std::byte> bytes, bool is_flushed,
                  std::string& reason)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return failWithErrno(reason);
    bool is_written = true;
    while (is_written && !bytes.empty())
    {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            is_written = failWithErrno(reason);
    }
    if (is_flushed && is_written && ::fsync(descriptor) != 0)
        is_written = failWithErrno(reason);
    if (::close(descriptor) != 0 && is_written)
        is_written = failWithErrno(reason);
    return is_written;
}

bool replaceFile(const std::filesystem::path& source, const std::filesystem::path& target, std::string& reason)
{
    struct stat present = {};
    const bool is_present = ::stat(target.c_str(), &present) == 0;
    if (is_present && ::access(target.c_str(), W_OK) != 0)
        return failWithErrno(reason);
    if (is_present) // the replaced file's permissions stay
        static_cast<void>(::chmod(source.c_str(), present.st_mode & 07777));
    return ::rename(source.c_str(), target.c_str()) == 0 || failWithErrno(reason);
}

} // namespace korvane::platform
