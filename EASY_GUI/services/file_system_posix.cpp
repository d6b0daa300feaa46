#include "EASY_GUI/services/file_system_platform.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
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

int nameAndRenameHere(const char* own, const char* temporary, const char* target)
{
    if (::linkat(AT_FDCWD, own, AT_FDCWD, temporary, AT_SYMLINK_FOLLOW) != 0)
        return errno;
    if (::rename(temporary, target) == 0)
        return 0;
    const int error = errno;
    static_cast<void>(::unlink(temporary));
    return error;
}

// Puts a file without a name over the target; returns an errno value. A name can only be given where there is none, so
// the file gets the temporary one first. A process of its own does both: a kill of this one cannot come in between.
int nameAndRename(const char* own, const char* temporary, const char* target)
{
    const pid_t child = ::vfork(); // shares this process's memory and may do little more than these calls
    if (child == 0)
        ::_exit(nameAndRenameHere(own, temporary, target));
    if (child < 0)
        return nameAndRenameHere(own, temporary, target);
    int status = 0;
    pid_t ended = 0;
    do
        ended = ::waitpid(child, &status, 0);
    while (ended < 0 && errno == EINTR);
    if (ended == child)
        return WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
    // Somebody else has taken the status: the file itself tells.
    struct stat written = {}, placed = {};
    const bool is_placed = ::stat(own, &written) == 0 && ::stat(target, &placed) == 0 &&
                           written.st_ino == placed.st_ino && written.st_dev == placed.st_dev;
    return is_placed ? 0 : ECHILD;
}

// A file on its way to its place. It has no name until it is whole, so that a process that is killed leaves nothing;
// where the file system or a missing /proc do not allow that, it has the temporary name from the beginning. A file with
// a temporary name is locked as long as its writer lives: removeAbandoned() keeps off.
class new_file
{
public:
    new_file() = default;
    new_file(const new_file&) = delete;
    new_file& operator=(const new_file&) = delete;
    ~new_file()
    {
        if (m_is_named)
            static_cast<void>(::unlink(m_temporary.c_str()));
        if (m_descriptor >= 0)
            static_cast<void>(::close(m_descriptor));
    }

    bool create(const std::filesystem::path& folder, const std::filesystem::path& temporary, std::string& reason)
    {
        m_temporary = temporary;
        m_descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0666);
        if (m_descriptor >= 0 && ::access(ownPath().c_str(), F_OK) != 0)
        {
            static_cast<void>(::close(m_descriptor));
            m_descriptor = -1;
        }
        if (m_descriptor >= 0)
            static_cast<void>(::flock(m_descriptor, LOCK_EX | LOCK_NB)); // a system without locks: nobody cleans up
        return m_descriptor >= 0 || createNamed(reason);
    }

    bool write(const next_piece& bytes, bool is_flushed, std::string& reason)
    {
        std::span<const std::byte> piece;
        do
            if (!bytes(piece) || !writePiece(piece, reason))
                return false;
        while (!piece.empty());
        return !is_flushed || ::fsync(m_descriptor) == 0 || failWithErrno(reason);
    }

    bool putInPlaceOf(const std::filesystem::path& target, std::string& reason)
    {
        struct stat present = {};
        const bool is_present = ::stat(target.c_str(), &present) == 0;
        if (is_present && ::access(target.c_str(), W_OK) != 0)
            return failWithErrno(reason);
        if (is_present) // the replaced file's permissions stay
            static_cast<void>(::fchmod(m_descriptor, present.st_mode & 07777));
        if (!m_is_named)
        {
            if (!is_present && link(target))
                return true;
            errno = nameAndRename(ownPath().c_str(), m_temporary.c_str(), target.c_str());
            return errno == 0 || failWithErrno(reason);
        }
        if (::rename(m_temporary.c_str(), target.c_str()) != 0)
            return failWithErrno(reason);
        m_is_named = false;
        return true;
    }

private:
    bool createNamed(std::string& reason)
    {
        for (int attempt = 0; attempt < 3; ++attempt)
        {
            m_descriptor = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            m_is_named = m_descriptor >= 0;
            if (!m_is_named)
                return failWithErrno(reason);
            struct stat own = {};
            if ((::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) &&
                ::fstat(m_descriptor, &own) == 0 && own.st_nlink > 0)
                return true;
            // Another process, which cleans up, has met the file before it was locked, and deletes it.
            static_cast<void>(::close(m_descriptor));
            m_descriptor = -1;
            m_is_named = false;
        }
        reason = "the temporary file was deleted";
        return false;
    }
    bool writePiece(std::span<const std::byte> bytes, std::string& reason) const
    {
        while (!bytes.empty())
        {
            const ssize_t count = ::write(m_descriptor, bytes.data(), bytes.size());
            if (count >= 0)
                bytes = bytes.subspan(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                return failWithErrno(reason);
        }
        return true;
    }
    std::string ownPath() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }
    bool link(const std::filesystem::path& name) const
    {
        return ::linkat(AT_FDCWD, ownPath().c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

    std::filesystem::path m_temporary;
    int m_descriptor = -1;
    bool m_is_named = false; // has the temporary name
};

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

bool replaceWhole(const std::filesystem::path& target, const std::filesystem::path& temporary, const next_piece& bytes,
                  bool is_flushed, std::string& reason)
{
    new_file file;
    return file.create(target.parent_path(), temporary, reason) && file.write(bytes, is_flushed, reason) &&
           file.putInPlaceOf(target, reason);
}

bool canReplace(const std::filesystem::path& target, const std::filesystem::path& temporary, std::string& reason)
{
    new_file file;
    return file.create(target.parent_path(), temporary, reason) &&
           (::access(target.c_str(), F_OK) != 0 || ::access(target.c_str(), W_OK) == 0 || failWithErrno(reason));
}

void removeAbandoned(const std::filesystem::path& temporary)
{
    const int descriptor = ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) // nobody is writing it
        static_cast<void>(::unlink(temporary.c_str()));
    static_cast<void>(::close(descriptor));
}

} // namespace korvane::platform
