// The binary form, docs/formats/fbx.md, "Container". Two steps: the records are read and places for the arrays made,
// then the compressed arrays are unpacked into their places, all together.

#include "Korvane/fbx/container/fbx_reader.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/fbx/container/fbx_arrays.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace korvane
{

namespace
{

template <class number>
number swapped(number value)
{
    auto bytes = std::bit_cast<std::array<std::byte, sizeof(number)>>(value);
    std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<number>(bytes);
}

class binary_parser
{
public:
    explicit binary_parser(std::span<const std::byte> bytes) : m_in(bytes) {}

    bool readHeader(fbx_document& document);
    bool readRecords(std::vector<fbx_record>& records);
    bool unpack();
    const failure& why() const { return m_why; }

private:
    struct record_header
    {
        std::uint64_t begin = 0, end = 0; // positions in the file
        std::uint64_t value_count = 0, value_bytes = 0;
        std::string_view name;
        bool isEndOfList() const { return end == 0 && value_count == 0 && value_bytes == 0 && name.empty(); }
    };

    bool readList(std::vector<fbx_record>& records, std::uint64_t list_end);
    bool readRecord(fbx_record& record, const record_header& header);
    bool readRecordHeader(record_header& header, std::uint64_t list_end);
    bool readValues(fbx_record& record, const record_header& header);
    bool readValue(byte_reader& in, fbx_record& record);
    template <class element>
    bool readArray(byte_reader& in, fbx_record& record);
    template <class number>
    number read(byte_reader& in, std::string_view field);

    std::string fieldPath(std::string_view field) const;
    bool failAt(std::uint64_t offset, failure_kind kind, std::string what, std::string_view field);
    bool failIn(const byte_reader& in); // with the reader's own failure

    byte_reader m_in;
    bool m_is_big_endian = false;
    bool m_is_wide = false;
    std::vector<std::string_view> m_names; // of the record being read and those around it
    std::vector<packed_array> m_packed;
    std::vector<void (*)(std::span<std::byte>)> m_swaps; // for each of the packed ones
    std::uint64_t m_array_bytes = 0;
    failure m_why;
};

std::string binary_parser::fieldPath(std::string_view field) const
{
    const std::string path = recordPath(m_names);
    return path.empty() ? std::string(field) : path + ", " + std::string(field);
}

bool binary_parser::failAt(std::uint64_t offset, failure_kind kind, std::string what, std::string_view field)
{
    if (m_why)
        return false;
    m_why.offset = offset;
    m_why.field = fieldPath(field);
    return fail(m_why, kind, std::move(what));
}

bool binary_parser::failIn(const byte_reader& in)
{
    failure reason;
    static_cast<void>(in.finish(reason));
    return failAt(reason.offset, reason.kind, reason.what, reason.field);
}

template <class number>
number binary_parser::read(byte_reader& in, std::string_view field)
{
    number value{};
    if constexpr (sizeof(number) == 1)
        value = std::bit_cast<number>(in.u8(field));
    else if constexpr (sizeof(number) == 2)
        value = std::bit_cast<number>(in.u16(field));
    else if constexpr (sizeof(number) == 4)
        value = std::bit_cast<number>(in.u32(field));
    else
        value = std::bit_cast<number>(in.u64(field));
    return m_is_big_endian ? swapped(value) : value;
}

bool binary_parser::readHeader(fbx_document& document)
{
    m_in.skip(fbx_binary_magic.size(), "magic"); // compared by the caller
    const std::uint8_t mark = m_in.u8("mark behind the magic");
    const std::uint8_t order = m_in.u8("byte order");
    if (!m_in.ok())
        return failIn(m_in);
    if (mark != 0x1a)
        return failAt(21, failure_kind::malformed, "expected the byte 26 but got " + std::to_string(mark),
                      "mark behind the magic");
    if (order > 1)
        return failAt(22, failure_kind::malformed, "expected 0 or 1 but got " + std::to_string(order), "byte order");
    m_is_big_endian = order == 1;
    const auto version = read<std::uint32_t>(m_in, "version");
    if (!m_in.ok())
        return failIn(m_in);
    if (!isReadVersion(version, 23, m_why))
        return false;
    m_is_wide = version >= fbx_first_wide_version;
    document.version = version;
    document.is_binary = true;
    document.is_big_endian = m_is_big_endian;
    return true;
}

bool binary_parser::readRecords(std::vector<fbx_record>& records)
{
    // What follows the last empty record is not looked at: writers differ in it, and readers do without.
    return readList(records, m_in.size());
}

bool binary_parser::readRecordHeader(record_header& header, std::uint64_t list_end)
{
    header.begin = m_in.position();
    const std::uint64_t smallest = m_is_wide ? 25 : 13;
    if (list_end - header.begin < smallest)
        return failAt(header.begin, list_end == m_in.size() ? failure_kind::truncated : failure_kind::malformed,
                      "expected a record or the " + std::to_string(smallest) + " bytes that end the list but " +
                          std::to_string(list_end - header.begin) + " bytes are left",
                      "end of the list");
    header.end = m_is_wide ? read<std::uint64_t>(m_in, "end") : read<std::uint32_t>(m_in, "end");
    header.value_count =
        m_is_wide ? read<std::uint64_t>(m_in, "value count") : read<std::uint32_t>(m_in, "value count");
    header.value_bytes =
        m_is_wide ? read<std::uint64_t>(m_in, "value bytes") : read<std::uint32_t>(m_in, "value bytes");
    const std::uint8_t length = m_in.u8("name length");
    const auto name = m_in.bytes(length, "name");
    if (!m_in.ok())
        return failIn(m_in);
    header.name = {reinterpret_cast<const char*>(name.data()), name.size()};
    return true;
}

bool binary_parser::readList(std::vector<fbx_record>& records, std::uint64_t list_end)
{
    for (;;)
    {
        record_header header;
        if (!readRecordHeader(header, list_end))
            return false;
        if (header.isEndOfList())
            return true;
        m_names.push_back(header.name);
        if (header.end == 0 && !header.name.empty() && header.value_bytes <= list_end - m_in.position())
            header.end = m_in.position() + header.value_bytes; // a writer that leaves out the end of childless records
        if (header.end <= header.begin || header.end < m_in.position())
            return failAt(header.begin, failure_kind::malformed,
                          "the record ends at byte " + std::to_string(header.end) + ", before its own header ends",
                          "end");
        if (header.end > list_end)
            return failAt(header.begin, list_end == m_in.size() ? failure_kind::truncated : failure_kind::malformed,
                          "the record ends at byte " + std::to_string(header.end) + ", but what holds it ends at " +
                              std::to_string(list_end),
                          "end");
        records.emplace_back().offset = header.begin;
        if (!readRecord(records.back(), header))
            return false;
        m_names.pop_back();
    }
}

bool binary_parser::readRecord(fbx_record& record, const record_header& header)
{
    record.name = header.name;
    if (!readValues(record, header))
        return false;
    if (m_in.position() == header.end)
        return true;
    record.is_list = true;
    if (m_names.size() == fbx_depth_limit)
        return failAt(m_in.position(), failure_kind::malformed,
                      "records are nested deeper than " + std::to_string(fbx_depth_limit) + " levels", "children");
    if (!readList(record.children, header.end))
        return false;
    if (m_in.position() != header.end)
        return failAt(m_in.position(), failure_kind::malformed,
                      "the list ends " + std::to_string(header.end - m_in.position()) + " bytes before its record",
                      "end of the list");
    return true;
}

bool binary_parser::readValues(fbx_record& record, const record_header& header)
{
    if (header.value_bytes > header.end - m_in.position())
        return failAt(header.begin, failure_kind::malformed,
                      std::to_string(header.value_bytes) + " bytes of values, but the record has only " +
                          std::to_string(header.end - m_in.position()),
                      "value bytes");
    if (header.value_count > header.value_bytes / 2) // a type and at least one byte each
        return failAt(header.begin, failure_kind::malformed,
                      std::to_string(header.value_count) + " values do not fit into " +
                          std::to_string(header.value_bytes) + " bytes",
                      "value count");
    byte_reader in = m_in.sub(header.value_bytes, "values");
    record.values.reserve(static_cast<std::size_t>(header.value_count));
    for (std::uint64_t count = 0; count < header.value_count; ++count)
        if (!readValue(in, record))
            return false;
    if (in.left() != 0)
        return failAt(m_in.position() - in.left(), failure_kind::malformed,
                      std::to_string(in.left()) + " bytes are left behind the last value", "value bytes");
    return true;
}

bool binary_parser::readValue(byte_reader& in, fbx_record& record)
{
    std::vector<fbx_value>& values = record.values;
    const std::uint64_t begin = m_in.position() - in.left();
    const std::uint8_t type = in.u8("type of a value");
    switch (type)
    {
    case 'C':
    {
        const std::uint8_t value = in.u8("C value");
        if (value <= 1)
            values.emplace_back(value == 1);
        else
            values.emplace_back(std::bit_cast<char>(value));
        break;
    }
    case 'Z': // one byte, in scenes with sound; what it means is not known
        static_cast<void>(in.u8("Z value"));
        break;
    case 'Y':
        values.emplace_back(read<std::int16_t>(in, "Y value"));
        break;
    case 'I':
        values.emplace_back(read<std::int32_t>(in, "I value"));
        break;
    case 'L':
        values.emplace_back(read<std::int64_t>(in, "L value"));
        break;
    case 'F':
        values.emplace_back(read<float>(in, "F value"));
        break;
    case 'D':
        values.emplace_back(read<double>(in, "D value"));
        break;
    case 'S':
    {
        const auto text = in.bytes(read<std::uint32_t>(in, "length of a text"), "text");
        values.emplace_back(std::in_place_type<std::string>, reinterpret_cast<const char*>(text.data()), text.size());
        break;
    }
    case 'R':
    {
        const auto data = in.bytes(read<std::uint32_t>(in, "length of R data"), "R data");
        values.emplace_back(fbx_bytes{{data.begin(), data.end()}});
        break;
    }
    case 'b':
    case 'c':
        return readArray<std::uint8_t>(in, record);
    case 'i':
        return readArray<std::int32_t>(in, record);
    case 'l':
        return readArray<std::int64_t>(in, record);
    case 'f':
        return readArray<float>(in, record);
    case 'd':
        return readArray<double>(in, record);
    default:
        if (in.ok())
            return failAt(begin, failure_kind::malformed, "there is no type " + std::to_string(type),
                          "type of a value");
    }
    return in.ok() || failIn(in);
}

template <class element>
bool binary_parser::readArray(byte_reader& in, fbx_record& record)
{
    const auto count = read<std::uint32_t>(in, "array length");
    const auto encoding = read<std::uint32_t>(in, "array encoding");
    const auto stored = read<std::uint32_t>(in, "array bytes");
    const std::uint64_t begin = m_in.position() - in.left();
    const auto bytes = in.bytes(stored, "array data");
    if (!in.ok())
        return failIn(in);
    if (encoding > 1)
        return failAt(begin - 8, failure_kind::malformed,
                      "expected 0 (raw) or 1 (zlib) but got " + std::to_string(encoding), "array encoding");
    const std::uint64_t size = std::uint64_t{count} * sizeof(element);
    if (encoding == 0 ? size != stored : size > stored * deflate_ratio_limit)
        return failAt(begin - 12, failure_kind::malformed,
                      "an array of " + std::to_string(count) + " elements cannot come out of " +
                          std::to_string(stored) + (encoding == 0 ? " bytes" : " compressed bytes"),
                      "array length");
    m_array_bytes += size;
    if (const std::uint64_t limit = unpackedArraysLimit(m_in.size()); m_array_bytes > limit) // before it is made
        return failAt(begin - 12, failure_kind::malformed,
                      "the file's arrays have more than " + std::to_string(limit) +
                          " bytes when unpacked, too many for a file of " + std::to_string(m_in.size()),
                      "array length");

    // The elements stay where they are when the value, and later the record, moves.
    auto& array = std::get<std::vector<element>>(record.values.emplace_back(std::vector<element>(count)));
    const auto swap = [](std::span<std::byte> target) {
        for (std::size_t at = 0; at + sizeof(element) <= target.size(); at += sizeof(element))
            std::reverse(&target[at], &target[at] + sizeof(element));
    };
    const auto target = std::as_writable_bytes(std::span(array));
    if (encoding == 1)
    {
        m_packed.push_back({bytes, target, begin, fieldPath("array data")});
        m_swaps.push_back(swap);
        return true;
    }
    if (!bytes.empty())
        std::memcpy(target.data(), bytes.data(), bytes.size());
    if (m_is_big_endian)
        swap(target);
    return true;
}

bool binary_parser::unpack()
{
    if (!unpackArrays(m_packed, m_why))
        return false;
    if (m_is_big_endian)
        for (std::size_t at = 0; at < m_packed.size(); ++at)
            m_swaps[at](m_packed[at].target);
    return true;
}

} // namespace

bool readBinaryFbx(std::span<const std::byte> bytes, fbx_document& document, failure& why)
{
    binary_parser parser(bytes);
    fbx_document read;
    if (parser.readHeader(read) && parser.readRecords(read.records) && parser.unpack())
    {
        document = std::move(read);
        return true;
    }
    if (!why)
        why = parser.why();
    return false;
}

} // namespace korvane
