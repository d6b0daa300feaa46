#include "EASY_GUI/services/file_stamp.h"

#include <sys/stat.h>

namespace korvane
{

file_stamp stampOf(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return {true, static_cast<std::uint64_t>(status.st_size),
            std::int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec};
}

} // namespace korvane
