#include "Korvane/game/game_file.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/positioned_file.h"
#include "Korvane/archives/entry_stream.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/mod_folder.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>
#include <vector>

namespace korvane
{

bool game_file::read(memory_file& bytes, failure& why, std::uint64_t limit) const
{
    if (m_po_entry)
        return readEntry(*m_po_entry, bytes, why, limit);
    return readLooseFile(m_disk_path, bytes, why, limit);
}

namespace
{

// A file on the disk.
class disk_stream
{
public:
    explicit disk_stream(std::string path) : m_path(std::move(path)) {}

    bool next(std::span<const std::byte>& piece, failure& why)
    {
        constexpr std::uint64_t step = 1 << 20;
        if (!m_file.isOpen() && !m_file.open(m_path, why))
            return false;
        m_piece.resize(static_cast<std::size_t>(std::min(step, m_file.size() - m_position)));
        if (!m_file.readAt(m_position, m_piece))
            return fail(why, failure_kind::unreadable, "the file cannot be read", m_path);
        m_position += m_piece.size();
        piece = m_piece;
        return true;
    }

private:
    std::string m_path;
    positioned_file m_file;
    std::uint64_t m_position = 0;
    std::vector<std::byte> m_piece;
};

} // namespace

byte_source game_file::pieces() const
{
    const bool is_loose = !m_po_entry || m_po_entry->archive().is_folder;
    if (is_loose)
    {
        std::string path = m_po_entry ? diskPathOf(*m_po_entry) : m_disk_path;
        if (path.empty()) // gone: where it was
            path = toUtf8(toPath(m_po_entry->packPath()) / toPath(m_po_entry->internalPath()));
        return [stream = std::make_shared<disk_stream>(std::move(path))](
                   std::span<const std::byte>& piece, failure& why) { return stream->next(piece, why); };
    }
    return [entry = m_po_entry, stream = std::make_shared<entry_stream>(*m_po_entry)](
               std::span<const std::byte>& piece, failure& why) { return stream->next(piece, why); };
}

bool game_file::readStart(std::span<std::byte> target, std::size_t& count, failure& why) const
{
    if (m_po_entry)
        return readEntryStart(*m_po_entry, target, count, why);
    return readLooseStart(m_disk_path, target, count, why);
}

} // namespace korvane
