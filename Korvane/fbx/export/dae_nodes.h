#pragma once

// Small helpers for making Collada elements: names that XML takes, lists of numbers, sources.

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>
#include <pugixml.hpp>

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::dae_nodes
{

// A text for an attribute or element: control characters and U+FFFE and U+FFFF, which XML cannot hold, become '_'.
[[nodiscard]] std::string xmlText(std::string_view text);

// Ids of one document: made of a wish, letters, digits, '_', '-' and '.' kept, never given twice.
class id_list
{
public:
    [[nodiscard]] std::string make(std::string_view wish);

private:
    std::set<std::string, std::less<>> m_given;
};

// The shortest text that reads back to the same binary32 value.
void appendNumber(std::string& text, double value);
[[nodiscard]] std::string numberList(std::span<const double> values);

// Row after row.
void appendMatrix(std::vector<double>& values, const glm::dmat4& matrix);
// The name of that matrix in the node of a bone.
inline constexpr const char* bone_matrix = "transform";

pugi::xml_node addElement(pugi::xml_node parent, const char* name, const std::string& id = {},
                          const std::string& title = {});
// A source of numbers: so many a line of the accessor as there are blank-separated parameter names ("X Y Z"). An empty
// type is "float".
pugi::xml_node addSource(pugi::xml_node parent, const std::string& id, std::span<const double> values,
                         std::string_view parameters, const char* type = "float");
// A source of texts without blanks, one of each line.
pugi::xml_node addNameSource(pugi::xml_node parent, const std::string& id, const std::string& names, std::size_t count,
                             const char* parameter, const char* type);
void addInput(pugi::xml_node parent, const char* semantic, const std::string& source_id, int offset = -1, int set = -1);

// A document with its declaration; its elements alone, indented by so many blanks.
[[nodiscard]] std::string documentText(const pugi::xml_document& document);
[[nodiscard]] std::string elementTexts(const pugi::xml_document& document, unsigned indent);

} // namespace korvane::dae_nodes
