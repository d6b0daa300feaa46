#include "EASY_GUI/services/file_system.h"

#include "EASY_GUI/services/file_system_platform.h"
#include "EASY_GUI/services/text.h"

#include <atomic>
#include <mutex>
#include <set>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view temporary_prefix = ".korvane-"; // process and number follow
constexpr std::string_view temporary_suffix = ".tmp";

// Exactly as temporaryName() makes it: nothing that somebody else may have called like that by chance.
bool isTemporaryName(std::string_view name)
{
    if (!name.starts_with(temporary_prefix) || !name.ends_with(temporary_suffix))
        return false;
    name.remove_prefix(temporary_prefix.size());
    name.remove_suffix(temporary_suffix.size());
    const std::size_t dash = name.find('-');
    const auto isNumber = [](std::string_view digits) {
        return !digits.empty() && digits.size() <= 10 && digits.find_first_not_of("0123456789") == digits.npos;
    };
    return dash != name.npos && isNumber(name.substr(0, dash)) && isNumber(name.substr(dash + 1));
}

std::string temporaryName()
{
    static std::atomic<unsigned> counter{0};
    return std::string(temporary_prefix) + std::to_string(platform::processId()) + "-" + std::to_string(counter++) +
           std::string(temporary_suffix);
}

// The file that a link leads to, which need not exist; false for links that lead in a circle.
bool followLinks(std::filesystem::path& path)
{
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(path, error); ++links)
    {
        if (links == 40)
            return false;
        const std::filesystem::path next = std::filesystem::read_symlink(path, error);
        if (error)
            return false;
        path = path.parent_path() / next; // an absolute one stands for itself
    }
    return true;
}

// A process that was killed while it wrote may have left its temporary file. The first write into a folder clears it of
// these; looking again at each write would be slow where thousands of files are written.
void removeAbandonedOnce(const std::filesystem::path& folder)
{
    static std::mutex guard;
    static std::set<std::filesystem::path> cleared;
    {
        const std::lock_guard lock(guard);
        if (!cleared.insert(folder).second)
            return;
    }
    std::error_code error;
    auto entry = std::filesystem::directory_iterator(folder.empty() ? std::filesystem::path(".") : folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
    {
        if (isTemporaryName(toUtf8(entry->path().filename())))
            platform::removeAbandoned(entry->path());
    }
}

} // namespace

std::filesystem::path toPath(std::string_view utf8)
{
    return platform::pathFromUtf8(utf8);
}

std::string toUtf8(const std::filesystem::path& path)
{
    return platform::utf8FromPath(path);
}

const std::string& executableFolder()
{
    static const std::string folder = toUtf8(platform::executablePath().parent_path() / "");
    return folder;
}

std::string existingPathAnyCase(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path wanted = toPath(path);
    if (path.empty() || std::filesystem::exists(wanted, error))
        return path;

    std::filesystem::path found;
    for (const std::filesystem::path& component : wanted)
    {
        std::filesystem::path next = found.empty() ? component : found / component;
        if (!component.empty() && !std::filesystem::exists(next, error))
        {
            const std::string name = toUtf8(component);
            const auto folder = std::filesystem::directory_iterator(found.empty() ? toPath(".") : found, error);
            if (error)
                return path;
            bool is_found = false;
            for (auto entry = folder; entry != std::filesystem::directory_iterator(); entry.increment(error))
            {
                if (error)
                    return path;
                if (equalsIgnoringCase(toUtf8(entry->path().filename()), name))
                {
                    next = found / entry->path().filename();
                    is_found = true;
                    break;
                }
            }
            if (!is_found)
                return path;
        }
        found = std::move(next);
    }
    return toUtf8(found);
}

namespace
{

// The file that is to be replaced: the path, or where its links lead.
bool findTarget(const std::string& path, std::filesystem::path& target, failure& why)
{
    target = toPath(path);
    std::error_code error;
    if (!followLinks(target)) // the file that a link leads to is written, the link stays
        return fail(why, failure_kind::unwritable, "the link leads in a circle", path);
    if (path.empty() || std::filesystem::is_directory(target, error))
        return fail(why, failure_kind::unwritable,
                    path.empty() ? "no file name was given" : "this is a folder, not a file", path);
    return !std::filesystem::exists(target, error) || std::filesystem::is_regular_file(target, error) ||
           fail(why, failure_kind::unwritable, "this is a device or a pipe, not a file", path);
}

} // namespace

bool canWriteWholeFile(const std::string& path, failure& why)
{
    std::filesystem::path target;
    if (!findTarget(path, target, why))
        return false;
    std::string reason;
    return platform::canReplace(target, target.parent_path() / temporaryName(), reason) ||
           fail(why, failure_kind::unwritable, "the file cannot be written: " + reason, path);
}

bool writeWholeFile(const std::string& path, const byte_source& bytes, failure& why, write_safety safety)
{
    std::filesystem::path target;
    if (!findTarget(path, target, why))
        return false;
    // Beside the target, so that the rename stays on one volume; numbered, so that two writers do not meet. The
    // target's name is not in it: that may be as long as a name can be.
    const std::filesystem::path folder = target.parent_path();
    removeAbandonedOnce(folder);
    const std::filesystem::path temporary = folder / temporaryName();
    std::string reason;
    const auto next = [&](std::span<const std::byte>& piece) { return bytes(piece, why); };
    if (platform::replaceWhole(target, temporary, next, safety == write_safety::flushed, reason))
        return true;
    return fail(why, failure_kind::unwritable, "the file cannot be written: " + reason, path);
}

bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, failure& why, write_safety safety)
{
    return writeWholeFile(path, sourceOf(bytes), why, safety);
}

bool writeWholeFile(const std::string& path, std::string_view bytes, failure& why)
{
    return writeWholeFile(path, std::as_bytes(std::span(bytes)), why);
}

} // namespace korvane
