#include "Korvane/jobs/file_preview.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/jobs/texture_preview.h"
#include "Korvane/models/description.h"
#include "Korvane/posing/anim_text.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::size_t shown_text = 256 * 1024; // bytes
constexpr std::size_t shown_hex = 8 * 1024;
constexpr std::uint64_t most_model = std::uint64_t{256} << 20; // what is larger says so
constexpr std::size_t hex_columns = 16;

std::string withLineEnds(std::string_view text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        if (text[i] == '\r' || text[i] == '\n')
            result += "\r\n";
        else
            result += text[i];
    }
    return result;
}

// A binary file has zeros and other control characters that no text has.
bool hasTextOnly(std::string_view text)
{
    return std::none_of(text.begin(), text.end(), [](char each) {
        const auto value = static_cast<unsigned char>(each);
        return value < 0x20 && each != '\t' && each != '\r' && each != '\n' && each != '\f';
    });
}

std::string utf8FromLatin1(std::string_view text)
{
    std::string result;
    for (const char each : text)
    {
        const auto value = static_cast<unsigned char>(each);
        if (value >= 0x80)
            result += static_cast<char>(0xc0 | value >> 6);
        result += static_cast<char>(value < 0x80 ? value : 0x80 | (value & 0x3f));
    }
    return result;
}

bool readUtf16(std::span<const std::byte> bytes, bool is_big, std::string& text)
{
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto low = std::to_integer<unsigned>(bytes[i + is_big]);
        const auto high = std::to_integer<unsigned>(bytes[i + !is_big]);
        units += static_cast<char16_t>(high << 8 | low);
    }
    text = utf8FromUtf16(units);
    return hasTextOnly(text);
}

void previewModel(memory_file bytes, const std::string& name, file_preview& made, failure& why)
{
    rmv2_file model;
    if (!model.openFromMemory(std::move(bytes), name, why))
        return;
    std::string text;
    describeModel(model, false, [&text](const std::string& piece) {
        if (text.size() < shown_text)
            text += piece;
    });
    made.text = withLineEnds(text);
    made.is_fixed_width = true;
    made.caption = "Model, version " + std::to_string(model.version()) + ", " +
                   counted(model.data().lods.size(), "level of detail", "levels of detail");
}

void previewAnimation(memory_file bytes, const std::string& name, file_preview& made, failure& why)
{
    anim_file file;
    file.openFromMemory(std::move(bytes), name);
    // A skeleton is read whole: its first frame says where the bones stand.
    const bool is_skeleton = folderAround(toLower(name)).ends_with("skeletons");
    if (!(is_skeleton ? file.loadSkeleton({}, why) : file.loadTemplate({}, why)))
        return;
    made.text = withLineEnds(describeAnimation(file.data(), std::string(fileName(name)), is_skeleton));
    made.is_fixed_width = true;
    made.caption =
        (is_skeleton ? "Skeleton, " : "Animation of " + displayText(file.data().skeleton_name) + ", ") +
        (is_skeleton ? counted(file.data().bones.size(), "bone") : counted(file.data().frame_count, "frame"));
}

file_preview previewContent(const game_file& file, const work_port& work, std::uint32_t most_pixels)
{
    file_preview made;
    failure why;
    std::vector<std::byte> start(shown_text + 3); // so that a character at the cut is seen whole
    std::size_t count = 0;
    const auto giveUp = [&] {
        why.path.clear(); // whoever shows it says it
        made.caption = "Cannot be shown: " + displayText(describe(why));
    };
    if (!file.readStart(start, count, why))
    {
        giveUp();
        return made;
    }
    start.resize(count);
    if (count == 0)
    {
        made.caption = "This file is empty.";
        return made;
    }
    const std::string_view head(reinterpret_cast<const char*>(start.data()), count);
    const std::string path = file.path();
    if (head.starts_with("DDS ") || pictureKind(path))
    {
        texture_preview picture = makeTexturePreview(file, most_pixels, work);
        made.pixels = std::move(picture.pixels);
        made.caption = picture.text;
        made.is_stopped = picture.is_stopped;
        return made;
    }
    const bool is_model = head.starts_with("RMV2");
    if (is_model || endsWithIgnoringCase(path, ".anim"))
    {
        memory_file bytes;
        if (file.read(bytes, why, most_model))
            is_model ? previewModel(std::move(bytes), path, made, why)
                     : previewAnimation(std::move(bytes), path, made, why);
        if (why)
            giveUp();
        return made;
    }
    std::string encoding;
    const bool is_all = count <= shown_text;
    if (readText(std::span(start).first(utf8Cut(head, shown_text)), made.text, encoding))
    {
        made.caption = "Text, " + encoding + (is_all ? "" : ", the first 256 KB");
        return made;
    }
    start.resize(std::min(start.size(), shown_hex));
    made.text = hexLines(start);
    made.is_fixed_width = true;
    made.caption = start.size() == count ? "Bytes of the whole file" : "The first 8 KB, as bytes";
    return made;
}

} // namespace

bool readText(std::span<const std::byte> bytes, std::string& text, std::string& encoding)
{
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string read;
    encoding.clear();
    if (all.starts_with("\xff\xfe") || all.starts_with("\xfe\xff"))
    {
        encoding = "UTF-16";
        if (!readUtf16(bytes.subspan(2), all.front() == '\xfe', read))
            return false;
    }
    else
    {
        const bool has_mark = all.starts_with("\xef\xbb\xbf");
        const std::string_view content = all.substr(has_mark ? 3 : 0);
        if (!hasTextOnly(content))
            return false;
        const bool is_utf8 = isUtf8(content);
        encoding = is_utf8 ? "UTF-8" : "Latin-1";
        read = is_utf8 ? std::string(content) : utf8FromLatin1(content);
    }
    text = withLineEnds(read);
    return true;
}

std::string hexText(std::span<const std::byte> bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::byte each : bytes)
    {
        if (!text.empty())
            text += ' ';
        text += digits[std::to_integer<std::size_t>(each >> 4)];
        text += digits[std::to_integer<std::size_t>(each & std::byte{15})];
    }
    return text;
}

std::string characterText(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (const std::byte each : bytes)
    {
        const auto value = std::to_integer<unsigned char>(each);
        text += value >= 0x20 && value < 0x7f ? static_cast<char>(value) : '.';
    }
    return text;
}

std::string hexLines(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve(bytes.size() * 5);
    for (std::size_t at = 0; at < bytes.size(); at += hex_columns)
    {
        const std::span line = bytes.subspan(at, std::min(hex_columns, bytes.size() - at));
        std::array<char, 24> position{};
        std::snprintf(position.data(), position.size(), "%08zx  ", at);
        std::string digits = hexText(line);
        digits.resize(hex_columns * 3, ' ');
        text += position.data() + digits + ' ' + characterText(line) + "\r\n";
    }
    return text;
}

file_preview previewFile(const game_file& file, const work_port& work, std::uint32_t most_pixels)
{
    try
    {
        return previewContent(file, work, most_pixels);
    }
    catch (const std::bad_alloc&)
    {
        file_preview made;
        made.caption = "There is not enough memory to show this file.";
        return made;
    }
}

} // namespace korvane
