// Animation before version 7000: lists of takes, models and channels instead of objects.

#include "Korvane/fbx/scene/fbx_scene_reader.h"

#include <cstdint>
#include <utility>

namespace korvane
{

namespace
{

// Key: one list of times, values, letters that say how it goes on, and what belongs to each letter.
class key_list_reader
{
public:
    explicit key_list_reader(const fbx_record& list) : m_list(list) {}

    bool read(fbx_curve& curve)
    {
        while (m_position < m_list.values.size())
            if (!readKey(curve))
                return false;
        return true;
    }

private:
    std::string_view letter() const { return m_list.textAt(m_position); }

    bool isNumber() const
    {
        return m_position < m_list.values.size() && m_list.textAt(m_position).empty() &&
               !std::holds_alternative<std::string>(m_list.values[m_position]);
    }

    bool takeNumber(double& target)
    {
        if (!isNumber())
            return false;
        target = m_list.numberAt(m_position++);
        return true;
    }

    bool readKey(fbx_curve& curve)
    {
        double value = 0;
        if (!isNumber())
            return false;
        const fbx_ticks time = m_list.integerAt(m_position++);
        if (!takeNumber(value))
            return false;
        fbx_key_attribute attribute;
        const std::string_view kind = letter();
        ++m_position;
        if (kind == "C")
            readConstant(attribute);
        else if (kind == "U")
        {
            if (!readCubic(attribute))
                return false;
        }
        else if (kind != "L")
            return false;
        curve.add(time, value, attribute);
        return true;
    }

    void readConstant(fbx_key_attribute& attribute)
    {
        attribute.flags = fbx_key_flags::constant;
        if (letter() == "n")
            attribute.flags |= fbx_key_flags::constant_next;
        if (letter() == "n" || letter() == "s") // files before key version 4004 have no letter
            ++m_position;
    }

    bool readCubic(fbx_key_attribute& attribute)
    {
        const std::string_view mode = letter();
        ++m_position;
        std::uint32_t flags = fbx_key_flags::cubic;
        std::size_t count = 0;
        if (mode == "s" || mode == "b")
        {
            flags |= fbx_key_flags::user;
            count = 2;
        }
        else if (mode == "t")
        {
            flags |= fbx_key_flags::tcb;
            count = 3;
        }
        else if (mode == "a" || mode == "p" || mode == "q" || mode == "d")
        {
            flags |= fbx_key_flags::automatic;
            count = mode == "a" ? 0 : mode == "d" ? 1 : 2;
        }
        else
            return false;
        attribute.flags = flags;
        for (std::size_t i = 0; i < count; ++i)
            if (!takeNumber(attribute.data[i]))
                return false;
        if (mode == "d" || mode == "p" || mode == "q") // their numbers are no biases
            attribute.data = {};
        return readWeights(attribute);
    }

    // Files before key version 4004 have no letter. A letter of velocities may follow; these do not matter.
    bool readWeights(fbx_key_attribute& attribute)
    {
        double unused = 0;
        double* targets[2] = {&attribute.right_weight, &attribute.next_left_weight};
        for (int list = 0; list < 2; ++list)
        {
            const std::string_view kind = letter();
            if (kind != "n" && kind != "c" && kind != "a" && kind != "l" && kind != "r")
                return true;
            ++m_position;
            const bool has_right = kind == "a" || kind == "r";
            const bool has_left = kind == "a" || kind == "l";
            if ((has_right && !takeNumber(*targets[0])) || (has_left && !takeNumber(*targets[1])))
                return false;
            if (list == 0)
                attribute.flags |= (has_right ? fbx_key_flags::right_weighted : 0) |
                                   (has_left ? fbx_key_flags::next_left_weighted : 0);
            targets[0] = targets[1] = &unused;
        }
        return true;
    }

    const fbx_record& m_list;
    std::size_t m_position = 0;
};

class take_reader
{
public:
    take_reader(fbx_scene_work& work, failure& why) : m_work(work), m_why(why) {}

    bool read(const fbx_record& take)
    {
        fbx_stack stack;
        stack.name = take.textAt(0);
        if (const fbx_record* const time = take.find("LocalTime"))
        {
            stack.begin = time->integerAt(0);
            stack.end = time->integerAt(1);
        }
        m_layer = {};
        m_layer.name = "BaseLayer"; // what newer files call the only layer
        m_take = stack.name;
        for (const fbx_record& model : take.children)
            if (model.name == "Model" && !readModel(model))
                return false;
        stack.layers.push_back(std::move(m_layer));
        m_work.scene.stacks.push_back(std::move(stack));
        return true;
    }

private:
    bool readModel(const fbx_record& model)
    {
        const std::size_t object = m_work.objects.find(model, 0);
        const std::size_t node = object == fbx_object_table::npos ? fbx_none : m_work.node_of[object];
        if (node == fbx_none)
            m_work.note("the take \"" + m_take + "\" moves a node that is not there");
        for (const fbx_record& channel : model.children)
        {
            if (channel.name != "Channel" || node == fbx_none)
                continue;
            if (channel.textAt(0) != "Transform")
            {
                if (!readChannel(channel, node, fbx_property::other))
                    return false;
                continue;
            }
            for (const fbx_record& part : channel.children)
                if (part.name == "Channel" && !readChannel(part, node, propertyOf(part.textAt(0))))
                    return false;
        }
        return true;
    }

    static fbx_property propertyOf(std::string_view name)
    {
        if (name == "T")
            return fbx_property::translation;
        if (name == "R")
            return fbx_property::rotation;
        return name == "S" ? fbx_property::scaling : fbx_property::other;
    }

    bool readChannel(const fbx_record& channel, std::size_t node, fbx_property property)
    {
        fbx_curve_node curve_node;
        curve_node.name = channel.textAt(0);
        curve_node.node = node;
        curve_node.property = property;
        const fbx_placement& placement = m_work.scene.nodes[node].placement;
        curve_node.defaults = property == fbx_property::translation ? placement.translation
                              : property == fbx_property::rotation  ? placement.rotation
                                                                    : placement.scaling;
        if (!readCurve(channel, curve_node, 0)) // a property of one number has its keys here
            return false;
        bool has_curve = curve_node.curves[0] != fbx_none;
        for (const fbx_record& part : channel.children)
        {
            const std::string_view name = part.textAt(0);
            const std::size_t axis = name == "X" ? 0 : name == "Y" ? 1 : name == "Z" ? 2 : 3;
            if (part.name != "Channel" || axis > 2)
                continue;
            if (const fbx_record* const value = part.find("Default"))
                curve_node.defaults[static_cast<glm::length_t>(axis)] = value->numberAt(0);
            if (!readCurve(part, curve_node, axis))
                return false;
            has_curve = has_curve || curve_node.curves[axis] != fbx_none;
        }
        if (has_curve)
            m_layer.curve_nodes.push_back(std::move(curve_node));
        return true;
    }

    bool readCurve(const fbx_record& channel, fbx_curve_node& curve_node, std::size_t axis)
    {
        const fbx_record* const list = channel.find("Key");
        const fbx_record* const count = channel.find("KeyCount");
        if (list == nullptr || list->values.empty())
            return true;
        fbx_curve curve;
        curve.ticks_per_second = m_work.scene.ticks_per_second;
        const std::string label = "take \"" + m_take + "\", node \"" + m_work.scene.nodes[curve_node.node].name +
                                  "\", channel " + std::string(channel.textAt(0));
        const std::string field = "Takes/Take/Model/Channel/Key";
        if (!key_list_reader(*list).read(curve))
            return failRecord(m_why, *list, field,
                              label + ": key " + std::to_string(curve.times.size()) + " cannot be read");
        if (count != nullptr && count->integerAt(0) != static_cast<std::int64_t>(curve.times.size()))
            return failRecord(m_why, *count, field + "Count",
                              label + ": there are " + std::to_string(curve.times.size()) + " keys, but KeyCount is " +
                                  std::to_string(count->integerAt(0)));
        readExtrapolation(channel, curve);
        if (!checkKeyTimes(curve, *list, field, label, m_why))
            return false;
        curve_node.curves[axis] = m_work.scene.curves.size();
        m_work.scene.curves.push_back(std::move(curve));
        return true;
    }

    fbx_scene_work& m_work;
    failure& m_why;
    fbx_animation_layer m_layer;
    std::string m_take;
};

} // namespace

bool readTakes(fbx_scene_work& work, failure& why)
{
    const fbx_record* const takes = work.document.find("Takes");
    if (takes == nullptr)
        return true;
    take_reader reader(work, why);
    for (const fbx_record& take : takes->children)
        if (take.name == "Take" && !reader.read(take))
            return false;
    return true;
}

} // namespace korvane
