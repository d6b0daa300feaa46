#include "EASY_GUI/services/memory_file.h"

#include "EASY_GUI/services/file_system.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <new>
#include <system_error>

namespace korvane
{

memory_file::memory_file(std::size_t size_bytes) : m_bytes(allocateLarge(size_bytes)), m_size(size_bytes) {}

memory_file::memory_file(std::span<const std::byte> bytes) : memory_file(bytes.size())
{
    if (!bytes.empty())
        std::memcpy(m_bytes.get(), bytes.data(), bytes.size());
}

memory_file::memory_file(std::string_view bytes) : memory_file(std::as_bytes(std::span(bytes))) {}

bool memory_file::read(const std::string& path, failure& why)
{
    std::uint64_t ignored = 0;
    return readStart(path, std::numeric_limits<std::size_t>::max(), ignored, why);
}

bool memory_file::readStart(const std::string& path, std::size_t most_bytes, std::uint64_t& file_bytes, failure& why)
{
    std::error_code error;
    const std::filesystem::path file = toPath(path);
    const auto status = std::filesystem::status(file, error);
    if (!path.empty() && status.type() == std::filesystem::file_type::none) // a folder above it is locked, say
        return fail(why, failure_kind::unreadable, "the file cannot be read: " + error.message(), path);
    if (path.empty() || !std::filesystem::exists(status))
        return fail(why, failure_kind::not_found, path.empty() ? "no file name was given" : "the file does not exist",
                    path);
    if (!std::filesystem::is_regular_file(status)) // reading a pipe or a device might never end
        return fail(why, failure_kind::unreadable,
                    std::filesystem::is_directory(status) ? "this is a folder, not a file"
                                                          : "this is not a regular file",
                    path);

    errno = 0;
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    const std::streamoff whole = in ? static_cast<std::streamoff>(in.tellg()) : -1;
    if (whole < 0)
        return fail(why, failure_kind::unreadable,
                    "the file cannot be opened for reading" +
                        (errno == EACCES ? ": it is not yours to read, or another program has it open"
                         : errno != 0    ? ": " + std::generic_category().message(errno)
                                         : std::string()),
                    path);
    const auto size =
        static_cast<std::streamoff>(std::min<std::uint64_t>(static_cast<std::uint64_t>(whole), most_bytes));

    try
    {
        memory_file content(static_cast<std::size_t>(size));
        in.seekg(0);
        in.read(reinterpret_cast<char*>(content.m_bytes.get()), size);
        if (in.gcount() != size)
            return fail(why, failure_kind::unreadable,
                        "only " + std::to_string(in.gcount()) + " of " + std::to_string(size) + " bytes could be read",
                        path);
        *this = std::move(content);
        file_bytes = static_cast<std::uint64_t>(whole);
    }
    catch (const std::bad_alloc&)
    {
        return fail(why, failure_kind::unreadable, "not enough memory for " + std::to_string(size) + " bytes", path);
    }
    return true;
}

} // namespace korvane
