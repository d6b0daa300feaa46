#pragma once

// What a person does with the textures of the open model: other files and pictures for a row, painting, extraction. The
// panel shows it; decisions are the presenters' (Korvane/presenters). Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/picture_edit.h"
#include "Korvane/presenters/texture_extraction_panel.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

// Of the system.
struct texture_ports
{
    std::function<void(const std::string& path)> open_folder; // shows a file or folder in the system's file manager
    std::function<bool(const std::string& path)> open_editor; // opens a picture to be painted; false: there is none
};

class texture_commands
{
public:
    struct listeners
    {
        std::function<void()> files_changed;                 // rows and previews are to be looked up again
        std::function<void(const work_progress&)> progress;  // of an extraction
        std::function<void(const std::string& text)> status; // what happened last: "12 DDS files extracted."
    };
    texture_commands(page_host& host, texture_ports ports, listeners told);

    // Rows of the selected group; nothing happens with one that is not used.
    void choose(std::size_t row);
    enum class target
    {
        same_path, // of every model that uses the texture
        new_path   // of this row alone
    };
    void replace(std::size_t row, target wanted);
    void replaceWith(std::size_t row, const std::string& picture, target wanted);
    void edit(std::size_t row);
    void showPlace(std::size_t row); // of the file that the row's path leads to
    bool isUsed(std::size_t row) const;
    std::string path(std::size_t row) const;

    texture_extraction_panel& extraction() { return m_extraction; }
    void extract();
    void chooseFolder();
    void openFolder();
    void copyPaths();

    void follow();       // by a timer: pictures that were painted
    void showDocument(); // it may be another model

private:
    bool isNormalMap(std::size_t row) const;
    std::string modelPath() const;
    void setPath(std::size_t row, const std::string& path);
    void takeConverted(picture_edits::edit_number number, bool is_done, const replaced_picture& result,
                       const failure& why);
    void convert(const std::vector<picture_edits::due_picture>& due);
    void say(const std::string& text);

    page_host& m_host;
    texture_ports m_ports;
    listeners m_told;
    texture_extraction_panel m_extraction;
    picture_edits m_edits;
    std::weak_ptr<const RMV2_FILE_DATA> m_model; // whose pictures and paths these are
    std::string m_model_path;
    std::vector<picture_edits::edit_number> m_converting;
    background_task m_conversion; // the last member: its work ends first
};

} // namespace korvane
