#include "EASY_GUI/services/positioned_file.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/kernel_handle_win.h"

#include <algorithm>
#include <utility>
#include <windows.h>

namespace korvane
{

namespace
{
HANDLE asHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}
} // namespace

bool positioned_file::open(const std::string& path, failure& why)
{
    close();
    unique_kernel_handle file(CreateFileW(toPath(path).c_str(), GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
    {
        const DWORD code = GetLastError();
        const bool is_missing = code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
        return fail(why, is_missing ? failure_kind::not_found : failure_kind::unreadable,
                    "the file cannot be opened (error " + std::to_string(code) + ")", path);
    }
    LARGE_INTEGER size = {};
    FILETIME written = {};
    if (!GetFileSizeEx(file.get(), &size) || !GetFileTime(file.get(), nullptr, nullptr, &written))
        return fail(why, failure_kind::unreadable, "this is not a file", path);
    m_handle = reinterpret_cast<std::intptr_t>(file.release());
    m_size = static_cast<std::uint64_t>(size.QuadPart);
    m_modification_time =
        static_cast<std::int64_t>((std::uint64_t{written.dwHighDateTime} << 32) | written.dwLowDateTime);
    return true;
}

void positioned_file::close()
{
    if (isOpen())
        unique_kernel_handle(asHandle(std::exchange(m_handle, no_handle)));
}

bool positioned_file::readAt(std::uint64_t position, std::span<std::byte> target) const
{
    while (!target.empty())
    {
        constexpr std::size_t largest_step = 64u << 20;
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>(position);
        place.OffsetHigh = static_cast<DWORD>(position >> 32);
        DWORD count = 0;
        if (!ReadFile(asHandle(m_handle), target.data(), static_cast<DWORD>(std::min(target.size(), largest_step)),
                      &count, &place) ||
            count == 0)
            return false;
        target = target.subspan(count);
        position += count;
    }
    return true;
}

} // namespace korvane
