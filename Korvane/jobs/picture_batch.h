#pragma once

// One or many pictures, each made into a file: what dds and normal-map share. Where the files come to lie, what is left
// alone, what failed.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/operand_list.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct picture_batch
{
    std::vector<operand_file> inputs;
    bool is_one_file = false; // a single picture that was named itself: the output may be a file
    std::string output;       // a file, which is written over, or a folder, below which files keep their folders
    bool overwrites = false;  // what differs below the folder
};

struct failed_picture
{
    std::string input;
    failure why;
};

struct picture_batch_result
{
    std::vector<std::string> kept;      // outputs
    std::vector<failed_picture> failed; // also the only one
};

// Makes one file: the bytes go to write. False, with the reason, when the picture failed.
using write_picture = std::function<bool(std::span<const std::byte> bytes, failure& why)>;
using picture_work =
    std::function<bool(const std::string& input, const std::string& path, const write_picture& write, failure& why)>;
// The name that a file has below the folder.
using picture_name = std::function<std::string(const std::string& below)>;
[[nodiscard]] std::string withEnding(const std::string& path, std::string_view ending); // in place of its own one

// False, with the reason, when the only picture failed. Of several one that fails, also for want of memory, is told and
// stands in the result, and the others go on. made is called behind a work whose file has been written or stands there
// with the same bytes. No input is ever written over. A stop is heeded between pictures.
[[nodiscard]] bool convertPictures(const picture_batch& batch, const picture_name& name, const picture_work& work,
                                   const std::function<void(output_outcome)>& made, const work_port& port,
                                   picture_batch_result& result, failure& why);

// A picture of the disk or of the game. Of DDS files arrays and cubes are refused.
[[nodiscard]] bool readInputPicture(game_source& source, const std::string& input, picture& target, failure& why);

} // namespace korvane
