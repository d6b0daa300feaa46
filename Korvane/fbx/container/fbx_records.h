#pragma once

// Small helpers for making FBX records: identities, full names, properties, connections.

#include "Korvane/fbx/container/fbx_document.h"

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane::fbx_records
{

inline constexpr double ticks_per_second = 46186158000.0;

inline std::int64_t ticks(double seconds)
{
    return std::llround(seconds * ticks_per_second);
}

inline std::string fullName(const std::string& name, const std::string& name_class)
{
    return name + std::string("\0\1", 2) + name_class;
}

// Column after column, as the file wants it.
inline std::vector<double> matrixValues(const glm::dmat4& matrix)
{
    std::vector<double> values;
    values.reserve(16);
    for (glm::length_t column = 0; column < 4; ++column)
        for (glm::length_t row = 0; row < 4; ++row)
            values.push_back(matrix[column][row]);
    return values;
}

// The record of an object, to be filled.
inline fbx_record& addObject(fbx_record& objects, const char* record, std::int64_t id, const std::string& full_name,
                             const char* object_class)
{
    return objects.add(record, id, full_name, std::string(object_class));
}

class property_list // Properties70 of a record
{
public:
    explicit property_list(fbx_record& owner) : m_list(owner.add("Properties70")) {}

    template <typename... types>
    property_list& add(const char* name, const char* type, const char* label, const char* flags, types&&... values)
    {
        m_list.add("P", std::string(name), std::string(type), std::string(label), std::string(flags),
                   std::forward<types>(values)...);
        return *this;
    }
    property_list& text(const char* name, const std::string& value) { return add(name, "KString", "", "", value); }
    property_list& integer(const char* name, std::int32_t value) { return add(name, "int", "Integer", "", value); }
    property_list& choice(const char* name, std::int32_t value) { return add(name, "enum", "", "", value); }
    property_list& flag(const char* name, bool value)
    {
        return add(name, "bool", "", "", static_cast<std::int32_t>(value));
    }
    property_list& number(const char* name, double value) { return add(name, "double", "Number", "", value); }
    property_list& time(const char* name, std::int64_t value) { return add(name, "KTime", "Time", "", value); }
    property_list& colour(const char* name, const glm::dvec3& value)
    {
        return add(name, "ColorRGB", "Color", "", value.x, value.y, value.z);
    }
    property_list& vector(const char* name, const glm::dvec3& value)
    {
        return add(name, "Vector3D", "Vector", "", value.x, value.y, value.z);
    }
    // Of a kind of its own that may be animated: "Lcl Translation" and the like.
    property_list& animatable(const char* name, const char* type, const glm::dvec3& value)
    {
        return add(name, type, "", "A", value.x, value.y, value.z);
    }

private:
    fbx_record& m_list;
};

inline void connect(fbx_record& connections, std::int64_t child, std::int64_t parent)
{
    connections.add("C", std::string("OO"), child, parent);
}

inline void connect(fbx_record& connections, std::int64_t child, std::int64_t parent, const char* property)
{
    connections.add("C", std::string("OP"), child, parent, std::string(property));
}

} // namespace korvane::fbx_records
