// A take as FBX objects: stack, layer, and for each moved bone a curve node with three curves.

#include "Korvane/fbx/container/fbx_records.h"
#include "Korvane/fbx/export/fbx_export_objects.h"

#include <bit>

namespace korvane
{

namespace
{

using namespace fbx_records;

constexpr std::int32_t linear_key = 4;

class take_objects
{
public:
    take_objects(const export_take& take, const export_scene& scene, const std::vector<std::int64_t>& bone_ids,
                 const export_target& target)
        : m_take(take)
        , m_scene(scene)
        , m_bone_ids(bone_ids)
        , m_target(target)
        , m_stack(target.next_id++)
        , m_layer(target.next_id++)
    {
        m_times.reserve(take.frame_count);
        for (std::uint32_t i = 0; i < take.frame_count; ++i)
            m_times.push_back(ticks(i / take.frame_rate));
    }

    void add()
    {
        const std::int64_t stop = ticks(m_take.stop_seconds);
        fbx_record& stack =
            addObject(m_target.objects, "AnimationStack", m_stack, fullName(take_name, "AnimStack"), "");
        property_list(stack)
            .text("Description", "The first FbxAnimStack")
            .time("LocalStart", 0)
            .time("LocalStop", stop)
            .time("ReferenceStart", 0)
            .time("ReferenceStop", stop);
        addObject(m_target.objects, "AnimationLayer", m_layer, fullName(layer_name, "AnimLayer"), "").is_list = true;
        connect(m_target.connections, m_layer, m_stack);
        if (m_times.empty()) // a curve without keys is none
            return;
        for (const export_track& track : m_take.rotations)
            addCurveNode("R", "Lcl Rotation", track, m_scene.bones[track.bone].euler_degrees);
        for (const export_track& track : m_take.translations)
            addCurveNode("T", "Lcl Translation", track, m_scene.bones[track.bone].translation);
    }

private:
    void addCurveNode(const char* name, const char* property, const export_track& track, const glm::dvec3& rest)
    {
        const std::int64_t id = m_target.next_id++;
        fbx_record& node = addObject(m_target.objects, "AnimationCurveNode", id, fullName(name, "AnimCurveNode"), "");
        property_list(node)
            .add("d|X", "Number", "", "A", rest.x)
            .add("d|Y", "Number", "", "A", rest.y)
            .add("d|Z", "Number", "", "A", rest.z);
        connect(m_target.connections, id, m_layer);
        connect(m_target.connections, id, m_bone_ids[track.bone], property);
        constexpr const char* axes[] = {"d|X", "d|Y", "d|Z"};
        for (glm::length_t axis = 0; axis < 3; ++axis)
            addCurve(id, axes[axis], track, axis, rest[axis]);
    }

    void addCurve(std::int64_t node, const char* property, const export_track& track, glm::length_t axis, double rest)
    {
        std::vector<float> values;
        values.reserve(track.keys.size());
        for (const glm::dvec3& key : track.keys)
            values.push_back(static_cast<float>(key[axis]));
        const std::int64_t id = m_target.next_id++;
        fbx_record& curve = addObject(m_target.objects, "AnimationCurve", id, fullName("", "AnimCurve"), "");
        curve.add("Default", rest);
        curve.add("KeyVer", std::int32_t(4009));
        curve.add("KeyTime", m_times);
        curve.add("KeyValueFloat", std::move(values));
        // One entry for all keys: no slopes, and the default weights, two times 3333 of 10000 in the bits of a float.
        curve.add("KeyAttrFlags", std::vector<std::int32_t>{linear_key});
        curve.add("KeyAttrDataFloat", std::vector<float>{0, 0, std::bit_cast<float>(0x0d050d05u), 0});
        curve.add("KeyAttrRefCount", std::vector<std::int32_t>{static_cast<std::int32_t>(m_times.size())});
        connect(m_target.connections, id, node, property);
    }

    const export_take& m_take;
    const export_scene& m_scene;
    const std::vector<std::int64_t>& m_bone_ids;
    const export_target& m_target;
    std::int64_t m_stack;
    std::int64_t m_layer;
    std::vector<std::int64_t> m_times;
};

} // namespace

void addTakeObjects(const export_take& take, const export_scene& scene, const std::vector<std::int64_t>& bone_ids,
                    const export_target& target)
{
    take_objects(take, scene, bone_ids, target).add();
}

} // namespace korvane
