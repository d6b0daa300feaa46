#include "Korvane/fbx/container/fbx_document.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace korvane
{

namespace
{

class dump_writer
{
public:
    dump_writer(std::size_t array_limit, const fbx_text_sink& sink) : m_array_limit(array_limit), m_sink(sink) {}

    void record(const fbx_record& record, std::size_t level)
    {
        m_text.append(2 * level, ' ').append(terminalText(record.name)) += ':';
        bool is_first = true;
        for (const fbx_value& value : record.values)
        {
            m_text += is_first ? " " : ", ";
            is_first = false;
            std::visit([this](const auto& held) { show(held); }, value);
        }
        m_text += '\n';
        passOnWhenFull();
        for (const fbx_record& child : record.children)
            this->record(child, level + 1);
    }

    void passOn()
    {
        m_sink(m_text);
        m_text.clear();
    }

    std::string m_text; // not passed on yet

private:
    void passOnWhenFull()
    {
        if (m_text.size() >= 64 * 1024)
            passOn();
    }

    template <class type>
    void number(type value)
    {
        if constexpr (std::is_floating_point_v<type>)
            if (!std::isfinite(value)) // the sign of a NaN differs between libraries
            {
                m_text += std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
                return;
            }
        std::array<char, 40> written;
        const auto end = std::to_chars(written.data(), written.data() + written.size(), value).ptr;
        m_text.append(written.data(), end);
    }

    template <class element>
    void array(char letter, const std::vector<element>& elements)
    {
        m_text += letter;
        m_text += '[';
        number(elements.size());
        m_text += ']';
        const std::size_t shown = m_array_limit == 0 ? elements.size() : std::min(m_array_limit, elements.size());
        for (std::size_t at = 0; at < shown; ++at)
        {
            m_text += ' ';
            number(elements[at]);
            passOnWhenFull();
        }
        if (shown < elements.size())
            m_text += " ...";
    }

    template <class type>
    void single(char letter, type value)
    {
        m_text += letter;
        m_text += ' ';
        number(value);
    }

    void show(bool value) { single('C', value ? 1 : 0); }
    void show(char value) { m_text.append("C '").append(terminalText({&value, 1})).append("'"); }
    void show(std::int16_t value) { single('Y', value); }
    void show(std::int32_t value) { single('I', value); }
    void show(std::int64_t value) { single('L', value); }
    void show(float value) { single('F', value); }
    void show(double value) { single('D', value); }
    void show(const std::string& value) { m_text.append("S \"").append(terminalText(value)).append("\""); }
    void show(const std::vector<std::uint8_t>& value) { array('b', value); }
    void show(const std::vector<std::int32_t>& value) { array('i', value); }
    void show(const std::vector<std::int64_t>& value) { array('l', value); }
    void show(const std::vector<float>& value) { array('f', value); }
    void show(const std::vector<double>& value) { array('d', value); }
    void show(const fbx_bytes& value)
    {
        constexpr std::string_view digits = "0123456789abcdef";
        const std::size_t size = value.data.size();
        const std::size_t shown = m_array_limit == 0 ? size : std::min(m_array_limit, size);
        m_text.append("R[").append(std::to_string(size)).append(size == 0 ? "]" : "] ");
        for (std::size_t at = 0; at < shown; ++at)
        {
            m_text += digits[std::to_integer<std::size_t>(value.data[at] >> 4)];
            m_text += digits[std::to_integer<std::size_t>(value.data[at] & std::byte{15})];
            passOnWhenFull();
        }
        if (shown < size)
            m_text += "...";
    }

    std::size_t m_array_limit;
    const fbx_text_sink& m_sink;
};

} // namespace

void dumpFbx(const fbx_document& document, std::size_t array_limit, const fbx_text_sink& sink)
{
    dump_writer writer(array_limit, sink);
    writer.m_text = "FBX " + std::to_string(document.version) + ", " + (document.is_binary ? "binary" : "text") +
                    (document.is_big_endian ? ", big-endian" : "") + "\n";
    for (const fbx_record& record : document.records)
        writer.record(record, 0);
    writer.passOn();
}

std::string dumpFbx(const fbx_document& document, std::size_t array_limit)
{
    std::string text;
    dumpFbx(document, array_limit, [&text](std::string_view part) { text += part; });
    return text;
}

} // namespace korvane
