#include "Korvane/document/disk_follower.h"

#include <utility>

namespace korvane
{

disk_follower::change disk_follower::look()
{
    if (m_path.empty())
        return change::none;
    const file_stamp now = stampOf(m_path);
    const bool is_steady = std::exchange(m_seen, now) == now;
    if (!is_steady || now == m_told)
        return change::none;
    m_told = now;
    if (now == m_known)
        return change::none;
    return now.is_there ? change::changed : change::gone;
}

bool disk_follower::isOther() const
{
    if (m_path.empty())
        return false;
    const file_stamp now = stampOf(m_path);
    return now.is_there && now != m_known;
}

} // namespace korvane
