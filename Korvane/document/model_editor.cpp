#include "Korvane/document/model_editor.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/models/catalogue.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace korvane
{

namespace
{

bool failAtIndex(failure& why, std::size_t index, const char* what, std::size_t count, const std::string& owner,
                 const std::string& path)
{
    return fail(why, failure_kind::not_found,
                "there is no " + std::string(what) + " " + std::to_string(index) + ": " + owner + " has " +
                    std::to_string(count) + (count > 0 ? ", counted from 0" : ""),
                path);
}

std::string alphaText(std::uint32_t value)
{
    char number[16];
    std::snprintf(number, sizeof number, value < 0x10000 ? "%u" : "0x%08X", static_cast<unsigned>(value));
    const alpha_mode_entry& entry = alphaModes()[alphaModeIndex(value)];
    return entry.value == value && entry.label != number ? std::string(number) + " (" + std::string(entry.label) + ")"
                                                         : number;
}

// The position among equals: how many of the first `index` entries have the same key as the one there.
template <class list, class function>
std::size_t rankOf(const list& entries, std::size_t index, const function& isSame)
{
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(index), isSame));
}

// The entry with a rank among those that are the same.
template <class list, class function>
std::optional<std::size_t> withRank(const list& entries, std::size_t rank, const function& isSame)
{
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (isSame(entries[i]) && rank-- == 0)
            return i;
    return std::nullopt;
}

auto isNamed(const std::string& name)
{
    return [&name](const group_data& group) { return group.header.group_name == name; };
}

auto hasType(std::uint32_t type)
{
    return [type](const texture_entry& texture) { return texture.type == type; };
}

std::vector<std::byte> bytesOf(const fixed_field& field)
{
    return {field.bytes().begin(), field.bytes().end()};
}

// As much of a path as the field holds, without half a character at its end.
std::string cutToFit(const fixed_field& field, std::string_view path)
{
    if (!field.isWide())
        return std::string(path.substr(0, utf8Cut(path, field.textCapacity())));
    std::u16string units = utf16FromUtf8(path);
    if (units.size() <= field.textCapacity())
        return std::string(path);
    units.resize(field.textCapacity());
    if (units.back() >= 0xd800 && units.back() < 0xdc00) // the first unit of two
        units.pop_back();
    return utf8FromUtf16(units);
}

bool beginsWithPath(std::string_view path, std::string_view wanted)
{
    return path.size() >= wanted.size() &&
           std::equal(wanted.begin(), wanted.end(), path.begin(),
                      [](char left, char right) { return foldedCharacter(left) == foldedCharacter(right); });
}

} // namespace

bool model_editor::setTexturePath(texture_place place, std::string_view path, edit_scope scope, edit_result& result,
                                  failure& why)
{
    const group_data* const chosen = groupAt({place.lod, place.group}, why);
    if (chosen == nullptr)
        return false;
    if (place.texture >= chosen->textures.size())
        return failAtIndex(why, place.texture, "texture", chosen->textures.size(), placeText(place.lod, place.group),
                           m_model.path());
    const std::uint32_t type = chosen->textures[place.texture].type;
    const std::size_t rank = rankOf(chosen->textures, place.texture, hasType(type));

    edit_step step;
    for (const group_place& at : placesOf({place.lod, place.group}, scope, result))
    {
        group_data& group = m_model.data().lods[at.lod].groups[at.group];
        const bool is_chosen = &group == chosen;
        const auto texture = is_chosen ? place.texture : withRank(group.textures, rank, hasType(type));
        if (texture)
            setPath(step, {at.lod, at.group, *texture}, path, result);
        else
            result.notes.push_back(placeText(at.lod, at.group) + " has no such texture (" +
                                   std::string(textureTypeName(type)) + ")");
    }
    finish(std::move(step), result);
    return true;
}

bool model_editor::setAlphaMode(group_place place, std::uint32_t value, edit_scope scope, edit_result& result,
                                failure& why)
{
    if (groupAt(place, why) == nullptr)
        return false;
    edit_step step;
    for (const group_place& at : placesOf(place, scope, result))
        setAlpha(step, at, value, result);
    finish(std::move(step), result);
    return true;
}

template <class function>
void model_editor::forEachWithPrefix(std::string_view wanted, std::string_view replacement, const function& use) const
{
    const std::vector<lod_data>& lods = std::as_const(m_model).data().lods;
    for (std::size_t lod = 0; lod < lods.size() && !wanted.empty(); ++lod)
        for (std::size_t group = 0; group < lods[lod].groups.size(); ++group)
            for (std::size_t i = 0; i < lods[lod].groups[group].textures.size(); ++i)
            {
                const fixed_field& field = lods[lod].groups[group].textures[i].path_field;
                if (const std::string path = field.text(); beginsWithPath(path, wanted))
                    use(texture_place{lod, group, i}, field, path,
                        std::string(replacement) + path.substr(wanted.size()));
            }
}

edit_result model_editor::replacePathPrefix(std::string_view wanted, std::string_view replacement)
{
    edit_result result;
    edit_step step;
    forEachWithPrefix(wanted, replacement,
                      [&](const texture_place& place, const fixed_field&, const std::string&, const std::string& path) {
                          setPath(step, place, path, result);
                      });
    finish(std::move(step), result);
    return result;
}

std::vector<field_change> model_editor::previewPathPrefix(std::string_view wanted, std::string_view replacement) const
{
    std::vector<field_change> changes;
    forEachWithPrefix(
        wanted, replacement,
        [&](const texture_place& place, const fixed_field& field, const std::string& before, const std::string& path) {
            const std::string after = cutToFit(field, path);
            if (after != before)
                changes.push_back(
                    {place.lod, place.group, place.texture, displayText(before), displayText(after), true});
        });
    return changes;
}

std::string model_editor::undo()
{
    if (!canUndo())
        return {};
    restore(m_steps[--m_done], &field_edit::before);
    return summaryOf(m_steps[m_done], true);
}

std::string model_editor::redo()
{
    if (!canRedo())
        return {};
    restore(m_steps[m_done], &field_edit::after);
    return summaryOf(m_steps[m_done++], false);
}

std::vector<field_change> model_editor::changes() const
{
    std::vector<field_change> changes;
    const std::vector<lod_data>& lods = std::as_const(m_model).data().lods;
    for (std::size_t lod = 0; lod < lods.size(); ++lod)
        for (std::size_t i = 0; i < lods[lod].groups.size(); ++i)
        {
            const group_data& group = lods[lod].groups[i];
            for (std::size_t j = 0; j < group.textures.size(); ++j)
                if (const texture_entry& texture = group.textures[j]; texture.path_field.isEdited())
                    changes.push_back(
                        {lod, i, j, displayText(texture.path), displayText(texture.path_field.text()), true});
            if (group.alpha_mode_field.isEdited())
                changes.push_back({lod, i, std::nullopt, alphaText(group.alpha_mode),
                                   alphaText(group.alpha_mode_field.u32()), !group.textures.empty()});
        }
    return changes;
}

group_data* model_editor::groupAt(group_place place, failure& why)
{
    std::vector<lod_data>& lods = m_model.data().lods;
    if (place.lod >= lods.size())
    {
        failAtIndex(why, place.lod, "LOD", lods.size(), "the model", m_model.path());
        return nullptr;
    }
    std::vector<group_data>& groups = lods[place.lod].groups;
    if (place.group >= groups.size())
    {
        failAtIndex(why, place.group, "group", groups.size(), "LOD " + std::to_string(place.lod), m_model.path());
        return nullptr;
    }
    return &groups[place.group];
}

void model_editor::setPath(edit_step& step, texture_place place, std::string_view path, edit_result& result)
{
    fixed_field& field = m_model.data().lods[place.lod].groups[place.group].textures[place.texture].path_field;
    const std::string fitting = cutToFit(field, path);
    if (fitting != path)
    {
        const auto length = [&field](std::string_view text) {
            return std::to_string(field.isWide() ? utf16FromUtf8(text).size() : text.size());
        };
        result.notes.push_back(placeText(place) + ": the path has " + length(path) +
                               (field.isWide() ? " characters of 16 bits" : " bytes") + " and is cut to " +
                               length(fitting));
    }
    std::vector<std::byte> before = bytesOf(field);
    std::string former = displayText(field.text());
    field.setText(fitting);
    if (std::vector<std::byte> after = bytesOf(field); before != after)
        step.push_back({&field,
                        std::move(before),
                        std::move(after),
                        {place.lod, place.group, place.texture, std::move(former), displayText(fitting), true}});
}

void model_editor::setAlpha(edit_step& step, group_place place, std::uint32_t value, edit_result& result)
{
    group_data& group = m_model.data().lods[place.lod].groups[place.group];
    fixed_field& field = group.alpha_mode_field;
    if (group.textures.empty())
        result.notes.push_back(placeText(place.lod, place.group) +
                               " has no textures: its alpha mode is not written to the file");
    std::vector<std::byte> before = bytesOf(field);
    std::string former = alphaText(field.u32());
    field.setU32(value);
    if (std::vector<std::byte> after = bytesOf(field); before != after)
        step.push_back(
            {&field,
             std::move(before),
             std::move(after),
             {place.lod, place.group, std::nullopt, std::move(former), alphaText(value), !group.textures.empty()}});
}

std::string model_editor::placeText(std::size_t lod, std::size_t group) const
{
    return placeOf(lod, group, std::nullopt, m_first);
}

std::string model_editor::placeText(const texture_place& place) const
{
    return placeOf(place.lod, place.group, place.texture, m_first);
}

std::vector<group_place> model_editor::placesOf(group_place place, edit_scope scope, edit_result& result) const
{
    std::vector<group_place> places = {place};
    if (scope == edit_scope::one_group)
        return places;
    const std::vector<lod_data>& lods = std::as_const(m_model).data().lods;
    const std::vector<group_data>& own = lods[place.lod].groups;
    const std::string& name = own[place.group].header.group_name;
    const std::size_t rank = rankOf(own, place.group, isNamed(name));
    for (std::size_t lod = 0; lod < lods.size(); ++lod)
    {
        if (lod == place.lod)
            continue;
        if (const auto group = withRank(lods[lod].groups, rank, isNamed(name)))
            places.push_back({lod, *group});
        else
            result.notes.push_back("LOD " + std::to_string(lod + m_first) + " has no group like " +
                                   placeText(place.lod, place.group) + " (\"" + displayText(name) + "\")");
    }
    return places;
}

void model_editor::restore(const edit_step& step, std::vector<std::byte> field_edit::*bytes)
{
    for (const field_edit& edit : step)
        edit.field->setBytes(edit.*bytes);
}

void model_editor::finish(edit_step step, edit_result& result)
{
    result.changed += step.size();
    if (step.empty())
        return;
    result.summary = summaryOf(step, false);
    if (m_saved && *m_saved > m_done)
        m_saved.reset();
    m_steps.resize(m_done);
    m_steps.push_back(std::move(step));
    ++m_done;
}

// A step changes either alpha modes or paths.
std::string model_editor::summaryOf(const edit_step& step, bool is_undone) const
{
    const auto values = [is_undone](const field_change& told) {
        return is_undone ? told.after + " -> " + told.before : told.before + " -> " + told.after;
    };
    const field_change& first = step.front().told;
    const bool is_alike = std::all_of(step.begin(), step.end(),
                                      [&](const field_edit& edit) { return values(edit.told) == values(first); });
    if (step.size() == 1)
        return (first.texture ? "path of " : "alpha mode of ") +
               placeOf(first.lod, first.group, first.texture, m_first) + ": " + values(first);
    return (first.texture ? counted(step.size(), "texture path") : "alpha mode of " + counted(step.size(), "group")) +
           (is_alike ? ": " + values(first) : "");
}

std::string placeOf(std::size_t lod, std::size_t group, std::optional<std::size_t> texture, std::size_t first)
{
    return "LOD " + std::to_string(lod + first) + ", group " + std::to_string(group + first) +
           (texture ? ", texture " + std::to_string(*texture + first) : "");
}

std::string describe(const field_change& change, std::size_t first)
{
    return placeOf(change.lod, change.group, change.texture, first) + (change.texture ? "" : ", alpha mode") + ": " +
           change.before +
           (change.before == change.after ? " (the path stays; what stands behind its end in the file is cleared)"
                                          : " -> " + change.after);
}

} // namespace korvane
