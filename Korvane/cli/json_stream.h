#pragma once

// One JSON document printed as it is made, for results that are larger than what they are made of. Commas are put in
// here; what begins must end. What is small is handed over as a value. The document ends with endDocument(), which
// prints what is left and a line feed.

#include "Korvane/cli/cli_context.h"

#include <string>
#include <string_view>

namespace korvane
{

class json_stream
{
public:
    explicit json_stream(cli_context& context) : m_context(context) {}

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void key(std::string_view name); // what is written next is its value
    void value(const json& small);
    void member(std::string_view name, const json& small);
    // The shortest text that reads back to the same number; "nan", "inf" or "-inf" where it is none.
    void number(float value);
    void number(double value);
    template <typename range>
    void numbers(const range& values)
    {
        beginArray();
        for (const auto value : values)
            number(value);
        endArray();
    }
    // A text that comes in parts, UTF-8.
    void beginText() { begin('"'); }
    void textPart(std::string_view part);
    void endText() { end('"'); }
    void endDocument();

private:
    void begin(char mark);
    void end(char mark);
    void separate();
    void printWhenFull();
    template <typename type>
    void appendNumber(type value);

    cli_context& m_context;
    std::string m_text;         // not printed yet
    bool m_needs_comma = false; // in front of what comes next
};

} // namespace korvane
