#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

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

} // namespace korvane
