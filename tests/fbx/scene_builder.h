#pragma once

// Puts FBX documents of any version together for tests of the scene layer, straight from docs/formats/fbx.md: objects,
// properties and connections by number, which version 6100 gets as names.

#include "Korvane/fbx/container/fbx_document.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

inline constexpr std::int64_t ticks_a_second = 46186158000;

class scene_builder
{
public:
    explicit scene_builder(std::uint32_t version) : m_is_new(version >= 7000)
    {
        m_document.version = version;
        m_names[0] = fullName("Scene", "Model");
        m_document.records.emplace_back("Objects");
        m_document.records.emplace_back("Connections");
    }

    bool isNew() const { return m_is_new; }
    fbx_record& top(const std::string& name) { return m_document.records.emplace_back(name); }
    fbx_record& objects() { return m_document.records[0]; }
    fbx_record& connections() { return m_document.records[1]; }
    fbx_document& document() { return m_document; }
    static std::string fullName(const std::string& name, const std::string& class_word)
    {
        return name + std::string("\0\1", 2) + class_word;
    }

    // Valid until the next object.
    fbx_record& object(const std::string& kind, std::int64_t number, const std::string& name,
                       const std::string& class_word, const std::string& sub_class)
    {
        m_names[number] = fullName(name, class_word);
        fbx_record& record = objects().add(kind);
        if (m_is_new)
            record.values.emplace_back(number);
        record.values.emplace_back(m_names[number]);
        record.values.emplace_back(sub_class);
        return record;
    }

    fbx_record& model(std::int64_t number, const std::string& name, const std::string& sub_class)
    {
        return object("Model", number, name, "Model", sub_class);
    }

    // The value that stands for an object elsewhere.
    fbx_value reference(std::int64_t number) const
    {
        const auto name = m_names.find(number);
        if (m_is_new)
            return number;
        return name == m_names.end() ? fullName("nobody", "Model") : name->second;
    }

    void connect(std::int64_t child, std::int64_t parent, const std::string& property = {})
    {
        fbx_record& record = connections().add(m_is_new ? "C" : "Connect", std::string(property.empty() ? "OO" : "OP"));
        record.values.push_back(reference(child));
        record.values.push_back(reference(parent));
        if (!property.empty())
            record.values.emplace_back(property);
    }

    void property(fbx_record& owner, const std::string& name, const std::vector<double>& values) const
    {
        const std::string list_name = m_is_new ? "Properties70" : "Properties60";
        fbx_record* list = nullptr;
        for (fbx_record& child : owner.children)
            if (child.name == list_name)
                list = &child;
        if (list == nullptr)
            list = &owner.add(list_name);
        fbx_record& entry = list->add(m_is_new ? "P" : "Property", name, std::string("Number"));
        if (m_is_new)
            entry.values.emplace_back(std::string());
        entry.values.emplace_back(std::string("A"));
        for (const double value : values)
            entry.values.emplace_back(value);
    }

    // As an array from version 7000 on, before as single values.
    template <class type>
    void array(fbx_record& owner, const std::string& name, const std::vector<type>& values) const
    {
        fbx_record& record = owner.add(name);
        if (m_is_new)
            record.values.emplace_back(values);
        else
            for (const type value : values)
                record.values.emplace_back(value);
    }

private:
    bool m_is_new;
    fbx_document m_document;
    std::map<std::int64_t, std::string> m_names;
};

// A curve of version 7000 and later whose keys are all of one kind; times in ticks.
inline void addCurve(scene_builder& builder, std::int64_t number, const std::vector<std::int64_t>& times,
                     const std::vector<float>& values, std::int32_t flags = 4)
{
    fbx_record& curve = builder.object("AnimationCurve", number, "", "AnimCurve", "");
    builder.array(curve, "KeyTime", times);
    builder.array(curve, "KeyValueFloat", values);
    builder.array<std::int32_t>(curve, "KeyAttrFlags", {flags});
    builder.array<float>(curve, "KeyAttrDataFloat", {0, 0, 0, 0});
    builder.array<std::int32_t>(curve, "KeyAttrRefCount", {static_cast<std::int32_t>(times.size())});
}

// A stack with one layer below it.
inline void addStack(scene_builder& builder, std::int64_t stack, std::int64_t layer, const std::string& name,
                     double end_ticks)
{
    fbx_record& record = builder.object("AnimationStack", stack, name, "AnimStack", "");
    builder.property(record, "LocalStop", {end_ticks});
    builder.object("AnimationLayer", layer, "Base", "AnimLayer", "");
    builder.connect(layer, stack);
}

inline void addCurveNode(scene_builder& builder, std::int64_t number, std::int64_t layer, std::int64_t node,
                         const std::string& property, const std::vector<double>& defaults)
{
    fbx_record& record = builder.object("AnimationCurveNode", number, property, "AnimCurveNode", "");
    for (std::size_t i = 0; i < defaults.size(); ++i)
        builder.property(record, std::string("d|") + "XYZ" [i], { defaults[i] });
    builder.connect(number, layer);
    builder.connect(number, node, property);
}

} // namespace korvane::test
