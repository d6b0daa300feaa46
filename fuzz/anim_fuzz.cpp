// Reads any bytes with each of the three loads. What loads must hold together and its texts can be made; a template and
// an animation of the same bytes must agree, and so must loads from memory, from the disk, and from a disk file of
// which only the header and the maps are at hand.

#include "Korvane/animation/anim_dump.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/anim_reader.h"
#include "Korvane/animation/anim_writer.h"
#include "Korvane/animation/bone_table.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkTracks(const std::vector<std::uint32_t>& map, std::uint32_t count, const std::vector<std::uint32_t>& bones)
{
    require(bones.size() <= count && bones.size() <= map.size());
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
    constexpr std::uint32_t quickly_dumped = 1000;
    require(!boneTable(data).empty());
    require((has_frames && data.frame_count > quickly_dumped) || !animDump(data, {"pack", "path"}).empty());
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

// Number by number, to the bit; which number a NaN is does not matter.
template <typename values>
bool sameNumbers(const values& left, const values& right)
{
    if (left.size() != right.size())
        return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        for (int k = 0; k < left[i].length(); ++k)
            if (std::bit_cast<std::uint32_t>(left[i][k]) != std::bit_cast<std::uint32_t>(right[i][k]) &&
                !(std::isnan(left[i][k]) && std::isnan(right[i][k])))
                return false;
    return true;
}

void checkReadBack(const anim_data& data)
{
    // Values that belong to no bone are not written.
    if (data.animated_translations.size() != data.translation_count ||
        data.animated_rotations.size() != data.rotation_count || data.frame_count == 0 || data.frame_count > 1000)
        return;
    std::vector<std::byte> bytes, bytes_of_7;
    failure why;
    require(makeAnim(outputOf(data), 5, bytes, why) && makeAnim(outputOf(data), 7, bytes_of_7, why));
    anim_file again;
    again.openFromMemory(memory_file(std::span<const std::byte>(bytes)), "input");
    require(again.loadAnimation({}, why));
    require(sameHeads(again.data(), data) || data.version == 7);
    require(again.data().animated_rotations == data.animated_rotations);
    require(sameNumbers(again.data().translations, data.translations));
    require(sameNumbers(again.data().rotations, data.rotations));
    again.openFromMemory(memory_file(std::span<const std::byte>(bytes_of_7)), "input");
    require(!again.loadAnimation({}, why)); // its blocks stand in another order
}

// The input on the disk, in a folder that is made once.
class input_file
{
public:
    input_file()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "korvane-anim-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        m_folder = pattern;
    }
    ~input_file()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    std::string write(std::span<const std::byte> bytes) const
    {
        const std::filesystem::path path = m_folder / "input.anim";
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path.string();
    }

private:
    std::filesystem::path m_folder;
};

bool sameData(const anim_data& left, const anim_data& right)
{
    return sameHeads(left, right) && left.animated_rotations == right.animated_rotations &&
           sameNumbers(left.static_translations, right.static_translations) &&
           sameNumbers(left.static_rotations, right.static_rotations) &&
           sameNumbers(left.translations, right.translations) && sameNumbers(left.rotations, right.rotations) &&
           left.first_bone_offsets == right.first_bone_offsets;
}

// Bytes up to the static values: what a reader needs at hand.
std::size_t headSize(const anim_data& data)
{
    std::size_t size = 14 + data.skeleton_name.size() + 8;
    if (data.version == 7)
        size += 4 + (data.sub_name_flag != 0 ? 2 + data.sub_name.size() : 0) + 8;
    for (const anim_bone& bone : data.bones)
        size += 6 + bone.name.size() + 8;
    return size;
}

void checkOnDisk(std::span<const std::byte> bytes, const anim_file& from_memory, bool is_loaded, anim_depth depth)
{
    static const input_file input;
    const std::string path = input.write(bytes);
    anim_file file;
    failure why;
    require((depth == anim_depth::animation ? file.loadAnimation(path, why) : file.loadTemplate(path, why)) ==
            is_loaded);
    if (!is_loaded)
        return require(why.path == path && why.offset <= bytes.size());
    require(sameData(file.data(), from_memory.data()));
    positioned_file disk;
    require(disk.open(path, why));
    // Version 5 has its counts where version 7 has those of the static values.
    const std::size_t head = std::min(headSize(file.data()) + (file.data().version == 5 ? 12 : 0), bytes.size());
    anim_data behind_start;
    // With so little at hand the order of the blocks may be doubted.
    require(readAnim({bytes.first(head), &disk}, depth, behind_start, why) ? sameData(behind_start, file.data())
                                                                           : why.field == "static block");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = std::as_bytes(std::span(data, size));
    anim_file animation, skeleton, bones;
    const auto load = [&](anim_file& file, bool (anim_file::*way)(const std::string&, failure&), bool has_frames) {
        failure why;
        file.openFromMemory(memory_file(bytes), "input");
        const bool is_loaded = (file.*way)({}, why);
        if (is_loaded)
            check(file.data(), has_frames, size);
        else
        {
            require(why && !why.what.empty() && why.path == "input" && !why.field.empty() && why.offset <= size);
            require(file.data().bones.empty() && file.path().empty());
            const std::optional<notice>& said = file.lastNotice();
            require(said.has_value() == (why.kind != failure_kind::unsupported));
            require(!said || (said->title == "Fatal Error!" && said->text.rfind("File: ", 0) == 0));
        }
        return is_loaded;
    };
    const bool is_animation = load(animation, &anim_file::loadAnimation, true);
    load(skeleton, &anim_file::loadSkeleton, false);
    const bool is_template = load(bones, &anim_file::loadTemplate, false);
    if (bytes.size() > 14) // the rest has no header
    {
        checkOnDisk(bytes, animation, is_animation, anim_depth::animation);
        checkOnDisk(bytes, bones, is_template, anim_depth::bones_only);
    }
    require(!is_animation || (is_template && sameHeads(animation.data(), bones.data())));

    if (is_animation)
        checkReadBack(animation.data());

    std::string name;
    failure why;
    require(anim_file::readSkeletonName(bytes, name, why) || why);
    require(!is_template || name == bones.data().skeleton_name);
    return 0;
}
