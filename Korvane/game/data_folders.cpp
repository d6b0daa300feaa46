#include "Korvane/game/data_folders.h"

#include "EASY_GUI/services/file_system.h"

#include <algorithm>
#include <system_error>

namespace korvane
{

bool endsInSeparator(const std::string& folder)
{
    return folder.ends_with('\\') || folder.ends_with('/');
}

std::string withSeparator(std::string folder)
{
    if (folder.empty() || endsInSeparator(folder))
        return folder;
    const std::size_t own = folder.find_last_of("\\/");
    const bool is_drive = folder.size() == 2 && folder[1] == ':';
    folder += own != std::string::npos ? folder[own]
              : is_drive               ? '\\'
                                       : static_cast<char>(std::filesystem::path::preferred_separator);
    return folder;
}

std::string wholeFolder(const std::string& folder)
{
    std::error_code error;
    if (!std::filesystem::is_directory(toPath(folder), error))
        return folder;
    const std::filesystem::path whole = std::filesystem::absolute(toPath(folder), error);
    return error ? folder : withSeparator(toUtf8(whole.lexically_normal()));
}

namespace
{

// At a quotation mark before a blank or the end; one elsewhere belongs to the name.
std::size_t endOfFolder(const std::string& text, std::size_t begin)
{
    for (std::size_t end = text.find('"', begin); end != std::string::npos; end = text.find('"', end + 1))
        if (end + 1 == text.size() || text[end + 1] == ' ')
            return end;
    return text.size();
}

} // namespace

std::vector<std::string> foldersGiven(const std::vector<std::string>& given)
{
    std::vector<std::string> folders;
    for (const std::string& text : given)
    {
        std::error_code error;
        if (std::filesystem::is_directory(toPath(text), error))
        {
            folders.push_back(withSeparator(text));
            continue;
        }
        for (std::size_t begin = 0; begin < text.size();)
        {
            const std::size_t end = endOfFolder(text, begin);
            const std::size_t first = begin == 0 ? 0 : std::min(text.find_first_not_of(' ', begin), end);
            if (end > first)
                folders.push_back(withSeparator(text.substr(first, end - first)));
            begin = end + 1;
        }
    }
    return folders;
}

} // namespace korvane
