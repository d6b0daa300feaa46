#include "Korvane/presenters/cache_rows.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

using state = cache_look::state;

constexpr std::array cache_columns = {list_column{"Kept", 0}, list_column{"State", 150}, list_column{"Size", 90, true},
                                      list_column{"Written", 120}};

std::string stateText(const cache_look& look)
{
    switch (look.is)
    {
    case state::unknown:
        return "looking...";
    case state::missing:
        return "none";
    case state::fresh:
        return "up to date";
    case state::old:
        return "out of date";
    case state::damaged:
        return "damaged";
    }
    return {};
}

std::string sizeInMegabytes(std::uint64_t bytes)
{
    const std::uint64_t tenths = bytes * 10 / (std::uint64_t{1} << 20);
    return tenths == 0 ? grouped((bytes + 1023) / 1024) + " KB"
                       : grouped(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

} // namespace

std::string ageText(std::chrono::seconds age)
{
    const auto minutes = static_cast<std::uint64_t>(std::max<std::int64_t>(age.count(), 0)) / 60;
    if (minutes == 0)
        return "a moment";
    if (minutes < 60)
        return counted(minutes, "minute");
    return minutes < 48 * 60 ? counted(minutes / 60, "hour") : counted(minutes / 60 / 24, "day");
}

std::span<const list_column> cache_rows::columns() const
{
    return cache_columns;
}

std::string cache_rows::text(std::size_t row, std::size_t column) const
{
    const cache_look& look = m_looks[row];
    const bool is_there = look.is != state::unknown && look.is != state::missing;
    switch (column)
    {
    case 0:
        return row == packs ? "Index of the archives (packs.cache)" : "Who uses which file (usage.cache)";
    case 1:
        return stateText(look);
    case 2:
        return is_there ? sizeInMegabytes(look.size) : std::string();
    case 3:
        return is_there ? ageText(look.age) + " ago" : std::string();
    default:
        return {};
    }
}

row_mark cache_rows::mark(std::size_t row) const
{
    return m_looks[row].is == state::damaged ? row_mark::error
           : m_looks[row].is == state::old   ? row_mark::warning
                                             : row_mark::plain;
}

const std::string& cache_rows::pathOf(row of) const
{
    return of == packs ? m_places.packs.path() : m_places.usage.path();
}

std::string cache_rows::details(row of) const
{
    const cache_look& look = m_looks[of];
    const bool is_packs = of == packs;
    std::string text = displayText(pathOf(of)) + "\r\n";
    const std::string extent = counted(look.holds.files, is_packs ? "file" : "model or definition",
                                       is_packs ? "files" : "models and definitions") +
                               " in " + counted(look.holds.archives, "archive");
    switch (look.is)
    {
    case state::unknown:
        return text;
    case state::missing:
        text += is_packs ? "There is none: each start reads the archives themselves."
                         : "There is none. \"Where Is This Used?\" on the page Archives makes it.";
        break;
    case state::fresh:
        text += "It stands for " + extent + ".";
        break;
    case state::old:
        text += "It stood for " + extent + ", but " + displayText(look.why) + ". " +
                (is_packs ? "So the archives themselves are read." : "Only these are read again.");
        break;
    case state::damaged:
        text += "It cannot be used (" + displayText(look.why) + "). Nothing is lost: rebuild or delete it.";
        break;
    }
    if (is_packs && look.archives == 0)
        text += "\r\nNo archives are found: choose the games' data folders with Tools, Setup Game Folders...";
    else if (!is_packs && !m_has_game)
        text += "\r\nNo archives are loaded.";
    if (!look.obstacle.empty())
        text += "\r\nIt cannot be written now: " + displayText(look.obstacle);
    return text;
}

bool cache_rows::canRebuild(row of) const
{
    const cache_look& look = m_looks[of];
    return look.is != state::unknown && (of == packs ? look.archives > 0 : m_has_game);
}

bool cache_rows::canDelete(row of) const
{
    return m_looks[of].is != state::unknown && m_looks[of].is != state::missing;
}

std::string cache_rows::useText() const
{
    const cache_look& look = m_looks[packs];
    if (m_places.use == cache_use::never)
        return "The archives are read at every start, and no index of them is written.";
    if (m_places.use == cache_use::always)
        return "The index is written whenever the archives have changed.";
    const std::string rule = "It pays with 32 archives or more that hold 25,000 files on average at most: ";
    if (look.is == state::unknown)
        return rule + "looking...";
    if (look.is == state::fresh)
        return rule + (pack_cache::pays(look.holds) ? "it does here." : "it does not here.");
    return rule + "there " + (look.archives == 1 ? "is " : "are ") + counted(look.archives, "archive") + " here.";
}

} // namespace korvane
