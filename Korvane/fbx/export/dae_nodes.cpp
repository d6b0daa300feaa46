#include "Korvane/fbx/export/dae_nodes.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace korvane::dae_nodes
{

namespace
{

struct text_writer : pugi::xml_writer
{
    std::string text;
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
};

void addAccessor(pugi::xml_node source, const std::string& array_id, std::size_t count, std::string_view parameters,
                 const char* type)
{
    pugi::xml_node accessor = source.append_child("technique_common").append_child("accessor");
    accessor.append_attribute("source") = ("#" + array_id).c_str();
    accessor.append_attribute("count") = static_cast<unsigned long long>(count);
    const auto stride = static_cast<std::size_t>(std::count(parameters.begin(), parameters.end(), ' ')) + 1;
    accessor.append_attribute("stride") = std::string_view(type) == "float4x4" ? 16ull : stride;
    for (std::size_t begin = 0; begin <= parameters.size();)
    {
        const std::size_t end = std::min(parameters.find(' ', begin), parameters.size());
        pugi::xml_node parameter = accessor.append_child("param");
        parameter.append_attribute("name") = std::string(parameters.substr(begin, end - begin)).c_str();
        parameter.append_attribute("type") = type;
        begin = end + 1;
    }
}

} // namespace

std::string xmlText(std::string_view text)
{
    std::string result = displayText(text);
    for (char& character : result)
        if (static_cast<unsigned char>(character) < 0x20)
            character = '_';
    for (const std::string_view no_character : {"\xef\xbf\xbe", "\xef\xbf\xbf"}) // U+FFFE, U+FFFF
        for (std::size_t at = result.find(no_character); at != std::string::npos; at = result.find(no_character, at))
            result.replace(at, no_character.size(), "_");
    return result;
}

std::string id_list::make(std::string_view wish)
{
    std::string id;
    for (const char character : wish)
    {
        const bool is_letter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
        const bool is_inner = (character >= '0' && character <= '9') || character == '-' || character == '.';
        if (id.empty() && is_inner)
            id += '_';
        id += is_letter || is_inner ? character : '_';
    }
    if (id.empty())
        id = "_";
    std::string unique = id;
    for (int number = 2; !m_given.insert(unique).second; ++number)
        unique = id + "_" + std::to_string(number);
    return unique;
}

void appendNumber(std::string& text, double value)
{
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(value)).ptr;
    if (!text.empty())
        text += ' ';
    text.append(buffer, end);
}

std::string numberList(std::span<const double> values)
{
    std::string text;
    text.reserve(values.size() * 10);
    for (const double value : values)
        appendNumber(text, value);
    return text;
}

void appendMatrix(std::vector<double>& values, const glm::dmat4& matrix)
{
    for (glm::length_t row = 0; row < 4; ++row)
        for (glm::length_t column = 0; column < 4; ++column)
            values.push_back(matrix[column][row]);
}

pugi::xml_node addElement(pugi::xml_node parent, const char* name, const std::string& id, const std::string& title)
{
    pugi::xml_node element = parent.append_child(name);
    if (!id.empty())
        element.append_attribute("id") = id.c_str();
    if (!title.empty())
        element.append_attribute("name") = xmlText(title).c_str();
    return element;
}

pugi::xml_node addSource(pugi::xml_node parent, const std::string& id, std::span<const double> values,
                         std::string_view parameters, const char* type)
{
    pugi::xml_node source = addElement(parent, "source", id);
    pugi::xml_node array = addElement(source, "float_array", id + "-array");
    array.append_attribute("count") = static_cast<unsigned long long>(values.size());
    array.text() = numberList(values).c_str();
    const auto names = static_cast<std::size_t>(std::count(parameters.begin(), parameters.end(), ' ')) + 1;
    const std::size_t stride = std::string_view(type) == "float4x4" ? 16 : names;
    addAccessor(source, id + "-array", values.size() / stride, parameters, type);
    return source;
}

pugi::xml_node addNameSource(pugi::xml_node parent, const std::string& id, const std::string& names, std::size_t count,
                             const char* parameter, const char* type)
{
    pugi::xml_node source = addElement(parent, "source", id);
    pugi::xml_node array =
        addElement(source, std::string_view(type) == "IDREF" ? "IDREF_array" : "Name_array", id + "-array");
    array.append_attribute("count") = static_cast<unsigned long long>(count);
    array.text() = names.c_str();
    addAccessor(source, id + "-array", count, parameter, type);
    return source;
}

void addInput(pugi::xml_node parent, const char* semantic, const std::string& source_id, int offset, int set)
{
    pugi::xml_node input = parent.append_child("input");
    input.append_attribute("semantic") = semantic;
    input.append_attribute("source") = ("#" + source_id).c_str();
    if (offset >= 0)
        input.append_attribute("offset") = offset;
    if (set >= 0)
        input.append_attribute("set") = set;
}

std::string documentText(const pugi::xml_document& document)
{
    text_writer writer;
    document.save(writer, " ", pugi::format_default, pugi::encoding_utf8);
    return std::move(writer.text);
}

std::string elementTexts(const pugi::xml_document& document, unsigned indent)
{
    text_writer writer;
    for (const pugi::xml_node element : document)
        element.print(writer, " ", pugi::format_default, pugi::encoding_utf8, indent);
    return std::move(writer.text);
}

} // namespace korvane::dae_nodes
