#include "Korvane/archives/variant_mesh_def_text.h"

#include "EASY_GUI/services/text.h"

#include <pugixml.hpp>

#include <algorithm>
#include <new>

namespace korvane
{

namespace
{

// Zero bytes at the end are filling.
std::span<const std::byte> withoutFilling(std::span<const std::byte> text)
{
    const auto first_zero = std::find(text.begin(), text.end(), std::byte{0});
    const bool is_filling = std::all_of(first_zero, text.end(), [](std::byte value) { return value == std::byte{0}; });
    return is_filling ? text.first(static_cast<std::size_t>(first_zero - text.begin())) : text;
}

std::uint32_t unitAt(std::span<const std::byte> text, std::size_t at, std::size_t width, bool is_big_endian)
{
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < width; ++i)
        unit |= std::to_integer<std::uint32_t>(text[at + (is_big_endian ? width - 1 - i : i)]) << (8 * i);
    return unit;
}

std::size_t utf8Length(std::uint32_t unit, std::size_t width)
{
    if (width == 2 && unit >= 0xd800 && unit < 0xe000)
        return 2; // half of a pair, which takes four bytes
    return unit < 0x80 ? 1 : unit < 0x800 ? 2 : unit < 0x10000 ? 3 : 4;
}

// The parser counts in the UTF-8 into which it converts; people look at the file. Goes through it once, forwards.
class file_position
{
public:
    file_position(std::span<const std::byte> text, pugi::xml_encoding encoding) : m_text(text)
    {
        const bool is_utf16 = encoding == pugi::encoding_utf16_le || encoding == pugi::encoding_utf16_be;
        const bool is_utf32 = encoding == pugi::encoding_utf32_le || encoding == pugi::encoding_utf32_be;
        m_is_big_endian = encoding == pugi::encoding_utf16_be || encoding == pugi::encoding_utf32_be;
        m_is_converted = is_utf16 || is_utf32 || encoding == pugi::encoding_latin1;
        m_width = is_utf16 ? 2 : is_utf32 ? 4 : 1;
    }

    // To a position of the parser's, not before the last one.
    void moveTo(std::ptrdiff_t parsed)
    {
        const std::size_t wanted = parsed > 0 ? static_cast<std::size_t>(parsed) : 0;
        for (; m_parsed < wanted && m_at + m_width <= m_text.size(); m_at += m_width)
        {
            const std::uint32_t unit = unitAt(m_text, m_at, m_width, m_is_big_endian);
            m_parsed += m_is_converted ? utf8Length(unit, m_width) : 1;
            m_line += unit == '\n' ? 1 : 0;
        }
    }

    std::size_t at() const { return m_at; }       // in the file
    std::uint32_t line() const { return m_line; } // counted from 1

private:
    std::span<const std::byte> m_text;
    bool m_is_big_endian = false;
    bool m_is_converted = false;
    std::size_t m_width = 1;
    std::size_t m_parsed = 0;
    std::size_t m_at = 0;
    std::uint32_t m_line = 1;
};

std::size_t positionInFile(std::span<const std::byte> text, pugi::xml_encoding encoding, std::ptrdiff_t parsed)
{
    file_position position(text, encoding);
    position.moveTo(parsed);
    return position.at();
}

variant_tag_kind kindOf(std::string_view name)
{
    if (equalsIgnoringCase(name, "VARIANT_MESH"))
        return variant_tag_kind::mesh;
    if (equalsIgnoringCase(name, "SLOT"))
        return variant_tag_kind::slot;
    if (equalsIgnoringCase(name, "VARIANT_MESH_REFERENCE"))
        return variant_tag_kind::reference;
    return variant_tag_kind::other;
}

std::size_t ownBytes(const variant_tag& tag)
{
    std::size_t bytes = sizeof tag + tag.name.size();
    for (const auto& [name, value] : tag.attributes)
        bytes += sizeof tag.attributes.front() + name.size() + value.size();
    return bytes;
}

// Copies the parser's elements and watches the limits.
class tag_builder
{
public:
    explicit tag_builder(file_position position) : m_position(position) {}

    // The position of what breaks a limit is in the parser's bytes.
    bool addChildren(const pugi::xml_node& parent, std::size_t depth, variant_tag& target, failure& why)
    {
        for (const pugi::xml_node& node : parent.children())
        {
            if (node.type() != pugi::node_element)
                continue;
            if (depth > variant_mesh_def::max_depth)
                return fail(node, why, "depth",
                            "elements are nested deeper than the " + std::to_string(variant_mesh_def::max_depth) +
                                " levels that are allowed");
            if (++m_tags > variant_mesh_def::max_tags)
                return fail(node, why, "elements",
                            "there are more than the " + std::to_string(variant_mesh_def::max_tags) +
                                " elements that are allowed");
            if (!addTag(node, target, why) || !addChildren(node, depth + 1, target.children.back(), why))
                return false;
        }
        return true;
    }

private:
    bool addTag(const pugi::xml_node& node, variant_tag& target, failure& why)
    {
        variant_tag tag;
        tag.name = node.name();
        tag.kind = kindOf(tag.name);
        m_position.moveTo(node.offset_debug());
        tag.line = m_position.line();
        m_bytes += ownBytes(tag);
        for (const pugi::xml_attribute& attribute : node.attributes())
        {
            if (tag.attributes.size() == variant_mesh_def::max_attributes)
                return fail(node, why, "attributes",
                            "an element has more than the " + std::to_string(variant_mesh_def::max_attributes) +
                                " attributes that are allowed");
            tag.attributes.emplace_back(attribute.name(), attribute.value());
            const auto& [name, value] = tag.attributes.back();
            m_bytes += sizeof tag.attributes.front() + name.size() + value.size();
            if (m_bytes > variant_mesh_def::max_tree_bytes)
                return fail(node, why, "attributes",
                            "its elements take more than the " + std::to_string(variant_mesh_def::max_tree_bytes) +
                                " bytes of memory that are allowed");
        }
        target.children.push_back(std::move(tag));
        return true;
    }

    static bool fail(const pugi::xml_node& node, failure& why, std::string field, std::string what)
    {
        why = {failure_kind::malformed,
               std::move(what),
               {},
               static_cast<std::uint64_t>(node.offset_debug()),
               std::move(field)};
        return false;
    }

    file_position m_position;
    std::size_t m_tags = 0;
    std::size_t m_bytes = 0;
};

bool isOfBytes(pugi::xml_encoding encoding)
{
    return encoding == pugi::encoding_utf8 || encoding == pugi::encoding_latin1;
}

bool checkParsed(std::span<const std::byte> text, const pugi::xml_parse_result& result, failure& why)
{
    if (result.status == pugi::status_out_of_memory)
        throw std::bad_alloc();
    // To the parser a zero is the end of the text: it would pass over what follows.
    const auto zero = std::find(text.begin(), text.end(), std::byte{0});
    if (isOfBytes(result.encoding) && zero != text.end())
    {
        why = {failure_kind::malformed,
               "there is a zero byte inside the text",
               {},
               static_cast<std::uint64_t>(zero - text.begin()),
               "text"};
        return false;
    }
    if (result)
        return true;
    const bool is_at_end = positionInFile(text, result.encoding, result.offset + 1) >= text.size();
    why = {is_at_end ? failure_kind::truncated : failure_kind::malformed,
           "this is no well-formed XML",
           {},
           positionInFile(text, result.encoding, result.offset),
           result.description()};
    return false;
}

} // namespace

variant_tag_extent extentOf(const variant_tag& tag)
{
    variant_tag_extent extent{1, ownBytes(tag), 0};
    for (const variant_tag& child : tag.children)
    {
        const variant_tag_extent below = extentOf(child);
        extent.tags += below.tags;
        extent.bytes += below.bytes;
        extent.height = std::max(extent.height, below.height);
    }
    ++extent.height;
    return extent;
}

bool parseVariantMeshDef(std::span<const std::byte> text, variant_tag& root, failure& why)
{
    if (text.size() > variant_mesh_def::max_text_bytes)
        return fail(why, failure_kind::malformed,
                    std::to_string(text.size()) + " bytes are more than the " +
                        std::to_string(variant_mesh_def::max_text_bytes) + " that a definition may have");
    text = withoutFilling(text);
    // The parser neither expands entities nor recurses, whatever the depth.
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_escapes | pugi::parse_wconv_attribute);
    if (!checkParsed(text, result, why))
        return false;
    variant_tag roots;
    if (tag_builder builder(file_position(text, result.encoding)); !builder.addChildren(document, 1, roots, why))
    {
        why.offset = positionInFile(text, result.encoding, static_cast<std::ptrdiff_t>(why.offset));
        return false;
    }
    // In two steps: the roots' own tag goes with them.
    variant_tag only = roots.children.size() == 1 ? std::move(roots.children.front()) : std::move(roots);
    root = std::move(only);
    return true;
}

} // namespace korvane
