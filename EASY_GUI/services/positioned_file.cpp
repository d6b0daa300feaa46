#include "EASY_GUI/services/positioned_file.h"

#include <utility>

namespace korvane
{

positioned_file::positioned_file(positioned_file&& other) noexcept
{
    *this = std::move(other);
}

positioned_file& positioned_file::operator=(positioned_file&& other) noexcept
{
    if (this != &other)
    {
        close();
        m_handle = std::exchange(other.m_handle, no_handle);
        m_size = std::exchange(other.m_size, 0);
        m_modification_time = std::exchange(other.m_modification_time, 0);
    }
    return *this;
}

} // namespace korvane
