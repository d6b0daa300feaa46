#pragma once

// What a batch command works on. An operand is a file; a folder, which stands for all below it that the command reads;
// a pattern with '*' and '?', for Windows' shells do not expand them; or with "pack:" the same in the game. In a
// pattern over the disk '*' and '?' stay within one component of the path, and what they match may be a folder; names
// that begin with a dot are matched by a component that begins with one, and case does not count. Over the game they
// stand for separators as well. A file or folder whose own name holds such a character is that file when it exists. One
// thread.

#include "EASY_GUI/services/failure.h"
#include "Korvane/game/game_source.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korvane
{

// The files that a command takes out of folders and patterns. One that is named itself is taken whatever it is called.
struct operand_kind
{
    std::string_view name;                 // "a model", for messages
    std::vector<std::string_view> endings; // in lower case, with the dot
};
[[nodiscard]] const operand_kind& modelOperands();      // .rigid_model_v2
[[nodiscard]] const operand_kind& definitionOperands(); // and .variantmeshdefinition
[[nodiscard]] const operand_kind& pictureOperands();    // .dds, .png, .tga

struct operand_file
{
    std::string path;  // to read: on the disk, or "pack:" and an internal path
    std::string below; // where it belongs below an output folder: relative to the folder that was named or to the part
                       // of the pattern before its first '*' or '?', with '/' or '\'; of a single file its name
};

class operand_list
{
public:
    // Below output nothing is taken from a folder around it: a second run would meet what the first one has written.
    explicit operand_list(const operand_kind& kind, const std::string& output = {});

    // Adds what one operand stands for, sorted, without what is in the list already. False, with the reason, when that
    // is nothing, or when a folder cannot be listed; a file that is named is not looked at. game: for "pack:".
    [[nodiscard]] bool add(const std::string& operand, const game_data& game, failure& why);

    const std::vector<operand_file>& files() const { return m_files; }
    bool isOneFile() const { return m_is_one_file; } // one operand, which names a file: its output may be one, too
    bool isNameOfOne(std::string_view path) const;   // ends as the files do that are taken
    const std::vector<failure>& leftOut() const { return m_left_out; } // folders below one that cannot be listed

private:
    using disk_path = std::filesystem::path;
    struct match_count
    {
        std::size_t all = 0;
        std::size_t taken = 0;
    };

    bool addInternal(const std::string& operand, const game_data& game, failure& why);
    bool addPattern(const std::string& operand, const disk_path& path, failure& why);
    bool addFolder(const disk_path& folder, const disk_path& below, match_count& count, failure& why);
    bool walk(const std::vector<disk_path>& components, std::size_t next, const disk_path& at, const disk_path& below,
              match_count& count, failure& why);
    bool take(const disk_path& path, const disk_path& below, match_count& count, failure& why);
    void addFile(std::string path, std::string below);
    std::string kindText() const;

    const operand_kind& m_kind;
    disk_path m_output;
    std::vector<operand_file> m_files;
    std::unordered_set<std::string> m_listed;
    std::vector<failure> m_left_out;
    std::size_t m_operands = 0;
    bool m_is_one_file = false;
};

// All operands of a command; the archives are loaded when one of them asks for the game. False when one of them stands
// for nothing: before anything is done.
[[nodiscard]] bool addOperands(game_source& source, const std::vector<std::string>& operands, operand_list& list,
                               failure& why);

} // namespace korvane
