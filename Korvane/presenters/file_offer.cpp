#include "Korvane/presenters/file_offer.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_file.h"

#include <algorithm>
#include <utility>

namespace korvane
{

void file_offer::add(const path_node& folder)
{
    const std::size_t above = folder.path().size() - folder.name().size(); // with its separator
    for (const pack_file_node* const file : m_po_tree->filesBelow(folder))
    {
        if (isFull())
            return;
        take(*file, file->internalPath().substr(above));
    }
}

void file_offer::take(const pack_file_node& file, std::string_view name)
{
    failure ignored;
    std::string located;
    const bool has_place = !isFull() && m_names.locate(name, located, ignored);
    std::replace(located.begin(), located.end(), '/', '\\');
    if (has_place && utf16FromUtf8(located).size() <= longest_path)
        m_files.emplace_back(&file, std::move(located));
    else
        ++m_left_out;
}

// What is packed or lies on the disk tells its size when it is read.
std::optional<std::uint64_t> file_offer::size(std::size_t number) const
{
    const pack_file_node& file = *m_files[number].first;
    return file.compression() != 0 || file.archive().is_folder ? std::nullopt
                                                               : std::optional(std::uint64_t{file.size()});
}

byte_source file_offer::open(std::size_t number) const
{
    return game_file(std::shared_ptr<const pack_file_node>(m_po_tree, m_files[number].first)).pieces();
}

} // namespace korvane
