#pragma once

// Where the picker of a path for the open model begins: with the model's name, in its folder; for a model out of the
// archives below the mod folder, at its internal path. Folders that are made for that and stay empty go again with this
// value: it lives until the file is written.

#include "EASY_GUI/services/user_prompt.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class save_place
{
public:
    // model_path: on the disk or with "pack:". disk_path: of the file that it is, when it lies on the disk. mod_folder
    // may be empty. addition: what the name gets before its ending, where the model's own file stands in the way.
    save_place(const std::string& model_path, const std::string& disk_path, const std::string& mod_folder,
               std::string_view addition);
    ~save_place();
    save_place(const save_place&) = delete;
    save_place& operator=(const save_place&) = delete;

    const save_suggestion& suggestion() const { return m_suggestion; }

private:
    void makeFolders(const std::filesystem::path& wanted);

    save_suggestion m_suggestion;
    std::vector<std::filesystem::path> m_made; // from the outer to the inner
};

} // namespace korvane
