#include "Korvane/game/game_file.h"

#include "EASY_GUI/services/positioned_file.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>

namespace korvane
{

bool game_file::read(memory_file& bytes, failure& why, std::uint64_t limit) const
{
    if (m_po_entry)
        return readEntry(*m_po_entry, bytes, why, limit);
    positioned_file file;
    if (limit == std::numeric_limits<std::uint64_t>::max())
        return bytes.read(m_disk_path, why);
    if (!file.open(m_disk_path, why))
        return false;
    if (file.size() > limit)
        return fail(why, failure_kind::malformed,
                    std::to_string(file.size()) + " bytes are more than the " + std::to_string(limit) +
                        " that are allowed",
                    m_disk_path);
    return bytes.read(m_disk_path, why);
}

bool game_file::readStart(std::span<std::byte> target, std::size_t& count, failure& why) const
{
    if (m_po_entry)
        return readEntryStart(*m_po_entry, target, count, why);
    positioned_file file;
    if (!file.open(m_disk_path, why))
        return false;
    const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(target.size(), file.size()));
    if (!file.readAt(0, target.first(there)))
        return fail(why, failure_kind::unreadable, "the file cannot be read", m_disk_path);
    count = there;
    return true;
}

} // namespace korvane
