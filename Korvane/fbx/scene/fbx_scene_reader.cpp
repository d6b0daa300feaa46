#include "Korvane/fbx/scene/fbx_scene_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint32_t oldest_version = 6100;
constexpr double new_ticks_per_second = 141120000;

// Since header version 1004 a file may say that its ticks are the coarser ones.
double ticksPerSecond(const fbx_document& document)
{
    const double old_ticks = fbx_scene().ticks_per_second;
    const fbx_record* const header = document.find("FBXHeaderExtension");
    const fbx_record* const version = header != nullptr ? header->find("FBXHeaderVersion") : nullptr;
    const fbx_record* const flags = header != nullptr ? header->find("OtherFlags") : nullptr;
    const fbx_record* const definition = flags != nullptr ? flags->find("TCDefinition") : nullptr;
    if (version == nullptr || version->integerAt(0) < 1004 || definition == nullptr || definition->integerAt(0) == 127)
        return old_ticks;
    return new_ticks_per_second;
}

// The setting TimeMode as frames per second; 0: the file's own rate.
double frameRate(std::int64_t time_mode)
{
    static constexpr std::array<double, 19> rates = {30,         120,        100,        60, 50,   48,         30, 30,
                                                     30 / 1.001, 30 / 1.001, 25,         24, 1000, 24 / 1.001, 0,  96,
                                                     72,         60 / 1.001, 120 / 1.001};
    return time_mode >= 0 && time_mode < static_cast<std::int64_t>(rates.size())
               ? rates[static_cast<std::size_t>(time_mode)]
               : rates[0];
}

// Version 6100 files without the setting have it as a text elsewhere.
double oldFrameRate(const fbx_document& document)
{
    const fbx_record* const old = document.find("Version5");
    const fbx_record* const settings = old != nullptr ? old->find("Settings") : nullptr;
    const fbx_record* const rate = settings != nullptr ? settings->find("FrameRate") : nullptr;
    if (rate == nullptr)
        return 0;
    const std::string_view text = rate->textAt(0);
    double value = rate->numberAt(0);
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

struct time_settings
{
    std::optional<std::int64_t> mode;
    double custom_rate = 0;
};

void readSetting(std::string_view name, const fbx_record& record, std::size_t position, fbx_scene& scene,
                 time_settings& time)
{
    const auto axis = [&record, position](fbx_axis& target) {
        const std::int64_t value = record.integerAt(position, target.axis);
        target.axis = value >= 0 && value <= 2 ? static_cast<int>(value) : target.axis;
    };
    const auto sign = [&record, position](fbx_axis& target) {
        target.sign = record.integerAt(position, 1) < 0 ? -1 : 1;
    };
    if (name == "UpAxis")
        axis(scene.up);
    else if (name == "UpAxisSign")
        sign(scene.up);
    else if (name == "FrontAxis")
        axis(scene.front);
    else if (name == "FrontAxisSign")
        sign(scene.front);
    else if (name == "CoordAxis")
        axis(scene.right);
    else if (name == "CoordAxisSign")
        sign(scene.right);
    else if (name == "UnitScaleFactor")
        scene.unit_metres = record.numberAt(position, 1) / 100;
    else if (name == "TimeMode")
        time.mode = record.integerAt(position);
    else if (name == "CustomFrameRate")
        time.custom_rate = record.numberAt(position);
}

} // namespace

std::string fbx_scene_work::label(std::size_t object) const
{
    return std::string(objects[object].kind()) + " \"" + std::string(objects[object].name) + "\"";
}

bool fbx_scene_work::malformed(std::size_t object, std::string_view child, std::string what, failure& why) const
{
    const fbx_record& record = *objects[object].record;
    const fbx_record* const found = record.find(child);
    const std::string field = "Objects/" + record.name + (found != nullptr ? "/" + found->name : "");
    return failRecord(why, found != nullptr ? *found : record, field, std::move(what));
}

void readSettings(fbx_scene_work& work)
{
    work.scene.ticks_per_second = ticksPerSecond(work.document);
    const fbx_record* settings = work.document.find("GlobalSettings");
    if (settings == nullptr)
        settings = work.document.find("Objects")->find("GlobalSettings");
    time_settings time;
    if (settings != nullptr)
        forEachProperty(*settings,
                        [&work, &time](std::string_view name, const fbx_record& record, std::size_t position) {
                            readSetting(name, record, position, work.scene, time);
                        });
    double rate = time.mode ? frameRate(*time.mode) : oldFrameRate(work.document);
    if (time.mode == 14)
        rate = time.custom_rate;
    work.scene.frames_per_second = rate > 0 && rate <= 1e6 ? rate : frameRate(0);
    if (!(work.scene.unit_metres > 0 && work.scene.unit_metres < 1e12))
    {
        work.note("the unit of the file is no length: centimetres are assumed");
        work.scene.unit_metres = 0.01;
    }
}

void readPoses(fbx_scene_work& work)
{
    for (const fbx_object& object : work.objects.objects())
    {
        if (!object.is("Pose"))
            continue;
        fbx_pose pose;
        pose.name = object.name;
        pose.is_bind = object.sub_class == "BindPose";
        std::size_t missing = 0;
        for (const fbx_record& record : object.record->children)
        {
            if (record.name != "PoseNode")
                continue;
            const fbx_record* const node = record.find("Node");
            const std::size_t target = node != nullptr ? work.objects.find(*node, 0) : fbx_object_table::npos;
            fbx_pose::entry entry;
            entry.node = target == fbx_object_table::npos ? fbx_none : work.node_of[target];
            if (entry.node == fbx_none || !readMatrix(record.find("Matrix"), entry.matrix))
                ++missing;
            else
                pose.entries.push_back(entry);
        }
        if (missing > 0)
            work.note(std::to_string(missing) + " entries of the pose \"" + pose.name + "\" name no node or no matrix");
        work.scene.poses.push_back(std::move(pose));
    }
}

std::vector<double> takeNumbers(fbx_record* record)
{
    if (record == nullptr)
        return {};
    if (record->values.size() == 1)
        if (auto* const array = std::get_if<std::vector<double>>(&record->values.front()))
            return std::move(*array);
    return record->numbers();
}

std::vector<std::int32_t> takeIntegers(fbx_record* record)
{
    if (record == nullptr)
        return {};
    if (record->values.size() == 1)
        if (auto* const array = std::get_if<std::vector<std::int32_t>>(&record->values.front()))
            return std::move(*array);
    const std::vector<std::int64_t> wide = record->integers();
    std::vector<std::int32_t> result(wide.size());
    std::transform(wide.begin(), wide.end(), result.begin(), [](std::int64_t value) {
        using limits = std::numeric_limits<std::int32_t>;
        const bool fits = value >= limits::min() && value <= limits::max();
        return fits ? static_cast<std::int32_t>(value) : limits::max();
    });
    return result;
}

fbx_record* findChild(fbx_record& record, std::string_view wanted)
{
    for (fbx_record& child : record.children)
        if (child.name == wanted)
            return &child;
    return nullptr;
}

bool readMatrix(const fbx_record* record, glm::dmat4& matrix)
{
    if (record == nullptr)
        return false;
    const std::vector<double> numbers = record->numbers();
    if (numbers.size() != 16)
        return false;
    for (glm::length_t column = 0; column < 4; ++column)
        for (glm::length_t row = 0; row < 4; ++row)
            matrix[column][row] = numbers[static_cast<std::size_t>(4 * column + row)];
    return true;
}

bool readScene(fbx_document document, fbx_scene& scene, failure& why)
{
    if (document.version < oldest_version)
        return fail(why, failure_kind::unsupported,
                    "FBX version " + std::to_string(document.version) + " is older than " +
                        std::to_string(oldest_version) + ", the oldest that is read");
    fbx_scene_work work{document, {}, {}, {}, {}, {}};
    if (!work.objects.build(document, work.scene.notes, why))
        return false;
    const std::size_t object_count = work.objects.objects().size();
    work.node_of.assign(object_count, fbx_none);
    work.mesh_of.assign(object_count, fbx_none);
    work.curve_of.assign(object_count, fbx_none);
    readSettings(work);
    if (!readNodes(work, why) || !readMeshes(work, why) || !readSkins(work, why))
        return false;
    readPoses(work);
    if (!(work.isNumbered() ? readAnimation(work, why) : readTakes(work, why)))
        return false;
    scene = std::move(work.scene);
    return true;
}

} // namespace korvane
