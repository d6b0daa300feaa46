#include "Korvane/fbx/container/fbx_identity.h"

#include "Korvane/fbx/container/fbx_document.h"

#include <cassert>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace korvane
{

namespace
{

constexpr std::string_view fixed_creation_time = "1970-01-01 10:00:00:000";
constexpr std::int64_t epoch_limit = 253402300799; // 9999-12-31 23:59:59

fbx_id operator^(fbx_id left, const fbx_id& right)
{
    for (std::size_t at = 0; at < left.size(); ++at)
        left[at] ^= right[at];
    return left;
}

fbx_id running(fbx_id bytes) // each byte takes in the one before
{
    for (std::size_t at = 1; at < bytes.size(); ++at)
        bytes[at] ^= bytes[at - 1];
    return bytes;
}

fbx_id constant(const std::array<unsigned char, 16>& numbers)
{
    fbx_id bytes;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = std::byte{numbers[at]};
    return bytes;
}

// The digits of the time as "ssMMhhDDccYYYYmm"; cc are hundredths of a second.
fbx_id mixedDigits(std::string_view creation_time)
{
    assert(creation_time.size() == fixed_creation_time.size());
    constexpr std::array<std::size_t, 16> places{17, 18, 5, 6, 11, 12, 8, 9, 20, 21, 0, 1, 2, 3, 14, 15};
    fbx_id bytes;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<std::byte>(creation_time[places[at]]);
    return bytes;
}

} // namespace

fbx_id fileId(std::string_view creation_time)
{
    static const fbx_id key =
        constant({0x18, 0xb3, 0x1a, 0xea, 0x86, 0x24, 0xfc, 0xc3, 0x8e, 0xc9, 0x80, 0x23, 0x97, 0x25, 0xc2, 0xff});
    return running(mixedDigits(creation_time)) ^ key;
}

fbx_id footerId(std::string_view creation_time)
{
    static const fbx_id key =
        constant({0xfa, 0xbc, 0x9b, 0x09, 0xd0, 0xc9, 0xe4, 0x67, 0xb1, 0x76, 0xca, 0x82, 0x1d, 0xff, 0x19, 0x78});
    const fbx_id once = running(mixedDigits(creation_time));
    return running(running(once)) ^ once ^ key;
}

std::string creationTime()
{
    const char* const wanted = std::getenv("SOURCE_DATE_EPOCH");
    if (!wanted)
        return std::string(fixed_creation_time);
    const std::string_view text(wanted);
    std::int64_t seconds = 0;
    const auto [behind, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || behind != text.data() + text.size() || seconds < 0 || seconds > epoch_limit)
        return std::string(fixed_creation_time);
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss clock(time - midnight);
    std::array<char, 32> written{};
    std::snprintf(written.data(), written.size(), "%04d-%02u-%02u %02d:%02d:%02d:000", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return written.data();
}

} // namespace korvane
