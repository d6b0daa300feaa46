#include "Korvane/presenters/picture_edit.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/jobs/texture_extraction.h"

#include <algorithm>
#include <utility>

namespace korvane
{

std::string paintFolderOf(const std::string& mod_folder)
{
    std::string folder = mod_folder;
    while (!folder.empty() && (folder.back() == '/' || folder.back() == '\\'))
        folder.pop_back();
    const bool is_root = folder.empty() || folder.back() == ':';
    return is_root ? mod_folder + "paint" : folder + "_paint";
}

bool unpackPicture(const picture_unpack_request& request, const work_port& work, unpacked_picture& result, failure& why)
{
    if (request.mod_folder.empty())
        return fail(why, failure_kind::refused, std::string(no_mod_folder_text));
    texture_extraction_options options;
    options.folder = request.paint_folder.empty() ? paintFolderOf(request.mod_folder) : request.paint_folder;
    options.form = picture_kind::png;
    options.makes_normals_blue = true;
    wanted_texture wanted{normalInternalPath(request.internal_path), request.is_normal_map};
    if (!game_path(request.model_path).isInternal() && !request.model_path.empty())
        wanted.models.push_back(request.model_path);
    texture_extraction_result made = extractTextures(*request.game, {wanted}, options, work);
    if (!made.failures.empty())
    {
        why = std::move(made.failures.front());
        return false;
    }
    if (made.files.empty() && made.kept.empty())
        return fail(why, made.is_stopped ? failure_kind::refused : failure_kind::not_found,
                    made.is_stopped ? "stopped; nothing was unpacked"
                    : !made.empty.empty()
                        ? "this texture is empty in the game"
                        : "this texture is nowhere to be found, so there is nothing to unpack; choose a "
                          "picture for it with Replace Picture",
                    request.internal_path);
    result.was_there = made.files.empty();
    result.picture = (result.was_there ? made.kept : made.files).front().path;
    result.stamp = stampOf(result.picture);
    result.request = {request.game, result.picture,       request.internal_path, request.model_path, request.mod_folder,
                      {},           request.is_normal_map};
    return true;
}

void picture_edits::follow(const unpacked_picture& picture)
{
    for (followed_picture& edit : m_edits)
        if (edit.request.picture == picture.picture)
        {
            edit.request = picture.request;
            return;
        }
    followed_picture edit{m_next++, picture.request};
    edit.converted = picture.was_there ? file_stamp() : picture.stamp;
    edit.seen = picture.stamp;
    m_edits.push_back(std::move(edit));
}

bool picture_edits::isFollowed(const std::string& picture) const
{
    return std::any_of(m_edits.begin(), m_edits.end(),
                       [&](const followed_picture& edit) { return edit.request.picture == picture; });
}

void picture_edits::forget(const std::string& internal_path)
{
    std::erase_if(m_edits, [&](const followed_picture& edit) {
        return normalInternalPath(edit.request.internal_path) == normalInternalPath(internal_path);
    });
}

void picture_edits::endAll()
{
    m_edits.clear();
}

std::vector<picture_edits::due_picture> picture_edits::look()
{
    std::vector<due_picture> due;
    for (followed_picture& edit : m_edits)
    {
        const file_stamp now = stampOf(edit.request.picture);
        const file_stamp before = std::exchange(edit.seen, now);
        // Programs that save by replacing take the file away for a moment.
        if (edit.is_converting || !now.is_there || now == edit.converted || now != before)
            continue;
        edit.tries = now == edit.tried ? edit.tries : 0;
        edit.tried = now;
        edit.is_converting = true;
        due.push_back({edit.number, edit.request});
    }
    return due;
}

std::string picture_edits::finished(edit_number number, const replaced_picture& result)
{
    followed_picture* const edit = find(number);
    if (edit == nullptr)
        return {};
    edit->is_converting = false;
    edit->converted = edit->tried; // not what is there now: that may have been saved while this one was read
    return result.was_there ? std::string() : result.text;
}

std::string picture_edits::failed(edit_number number, const failure& why)
{
    constexpr int most_tries = 6; // three seconds
    followed_picture* const edit = find(number);
    if (edit == nullptr)
        return {};
    edit->is_converting = false;
    const bool may_be_half_written = why.path == edit->request.picture;
    if (may_be_half_written && ++edit->tries < most_tries)
        return {};
    edit->converted = edit->tried; // until it is saved again
    return displayText(fileName(edit->request.picture)) + " could not be taken up: " + displayText(why.what) + ".";
}

std::vector<std::string> picture_edits::pictures() const
{
    std::vector<std::string> paths;
    for (const followed_picture& edit : m_edits)
        paths.push_back(edit.request.picture);
    return paths;
}

picture_edits::followed_picture* picture_edits::find(edit_number number)
{
    const auto found = std::find_if(m_edits.begin(), m_edits.end(),
                                    [number](const followed_picture& edit) { return edit.number == number; });
    return found == m_edits.end() ? nullptr : &*found;
}

} // namespace korvane
