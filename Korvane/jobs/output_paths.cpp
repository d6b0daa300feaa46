#include "Korvane/jobs/output_paths.h"

#include "EASY_GUI/services/file_system.h"

#include <filesystem>
#include <system_error>

namespace korvane
{

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

} // namespace korvane
