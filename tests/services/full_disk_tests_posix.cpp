#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

bool refuses_nameless_files = false;
int refused = 0;

} // namespace

// This program's own: that of the C library but for file systems that know no file without a name.
extern "C" int open(const char* path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t); // not looked at where there is none
    va_end(rest);
    if (refuses_nameless_files && (flags & O_TMPFILE) == O_TMPFILE)
    {
        ++refused;
        errno = EOPNOTSUPP;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

namespace korvane
{
namespace
{

// While it lives, no file of this process may grow beyond a few bytes: a write ends half-way, as on a full disk.
class tiny_disk
{
public:
    explicit tiny_disk(rlim_t largest_file_bytes) : m_po_old_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_old_limit);
        const rlimit limit{largest_file_bytes, m_old_limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~tiny_disk()
    {
        setrlimit(RLIMIT_FSIZE, &m_old_limit);
        std::signal(SIGXFSZ, m_po_old_handler);
    }
    tiny_disk(const tiny_disk&) = delete;
    tiny_disk& operator=(const tiny_disk&) = delete;

private:
    void (*m_po_old_handler)(int);
    rlimit m_old_limit{};
};

} // namespace

TEST(full_disk, theOldFileStandsAndTheTemporaryOneIsGone)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("model.bin");
    test::writeBytes(path, "old content");
    failure why;
    bool is_written = true;
    {
        const tiny_disk disk(100);
        is_written = writeWholeFile(path, std::string(5000, 'x'), why);
    }
    EXPECT_FALSE(is_written);
    EXPECT_EQ(why.kind, failure_kind::unwritable);
    EXPECT_EQ(why.path, path);
    EXPECT_EQ(test::readBytes(path), "old content");
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(full_disk, theConfigurationStaysWhole)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("c.cfg");
    test::writeBytes(path, "a=1;");
    config_file config;
    ASSERT_TRUE(config.load(path));
    config.add("b", {std::string(5000, 'x')}, false);
    bool is_saved = true;
    {
        const tiny_disk disk(100);
        is_saved = config.save(path);
    }
    EXPECT_FALSE(is_saved);
    EXPECT_EQ(test::readBytes(path), "a=1;");
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(whole_file, isWrittenInTheSameWayWhereEveryFileHasAName)
{
    refuses_nameless_files = true;
    const test::temporary_folder folder;
    const std::string path = folder.file("model.bin");
    failure why;
    for (const std::string& content : {std::string("first"), std::string(3 << 20, 'x'), std::string("old content")})
    {
        ASSERT_TRUE(writeWholeFile(path, content, why)) << describe(why);
        EXPECT_EQ(test::readBytes(path), content);
        ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    }
    struct stat present = {};
    EXPECT_TRUE(::stat(path.c_str(), &present) == 0 && (present.st_mode & 07777) == 0640) << "its permissions stay";
    bool is_written = true;
    {
        const tiny_disk disk(100);
        is_written = writeWholeFile(path, std::string(5000, 'x'), why);
    }
    EXPECT_FALSE(is_written);
    EXPECT_EQ(test::readBytes(path), "old content");
    EXPECT_EQ(folder.fileCount(), 1u) << "no temporary file";
    EXPECT_EQ(refused, 4);
    refuses_nameless_files = false;
}

} // namespace korvane
