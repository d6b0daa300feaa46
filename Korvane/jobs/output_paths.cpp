#include "Korvane/jobs/output_paths.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/positioned_file.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

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

bool canWriteBelow(const std::string& folder, failure& why)
{
    std::error_code ignored;
    std::filesystem::path there = std::filesystem::absolute(toPath(folder), ignored).lexically_normal();
    while (!std::filesystem::exists(there, ignored) && there.has_relative_path())
        there = there.parent_path();
    if (!std::filesystem::exists(there, ignored))
        return fail(why, failure_kind::not_found, "there is no such drive", folder);
    if (!std::filesystem::is_directory(there, ignored))
        return fail(why, failure_kind::unwritable, "the folder cannot be created: a file is in its way", folder);
    failure reason;
    if (canWriteWholeFile(toUtf8(there / "korvane.tmp"), reason))
        return true;
    reason.path = folder;
    why = std::move(reason);
    return false;
}

bool isNamedLikeFile(const std::string& path)
{
    constexpr const char* endings[] = {".rigid_model_v2",
                                       ".variantmeshdefinition",
                                       ".anim",
                                       ".bone_table",
                                       ".pack",
                                       ".fbx",
                                       ".dae",
                                       ".glb",
                                       ".gltf",
                                       ".obj",
                                       ".dds",
                                       ".png",
                                       ".tga",
                                       ".jpg",
                                       ".bmp",
                                       ".zip",
                                       ".txt"};
    return std::any_of(std::begin(endings), std::end(endings),
                       [&path](const char* ending) { return endsWithIgnoringCase(path, ending); });
}

namespace
{

// Reads both side by side, up to the first difference. A file that cannot be read differs.
bool holdsSame(const std::string& path, const byte_source& bytes, bool& is_same, failure& why)
{
    positioned_file file;
    failure ignored;
    is_same = file.open(path, ignored);
    std::uint64_t position = 0;
    std::vector<std::byte> there;
    while (is_same)
    {
        std::span<const std::byte> piece;
        if (!bytes(piece, why))
            return false;
        if (piece.empty())
            break;
        constexpr std::size_t step = std::size_t{1} << 20;
        for (std::size_t done = 0; is_same && done < piece.size(); done += there.size())
        {
            there.resize(std::min(step, piece.size() - done));
            is_same = file.readAt(position, there) && std::memcmp(there.data(), piece.data() + done, there.size()) == 0;
            position += there.size();
        }
    }
    is_same = is_same && position == file.size();
    return true;
}

} // namespace

bool writeOutput(const std::string& path, const std::function<byte_source()>& bytes, bool overwrites,
                 output_outcome& outcome, failure& why)
{
    std::error_code ignored;
    bool is_same = false;
    const bool is_there = std::filesystem::is_regular_file(toPath(path), ignored);
    if (is_there && !holdsSame(path, bytes(), is_same, why))
        return false;
    outcome = is_same                   ? output_outcome::unchanged
              : is_there && !overwrites ? output_outcome::kept
                                        : output_outcome::written;
    return outcome != output_outcome::written || writeWholeFile(path, bytes(), why);
}

bool writeOutput(const std::string& path, std::span<const std::byte> bytes, bool overwrites, output_outcome& outcome,
                 failure& why)
{
    return writeOutput(
        path, [bytes] { return sourceOf(bytes); }, overwrites, outcome, why);
}

std::string keptText(std::size_t count)
{
    return count == 0 ? std::string()
                      : "; " + counted(count, "file that differs was", "files that differ were") + " left as " +
                            (count == 1 ? "it is" : "they are") + " (--overwrite writes over " +
                            (count == 1 ? "it" : "them") + ")";
}

input_files::input_files(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths)
    {
        std::error_code error;
        const std::filesystem::path file = toPath(path);
        const std::uintmax_t size = path.empty() ? 0 : std::filesystem::file_size(file, error);
        const auto time =
            path.empty() || error ? std::filesystem::file_time_type() : std::filesystem::last_write_time(file, error);
        if (!path.empty() && !error)
            m_files.emplace(look(size, time), file);
    }
}

bool input_files::isFreeToWrite(const std::string& output, failure& why) const
{
    std::error_code error;
    const std::filesystem::path target = toPath(output);
    const std::uintmax_t size = m_files.empty() ? 0 : std::filesystem::file_size(target, error);
    if (m_files.empty() || error) // nothing is there
        return true;
    const auto [first, last] = m_files.equal_range(look(size, std::filesystem::last_write_time(target, error)));
    for (auto alike = first; alike != last; ++alike)
        if (std::filesystem::equivalent(alike->second, target, error) && !error)
            return fail(why, failure_kind::refused, "this would replace the file that is read", output);
    return true;
}

bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why)
{
    return input_files(inputs).isFreeToWrite(output, why);
}

failure keptFailure(const std::string& path)
{
    return {failure_kind::refused, "it is there already and differs; it was left, --overwrite writes over it", path, 0,
            ""};
}

} // namespace korvane
