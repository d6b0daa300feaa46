#pragma once

// The .bone_table text of a skeleton, written and read, which tells the games' tools the kind and the order of every
// bone (docs/formats/anim.md, "Bone table").

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/text_lines.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// As the table spells it, its comma included: "BT_ROOT,", "BT_CORE,", "BT_FACE,", "BT_LEFT_HAND,", "BT_RIGHT_HAND," or
// "BT_FLOATING,". A bone's place in the tree decides, then the words in its name.
[[nodiscard]] std::string_view boneType(const anim_bone& bone);

// Of whatever was loaded: the bones are all it takes.
[[nodiscard]] std::string boneTable(const anim_data& skeleton, std::string_view line_end = text_mode_line_end);
// The names of a table's bone lines, in the order of the lines: what stands before the first comma, without blanks
// around it. Comments and settings are passed over. False, with the line in the field, for a line that is none of
// these, and for a table without bones.
[[nodiscard]] bool readBoneTable(std::string_view text, std::vector<std::string>& names, failure& why);

// On failure what stood at the path still stands.
[[nodiscard]] bool writeBoneTable(const anim_data& skeleton, const std::string& path, failure& why);

} // namespace korvane
