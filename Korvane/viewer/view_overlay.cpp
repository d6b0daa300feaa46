#include "Korvane/viewer/view_overlay.h"

#include "Korvane/viewer/key_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace korvane
{

namespace
{

constexpr gpu_float4 panel_color{0.02f, 0.025f, 0.04f, 0.80f};
constexpr gpu_float4 text_color{0.93f, 0.94f, 0.97f, 1};
constexpr gpu_float4 key_color{1.0f, 0.80f, 0.42f, 1};
constexpr gpu_float4 bone_color{0.80f, 0.88f, 1.0f, 1};
constexpr gpu_float4 found_color{1.0f, 0.85f, 0.35f, 1};
constexpr gpu_float4 point_color{0.60f, 1.0f, 0.66f, 1};
constexpr float bone_reach = 24; // pixels of 96 to the inch, around the mouse, in which a bone is found
constexpr int most_labels = 400;

// A number with its digits in groups, in a buffer of its own.
class number_text
{
public:
    explicit number_text(std::size_t number)
    {
        std::array<char, 24> digits{};
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        for (const char* at = digits.data(); at != end; ++at)
        {
            m_text[m_length++] = *at;
            if ((end - at - 1) % 3 == 0 && at + 1 != end)
                m_text[m_length++] = ',';
        }
    }
    operator std::string_view() const { return {m_text.data(), m_length}; }

private:
    std::array<char, 40> m_text{};
    std::size_t m_length = 0;
};

struct place_in_picture
{
    float x, y;
};

std::optional<place_in_picture> placeOf(const overlay_subject& subject, const glm::vec3& point)
{
    const auto pixel = subject.view.eye.toPixel(point, subject.width, subject.height);
    if (!pixel || pixel->x < 0 || pixel->y < 0 || pixel->x > subject.width || pixel->y > subject.height)
        return std::nullopt;
    return place_in_picture{pixel->x, pixel->y};
}

void writeNames(const overlay_subject& subject, overlay_text& target)
{
    const auto name = [&](const posed_place& at, const gpu_float4& color) {
        if (const auto pixel = placeOf(subject, at.place))
            target.label(pixel->x + 6, pixel->y - target.lineHeight() / 2, at.name, color);
    };
    const posed_scene& pose = *subject.pose;
    if (subject.view.shows_bone_names)
        for (std::size_t i = 0; i < std::min<std::size_t>(pose.jointCount(), most_labels); ++i)
            name(pose.joint(i), bone_color);
    if (subject.view.shows_attachments)
        for (std::size_t i = 0; i < std::min<std::size_t>(pose.pointCount(), most_labels); ++i)
            name(pose.point(i), point_color);
    if (!subject.view.shows_skeleton || !subject.view.mouse)
        return;
    const int found = pose.jointAt(subject.view.eye.toClip(subject.width / subject.height),
                                   {subject.width, subject.height}, *subject.view.mouse, bone_reach * subject.scale);
    if (found >= 0)
        name(pose.joint(static_cast<std::size_t>(found)), found_color);
}

// Below, on the left: whose weights the colours are.
void writeHeatBone(const overlay_subject& subject, overlay_text& target)
{
    const posed_scene& pose = *subject.pose;
    constexpr std::string_view caption = "Weights of ";
    const float line = target.lineHeight();
    const float left = line / 2, top = subject.height - line * 1.5f;
    for (std::size_t i = 0; i < pose.jointCount(); ++i)
        if (const posed_place at = pose.joint(i); at.bone == static_cast<int>(subject.view.heat_bone) &&
                                                  (subject.view.heat_rig < 0 || at.rig == subject.view.heat_rig))
        {
            target.label(left, top, caption, text_color);
            target.label(left + target.widthOf(caption), top, at.name, found_color);
            return;
        }
}

// Lines of a number and what it counts.
void writeCounts(const overlay_subject& subject, overlay_text& target)
{
    const loaded_scene& scene = subject.pose->scene();
    std::size_t groups = 0;
    std::size_t vertices = 0;
    std::size_t lod = 0;
    for (const scene_part& part : scene.parts)
    {
        lod = std::max(lod, part.lod);
        for (const scene_group& group : part.groups())
        {
            ++groups;
            vertices += group.store->vertices.size();
        }
    }
    const struct
    {
        const char* what;
        std::size_t count;
    } rows[] = {{"triangles", scene.triangles},
                {"vertices", vertices},
                {"groups", groups},
                {"models", scene.parts.size()},
                {"level of detail", lod},
                {"bones", subject.pose->jointCount()},
                {"missing textures", scene.missing_textures.size()}};
    const float line = target.lineHeight();
    const float padding = line / 2;
    float number_width = 0;
    float text_width = 0;
    for (const auto& row : rows)
    {
        number_width = std::max(number_width, target.widthOf(number_text(row.count)));
        text_width = std::max(text_width, target.widthOf(row.what));
    }
    const float left = padding;
    const float top = padding;
    target.box(left, top, left + number_width + text_width + 3 * padding,
               top + line * static_cast<float>(std::size(rows)) + padding * 2, panel_color);
    float y = top + padding;
    for (const auto& row : rows)
    {
        const number_text number(row.count);
        target.text(left + padding + number_width - target.widthOf(number), y, number, key_color);
        target.text(left + padding * 2 + number_width, y, row.what, text_color);
        y += line;
    }
}

// In as many columns as the height asks for.
void writeHelp(const overlay_subject& subject, overlay_text& target)
{
    const float line = target.lineHeight() * 1.1f;
    const float padding = line * 0.8f;
    float key_width = 0;
    float help_width = 0;
    std::size_t rows = 0;
    for (const view_key& key : viewKeys())
    {
        if (key.name == nullptr)
            continue;
        ++rows;
        key_width = std::max(key_width, target.widthOf(key.name));
        help_width = std::max(help_width, target.widthOf(key.help));
    }
    const float column_width = key_width + help_width + padding * 2;
    const auto fitting = static_cast<std::size_t>(std::max(1.0f, (subject.height - 4 * padding) / line));
    const std::size_t columns = (rows + fitting - 1) / fitting;
    const std::size_t in_column = (rows + columns - 1) / columns;
    const float width = column_width * static_cast<float>(columns) + padding;
    const float height = line * static_cast<float>(in_column) + 2 * padding;
    const float left = std::max(0.0f, (subject.width - width) / 2);
    const float top = std::max(0.0f, (subject.height - height) / 2);
    target.box(left, top, left + width, top + height, panel_color);
    std::size_t row = 0;
    for (const view_key& key : viewKeys())
    {
        if (key.name == nullptr)
            continue;
        const float x = left + padding + column_width * static_cast<float>(row / in_column);
        const float y = top + padding + line * static_cast<float>(row % in_column);
        target.text(x, y, key.name, key_color);
        target.text(x + key_width + padding, y, key.help, text_color);
        ++row;
    }
}

} // namespace

void writeOverlay(const overlay_subject& subject, overlay_text& target)
{
    target.clear();
    if (subject.pose != nullptr)
    {
        writeNames(subject, target);
        if (subject.view.shownChannel() == view_channel::weights)
            writeHeatBone(subject, target);
        if (subject.view.shows_counts)
            writeCounts(subject, target);
    }
    if (subject.view.shows_help)
        writeHelp(subject, target);
}

} // namespace korvane
