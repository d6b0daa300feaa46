#include "Korvane/fbx/scene/fbx_scene_reader.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace korvane
{

namespace
{

// Four values for each attribute. Some are bits in the clothes of a float, which conversions would change.
std::vector<float> takeAttributeData(fbx_record* record)
{
    if (record == nullptr)
        return {};
    if (record->values.size() == 1)
        if (auto* const array = std::get_if<std::vector<float>>(&record->values.front()))
            return std::move(*array);
    const std::vector<double> numbers = record->numbers();
    std::vector<float> result(numbers.size());
    std::transform(numbers.begin(), numbers.end(), result.begin(),
                   [](double number) { return static_cast<float>(number); });
    return result;
}

fbx_key_attribute makeAttribute(std::uint32_t flags, const float* data)
{
    constexpr double whole_weight = 9999;
    fbx_key_attribute attribute;
    attribute.flags = flags;
    for (std::size_t i = 0; i < attribute.data.size(); ++i)
        attribute.data[i] = static_cast<double>(data[i]);
    const auto weights = std::bit_cast<std::uint32_t>(data[2]);
    attribute.right_weight = (weights & 0xffff) / whole_weight;
    attribute.next_left_weight = (weights >> 16) / whole_weight;
    return attribute;
}

std::vector<fbx_ticks> takeTimes(fbx_record* record)
{
    if (record == nullptr)
        return {};
    if (record->values.size() == 1)
        if (auto* const array = std::get_if<std::vector<fbx_ticks>>(&record->values.front()))
            return std::move(*array);
    return record->integers();
}

class curve_reader
{
public:
    curve_reader(fbx_scene_work& work, std::size_t object, failure& why)
        : m_work(work)
        , m_object(object)
        , m_record(*work.objects[object].record)
        , m_why(why)
    {
    }

    bool read(fbx_curve& curve)
    {
        curve.ticks_per_second = m_work.scene.ticks_per_second;
        const fbx_record* const time_record = m_record.find("KeyTime");
        curve.times = takeTimes(findChild(m_record, "KeyTime"));
        curve.values = takeNumbers(findChild(m_record, "KeyValueFloat"));
        if (curve.times.size() != curve.values.size())
            return malformed("KeyTime", "has " + std::to_string(curve.times.size()) + " key times, but " +
                                            std::to_string(curve.values.size()) + " values");
        readExtrapolation(m_record, curve);
        return readAttributes(curve) && checkKeyTimes(curve, time_record != nullptr ? *time_record : m_record,
                                                      "Objects/AnimationCurve/KeyTime", m_work.label(m_object), m_why);
    }

private:
    bool malformed(std::string_view child, const std::string& what)
    {
        const std::string number = " " + std::to_string(m_record.integerAt(0)) + " ";
        return m_work.malformed(m_object, child, m_work.label(m_object) + number + what, m_why);
    }

    // Attribute i serves as many keys as its count says.
    bool readAttributes(fbx_curve& curve)
    {
        const std::vector<std::int32_t> flags = takeIntegers(findChild(m_record, "KeyAttrFlags"));
        const std::vector<std::int32_t> counts = takeIntegers(findChild(m_record, "KeyAttrRefCount"));
        const std::vector<float> data = takeAttributeData(findChild(m_record, "KeyAttrDataFloat"));
        if (flags.size() != counts.size() || data.size() / 4 < flags.size())
            return malformed("KeyAttrFlags", "has " + std::to_string(flags.size()) + " attribute flags, " +
                                                 std::to_string(counts.size()) + " counts and " +
                                                 std::to_string(data.size()) + " data, which do not fit together");
        const std::size_t key_count = curve.times.size();
        std::size_t key = 0;
        curve.attributes.reserve(flags.size());
        curve.attribute_ends.reserve(flags.size());
        for (std::size_t i = 0; i < flags.size(); ++i)
        {
            if (counts[i] < 0 || static_cast<std::size_t>(counts[i]) > key_count - key)
                return malformed("KeyAttrRefCount",
                                 "has attributes for more than its " + std::to_string(key_count) + " keys");
            key += static_cast<std::size_t>(counts[i]);
            curve.attributes.push_back(makeAttribute(static_cast<std::uint32_t>(flags[i]), &data[4 * i]));
            curve.attribute_ends.push_back(static_cast<std::uint32_t>(key));
        }
        if (key < key_count)
            return malformed("KeyAttrRefCount", "has attributes for " + std::to_string(key) + " of its " +
                                                    std::to_string(key_count) + " keys");
        return true;
    }

    fbx_scene_work& m_work;
    std::size_t m_object;
    fbx_record& m_record;
    failure& m_why;
};

class stack_reader
{
public:
    explicit stack_reader(fbx_scene_work& work) : m_work(work), m_is_used(work.objects.objects().size(), false) {}

    void read()
    {
        for (std::size_t i = 1; i < m_work.objects.objects().size(); ++i)
            if (m_work.objects[i].is("AnimationStack"))
                readStack(i);
    }

private:
    // Objects below one kind of object that were not met before.
    template <class action_type>
    void forEachChild(std::size_t object, std::string_view kind, const action_type& action)
    {
        for (const fbx_link& link : m_work.objects.children(object))
            if (link.property.empty() && m_work.objects[link.object].is(kind) && !m_is_used[link.object])
            {
                m_is_used[link.object] = true;
                action(link.object);
            }
    }

    void readStack(std::size_t object)
    {
        fbx_stack stack;
        stack.name = m_work.objects[object].name;
        bool has_span = false;
        forEachProperty(*m_work.objects[object].record,
                        [&stack, &has_span](std::string_view name, const fbx_record& record, std::size_t position) {
                            if (name == "LocalStart")
                                stack.begin = record.integerAt(position);
                            else if (name == "LocalStop")
                                stack.end = record.integerAt(position);
                            has_span = has_span || name == "LocalStop";
                        });
        if (!has_span)
            readSpan(stack);
        forEachChild(object, "AnimationLayer",
                     [this, &stack](std::size_t layer) { stack.layers.push_back(readLayer(layer)); });
        m_work.scene.stacks.push_back(std::move(stack));
    }

    // A second place, in the list of takes.
    void readSpan(fbx_stack& stack) const
    {
        const fbx_record* const takes = m_work.document.find("Takes");
        if (takes == nullptr)
            return;
        for (const fbx_record& take : takes->children)
            if (take.name == "Take" && take.textAt(0) == stack.name)
                if (const fbx_record* const time = take.find("LocalTime"))
                {
                    stack.begin = time->integerAt(0);
                    stack.end = time->integerAt(1);
                }
    }

    static void readLayerProperties(const fbx_record& record, fbx_animation_layer& layer)
    {
        forEachProperty(record, [&layer](std::string_view name, const fbx_record& property, std::size_t position) {
            const std::int64_t number = property.integerAt(position);
            if (name == "Weight")
                layer.weight = property.numberAt(position, layer.weight);
            else if (name == "Mute")
                layer.is_muted = number != 0;
            else if (name == "BlendMode" && number >= 0 && number <= 2)
                layer.blend = static_cast<fbx_animation_layer::blend_kind>(number);
            else if (name == "RotationAccumulationMode")
                layer.adds_angles = number == 1;
            else if (name == "ScaleAccumulationMode")
                layer.adds_scales = number == 1;
        });
    }

    fbx_animation_layer readLayer(std::size_t object)
    {
        fbx_animation_layer layer;
        layer.name = m_work.objects[object].name;
        if (const fbx_record* const defaults = m_work.objects.templateOf("AnimationLayer"))
            readLayerProperties(*defaults, layer);
        readLayerProperties(*m_work.objects[object].record, layer);
        forEachChild(object, "AnimationCurveNode",
                     [this, &layer, object](std::size_t curve_node) { readCurveNode(curve_node, object, layer); });
        return layer;
    }

    void readCurveNode(std::size_t object, std::size_t layer_object, fbx_animation_layer& layer)
    {
        fbx_curve_node curve_node;
        curve_node.name = m_work.objects[object].name;
        bool moves_weight = false;
        for (const fbx_link& link : m_work.objects.parents(object))
        {
            if (link.property.empty())
                continue;
            moves_weight = moves_weight || (link.object == layer_object && link.property == "Weight");
            if (m_work.node_of[link.object] == fbx_none || curve_node.node != fbx_none)
                continue;
            curve_node.node = m_work.node_of[link.object];
            curve_node.property = propertyOf(link.property);
        }
        readDefaults(object, curve_node);
        readCurves(object, curve_node);
        if (moves_weight && curve_node.curves[0] != fbx_none && m_work.scene.curves[curve_node.curves[0]].hasKeys())
            layer.weight_curve = curve_node.curves[0];
        layer.curve_nodes.push_back(std::move(curve_node));
    }

    static fbx_property propertyOf(std::string_view name)
    {
        if (name == "Lcl Translation")
            return fbx_property::translation;
        if (name == "Lcl Rotation")
            return fbx_property::rotation;
        return name == "Lcl Scaling" ? fbx_property::scaling : fbx_property::other;
    }

    // 0 to 2 for "d|X" to "d|Z", also without "d|"; 3: another.
    static std::size_t channelOf(std::string_view name)
    {
        if (name.starts_with("d|"))
            name.remove_prefix(2);
        return name == "X" ? 0 : name == "Y" ? 1 : name == "Z" ? 2 : 3;
    }

    void readDefaults(std::size_t object, fbx_curve_node& curve_node) const
    {
        // What a file leaves out is what the node itself says.
        if (curve_node.node != fbx_none)
        {
            const fbx_placement& placement = m_work.scene.nodes[curve_node.node].placement;
            if (curve_node.property == fbx_property::translation)
                curve_node.defaults = placement.translation;
            else if (curve_node.property == fbx_property::rotation)
                curve_node.defaults = placement.rotation;
            else if (curve_node.property == fbx_property::scaling)
                curve_node.defaults = placement.scaling;
        }
        forEachProperty(*m_work.objects[object].record,
                        [&curve_node](std::string_view name, const fbx_record& record, std::size_t position) {
                            const std::size_t channel = channelOf(name);
                            if (channel < 3)
                                curve_node.defaults[static_cast<glm::length_t>(channel)] =
                                    record.numberAt(position, curve_node.defaults[static_cast<glm::length_t>(channel)]);
                        });
    }

    void readCurves(std::size_t object, fbx_curve_node& curve_node) const
    {
        std::size_t next = 0;
        for (const fbx_link& link : m_work.objects.children(object))
        {
            const std::size_t curve = m_work.curve_of[link.object];
            if (curve == fbx_none || link.property.empty())
                continue;
            const std::size_t channel = curve_node.property == fbx_property::other ? next++ : channelOf(link.property);
            if (channel < curve_node.curves.size())
                curve_node.curves[channel] = curve;
        }
    }

    fbx_scene_work& m_work;
    std::vector<bool> m_is_used;
};

fbx_extrapolation extrapolationOf(std::string_view letter)
{
    if (letter == "R")
        return fbx_extrapolation::repeat;
    if (letter == "M")
        return fbx_extrapolation::mirror;
    if (letter == "K")
        return fbx_extrapolation::slope;
    return letter == "A" ? fbx_extrapolation::repeat_relative : fbx_extrapolation::constant;
}

void readOutside(const fbx_record* record, fbx_outside& outside)
{
    if (record == nullptr)
        return;
    if (const fbx_record* const type = record->find("Type"))
        outside.kind = extrapolationOf(type->textAt(0));
    if (const fbx_record* const repetitions = record->find("Repetition"))
        outside.repetitions = repetitions->integerAt(0, -1);
}

} // namespace

void readExtrapolation(const fbx_record& record, fbx_curve& curve)
{
    readOutside(record.find("Pre-Extrapolation"), curve.before);
    readOutside(record.find("Post-Extrapolation"), curve.after);
}

bool checkKeyTimes(const fbx_curve& curve, const fbx_record& record, const std::string& field, const std::string& label,
                   failure& why)
{
    for (std::size_t i = 1; i < curve.times.size(); ++i)
        if (curve.times[i] < curve.times[i - 1])
            return failRecord(why, record, field,
                              label + ": the time of key " + std::to_string(i) +
                                  " is before that of the key before it");
    return true;
}

bool readAnimation(fbx_scene_work& work, failure& why)
{
    for (std::size_t i = 1; i < work.objects.objects().size(); ++i)
    {
        if (!work.objects[i].is("AnimationCurve"))
            continue;
        fbx_curve curve;
        if (!curve_reader(work, i, why).read(curve))
            return false;
        work.curve_of[i] = work.scene.curves.size();
        work.scene.curves.push_back(std::move(curve));
    }
    stack_reader(work).read();
    return true;
}

} // namespace korvane
