#include "Korvane/document/command_table.h"

namespace korvane
{

namespace
{

constexpr command_row table[] = {
    {document_command::open, "&File", "&Open \t\t Ctrl+O"},
    {document_command::open_recent, "&File", "&Recent Files..."},
    {document_command::reread_archives, "&File", "Re-read .&pack files...", true},
    {document_command::exit, "&File", "E&xit \t\t Alt+F4", true},
    {document_command::open_definition, "&Variants", "&Open .variantmeshdefintion file"},
    {document_command::about, "&Help", "&Info And Credits"},
};

} // namespace

std::span<const command_row> commandTable()
{
    return table;
}

std::optional<key_shortcut> shortcutOf(std::string_view text)
{
    const std::size_t tab = text.find_last_of('\t');
    if (tab == std::string_view::npos)
        return std::nullopt;
    std::string keys;
    for (const char character : text.substr(tab + 1))
        if (character != ' ')
            keys += character;
    const std::string_view control = "Ctrl+";
    const std::string_view shift = "Shift+";
    if (!keys.starts_with(control))
        return std::nullopt;
    keys.erase(0, control.size());
    const bool with_shift = keys.starts_with(shift);
    keys.erase(0, with_shift ? shift.size() : 0);
    return keys.size() == 1 ? std::optional(key_shortcut{keys[0], with_shift}) : std::nullopt;
}

} // namespace korvane
