#include "Korvane/jobs/mod_folder_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/game/game_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

constexpr const char* too_long = "the path is longer than an archive can hold";

class put_planner
{
public:
    put_planner(const std::string& mod_folder, std::string_view folder, const work_port& work, put_plan& plan)
        : m_names(existingPathAnyCase(mod_folder))
        , m_folder(folder)
        , m_work(work)
        , m_plan(plan)
    {
    }

    void add(const std::string& dropped)
    {
        const std::filesystem::path path = withoutSeparator(toPath(dropped));
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::symlink_status(path, error);
        if (std::filesystem::is_directory(status))
            addFolder(path);
        else if (std::filesystem::is_regular_file(status))
            addFile(path, toUtf8(path.filename()));
        else
            refuse(failure_kind::unsupported,
                   error || !std::filesystem::exists(status) ? "there is no such file" : "this is no plain file", path);
    }

private:
    static std::filesystem::path withoutSeparator(const std::filesystem::path& path)
    {
        return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
    }
    void refuse(failure_kind kind, const std::string& what, const std::filesystem::path& path)
    {
        m_plan.refused.push_back({kind, what, toUtf8(path), 0, ""});
    }
    void addFolder(const std::filesystem::path& folder);
    void addFile(const std::filesystem::path& file, const std::string& relative);

    extraction_folder m_names;
    std::string_view m_folder;
    const work_port& m_work;
    put_plan& m_plan;
};

void put_planner::addFolder(const std::filesystem::path& folder)
{
    namespace fs = std::filesystem;
    std::error_code error;
    auto entry = fs::recursive_directory_iterator(folder, error); // which follows no links
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
    {
        if (m_work.isStopped())
            return;
        std::error_code ignored;
        const fs::file_status status = entry->symlink_status(ignored);
        if (fs::is_regular_file(status))
            addFile(entry->path(), toUtf8(entry->path().lexically_relative(folder.parent_path())));
        else if (!fs::is_directory(status))
            refuse(failure_kind::unsupported, "this is no plain file", entry->path());
    }
    if (error)
        refuse(failure_kind::unreadable, "not all of the folder can be read: " + error.message(), folder);
}

void put_planner::addFile(const std::filesystem::path& file, const std::string& relative)
{
    std::string internal = m_folder.empty() ? relative : std::string(m_folder) + '\\' + relative;
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(file, error);
    failure why;
    put_file wanted{toUtf8(file), internal};
    if (normalInternalPath(internal).size() > pack_file::max_path)
        return refuse(failure_kind::refused, too_long, file);
    if (error || size > std::numeric_limits<std::uint32_t>::max())
        return refuse(failure_kind::refused, "it has more bytes than an archive can hold (4 GiB)", file);
    if (!m_names.locate(internal, wanted.target, why))
        return refuse(why.kind, why.what, file);
    wanted.target = existingPathAnyCase(wanted.target);
    if (std::filesystem::is_directory(toPath(wanted.target), error))
        return refuse(failure_kind::refused, "the mod folder has a folder of this name", file);
    if (std::filesystem::equivalent(file, toPath(wanted.target), error))
        return refuse(failure_kind::refused, "it lies in this place already", file);
    if (std::filesystem::exists(toPath(wanted.target), error))
        m_plan.replaced.push_back(wanted.target);
    m_plan.files.push_back(std::move(wanted));
    m_work.report(m_plan.files.size(), 0, counted(m_plan.files.size(), "file") + " found");
}

// As much of the path as is there, in the spelling that it has there.
std::filesystem::path spelledAsThere(const std::filesystem::path& path)
{
    const std::filesystem::path there = toPath(existingPathAnyCase(toUtf8(path)));
    std::error_code error;
    return std::filesystem::exists(there, error) || !path.has_relative_path()
               ? there
               : spelledAsThere(path.parent_path()) / path.filename();
}

bool put(const put_file& file, failure& why)
{
    const std::filesystem::path target = spelledAsThere(toPath(file.target));
    output_outcome outcome{};
    return createFolder(toUtf8(target.parent_path()), why) &&
           writeOutput(
               toUtf8(target), [&file] { return game_file(file.source).pieces(); }, true, outcome, why);
}

// A folder's own files are no hindrance: the name of a thing may change in case alone.
bool isTaken(const std::filesystem::path& source, const std::filesystem::path& target)
{
    std::error_code error;
    const std::filesystem::path there = toPath(existingPathAnyCase(toUtf8(target)));
    return std::filesystem::exists(there, error) && !std::filesystem::equivalent(source, there, error);
}

} // namespace

std::string placeInModFolder(const std::string& mod_folder, std::string_view internal_path)
{
    std::string reason;
    const std::optional<std::string> relative = relativeDiskPath(internal_path, reason);
    if (!relative || mod_folder.empty())
        return {};
    std::string place = existingPathAnyCase(toUtf8(toPath(existingPathAnyCase(mod_folder)) / toPath(*relative)));
    std::error_code error;
    return std::filesystem::exists(toPath(place), error) ? place : std::string();
}

put_plan planPut(const std::string& mod_folder, std::span<const std::string> dropped, std::string_view folder,
                 const work_port& work)
{
    put_plan plan;
    put_planner planner(mod_folder, folder, work, plan);
    for (const std::string& each : dropped)
        if (!work.isStopped())
            planner.add(each);
    plan.is_stopped = work.isStopped();
    return plan;
}

put_result putFiles(const put_plan& plan, const work_port& work)
{
    put_result result;
    for (std::size_t i = 0; i < plan.files.size() && !work.isStopped(); ++i)
    {
        failure why;
        if (put(plan.files[i], why))
            ++result.written;
        else
        {
            if (why.path.empty())
                why.path = plan.files[i].source;
            work.nameFailure(why);
            result.failures.push_back(std::move(why));
        }
        work.report(i + 1, plan.files.size(), displayText(plan.files[i].internal_path));
    }
    return result;
}

bool renameInModFolder(const std::string& mod_folder, std::string_view internal_path, const std::string& name,
                       std::string& renamed, failure& why)
{
    const std::string place = placeInModFolder(mod_folder, internal_path);
    if (place.empty())
        return fail(why, failure_kind::not_found, "it does not lie in the mod folder any more",
                    std::string(internal_path));
    std::string reason = "a name has no \\ and no /";
    if (name.find_first_of("\\/") != std::string::npos || !relativeDiskPath(name, reason) || !isUtf8(name))
        return fail(why, failure_kind::refused, "this name cannot be given: " + reason, name);
    const std::string_view around = folderAround(internal_path);
    std::string wanted = normalInternalPath(around.empty() ? name : std::string(around) + '\\' + name);
    if (wanted.size() > pack_file::max_path)
        return fail(why, failure_kind::refused, too_long, wanted);
    const std::filesystem::path source = toPath(place);
    const std::filesystem::path target = source.parent_path() / toPath(name);
    if (isTaken(source, target))
        return fail(why, failure_kind::refused, "there is a file or folder of this name already", toUtf8(target));
    std::error_code error;
    std::filesystem::rename(source, target, error);
    if (error)
        return fail(why, failure_kind::unwritable, "the name could not be changed: " + error.message(), place);
    renamed = std::move(wanted);
    return true;
}

} // namespace korvane
