#include "Korvane/app/texture_commands.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/clipboard.h"
#include "Korvane/app/mod_folder_commands.h"
#include "Korvane/textures/picture_file.h"
#include "Korvane/textures/texture_paths.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

const std::vector<file_filter> picture_filters = {{"Pictures (*.png, *.tga, *.dds)", "*.png;*.tga;*.dds"}};

struct conversion
{
    picture_edits::edit_number number = 0;
    bool is_done = false;
    replaced_picture result = {};
    failure why = {};
};

failure thrownFailure(const std::string& what)
{
    failure why;
    why.kind = failure_kind::refused;
    why.what = what;
    return why;
}

} // namespace

texture_commands::texture_commands(page_host& host, texture_ports ports, listeners told)
    : m_host(host)
    , m_ports(std::move(ports))
    , m_told(std::move(told))
    , m_extraction(host.config())
    , m_conversion(host.thread(), {{},
                                   [this](const std::string& line) { m_host.logLine(line); },
                                   [this](const std::string& what) {
                                       for (const picture_edits::edit_number number : std::exchange(m_converting, {}))
                                           takeConverted(number, false, {}, thrownFailure(what));
                                   }})
{
}

bool texture_commands::isUsed(std::size_t row) const
{
    const group_data* const group = m_host.document().model().selectedGroup();
    return group != nullptr && row < std::min(group->textures.size(), texture_row_count);
}

std::string texture_commands::path(std::size_t row) const
{
    return isUsed(row) ? m_host.document().model().selectedGroup()->textures[row].currentPath() : std::string();
}

bool texture_commands::isNormalMap(std::size_t row) const
{
    return m_host.document().model().selectedGroup()->textures[row].type == normal_map_type;
}

std::string texture_commands::modelPath() const
{
    const open_model& model = m_host.document().model();
    return model.hasModel() ? model.file()->path() : std::string();
}

void texture_commands::say(const std::string& text)
{
    if (text.empty())
        return;
    m_host.setStatus(text); // where the view soon says that it has read the file
    m_told.status(text);
}

void texture_commands::setPath(std::size_t row, const std::string& path)
{
    const std::size_t cut = path.size() - fileName(path).size();
    m_host.took(m_host.commands().setTexturePath(row, path.substr(0, cut), path.substr(cut)));
}

void texture_commands::choose(std::size_t row)
{
    m_host.took(m_host.commands().chooseTexture(row));
}

void texture_commands::replace(std::size_t row, target wanted)
{
    if (!isUsed(row))
        return;
    if (const auto picture = m_host.prompt().pickOpenPath("Replace Picture", picture_filters))
        replaceWith(row, *picture, wanted);
}

void texture_commands::replaceWith(std::size_t row, const std::string& picture, target wanted)
{
    const std::string title = "Replace Picture";
    if (!isUsed(row))
        return;
    if (path(row).empty())
        return m_host.prompt().show(title,
                                    "This row names no texture yet. Type the path that the texture is to have, then "
                                    "choose the picture.",
                                    prompt_icon::information);
    if (isForeignPicture(picture))
        return m_host.prompt().show(title,
                                    displayText(fileName(picture)) +
                                        " is of a kind that cannot become a texture. Save it as PNG, Targa (.tga) or "
                                        "DDS in your paint program, and take that file.",
                                    prompt_icon::information);
    const std::string folder = wantedModFolder(m_host, title);
    if (folder.empty() || !isUsed(row))
        return;
    replace_picture_request request{m_host.document().game(), picture, path(row), modelPath(), folder};
    request.target_path = wanted == target::new_path ? newTexturePath(request.internal_path, picture) : "";
    request.is_normal_map = isNormalMap(row);
    replaced_picture result;
    failure why;
    bool is_done = false;
    if (!m_host.work("Making a texture of " + displayText(fileName(picture)),
                     [&](const work_port& port) { is_done = replacePicture(request, port, result, why); }) &&
        !is_done)
        return say("Stopped: no picture was replaced.");
    if (!is_done)
        return m_host.prompt().show(title, "The picture was not taken.\r\n\r\n" + displayText(describe(why)),
                                    prompt_icon::error);
    m_edits.forget(result.internal_path);
    if (wanted == target::new_path)
        setPath(row, result.internal_path);
    if (!m_host.document().game()->hasModFolder(folder))
        m_host.rereadArchives(true); // it was not there when they were read
    m_told.files_changed();
    say(result.text);
}

void texture_commands::edit(std::size_t row)
{
    const std::string title = "Edit Picture";
    if (!isUsed(row))
        return;
    const std::string folder = wantedModFolder(m_host, title);
    if (folder.empty() || !isUsed(row))
        return;
    const picture_unpack_request request{m_host.document().game(), path(row), modelPath(), folder, isNormalMap(row)};
    unpacked_picture picture;
    failure why;
    bool is_done = false;
    if (!m_host.work("Unpacking " + displayText(fileName(request.internal_path)),
                     [&](const work_port& port) { is_done = unpackPicture(request, port, picture, why); }) &&
        !is_done)
        return say("Stopped: no picture was unpacked.");
    if (!is_done)
        return m_host.prompt().show(title, "The texture could not be unpacked.\r\n\r\n" + displayText(describe(why)),
                                    prompt_icon::error);
    if (picture.was_there && !m_edits.isFollowed(picture.picture) &&
        !m_host.prompt().confirm(title,
                                 "A painting of this texture is there already, and differs from the texture as it is "
                                 "now:\r\n" +
                                     displayText(picture.picture) +
                                     "\r\n\r\nGo on with the painting? It then becomes the texture. To begin anew from "
                                     "the texture, answer No and take that file away first.",
                                 prompt_answer::no))
        return say("The painting was left as it is: " + displayText(picture.picture));
    m_edits.follow(picture);
    if (!m_ports.open_editor(picture.picture))
        m_host.prompt().show(title,
                             "No program opens PNG pictures here. Open this one with a program of yours; each time it "
                             "is saved the texture is made again.\r\n\r\n" +
                                 displayText(picture.picture),
                             prompt_icon::information);
    say("Paint and save " + displayText(picture.picture) + ": each time it is saved the texture is made again.");
}

void texture_commands::follow()
{
    if (m_edits.count() == 0 || m_conversion.isRunning())
        return;
    if (const std::vector<picture_edits::due_picture> due = m_edits.look(); !due.empty())
        convert(due);
}

void texture_commands::convert(const std::vector<picture_edits::due_picture>& due)
{
    m_converting.clear();
    for (const picture_edits::due_picture& each : due)
        m_converting.push_back(each.number);
    m_conversion.start([this, due](const work_port& port) {
        std::vector<conversion> made;
        for (const picture_edits::due_picture& each : due)
        {
            conversion& one = made.emplace_back(conversion{each.number});
            one.is_done = replacePicture(each.request, port, one.result, one.why);
        }
        return background_task::answer([this, made = std::move(made)] {
            m_converting.clear();
            for (const conversion& one : made)
                takeConverted(one.number, one.is_done, one.result, one.why);
            m_told.files_changed();
        });
    });
}

void texture_commands::takeConverted(picture_edits::edit_number number, bool is_done, const replaced_picture& result,
                                     const failure& why)
{
    say(is_done ? m_edits.finished(number, result) : m_edits.failed(number, why));
}

void texture_commands::showPlace(std::size_t row)
{
    if (!isUsed(row))
        return;
    const game_file found = m_host.document().game()->findAround(path(row), modelPath());
    const std::string place = found.entry() != nullptr ? std::string(found.entry()->packPath()) : found.diskPath();
    if (place.empty())
        return say(displayText(path(row)) + " is nowhere to be found.");
    say("Found in " + displayText(place));
    m_ports.open_folder(place);
}

void texture_commands::chooseFolder()
{
    if (const auto folder = m_host.prompt().pickFolder("Choose the folder for extracted textures"))
    {
        m_extraction.setFolder(*folder);
        say("Textures are extracted into " + displayText(*folder));
    }
}

void texture_commands::openFolder()
{
    if (m_extraction.folder().empty())
        chooseFolder();
    if (!m_extraction.folder().empty())
        m_ports.open_folder(m_extraction.folder());
}

void texture_commands::extract()
{
    if (m_extraction.folder().empty())
        chooseFolder();
    if (m_extraction.folder().empty())
        return;
    texture_extraction_result result;
    texture_extraction_options options;
    const ui_thread::mailbox box = m_host.thread().box();
    const auto run = [&](bool overwrites) {
        const auto wanted = m_extraction.requestFor(m_host.document().model(), m_host.document().game(), overwrites);
        options = wanted.options;
        static_cast<void>(m_host.work("Extracting textures", [&](const work_port& port) {
            work_port both = port;
            both.progress = [&port, &box, this](const work_progress& now) {
                port.report(now.done, now.total, now.what);
                box.post([this, now] { m_told.progress(now); });
            };
            result = texture_extraction_panel::run(wanted, both);
        }));
    };
    m_told.progress({0, 1, {}});
    run(false);
    if (const std::string question = texture_extraction_panel::keptQuestion(result);
        !question.empty() && m_host.prompt().confirm("Find+Upack DDS", question, prompt_answer::no))
        run(true);
    m_told.progress({1, 1, {}});
    const std::string text = texture_extraction_panel::countText(result, options);
    if (const std::string missing = texture_extraction_panel::missingText(result); !missing.empty())
        m_host.logLine(text + "\r\n" + missing);
    say(text);
}

void texture_commands::copyPaths()
{
    const copied_texture_paths copied = m_host.commands().copyTexturePaths();
    say(copied.announcement);
    m_host.logLine(copied.announcement);
    if (const rmv2_file* const file = m_host.document().model().file(); file != nullptr)
        m_host.logLine(m_extraction.copyPaths(*file));
    failure why;
    if (!copied.clipboard.empty() && !setClipboardText(m_host.frame(), copied.clipboard, why))
        return say("The paths could not be put on the clipboard: " + describe(why));
    say(m_host.commands().lastAction());
}

// A model that was saved elsewhere, or read again, is the same one.
void texture_commands::showDocument()
{
    const auto model = m_host.document().model().data();
    const std::string path = modelPath();
    const bool is_same = model != nullptr && (model == m_model.lock() || path == m_model_path);
    m_model = model;
    m_model_path = path;
    if (is_same)
        return;
    m_edits.endAll();
    m_extraction.forgetPaths();
    m_told.status(m_extraction.folderText()); // not what was done with the former one
    m_told.progress({0, 1, {}});
}

} // namespace korvane
