#include "Korvane/presenters/archive_rows.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <utility>

namespace korvane
{

std::string archiveName(const archive_record& archive)
{
    return archive.is_folder ? "Mod folder (" + displayText(archive.name) + ")" : displayText(archive.name);
}

std::string typeName(std::string_view extension)
{
    constexpr std::pair<std::string_view, std::string_view> known[] = {
        {"rigid_model_v2", "Model"},
        {"variantmeshdefinition", "Definition"},
        {"anim", "Animation"},
        {"dds", "DDS texture"},
        {"xml", "XML text"},
        {"txt", "Text"},
        {"lua", "Lua script"},
        {"loc", "Texts"},
        {"wem", "Sound"},
        {"cs2", "Siege model"},
        {"bone_table", "Bone table"},
        {"wsmodel", "Model description"},
        {"", "File"},
    };
    for (const auto& [ending, name] : known)
        if (ending == extension)
            return std::string(name);
    std::string name(extension);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char each) { return each >= 'a' && each <= 'z' ? static_cast<char>(each - 32) : each; });
    return displayText(name);
}

void archive_rows::clear()
{
    m_folders.clear();
    m_files.clear();
    m_missing.clear();
}

void archive_rows::setFolders(std::vector<const path_node*> folders)
{
    m_folders = std::move(folders);
}

void archive_rows::add(std::span<const pack_file_node* const> files)
{
    m_files.insert(m_files.end(), files.begin(), files.end());
}

void archive_rows::setMissing(std::vector<std::string> paths)
{
    m_missing = std::move(paths);
}

bool archive_rows::comesBefore(column wanted, const pack_file_node& left, const pack_file_node& right) const
{
    switch (wanted)
    {
    case name:
        return left.fileName() < right.fileName();
    case type:
        return left.extension() < right.extension();
    case size:
        return left.size() < right.size();
    case archive:
        return left.archive().name < right.archive().name;
    case overrides:
        return hiddenBy(left) < hiddenBy(right);
    case folder:
        break;
    }
    return left.internalPath() < right.internalPath();
}

void archive_rows::sort(column wanted, bool is_descending)
{
    const auto before = [&](const pack_file_node* left, const pack_file_node* right) {
        return is_descending ? comesBefore(wanted, *right, *left) : comesBefore(wanted, *left, *right);
    };
    std::stable_sort(m_files.begin(), m_files.end(), before);
    if (wanted == name)
        std::sort(m_folders.begin(), m_folders.end(), [&](const path_node* left, const path_node* right) {
            return is_descending ? right->name() < left->name() : left->name() < right->name();
        });
}

std::span<const list_column> archive_rows::columns() const
{
    static constexpr list_column all[] = {{"Name", 150},   {"Type", 70},        {"Size", 60, true},
                                          {"Archive", 84}, {"Hides", 42, true}, {"Folder", 0}};
    return all;
}

const path_node* archive_rows::folderAt(std::size_t row) const
{
    return row < m_folders.size() ? m_folders[row] : nullptr;
}

const pack_file_node* archive_rows::fileAt(std::size_t row) const
{
    const std::size_t number = row - m_folders.size(); // wraps for a folder
    return number < m_files.size() ? m_files[number] : nullptr;
}

std::string_view archive_rows::pathAt(std::size_t row) const
{
    if (const path_node* const at = folderAt(row))
        return at->path();
    if (const pack_file_node* const file = fileAt(row))
        return file->internalPath();
    const std::size_t number = row - m_folders.size() - m_files.size();
    return number < m_missing.size() ? std::string_view(m_missing[number]) : std::string_view();
}

std::string archive_rows::text(std::size_t row, std::size_t column) const
{
    const pack_file_node* const file = fileAt(row);
    const std::string_view path = pathAt(row);
    switch (column)
    {
    case name:
        return displayText(fileName(path));
    case type:
        return folderAt(row) != nullptr ? "Folder" : file != nullptr ? typeName(file->extension()) : "Missing";
    case size:
        return file != nullptr ? grouped(file->size()) : std::string();
    case archive:
        return file != nullptr ? archiveName(file->archive()) : std::string();
    case overrides:
        return file != nullptr && hiddenBy(*file) > 0 ? std::to_string(hiddenBy(*file)) : std::string();
    case folder:
        return displayText(folderAround(path));
    default:
        return {};
    }
}

row_mark archive_rows::mark(std::size_t row) const
{
    return folderAt(row) == nullptr && fileAt(row) == nullptr ? row_mark::error : row_mark::plain;
}

} // namespace korvane
