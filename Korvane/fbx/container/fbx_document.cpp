#include "Korvane/fbx/container/fbx_document.h"

#include <algorithm>
#include <optional>
#include <type_traits>

namespace korvane
{

namespace
{

template <class type>
constexpr bool is_array = false;
template <class element>
constexpr bool is_array<std::vector<element>> = true;

const fbx_record* findIn(const std::vector<fbx_record>& records, std::string_view wanted)
{
    for (const fbx_record& record : records)
        if (record.name == wanted)
            return &record;
    return nullptr;
}

std::optional<int> truthOf(char letter)
{
    if (letter == 'Y' || letter == 'T')
        return 1;
    if (letter == 'N' || letter == 'F')
        return 0;
    return std::nullopt;
}

template <class number>
std::optional<std::int64_t> wholeNumber(number value)
{
    if constexpr (std::is_floating_point_v<number>)
    {
        constexpr number limit = 9223372036854775808.0; // 2^63, exact in both types
        if (!(value >= -limit && value < limit))        // a NaN, too
            return std::nullopt;
    }
    return static_cast<std::int64_t>(value);
}

template <class result, class number>
std::optional<result> converted(number value)
{
    if constexpr (std::is_same_v<result, std::int64_t>)
        return wholeNumber(value);
    else
        return static_cast<double>(value);
}

template <class result>
std::optional<result> single(const fbx_value& value)
{
    return std::visit(
        [](const auto& held) -> std::optional<result> {
            using type = std::remove_cvref_t<decltype(held)>;
            if constexpr (std::is_same_v<type, char>)
                return truthOf(held);
            else if constexpr (std::is_arithmetic_v<type>)
                return converted<result>(held);
            else
                return std::nullopt;
        },
        value);
}

template <class result>
void append(std::vector<result>& list, const fbx_value& value)
{
    std::visit(
        [&list, &value](const auto& held) {
            using type = std::remove_cvref_t<decltype(held)>;
            if constexpr (std::is_same_v<type, std::vector<result>>)
                list.insert(list.end(), held.begin(), held.end());
            else if constexpr (is_array<type>)
            {
                const std::size_t before = list.size();
                list.resize(before + held.size());
                std::transform(held.begin(), held.end(), list.begin() + static_cast<std::ptrdiff_t>(before),
                               [](auto number) { return converted<result>(number).value_or(result{}); });
            }
            else if constexpr (std::is_arithmetic_v<type> && !std::is_same_v<type, char>)
                list.push_back(single<result>(value).value_or(result{}));
        },
        value);
}

template <class result>
std::vector<result> list(const std::vector<fbx_value>& values)
{
    std::vector<result> all;
    if (values.size() > 1)
        all.reserve(values.size());
    for (const fbx_value& value : values)
        append(all, value);
    return all;
}

} // namespace

const fbx_record* fbx_record::find(std::string_view wanted) const
{
    return findIn(children, wanted);
}

const fbx_record* fbx_document::find(std::string_view wanted) const
{
    return findIn(records, wanted);
}

std::int64_t fbx_record::integerAt(std::size_t position, std::int64_t fallback) const
{
    return position < values.size() ? single<std::int64_t>(values[position]).value_or(fallback) : fallback;
}

double fbx_record::numberAt(std::size_t position, double fallback) const
{
    return position < values.size() ? single<double>(values[position]).value_or(fallback) : fallback;
}

std::string_view fbx_record::textAt(std::size_t position) const
{
    if (position >= values.size())
        return {};
    if (const auto* const text = std::get_if<std::string>(&values[position]))
        return *text;
    if (const auto* const letter = std::get_if<char>(&values[position]))
        return {letter, 1};
    return {};
}

std::vector<double> fbx_record::numbers() const
{
    return list<double>(values);
}

std::vector<std::int64_t> fbx_record::integers() const
{
    return list<std::int64_t>(values);
}

} // namespace korvane
