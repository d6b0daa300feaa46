#include "EASY_GUI/services/failure.h"

#include <utility>

namespace korvane
{

bool fail(failure& why, failure_kind kind, std::string what, std::string path)
{
    if (!why)
    {
        why.kind = kind;
        why.what = std::move(what);
        why.path = std::move(path);
    }
    return false;
}

std::string describe(const failure& why)
{
    std::string line;
    if (!why.path.empty())
        line += why.path + ": ";
    line += why.what;
    if (!why.field.empty())
        line += " (at byte " + std::to_string(why.offset) + ", " + why.field + ")";
    for (char& character : line) // whatever a hostile file's texts contain, this stays one line
        if (static_cast<unsigned char>(character) < 0x20)
            character = ' ';
    return line;
}

} // namespace korvane
