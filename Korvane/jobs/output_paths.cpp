#include "Korvane/jobs/output_paths.h"

#include "EASY_GUI/services/file_system.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

namespace korvane
{

namespace
{

bool hasBytes(const std::string& path, std::span<const std::byte> bytes)
{
    constexpr std::size_t step = 1 << 16;
    std::error_code error;
    if (std::filesystem::file_size(toPath(path), error) != bytes.size() || error)
        return false;
    std::ifstream file(toPath(path), std::ios::binary);
    std::vector<char> piece(std::min(step, bytes.size()));
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(step, bytes.size())))
    {
        const std::size_t count = std::min(step, bytes.size());
        if (!file.read(piece.data(), static_cast<std::streamsize>(count)) ||
            std::memcmp(piece.data(), bytes.data(), count) != 0)
            return false;
    }
    return true;
}

} // namespace

bool isFolder(const std::string& path)
{
    std::error_code ignored;
    return path.ends_with('/') || path.ends_with('\\') || std::filesystem::is_directory(toPath(path), ignored);
}

bool createFolder(const std::string& path, failure& why)
{
    std::error_code error;
    std::filesystem::create_directories(toPath(path), error);
    return !error || fail(why, failure_kind::unwritable, "the folder cannot be created: " + error.message(), path);
}

bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why)
{
    for (const std::string& input : inputs)
    {
        std::error_code error;
        if (std::filesystem::equivalent(toPath(input), toPath(output), error) && !error)
            return fail(why, failure_kind::refused, "this would replace the file that is read", output);
    }
    return true;
}

bool writeOutput(const std::string& path, std::span<const std::byte> bytes, bool overwrites, bool& is_kept,
                 failure& why)
{
    std::error_code ignored;
    const bool is_there = std::filesystem::exists(toPath(path), ignored);
    const bool is_same = is_there && hasBytes(path, bytes);
    is_kept = is_there && !is_same && !overwrites;
    return is_same || is_kept || writeWholeFile(path, bytes, why);
}

failure keptFailure(const std::string& path)
{
    return {failure_kind::refused, "it is there already and differs; it was left, --overwrite writes over it", path, 0,
            ""};
}

} // namespace korvane
