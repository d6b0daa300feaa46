#include "Korvane/jobs/operand_list.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/path_pattern.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <system_error>

namespace korvane
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view wildcards = "*?";
constexpr bool is_case_ignored = fs::path::preferred_separator == '\\'; // by the disks of this system

bool hasWildcard(std::string_view text)
{
    return text.find_first_of(wildcards) != std::string_view::npos;
}

// What is the same file by its spelling has the same key.
std::string keyOf(const std::string& path)
{
    if (const game_path given(path); given.isInternal())
        return game_path::ofInternal(normalInternalPath(given.internalPath())).text();
    std::error_code error;
    const fs::path absolute = fs::absolute(toPath(path), error);
    std::string key = error ? path : toUtf8(absolute.lexically_normal());
    return is_case_ignored ? toLower(key) : key;
}

std::string slashed(const fs::path& path)
{
    std::string text = toUtf8(path);
    if (is_case_ignored)
        std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

bool failToList(const fs::path& folder, const std::error_code& error, failure& why)
{
    return fail(why, failure_kind::unreadable, "the folder cannot be listed: " + error.message(), toUtf8(folder));
}

// The names in a folder, sorted; those of an empty path are the current folder's.
bool namesIn(const fs::path& folder, std::vector<fs::path>& names, failure& why)
{
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        names.push_back(entry->path().filename());
    std::sort(names.begin(), names.end(),
              [](const fs::path& left, const fs::path& right) { return toUtf8(left) < toUtf8(right); });
    return !error || failToList(folder, error, why);
}

bool isFolderAt(const fs::path& path)
{
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

// The part of an internal path or pattern up to its last separator before the first '*' or '?'.
std::string fixedPart(std::string_view pattern)
{
    const std::size_t wildcard = std::min(pattern.find_first_of(wildcards), pattern.size());
    const std::size_t separator = pattern.substr(0, wildcard).rfind('\\');
    return std::string(pattern.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
}

} // namespace

const operand_kind& modelOperands()
{
    static const operand_kind kind{"a model", {".rigid_model_v2"}};
    return kind;
}

const operand_kind& definitionOperands()
{
    static const operand_kind kind{"a model or a definition", {".rigid_model_v2", ".variantmeshdefinition"}};
    return kind;
}

const operand_kind& pictureOperands()
{
    static const operand_kind kind{"a picture", {".dds", ".png", ".tga"}};
    return kind;
}

operand_list::operand_list(const operand_kind& kind, const std::string& output) : m_kind(kind), m_output(toPath(output))
{
}

bool operand_list::isNameOfOne(std::string_view path) const
{
    return std::any_of(m_kind.endings.begin(), m_kind.endings.end(),
                       [path](std::string_view ending) { return endsWithIgnoringCase(path, ending); });
}

std::string operand_list::kindText() const
{
    std::string text(m_kind.name);
    for (std::size_t i = 0; i < m_kind.endings.size(); ++i)
        (text += i == 0 ? " (" : ", ") += m_kind.endings[i];
    return text + ")";
}

void operand_list::addFile(std::string path, std::string below)
{
    if (m_listed.insert(keyOf(path)).second)
        m_files.push_back({std::move(path), std::move(below)});
}

bool operand_list::add(const std::string& operand, const game_data& game, failure& why)
{
    m_is_one_file = false;
    const std::size_t number = ++m_operands;
    if (game_path(operand).isInternal())
        return addInternal(operand, game, why);
    const fs::path path = toPath(operand);
    std::error_code ignored;
    const bool is_there = fs::exists(path, ignored);
    if (!is_there && hasWildcard(toUtf8(path.relative_path())))
        return addPattern(operand, path, why);
    if (is_there && isFolderAt(path))
    {
        match_count count;
        return addFolder(path, {}, count, why) &&
               (count.taken > 0 ||
                fail(why, failure_kind::not_found, "no file in this folder is " + kindText(), operand));
    }
    addFile(operand, std::string(fileName(operand)));
    m_is_one_file = number == 1;
    return true;
}

bool operand_list::addInternal(const std::string& operand, const game_data& game, failure& why)
{
    std::string given(game_path(operand).internalPath());
    const std::string normal = normalInternalPath(given);
    const path_node* const node = game.archives() ? game.archives()->find(normal) : nullptr;
    const bool is_folder = node && !node->file();
    if (game.find(given) || (!hasWildcard(given) && !is_folder))
    {
        addFile(operand, std::string(fileName(normal)));
        m_is_one_file = m_operands == 1;
        return true;
    }
    if (!game.archives())
        return fail(why, failure_kind::not_found, "no archives are loaded", operand);
    if (is_folder)
        given = normal + (normal.empty() ? "*" : "\\*");
    const internal_pattern pattern(given);
    const std::string fixed = fixedPart(pattern.normal());
    match_count count;
    for (const pack_file_node* file : game.archives()->files())
    {
        const std::string_view its = file->internalPath();
        if (!pattern.matches(its))
            continue;
        ++count.all;
        if (!isNameOfOne(its))
            continue;
        ++count.taken;
        addFile(game_path::ofInternal(its).text(),
                std::string(its.starts_with(fixed) ? its.substr(fixed.size()) : its));
    }
    if (count.taken > 0)
        return true;
    return fail(why, failure_kind::not_found,
                count.all == 0
                    ? "no file of the archives matches"
                    : "none of the " + counted(count.all, "file") + " of the archives that match is " + kindText(),
                operand);
}

bool operand_list::addPattern(const std::string& operand, const disk_path& path, failure& why)
{
    const disk_path relative = path.relative_path();
    const std::vector<disk_path> components(relative.begin(), relative.end());
    match_count count;
    if (!walk(components, 0, path.root_path(), {}, count, why))
        return false;
    if (count.taken > 0)
        return true;
    return fail(why, failure_kind::not_found,
                count.all == 0 ? "no file matches"
                               : "none of the " + counted(count.all, "file") + " that match is " + kindText(),
                operand);
}

// below grows from the first component with a wildcard on.
bool operand_list::walk(const std::vector<disk_path>& components, std::size_t next, const disk_path& at,
                        const disk_path& below, match_count& count, failure& why)
{
    if (next == components.size())
        return take(at, below, count, why);
    const disk_path& component = components[next];
    const std::string pattern = toUtf8(component);
    std::error_code ignored;
    if (!hasWildcard(pattern))
    {
        const disk_path there = at / component;
        return !fs::exists(there, ignored) ||
               walk(components, next + 1, there, below.empty() ? below : below / component, count, why);
    }
    std::vector<disk_path> names;
    if (!at.empty() && !isFolderAt(at))
        return true;
    if (!namesIn(at, names, why))
        return false;
    for (const disk_path& name : names)
    {
        const std::string text = toUtf8(name);
        const bool is_hidden = text.starts_with('.') && !pattern.starts_with('.');
        if (!is_hidden && matchesPattern(text, pattern) &&
            !walk(components, next + 1, at / name, below / name, count, why))
            return false;
    }
    return true;
}

bool operand_list::take(const disk_path& path, const disk_path& below, match_count& count, failure& why)
{
    std::error_code ignored;
    if (isFolderAt(path))
        return (!m_output.empty() && fs::equivalent(path, m_output, ignored)) || addFolder(path, below, count, why);
    ++count.all;
    const std::string text = toUtf8(path);
    if (!isNameOfOne(text))
        return true;
    ++count.taken;
    addFile(text, slashed(below));
    return true;
}

// Links to folders are not followed: they may lead in a circle. The folder itself must be listed, one below it that
// cannot be is named and left out.
bool operand_list::addFolder(const disk_path& folder, const disk_path& below, match_count& count, failure& why)
{
    std::vector<disk_path> names;
    if (!namesIn(folder, names, why))
        return false;
    for (const disk_path& name : names)
    {
        const disk_path path = folder / name;
        std::error_code ignored;
        if (isFolderAt(path) && fs::is_symlink(path, ignored))
            continue;
        failure reason;
        if (!take(path, below / name, count, reason))
            m_left_out.push_back(std::move(reason));
    }
    return true;
}

bool addOperands(game_source& source, const std::vector<std::string>& operands, operand_list& list, failure& why)
{
    const bool needs_game = std::any_of(operands.begin(), operands.end(),
                                        [](const std::string& operand) { return game_path(operand).isInternal(); });
    const std::shared_ptr<const game_data> game =
        needs_game ? source.archives(why) : std::make_shared<const game_data>();
    return game && std::all_of(operands.begin(), operands.end(),
                               [&](const std::string& operand) { return list.add(operand, *game, why); });
}

} // namespace korvane
