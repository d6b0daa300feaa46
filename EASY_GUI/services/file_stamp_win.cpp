#include "EASY_GUI/services/file_stamp.h"

#include "EASY_GUI/services/file_system.h"

#include <windows.h>

namespace korvane
{

file_stamp stampOf(const std::string& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(toPath(path).c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return {};
    const auto joined = [](DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; };
    return {true, joined(data.nFileSizeHigh, data.nFileSizeLow),
            static_cast<std::int64_t>(joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime))};
}

} // namespace korvane
