#include "Korvane/document/pasted_path.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/document/open_files.h"
#include "Korvane/models/description.h"

#include <algorithm>

namespace korvane
{

namespace
{

bool startsOnDisk(std::string_view path)
{
    return path.starts_with('/') || path.starts_with('\\') || (path.size() > 1 && path[1] == ':');
}

// What stands behind the root; empty: the path is not below it.
std::string_view behindRoot(std::string_view path, std::string_view root)
{
    const bool is_below = !root.empty() && path.size() > root.size() &&
                          std::equal(root.begin(), root.end(), path.begin(), [](char left, char right) {
                              return foldedCharacter(left) == foldedCharacter(right);
                          });
    if (!is_below)
        return {};
    std::string_view rest = path.substr(root.size());
    if (foldedCharacter(root.back()) != '\\' && foldedCharacter(rest.front()) != '\\')
        return {}; // another folder whose name begins so
    rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of("\\/")));
    return rest;
}

std::string_view firstLine(std::string_view text)
{
    constexpr std::string_view around = " \t\r\n\"";
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(around)));
    text = text.substr(0, text.find_first_of("\r\n"));
    return text.substr(0, text.find_last_not_of(around) + 1);
}

} // namespace

std::vector<std::string> internalRoots(const config_file& config)
{
    std::vector<std::string> roots = config.get(config_keys::mod_folders);
    const std::vector<std::string> data = config.get(config_keys::data_folders);
    roots.insert(roots.end(), data.begin(), data.end());
    return roots;
}

std::string pastedPath(std::string_view text, std::string_view former, const std::vector<std::string>& roots)
{
    const std::string_view given = firstLine(text);
    const std::string_view directory = former.substr(0, former.size() - fileName(former).size());
    if (given.empty())
        return {};
    if (given.starts_with("pack:"))
        return std::string(given.substr(5));
    for (const std::string& root : roots)
        if (const std::string_view inside = behindRoot(given, root); !inside.empty())
        {
            std::string path(inside);
            const char separator = former.find('/') == former.npos && former.find('\\') != former.npos ? '\\' : '/';
            std::replace_if(
                path.begin(), path.end(), [](char character) { return foldedCharacter(character) == '\\'; }, separator);
            return path;
        }
    if (startsOnDisk(given) || given.find_first_of("\\/") == given.npos)
        return std::string(directory) += fileName(given);
    return std::string(given);
}

std::string openablePath(std::string_view text, const game_data& game)
{
    std::string path(firstLine(text));
    if (!endsWithIgnoringCase(path, ".rigid_model_v2") && !isDefinitionPath(path) && !isFbxPath(path))
        return {};
    if (game_path(path).isInternal() || startsOnDisk(path))
        return path;
    return game.find(path) ? "pack:" + path : std::string();
}

std::string selectedGroupText(const open_model& model)
{
    const group_data* const group = model.selectedGroup();
    if (group == nullptr)
        return {};
    std::string text = "Model " + displayText(model.file()->path()) + "\nLOD " +
                       std::to_string(model.selection().lod + static_cast<int>(first_number)) + "\n" +
                       describeGroup(*group, static_cast<std::size_t>(model.selection().group) + first_number);
    std::string lines; // as Windows wants them on the clipboard
    for (const char character : text)
        lines += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return lines;
}

} // namespace korvane
