#pragma once

// Writes small binary FBX files field by field for tests, from docs/formats/fbx.md; shares no code with the reader and
// none with the writer. Compressed arrays are zlib streams of one stored block.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane::test
{

class fbx_builder
{
public:
    explicit fbx_builder(std::uint32_t version = 7400, bool is_big_endian = false)
        : m_is_wide(version >= 7500)
        , m_is_big_endian(is_big_endian)
    {
        m_out = std::string("Kaydara FBX Binary  \0\x1a", 22) + (is_big_endian ? '\1' : '\0');
        m_out += number(version, 4);
    }

    // An unsigned number in the file's byte order.
    std::string number(std::uint64_t value, int width) const
    {
        std::string bytes;
        for (int at = 0; at < width; ++at)
            bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * at)));
        if (m_is_big_endian)
            std::reverse(bytes.begin(), bytes.end());
        return bytes;
    }

    // Values, letter and all. Whole numbers are given as their bits.
    std::string whole(char letter, std::uint64_t value) const { return letter + number(value, widthOf(letter)); }
    std::string f32(float value) const { return 'F' + number(std::bit_cast<std::uint32_t>(value), 4); }
    std::string f64(double value) const { return 'D' + number(std::bit_cast<std::uint64_t>(value), 8); }
    std::string text(const std::string& value, char letter = 'S') const
    {
        return letter + number(value.size(), 4) + value;
    }
    // elements: the bits of each.
    std::string array(char letter, const std::vector<std::uint64_t>& elements, bool is_packed = false) const
    {
        std::string bytes;
        for (const std::uint64_t element : elements)
            bytes += number(element, widthOf(letter));
        if (is_packed)
            bytes = zlibStream(bytes);
        return letter + number(elements.size(), 4) + number(is_packed ? 1 : 0, 4) + number(bytes.size(), 4) + bytes;
    }

    // A record; what is added up to its end are its children.
    void begin(const std::string& name, const std::vector<std::string>& values = {})
    {
        m_open.push_back(m_out.size());
        std::string all;
        for (const std::string& value : values)
            all += value;
        m_out += number(0, width()) + number(values.size(), width()) + number(all.size(), width());
        m_out += static_cast<char>(static_cast<unsigned char>(name.size()));
        m_out += name + all;
    }
    void end(bool is_list = true)
    {
        if (is_list)
            endList();
        m_out.replace(m_open.back(), static_cast<std::size_t>(width()), number(m_out.size(), width()));
        m_open.pop_back();
    }
    void record(const std::string& name, const std::vector<std::string>& values = {})
    {
        begin(name, values);
        end(false);
    }
    void endList() { m_out.append(static_cast<std::size_t>(3 * width() + 1), '\0'); }

    std::size_t size() const { return m_out.size(); }
    const std::string& str() const { return m_out; }

private:
    int width() const { return m_is_wide ? 8 : 4; }

    static int widthOf(char letter)
    {
        switch (letter)
        {
        case 'C':
        case 'b':
        case 'c':
            return 1;
        case 'Y':
            return 2;
        case 'L':
        case 'l':
        case 'd':
            return 8;
        default:
            return 4;
        }
    }

    // RFC 1950 and 1951: header, one stored block (of less than 64 KiB), checksum; always big-endian at the end.
    static std::string zlibStream(const std::string& bytes)
    {
        std::uint32_t a = 1, b = 0;
        for (const char byte : bytes)
        {
            a = (a + static_cast<unsigned char>(byte)) % 65521;
            b = (b + a) % 65521;
        }
        const auto little = [](std::size_t value) {
            return std::string{static_cast<char>(value & 0xff), static_cast<char>((value >> 8) & 0xff)};
        };
        std::string stream = "\x78\x01\x01" + little(bytes.size()) + little(~bytes.size()) + bytes;
        for (const std::uint32_t part : {b >> 8, b, a >> 8, a})
            stream += static_cast<char>(static_cast<unsigned char>(part));
        return stream;
    }

    bool m_is_wide;
    bool m_is_big_endian;
    std::string m_out;
    std::vector<std::size_t> m_open; // where the records begin that are not at their end
};

} // namespace korvane::test
