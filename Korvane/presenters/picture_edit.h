#pragma once

// "Edit Picture...": a texture is unpacked as PNG (normal maps blue) into a folder beside the mod folder, a person
// paints it with a program of their own, and each time it is saved the DDS file in the mod folder is made again.
// Unpacking and converting are for a worker; picture_edits, which notices what was saved, belongs to the window's
// thread.

#include "EASY_GUI/services/file_stamp.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/jobs/replace_picture.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

struct picture_unpack_request
{
    std::shared_ptr<const game_data> game; // never null
    std::string internal_path;
    std::string model_path;
    std::string mod_folder;
    bool is_normal_map = false;
    std::string paint_folder = {}; // empty: paintFolderOf(mod_folder)
};
// "C:\mods\mine" has "C:\mods\mine_paint".
[[nodiscard]] std::string paintFolderOf(const std::string& mod_folder);

struct unpacked_picture
{
    std::string picture;             // the PNG file, to be opened in an editor
    file_stamp stamp;                // of it, when it was unpacked
    bool was_there = false;          // painted earlier: it is as it was left
    replace_picture_request request; // what is to be done when it was saved
};
// A worker's.
[[nodiscard]] bool unpackPicture(const picture_unpack_request& request, const work_port& work, unpacked_picture& result,
                                 failure& why);

class picture_edits
{
public:
    using edit_number = std::size_t;

    // Followed from now on; one that is followed already goes on. A painting that was there before is converted at
    // once, for it may be newer than the mod folder's texture.
    void follow(const unpacked_picture& picture);
    void endAll(); // the model is closed; what a worker has begun may end, and is not taken

    struct due_picture
    {
        edit_number number = 0;
        replace_picture_request request;
    };
    // Those that were saved since the last conversion, and of which two calls have found the same: before that a
    // program may still be writing. Each is then being converted until finished() is called for it. Called by a timer,
    // about twice a second; asks for a stamp of each file.
    [[nodiscard]] std::vector<due_picture> look();
    // With the line for the status bar; empty for a picture that could not be read and may still be half-written: it is
    // tried again some times, then told. A picture that is saved again meanwhile is due again.
    [[nodiscard]] std::string finished(edit_number number, const replaced_picture& result);
    [[nodiscard]] std::string failed(edit_number number, const failure& why);

    std::size_t count() const { return m_edits.size(); }
    bool isFollowed(const std::string& picture) const;
    // The texture was replaced by something else: what was painted of it is not what it shows any more.
    void forget(const std::string& internal_path);
    std::vector<std::string> pictures() const;

private:
    struct followed_picture
    {
        edit_number number = 0;
        replace_picture_request request;
        file_stamp converted = {}; // that the texture was made of, or that was given up
        file_stamp seen = {};      // at the last look
        file_stamp tried = {};     // by the conversion that runs
        int tries = 0;             // that failed, of one stamp
        bool is_converting = false;
    };
    followed_picture* find(edit_number number);

    std::vector<followed_picture> m_edits;
    edit_number m_next = 1;
};

} // namespace korvane
