// The text form, docs/formats/fbx.md, "Container". It says no types, and object names the other way round; both are
// brought here into the shape that binary files have.

#include "Korvane/fbx/container/fbx_reader.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>

namespace korvane
{

namespace
{

bool isDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}
bool isLetter(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}
bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}
bool beginsNumber(char letter)
{
    return isDigit(letter) || letter == '-' || letter == '+' || letter == '.';
}

// Where names of objects stand beside the objects themselves: connections, poses, takes, media.
constexpr std::string_view name_classes[] = {
    "Model",      "Geometry",    "NodeAttribute",  "Material",     "Texture",      "LayeredTexture", "Video",
    "Deformer",   "SubDeformer", "Pose",           "AnimStack",    "AnimLayer",    "AnimCurveNode",  "AnimCurve",
    "SceneInfo",  "Scene",       "GlobalSettings", "Constraint",   "DisplayLayer", "Collection",     "Character",
    "ControlSet", "Cache",       "Implementation", "BindingTable", "Audio",        "AudioLayer",     "Document"};

struct parsed_number
{
    std::int64_t whole = 0;
    double real = 0;
    bool is_whole = false;
};

class text_parser
{
public:
    explicit text_parser(std::string_view text) : m_text(text) {}

    bool readRecords(std::vector<fbx_record>& records);
    const failure& why() const { return m_why; }

private:
    bool readRecord(fbx_record& record);
    bool readName(std::string& name);
    bool readValues(fbx_record& record);
    bool readValue(fbx_record& record);
    bool readText(std::string& text);
    bool readNumber(parsed_number& number);
    bool readReal(parsed_number& number);
    bool readWord(fbx_record& record);
    bool readChildren(fbx_record& record);
    bool readArray(fbx_record& record);
    bool readElements(fbx_record& record, std::size_t count);
    void orderName(fbx_record& record) const;

    bool isAtEnd() const { return m_at == m_text.size(); }
    char peek() const { return isAtEnd() ? '\0' : m_text[m_at]; }
    bool take(char wanted);
    void skipBlank(); // and comments
    bool beginsValue();
    bool fail(failure_kind kind, std::string what, std::string_view field = {});
    bool expect(char wanted, std::string_view field);

    std::string_view m_text;
    std::size_t m_at = 0;
    std::vector<std::string_view> m_names; // of the record being read and those around it
    failure m_why;
};

bool text_parser::fail(failure_kind kind, std::string what, std::string_view field)
{
    if (m_why)
        return false;
    if (isAtEnd())
        kind = failure_kind::truncated;
    const auto line = 1 + std::count(m_text.begin(), m_text.begin() + static_cast<std::ptrdiff_t>(m_at), '\n');
    m_why.kind = kind;
    m_why.what = std::move(what);
    m_why.offset = m_at;
    m_why.field = "line " + std::to_string(line);
    for (const std::string& part : {recordPath(m_names), std::string(field)})
        if (!part.empty())
            m_why.field += ", " + part;
    return false;
}

bool text_parser::expect(char wanted, std::string_view field)
{
    if (take(wanted))
        return true;
    return fail(failure_kind::malformed,
                "expected '" + std::string(1, wanted) + "' but got " +
                    (isAtEnd() ? std::string("the end of the file") : "'" + terminalText(m_text.substr(m_at, 1)) + "'"),
                field);
}

bool text_parser::take(char wanted)
{
    if (isAtEnd() || m_text[m_at] != wanted)
        return false;
    ++m_at;
    return true;
}

void text_parser::skipBlank()
{
    while (!isAtEnd())
    {
        if (m_text[m_at] == ';')
            m_at = std::min(m_text.find('\n', m_at), m_text.size());
        else if (!isBlank(m_text[m_at]))
            return;
        else
            ++m_at;
    }
}

// Reads up to the '}' of the list, which is left, or at the top level to the end.
bool text_parser::readRecords(std::vector<fbx_record>& records)
{
    if (m_text.starts_with("\xef\xbb\xbf") && m_at == 0)
        m_at = 3;
    for (skipBlank(); !isAtEnd(); skipBlank())
    {
        if (peek() == '}')
            return !m_names.empty() || fail(failure_kind::malformed, "a '}' without a '{'");
        if (!readRecord(records.emplace_back()))
            return false;
    }
    return m_names.empty() || fail(failure_kind::truncated, "the file ends inside a list");
}

bool text_parser::readRecord(fbx_record& record)
{
    record.offset = m_at;
    if (!readName(record.name))
        return false;
    m_names.push_back(record.name); // stays valid: the record does not move before it is read
    if (!readValues(record))
        return false;
    orderName(record);
    skipBlank();
    if (peek() == '{' && !readChildren(record))
        return false;
    m_names.pop_back();
    return true;
}

bool text_parser::readName(std::string& name)
{
    const std::size_t begin = m_at;
    const auto isNamePart = [](char letter) {
        return static_cast<unsigned char>(letter) >= ' ' &&
               std::string_view("\"{},;*:").find(letter) == std::string_view::npos;
    };
    while (!isAtEnd() && isNamePart(m_text[m_at]))
        ++m_at;
    name = m_text.substr(begin, m_at - begin);
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    if (name.empty() || name.size() > fbx_name_limit)
        return fail(failure_kind::malformed, "expected a name of 1 to " + std::to_string(fbx_name_limit) + " letters",
                    "name of a record");
    return expect(':', "name of a record");
}

// True when a value follows; ends behind blanks. A word on the next line is the next record's name.
bool text_parser::beginsValue()
{
    while (peek() == ' ' || peek() == '\t')
        ++m_at;
    if (isLetter(peek()))
    {
        std::size_t behind = m_at;
        while (behind < m_text.size() && (isLetter(m_text[behind]) || isDigit(m_text[behind])))
            ++behind;
        return behind == m_text.size() || m_text[behind] != ':';
    }
    skipBlank();
    return peek() == '"' || peek() == '*' || peek() == ',' || beginsNumber(peek());
}

bool text_parser::readValues(fbx_record& record)
{
    if (!beginsValue())
        return true;
    if (take('*'))
        return readArray(record);
    do
    {
        skipBlank();
        if (!readValue(record))
            return false;
        skipBlank();
    } while (take(','));
    return true;
}

bool text_parser::readValue(fbx_record& record)
{
    if (peek() == '"')
        return readText(std::get<std::string>(record.values.emplace_back(std::string())));
    if (peek() == ',') // "Content: , ..."
    {
        record.values.emplace_back(std::string());
        return true;
    }
    if (isLetter(peek()))
        return readWord(record);
    parsed_number number;
    if (!beginsNumber(peek()))
        return fail(failure_kind::malformed, "expected a number, a text in quotes or a word", "value");
    if (!readNumber(number))
        return false;
    if (!number.is_whole)
        record.values.emplace_back(number.real);
    else if (number.whole == static_cast<std::int32_t>(number.whole))
        record.values.emplace_back(static_cast<std::int32_t>(number.whole));
    else
        record.values.emplace_back(number.whole);
    return true;
}

bool text_parser::readText(std::string& text)
{
    constexpr struct
    {
        std::string_view written;
        char meant;
    } escapes[] = {{"&quot;", '"'}, {"&lf;", '\n'}, {"&cr;", '\r'}};

    const std::size_t begin = m_at++;
    const std::size_t end = m_text.find('"', m_at);
    if (end == std::string_view::npos)
    {
        m_at = begin;
        return fail(failure_kind::truncated, "the file ends inside a text", "text");
    }
    std::string_view rest = m_text.substr(m_at, end - m_at);
    m_at = end + 1;
    for (std::size_t amp = rest.find('&'); amp != std::string_view::npos; amp = rest.find('&'))
    {
        text += rest.substr(0, amp);
        rest.remove_prefix(amp);
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes),
                                                [rest](const auto& row) { return rest.starts_with(row.written); });
        const bool is_escape = escape != std::end(escapes);
        text += is_escape ? escape->meant : '&';
        rest.remove_prefix(is_escape ? escape->written.size() : 1);
    }
    text += rest;
    return true;
}

bool text_parser::readWord(fbx_record& record)
{
    const std::size_t begin = m_at;
    while (isLetter(peek()) || isDigit(peek()) || peek() == '_')
        ++m_at;
    const std::string_view word = m_text.substr(begin, m_at - begin);
    if (word.size() == 1)
        record.values.emplace_back(word.front());
    else if (equalsIgnoringCase(word, "nan") || equalsIgnoringCase(word, "inf") || equalsIgnoringCase(word, "infinity"))
    {
        parsed_number number;
        m_at = begin;
        if (!readReal(number))
            return false;
        record.values.emplace_back(number.real);
    }
    else
        record.values.emplace_back(std::string(word));
    return true;
}

bool text_parser::readNumber(parsed_number& number)
{
    if (peek() == '+')
        ++m_at;
    const char* const end = m_text.data() + m_text.size();
    const auto [behind, error] = std::from_chars(m_text.data() + m_at, end, number.whole);
    if (error != std::errc() || (behind != end && std::string_view(".eE#").find(*behind) != std::string_view::npos))
        return readReal(number);
    number.is_whole = true;
    number.real = static_cast<double>(number.whole);
    m_at = static_cast<std::size_t>(behind - m_text.data());
    return isAtEnd() || isBlank(peek()) || std::string_view(",{};").find(peek()) != std::string_view::npos ||
           fail(failure_kind::malformed, "the number is followed by something else", "number");
}

bool text_parser::readReal(parsed_number& number)
{
    const std::size_t begin = m_at;
    const auto [behind, error] = std::from_chars(m_text.data() + m_at, m_text.data() + m_text.size(), number.real);
    if (error == std::errc::invalid_argument)
        return fail(failure_kind::malformed, "expected a number", "number");
    m_at = static_cast<std::size_t>(behind - m_text.data());
    const std::string_view written = m_text.substr(begin, m_at - begin);
    const double sign = written.starts_with('-') ? -1 : 1;
    if (error == std::errc::result_out_of_range)
    {
        const std::size_t exponent = written.find_first_of("eE");
        const bool is_small = exponent != std::string_view::npos && written.substr(exponent + 1).starts_with('-');
        number.real = is_small ? sign * 0.0 : sign * std::numeric_limits<double>::infinity();
    }
    if (take('#')) // 1.#INF, -1.#IND and the like: what some C libraries print
    {
        number.real = m_text.substr(m_at).starts_with("INF") ? sign * std::numeric_limits<double>::infinity()
                                                             : std::numeric_limits<double>::quiet_NaN();
        while (isLetter(peek()) || isDigit(peek()))
            ++m_at;
    }
    return isAtEnd() || isBlank(peek()) || std::string_view(",{};").find(peek()) != std::string_view::npos ||
           fail(failure_kind::malformed, "the number is followed by something else", "number");
}

bool text_parser::readChildren(fbx_record& record)
{
    if (m_names.size() == fbx_depth_limit)
        return fail(failure_kind::malformed,
                    "records are nested deeper than " + std::to_string(fbx_depth_limit) + " levels", "children");
    record.is_list = true;
    return expect('{', "children") && readRecords(record.children) && expect('}', "children");
}

bool text_parser::readArray(fbx_record& record)
{
    parsed_number count;
    if (!isDigit(peek()) || !readNumber(count))
        return fail(failure_kind::malformed, "expected the number of elements", "array length");
    const std::size_t left = m_text.size() - m_at;
    if (!count.is_whole || static_cast<std::uint64_t>(count.whole) > left / 2) // a digit and a comma each
        return fail(failure_kind::malformed, "more elements than the file can hold", "array length");
    skipBlank();
    if (!expect('{', "array"))
        return false;
    skipBlank();
    std::string name;
    if (peek() != '}' && !readName(name))
        return false;
    if (!readElements(record, static_cast<std::size_t>(count.whole)))
        return false;
    return expect('}', "array");
}

// Turns the elements into the array that a binary file would have here.
fbx_value arrayOf(std::string_view name, const std::vector<std::int64_t>& whole, std::vector<double> real)
{
    if (name == "KeyAttrDataFloat" && real.empty()) // written as the bits of the floats
    {
        std::vector<float> floats(whole.size());
        std::transform(whole.begin(), whole.end(), floats.begin(),
                       [](std::int64_t bits) { return std::bit_cast<float>(static_cast<std::uint32_t>(bits)); });
        return floats;
    }
    if (!real.empty())
        return real;
    const bool is_small = std::all_of(whole.begin(), whole.end(),
                                      [](std::int64_t number) { return number == static_cast<std::int32_t>(number); });
    if (!is_small)
        return whole;
    std::vector<std::int32_t> small(whole.size());
    std::transform(whole.begin(), whole.end(), small.begin(),
                   [](std::int64_t number) { return static_cast<std::int32_t>(number); });
    return small;
}

bool text_parser::readElements(fbx_record& record, std::size_t count)
{
    std::vector<std::int64_t> whole; // until the first that is not
    std::vector<double> real;
    std::size_t read = 0;
    for (skipBlank(); beginsNumber(peek()) || isLetter(peek()); skipBlank())
    {
        parsed_number number;
        if (read == count)
            return fail(failure_kind::malformed, "more than the " + std::to_string(count) + " elements announced",
                        "array");
        if (!readNumber(number))
            return false;
        if (!number.is_whole && real.empty())
        {
            real.reserve(count);
            real.assign(whole.begin(), whole.end());
            whole = {};
        }
        if (whole.empty() && read == 0 && number.is_whole)
            whole.reserve(count);
        if (number.is_whole && real.empty())
            whole.push_back(number.whole);
        else
            real.push_back(number.real);
        ++read;
        skipBlank();
        if (!take(','))
            break;
    }
    if (read != count)
        return fail(failure_kind::malformed,
                    "expected " + std::to_string(count) + " elements but got " + std::to_string(read), "array");
    record.values.push_back(arrayOf(record.name, whole, std::move(real)));
    return true;
}

// "Model::Cube" becomes "Cube\0\1Model": the object's own name always, elsewhere where a known class stands before.
void text_parser::orderName(fbx_record& record) const
{
    if (record.name == "P" || record.name == "Property") // the user's texts
        return;
    const bool is_object = m_names.size() == 2 && m_names.front() == "Objects";
    for (fbx_value& value : record.values)
    {
        auto* const text = std::get_if<std::string>(&value);
        if (!text)
            continue;
        const std::size_t colons = text->find("::");
        if (colons == std::string::npos)
            continue;
        const std::string type = text->substr(0, colons);
        if (is_object || std::find(std::begin(name_classes), std::end(name_classes), type) != std::end(name_classes))
            *text = text->substr(colons + 2) + std::string("\0\1", 2) + type;
    }
}

// From "; FBX 7.5.0 project file"; 0: it does not say.
std::uint32_t versionOfComment(std::string_view text)
{
    const std::size_t begin = text.find("; FBX ");
    if (begin == std::string_view::npos || text.size() - begin < 11)
        return 0;
    const std::string_view version = text.substr(begin + 6, 5);
    if (!isDigit(version[0]) || version[1] != '.' || !isDigit(version[2]) || version[3] != '.' || !isDigit(version[4]))
        return 0;
    return static_cast<std::uint32_t>((version[0] - '0') * 1000 + (version[2] - '0') * 100 + (version[4] - '0') * 10);
}

std::uint32_t versionOf(const fbx_document& document, std::string_view text)
{
    const fbx_record* const header = document.find("FBXHeaderExtension");
    const fbx_record* const version = header ? header->find("FBXVersion") : nullptr;
    const std::int64_t number = version ? version->integerAt(0) : 0;
    if (number > 0 && number <= std::numeric_limits<std::uint32_t>::max())
        return static_cast<std::uint32_t>(number);
    return versionOfComment(text.substr(0, text.find('\n')));
}

// What every such file has near its beginning, so that damage in one is told from a file of another kind.
bool looksLikeFbx(std::string_view text)
{
    const std::string_view begin = text.substr(0, 4096);
    return begin.find("FBX") != std::string_view::npos && begin.find('\0') == std::string_view::npos;
}

} // namespace

bool readTextFbx(std::string_view text, fbx_document& document, failure& why)
{
    if (!looksLikeFbx(text))
        return fail(why, failure_kind::unsupported, "this is no FBX file, neither in binary nor in text form");
    fbx_document read;
    text_parser parser(text);
    if (!parser.readRecords(read.records))
    {
        if (!why)
            why = parser.why();
        return false;
    }
    read.version = versionOf(read, text);
    read.is_binary = false;
    if (read.version == 0)
        return fail(why, failure_kind::unsupported, "the file does not say which version of FBX it is");
    if (!isReadVersion(read.version, 0, why))
        return false;
    document = std::move(read);
    return true;
}

} // namespace korvane
