// docs/formats/fbx.md, "Container" and "Identity". The arrays are compressed first, all together, then everything is
// written from the front to the back.

#include "Korvane/fbx/container/fbx_document.h"

#include "EASY_GUI/services/byte_writer.h"
#include "Korvane/fbx/container/fbx_arrays.h"
#include "Korvane/fbx/container/fbx_identity.h"
#include "Korvane/fbx/container/fbx_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <limits>
#include <type_traits>

namespace korvane
{

namespace
{

constexpr std::uint32_t written_version = 7400;
constexpr std::size_t smallest_compressed_bytes = 1001; // below, the gain is not worth a reader's time
constexpr std::size_t document_overhead = 256 * 1024;   // a guess: of all that is no large array
constexpr std::size_t null_record_bytes = 13;
constexpr std::uint64_t size_limit = std::numeric_limits<std::uint32_t>::max();
constexpr std::array<unsigned char, 16> last_bytes{0xf8, 0x5a, 0x8c, 0x6a, 0xde, 0xf5, 0xd9, 0x7e,
                                                   0xec, 0xe9, 0x0c, 0xe3, 0x75, 0x8f, 0x29, 0x0b};

template <class type>
constexpr char array_letter = '\0';
template <>
constexpr char array_letter<std::vector<std::uint8_t>> = 'b';
template <>
constexpr char array_letter<std::vector<std::int32_t>> = 'i';
template <>
constexpr char array_letter<std::vector<std::int64_t>> = 'l';
template <>
constexpr char array_letter<std::vector<float>> = 'f';
template <>
constexpr char array_letter<std::vector<double>> = 'd';

// The arrays that are compressed, in the order of writing.
class large_arrays
{
public:
    explicit large_arrays(const fbx_document& document)
    {
        for (const fbx_record& record : document.records)
            collect(record);
    }

    std::span<const std::span<const std::byte>> list() const { return m_list; }
    std::uint64_t bytesOfAll() const { return m_bytes; } // of the smaller ones, too

private:
    void collect(const fbx_record& record);

    std::vector<std::span<const std::byte>> m_list;
    std::uint64_t m_bytes = 0;
};

void large_arrays::collect(const fbx_record& record)
{
    for (const fbx_value& value : record.values)
        std::visit(
            [this](const auto& held) {
                using type = std::remove_cvref_t<decltype(held)>;
                if constexpr (array_letter<type> != '\0')
                {
                    const auto bytes = std::as_bytes(std::span(held));
                    m_bytes += bytes.size();
                    if (bytes.size() >= smallest_compressed_bytes)
                        m_list.push_back(bytes);
                }
            },
            value);
    for (const fbx_record& child : record.children)
        collect(child);
}

class binary_writer
{
public:
    binary_writer() : m_creation_time(creationTime()) {}

    std::vector<std::byte> write(const fbx_document& document, const fbx_packed_arrays& first_arrays)
    {
        const large_arrays arrays(document);
        if (arrays.bytesOfAll() > size_limit) // none of that size gets small enough
            return {};
        assert(first_arrays.size() <= arrays.list().size());
        const fbx_packed_arrays others = packArrays(arrays.list().subspan(first_arrays.size()));
        for (const fbx_packed_arrays* packed : {&first_arrays, &others})
            m_packed.insert(m_packed.end(), packed->begin(), packed->end());
        std::size_t expected = document_overhead;
        for (std::size_t i = 0; i < m_packed.size(); ++i)
            expected += m_packed[i].empty() ? arrays.list()[i].size() : m_packed[i].size();
        m_out.reserve(expected);

        m_out.text(fbx_binary_magic);
        m_out.u8(0x1a);
        m_out.u8(0); // little-endian
        m_out.u32(written_version);
        writeTopLevel(document);
        m_out.zeros(null_record_bytes);
        writeFooter();
        if (m_is_too_large || m_out.size() > size_limit)
            return {};
        return m_out.take();
    }

private:
    void writeTopLevel(const fbx_document& document);
    void writeHeaderExtension(const fbx_record& record);
    void writeRecord(const fbx_record& record);
    void writeIdentity(bool is_id_missing, bool is_time_missing);
    void writeFooter();

    void write(bool value);
    void write(char value);
    void write(std::int16_t value);
    void write(std::int32_t value);
    void write(std::int64_t value);
    void write(float value);
    void write(double value);
    void write(const std::string& value);
    void write(const fbx_bytes& value);
    template <class element>
    void write(const std::vector<element>& value);
    void letter(char type) { m_out.u8(static_cast<std::uint8_t>(type)); }

    byte_writer m_out;
    std::string m_creation_time;
    std::vector<std::span<const std::byte>> m_packed; // the large arrays, in the order of writing
    std::size_t m_next_packed = 0;
    bool m_is_too_large = false;
};

fbx_record idRecord(const std::string& creation_time)
{
    const fbx_id id = fileId(creation_time);
    return fbx_record("FileId", fbx_bytes{{id.begin(), id.end()}});
}

void binary_writer::writeIdentity(bool is_id_missing, bool is_time_missing)
{
    if (is_id_missing)
        writeRecord(idRecord(m_creation_time));
    if (is_time_missing)
        writeRecord(fbx_record("CreationTime", m_creation_time));
}

void binary_writer::writeTopLevel(const fbx_document& document)
{
    const bool is_id_missing = !document.find("FileId"), is_time_missing = !document.find("CreationTime");
    const bool has_header = document.find("FBXHeaderExtension") != nullptr;
    if (!has_header)
        writeIdentity(is_id_missing, is_time_missing);
    for (const fbx_record& record : document.records)
    {
        if (record.name == "FileId")
            writeRecord(idRecord(m_creation_time));
        else if (record.name == "CreationTime")
            writeRecord(fbx_record("CreationTime", m_creation_time));
        else if (&record == document.find("FBXHeaderExtension"))
        {
            writeHeaderExtension(record);
            writeIdentity(is_id_missing, is_time_missing);
        }
        else
            writeRecord(record);
    }
}

void binary_writer::writeHeaderExtension(const fbx_record& record)
{
    fbx_record header = record;
    for (fbx_record& child : header.children)
        if (child.name == "FBXVersion")
            child.values.assign(1, static_cast<std::int32_t>(written_version));
    writeRecord(header);
}

void binary_writer::writeRecord(const fbx_record& record)
{
    assert(record.name.size() <= fbx_name_limit);
    const std::size_t begin = m_out.size();
    m_out.u32(0); // the end, known below
    m_out.u32(static_cast<std::uint32_t>(record.values.size()));
    m_out.u32(0); // the values' bytes
    m_out.u8(static_cast<std::uint8_t>(record.name.size()));
    m_out.text(record.name);
    const std::size_t values = m_out.size();
    for (const fbx_value& value : record.values)
        std::visit([this](const auto& held) { write(held); }, value);
    m_out.putU32(begin + 8, static_cast<std::uint32_t>(m_out.size() - values));
    for (const fbx_record& child : record.children)
        writeRecord(child);
    if (record.is_list || !record.children.empty())
        m_out.zeros(null_record_bytes);
    m_out.putU32(begin, static_cast<std::uint32_t>(m_out.size())); // checked as a whole at the end
}

void binary_writer::write(bool value)
{
    letter('C');
    m_out.u8(value ? 1 : 0);
}

void binary_writer::write(char value)
{
    letter('C');
    letter(value);
}

void binary_writer::write(std::int16_t value)
{
    letter('Y');
    m_out.u16(std::bit_cast<std::uint16_t>(value));
}

void binary_writer::write(std::int32_t value)
{
    letter('I');
    m_out.u32(std::bit_cast<std::uint32_t>(value));
}

void binary_writer::write(std::int64_t value)
{
    letter('L');
    m_out.u64(std::bit_cast<std::uint64_t>(value));
}

void binary_writer::write(float value)
{
    letter('F');
    m_out.f32(value);
}

void binary_writer::write(double value)
{
    letter('D');
    m_out.u64(std::bit_cast<std::uint64_t>(value));
}

void binary_writer::write(const std::string& value)
{
    letter('S');
    m_is_too_large = m_is_too_large || value.size() > size_limit;
    m_out.u32(static_cast<std::uint32_t>(value.size()));
    m_out.text(value);
}

void binary_writer::write(const fbx_bytes& value)
{
    letter('R');
    m_is_too_large = m_is_too_large || value.data.size() > size_limit;
    m_out.u32(static_cast<std::uint32_t>(value.data.size()));
    m_out.bytes(value.data);
}

template <class element>
void binary_writer::write(const std::vector<element>& value)
{
    letter(array_letter<std::vector<element>>);
    m_out.u32(static_cast<std::uint32_t>(value.size()));
    auto bytes = std::as_bytes(std::span(value));
    bool is_packed = false;
    if (bytes.size() >= smallest_compressed_bytes)
    {
        const std::span<const std::byte> packed = m_packed[m_next_packed++];
        is_packed = !packed.empty();
        if (is_packed)
            bytes = packed;
    }
    m_out.u32(is_packed ? 1 : 0);
    m_out.u32(static_cast<std::uint32_t>(bytes.size()));
    m_out.bytes(bytes);
}

void binary_writer::writeFooter()
{
    m_out.bytes(footerId(m_creation_time));
    m_out.zeros(16 - m_out.size() % 16); // 16 when nothing is to be filled up
    m_out.u32(0);
    m_out.u32(written_version);
    m_out.zeros(120);
    for (const unsigned char byte : last_bytes)
        m_out.u8(byte);
}

} // namespace

std::vector<std::byte> writeFbx(const fbx_document& document)
{
    return writeFbx(document, {});
}

std::vector<std::byte> writeFbx(const fbx_document& document, const fbx_packed_arrays& first_arrays)
{
    return binary_writer().write(document, first_arrays);
}

fbx_packed_arrays packFbx(const fbx_document& document)
{
    return packArrays(large_arrays(document).list());
}

} // namespace korvane
