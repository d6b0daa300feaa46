#include "Korvane/presenters/own_files.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>

namespace korvane
{

std::vector<const pack_file_node*> filesOf(const archive_browser& browser, std::span<const std::size_t> rows)
{
    std::vector<const pack_file_node*> files;
    for (const std::size_t row : rows)
        if (const pack_file_node* const file = browser.rows().fileAt(row))
            files.push_back(file);
        else if (const path_node* const folder = browser.rows().folderAt(row))
            for (const pack_file_node* const below : browser.game()->archives()->filesBelow(*folder))
                files.push_back(below);
    return files;
}

own_choice ownRows(const archive_browser& browser, std::span<const std::size_t> rows)
{
    own_choice own;
    if (rows.empty())
        own.reason = "Choose a file of the mod folder first.";
    const auto& archives = browser.game()->archives()->archives();
    if (std::none_of(archives.begin(), archives.end(),
                     [](const auto& each) { return each->is_folder && each->file_count > 0; }))
        own.reason = "There is nothing in a mod folder yet: put files into it first."; // known at once for any rows
    for (const std::size_t row : own.reason.empty() ? rows : std::span<const std::size_t>())
    {
        const std::vector<const pack_file_node*> files = filesOf(browser, std::span(&row, 1));
        const std::string name = displayText(fileName(browser.rows().pathAt(row)));
        const auto foreign = std::find_if(files.begin(), files.end(),
                                          [](const pack_file_node* file) { return !file->archive().is_folder; });
        if (files.empty())
            own.reason = name + " is in no archive and no mod folder.";
        else if (foreign != files.end())
            own.reason = name + (*foreign == browser.rows().fileAt(row) ? " is in " : " has files in ") +
                         displayText((*foreign)->archive().name) +
                         ", and archives are never changed: put it into the mod folder first.";
        else if (!own.mod_folder.empty() && own.mod_folder != files.front()->packPath())
            own.reason = "These files lie in several mod folders: choose those of one.";
        if (!own.reason.empty())
            return own;
        own.mod_folder = files.front()->packPath();
        own.places.push_back(placeInModFolder(own.mod_folder, browser.rows().pathAt(row)));
        if (own.places.back().empty())
            own.reason = name + " is gone from the mod folder: File, Re-read .pack files... takes that up.";
    }
    return own;
}

std::string putQuestion(const put_plan& plan, const std::string& mod_folder, std::string_view folder)
{
    std::string text = "Put " +
                       (plan.files.size() == 1 ? displayText(fileName(plan.files.front().internal_path))
                                               : counted(plan.files.size(), "file")) +
                       " into the mod folder, " +
                       (folder.empty() ? std::string("at its top") : "below " + displayText(folder)) + "?\r\n\r\n" +
                       displayText(mod_folder);
    if (plan.replaced.size() == 1)
        text += "\r\n\r\n" + displayText(fileName(plan.replaced.front())) + " is there already and would be replaced.";
    else if (!plan.replaced.empty())
        text += "\r\n\r\n" + counted(plan.replaced.size(), "file") +
                " are there already and would be replaced, the first is " +
                displayText(fileName(plan.replaced.front())) + ".";
    if (!plan.refused.empty())
        text += "\r\n\r\n" + counted(plan.refused.size(), "file") + " cannot be put there; a list follows.";
    return text;
}

std::string leftOutReport(const std::vector<failure>& refused, const std::vector<failure>& failed)
{
    constexpr std::size_t most_named = 5000; // of each kind
    std::string text;
    const auto add = [&](const char* heading, const std::vector<failure>& list) {
        if (list.empty())
            return;
        text += std::string(text.empty() ? "" : "\r\n") + heading + " (" + grouped(list.size()) + "):\r\n";
        for (std::size_t i = 0; i < std::min(list.size(), most_named); ++i)
            text += "  " + displayText(describe(list[i])) + "\r\n";
        if (list.size() > most_named)
            text += "  and " + grouped(list.size() - most_named) + " more\r\n";
    };
    add("Cannot be put into the mod folder", refused);
    add("Could not be written", failed);
    return text;
}

std::string rowPathOf(std::string_view folder, std::string_view internal_path)
{
    const std::string path = normalInternalPath(internal_path);
    return path.substr(0, path.find('\\', folder.empty() ? 0 : folder.size() + 1));
}

} // namespace korvane
