#include "Korvane/animation/anim_file.h"

namespace korvane
{

void anim_file::openFromMemory(memory_file bytes, std::string name)
{
    m_bytes = std::move(bytes);
    m_memory_name = std::move(name);
}

void anim_file::reset()
{
    m_path.clear();
    m_data = {};
}

} // namespace korvane
