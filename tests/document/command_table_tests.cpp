// The table of commands: what the menus say, in which order, and that the page for users says the same.

#include "Korvane/document/command_table.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace korvane::test
{
namespace
{

std::string withoutMnemonic(std::string_view text)
{
    std::string plain(text);
    std::erase(plain, '&');
    return plain;
}

// The menus as users see them: texts to the blank, "(name)", a submenu's items behind it.
TEST(command_table, menusHaveTheirTextsInTheirOrder)
{
    const std::map<std::string, std::vector<std::string>> wanted = {
        {"File",
         {"Open \t\t Ctrl+O", "Recent Files...", "Save As...", "Save \t\t Ctrl+S", "Export STATIC model...",
          "Export Model+Skeleton+ANIM(MENU_FILE_EXPORT_ANIM)", "Patch from v6 to v7 (WH)(MENU_FILE_PATCH)",
          "Normal Maps...>Convert From BLUE to ORANGE (CA) type(MENU_FILE_NORMALMAP_TO_ORANGE)",
          "Normal Maps...>Convert From ORANGE (CA) to BLUE type(MENU_FILE_NORMALMAP_TO_BLUE)",
          "Re-read .pack files...(MENU_FILE_UPDATE)", "Reset \t\t Ctrl+L", "Exit \t\t Alt+F4", "Save Picture..."}},
        {"Edit",
         {"Test...(MAIN_EDIT_TEST)", "Copy \t\t Ctrl+C", "Paste \t\t Ctrl+V", "Undo \t\t Ctrl+Z", "Redo \t\t Ctrl+Y",
          "Replace Path Prefix...", "Copy textures paths"}},
        {"Tools", {"Setup Game Folders...", "Index Cache..."}},
        {"Animations",
         {"Convert FBX animation to .ANIM\t Ctrl+Shift+C", "Generate .bone_table From .ANIM\t Ctrl+Shift+G",
          "Play Animation... \t\t Ctrl+P"}},
        {"Variants", {"Open .variantmeshdefintion file(MENU_VARIANT_OPEN)"}},
        {"Help", {"Info And Credits", "Legal Info about FBX SDK", "Guide \t\t F1"}},
    };
    std::map<std::string, std::vector<std::string>> menus;
    std::string bar;
    std::string keys;
    for (const command_row& row : commandTable())
    {
        if (row.menu.empty())
            continue;
        std::vector<std::string>& items = menus[withoutMnemonic(row.menu)];
        if (items.empty())
        {
            bar += withoutMnemonic(row.menu) + " ";
            keys += row.menu[row.menu.find('&') + 1];
        }
        items.push_back((row.submenu.empty() ? "" : withoutMnemonic(row.submenu) + ">") + withoutMnemonic(row.text) +
                        (row.name.empty() ? "" : "(" + std::string(row.name) + ")"));
    }
    EXPECT_EQ(bar, "File Edit Tools Animations Variants Help ");
    EXPECT_EQ(keys, "FETAVH");
    EXPECT_EQ(menus, wanted);
}

TEST(command_table, mnemonicsAndShortcutsMeanOneCommand)
{
    std::map<std::string, std::set<char>> mnemonics;
    std::set<std::string> shortcuts;
    for (const command_row& row : commandTable())
    {
        if (row.menu.empty())
            continue;
        const std::size_t mark = row.text.find('&');
        ASSERT_NE(mark, row.text.npos) << row.text;
        const bool is_new =
            mnemonics[std::string(row.menu) + std::string(row.submenu)].insert(row.text[mark + 1]).second;
        EXPECT_TRUE(is_new || row.command == document_command::save) << row.text;
        const std::size_t tab = row.text.find('\t');
        EXPECT_TRUE(tab == row.text.npos || shortcuts.insert(std::string(row.text.substr(tab))).second) << row.text;
    }
    EXPECT_EQ(shortcutOf(rowOf(document_command::guide).text), (key_shortcut{0, false, 1}));
    EXPECT_FALSE(shortcutOf("Find\tF")) << "no function key";
}

// With KORVANE_WRITE_DOCS in the environment the page is written anew.
TEST(command_table, thePageForUsersListsTheSame)
{
    std::string page = "# Commands of the main window\n\nMade from the program's own table of commands.\n\n"
                       "| Menu | Command | Keys | What it does |\n|---|---|---|---|\n";
    for (const command_row& row : commandTable())
    {
        if (row.text.empty())
            continue;
        const std::string text = withoutMnemonic(row.text);
        const std::size_t tab = text.find('\t');
        const std::size_t key = text.find_last_of("\t ") + 1;
        page += "| " + withoutMnemonic(row.menu) + (row.submenu.empty() ? "" : ", " + withoutMnemonic(row.submenu)) +
                " | " + text.substr(0, text.find_last_not_of(" \t", tab == text.npos ? tab : tab - 1) + 1) + " | " +
                (tab == text.npos ? "" : text.substr(key)) + " | " + std::string(row.help) + " |\n";
    }
    if (std::getenv("KORVANE_WRITE_DOCS") != nullptr)
        writeBytes(KORVANE_COMMANDS_PAGE, page);
    EXPECT_EQ(readBytes(KORVANE_COMMANDS_PAGE), page) << "run this test with KORVANE_WRITE_DOCS=1";
}

} // namespace
} // namespace korvane::test
