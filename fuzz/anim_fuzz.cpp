// Reads any bytes with each of the three loads. What loads must hold together and its texts can be made; a template and
// an animation of the same bytes must agree.

#include "Korvane/animation/anim_dump.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/anim_writer.h"
#include "Korvane/animation/bone_table.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

class counting_prompt : public user_prompt
{
public:
    void show(const std::string& title, const std::string& text, prompt_icon) override
    {
        require(title == "Fatal Error!" && text.rfind("File: input: ", 0) == 0);
        ++shown;
    }
    bool confirm(const std::string&, const std::string&) override { return false; }
    std::optional<std::string> pickOpenPath(const std::string&, const std::vector<file_filter>&) override { return {}; }
    std::optional<std::string> pickSavePath(const std::string&, const std::vector<file_filter>&,
                                            const std::string&) override
    {
        return {};
    }

    int shown = 0;
};

void checkTracks(const std::vector<std::uint32_t>& map, std::uint32_t count, const std::vector<std::uint32_t>& bones)
{
    require(bones.size() <= count && count <= map.size());
    for (std::size_t i = 0; i < bones.size(); ++i)
        require(bones[i] < map.size() && hasTrack(map[bones[i]]) && (i == 0 || bones[i - 1] < bones[i]));
}

void check(const anim_data& data, bool has_frames, std::size_t size)
{
    require(data.version == 5 || data.version == 7);
    require(data.bones.size() <= anim_file::max_bones);
    for (const anim_bone& bone : data.bones)
        require(bone.name.size() <= anim_file::max_name);
    require(data.translation_map.size() == data.bones.size() && data.rotation_map.size() == data.bones.size());
    checkTracks(data.translation_map, data.translation_count, data.animated_translations);
    checkTracks(data.rotation_map, data.rotation_count, data.animated_rotations);
    require(data.static_translations.size() * 12 + data.static_rotations.size() * 8 <= size);
    const std::size_t frames = has_frames ? data.frame_count : 0;
    require(data.translations.size() == frames * data.translation_count);
    require(data.rotations.size() == frames * data.rotation_count);
    require(data.translations.size() * 12 + data.rotations.size() * 8 <= size);
    for (const std::uint64_t offset : data.first_bone_offsets)
        require(offset + 12 <= size);
    require(!boneTable(data).empty() && !animDump(data, {"pack", "path"}).empty());
}

bool sameHeads(const anim_data& left, const anim_data& right)
{
    return left.skeleton_name == right.skeleton_name && left.bones.size() == right.bones.size() &&
           left.translation_map == right.translation_map && left.rotation_map == right.rotation_map &&
           left.animated_translations == right.animated_translations &&
           left.static_translations.size() == right.static_translations.size() && left.frame_count == right.frame_count;
}

// Back into the file's space.
anim_output outputOf(const anim_data& data)
{
    anim_output output;
    output.header_word = data.header_word;
    output.frame_rate = data.frame_rate;
    output.skeleton_name = data.skeleton_name;
    output.end_time = data.end_time;
    for (const anim_bone& bone : data.bones)
        output.bones.push_back({bone.name, bone.parent});
    output.translation_map = data.translation_map;
    output.rotation_map = data.rotation_map;
    output.frames.resize(data.frame_count);
    for (std::size_t frame = 0; frame < data.frame_count; ++frame)
    {
        for (std::size_t i = 0; i < data.animated_translations.size(); ++i)
        {
            const glm::vec3 value = data.frameTranslations(frame)[i];
            output.frames[frame].translations[data.animated_translations[i]] = {-value.x, value.y, value.z};
        }
        for (std::size_t i = 0; i < data.animated_rotations.size(); ++i)
        {
            const glm::quat value = data.frameRotations(frame)[i];
            output.frames[frame].rotations[data.animated_rotations[i]] = {value.w, value.x, -value.y, -value.z};
        }
    }
    return output;
}

template <typename values>
bool sameBytes(const values& left, const values& right)
{
    return left.size() == right.size() &&
           (left.empty() || std::memcmp(left.data(), right.data(), left.size() * sizeof(left[0])) == 0);
}

void checkReadBack(const anim_data& data)
{
    // Values that belong to no bone are not written.
    if (data.animated_translations.size() != data.translation_count ||
        data.animated_rotations.size() != data.rotation_count || data.frame_count == 0)
        return;
    std::vector<std::byte> bytes;
    failure why;
    require(makeAnim(outputOf(data), 5, bytes, why));
    counting_prompt prompt;
    anim_file again(prompt);
    again.openFromMemory(memory_file(std::span<const std::byte>(bytes)), "input");
    require(again.loadAnimation({}, why));
    require(sameHeads(again.data(), data) || data.version == 7);
    require(again.data().animated_rotations == data.animated_rotations);
    require(sameBytes(again.data().translations, data.translations));
    require(sameBytes(again.data().rotations, data.rotations));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = std::as_bytes(std::span(data, size));
    counting_prompt prompt;
    anim_file animation(prompt), skeleton(prompt), bones(prompt);
    int expected_boxes = 0;
    const auto load = [&](anim_file& file, bool (anim_file::*way)(const std::string&, failure&), bool has_frames)
    {
        failure why;
        file.openFromMemory(memory_file(bytes), "input");
        const bool is_loaded = (file.*way)({}, why);
        if (is_loaded)
            check(file.data(), has_frames, size);
        else
        {
            require(why && !why.what.empty() && why.path == "input" && !why.field.empty() && why.offset <= size);
            require(file.data().bones.empty() && file.path().empty());
            expected_boxes += why.kind == failure_kind::unsupported ? 0 : 1;
        }
        return is_loaded;
    };
    const bool is_animation = load(animation, &anim_file::loadAnimation, true);
    load(skeleton, &anim_file::loadSkeleton, false);
    const bool is_template = load(bones, &anim_file::loadTemplate, false);
    require(prompt.shown == expected_boxes);
    require(!is_animation || (is_template && sameHeads(animation.data(), bones.data())));

    if (is_animation)
        checkReadBack(animation.data());

    std::string name;
    failure why;
    require(anim_file::readSkeletonName(bytes, name, why) || why);
    require(!is_template || name == bones.data().skeleton_name);
    return 0;
}
