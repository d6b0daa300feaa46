// edit: sets texture paths and alpha modes of models.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/document/model_editor.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/rmv2_writer.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

struct edit_options
{
    std::vector<std::string> models;
    std::string output;
    std::vector<std::string> textures; // "L:G:T=PATH", as given
    std::vector<std::string> alphas;   // "L:G=VALUE"
    std::vector<std::string> replaced; // "OLD=NEW"
    bool is_dry_run = false;
    bool is_forced = false;
    bool is_for_all_lods = false;

    edit_scope scope() const { return is_for_all_lods ? edit_scope::all_lods : edit_scope::one_group; }
};

// What stands before the first '=', and behind it.
std::optional<std::pair<std::string, std::string>> halves(const std::string& text)
{
    const std::size_t cut = text.find('=');
    if (cut == std::string::npos)
        return std::nullopt;
    return std::pair(text.substr(0, cut), text.substr(cut + 1));
}

// "0:2:1": as many numbers, with ':' between them.
template <std::size_t count>
std::optional<std::array<std::size_t, count>> indices(std::string_view text)
{
    std::array<std::size_t, count> numbers{};
    for (std::size_t i = 0; i < count; ++i)
    {
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc())
            return std::nullopt;
        numbers[i] = number;
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (i + 1 == count)
            break;
        if (!text.starts_with(':'))
            return std::nullopt;
        text.remove_prefix(1);
    }
    return text.empty() ? std::optional(numbers) : std::nullopt;
}

// Decimal, negative decimal or 0x and hexadecimal digits, as far as 32 bits hold it.
std::optional<std::uint32_t> alphaValue(std::string_view text)
{
    const bool is_negative = text.starts_with('-');
    if (is_negative)
        text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X"))
    {
        text.remove_prefix(2);
        base = 16;
    }
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    const std::uint64_t largest = is_negative ? 0x80000000u : 0xffffffffu;
    if (error != std::errc() || end != text.data() + text.size() || magnitude > largest)
        return std::nullopt;
    return static_cast<std::uint32_t>(is_negative ? 0 - magnitude : magnitude);
}

CLI::Validator textureEdit()
{
    return CLI::Validator(
        [](const std::string& text) {
            const auto parts = halves(text);
            return parts && indices<3>(parts->first) ? std::string() : "\"" + text + "\" is not LOD:GROUP:TEXTURE=PATH";
        },
        "");
}

CLI::Validator alphaEdit()
{
    return CLI::Validator(
        [](const std::string& text) -> std::string {
            const auto parts = halves(text);
            if (!parts || !indices<2>(parts->first))
                return "\"" + text + "\" is not LOD:GROUP=VALUE";
            return alphaValue(parts->second) ? "" : "\"" + parts->second + "\" is no number of 32 bits";
        },
        "");
}

CLI::Validator replacement()
{
    return CLI::Validator(
        [](const std::string& text) {
            const auto parts = halves(text);
            return parts && !parts->first.empty() ? std::string() : "\"" + text + "\" is not OLD=NEW";
        },
        "");
}

bool openToEdit(cli_context& context, const std::string& operand, bool is_forced, rmv2_file& model, failure& why)
{
    memory_file bytes;
    if (!readModelBytes(context.game(), operand, bytes, why))
        return false;
    if (!isVersion7OverVersion6(bytes.bytes()))
        return model.openFromMemory(std::move(bytes), operand, why);
    if (!is_forced)
        return fail(why, failure_kind::refused,
                    "the version word says 7, but the LOD headers are those of version 6: this model was saved again "
                    "after it had been patched, and the games cannot read it. korvane patch --repair makes a version 7 "
                    "file of it; --force edits it as it is",
                    operand);
    return openMixedVersions(model, std::move(bytes), operand, why);
}

bool applyEdits(const edit_options& options, model_editor& editor, std::vector<std::string>& notes, failure& why)
{
    const auto keep = [&notes](edit_result& result) {
        notes.insert(notes.end(), result.notes.begin(), result.notes.end());
    };
    for (const std::string& text : options.replaced)
    {
        const auto [wanted, replacement] = *halves(text);
        edit_result result = editor.replacePathPrefix(wanted, replacement);
        if (result.changed == 0)
            result.notes.push_back("no texture path begins with " + wanted);
        keep(result);
    }
    for (const std::string& text : options.textures)
    {
        const auto [place, path] = *halves(text);
        const auto [lod, group, texture] = *indices<3>(place);
        edit_result result;
        if (!editor.setTexturePath({lod, group, texture}, path, options.scope(), result, why))
            return false;
        keep(result);
    }
    for (const std::string& text : options.alphas)
    {
        const auto [place, value] = *halves(text);
        const auto [lod, group] = *indices<2>(place);
        edit_result result;
        if (!editor.setAlphaMode({lod, group}, *alphaValue(value), options.scope(), result, why))
            return false;
        keep(result);
    }
    return true;
}

json changeJson(const field_change& change)
{
    return {{"lod", change.lod},
            {"group", change.group},
            {"texture", change.texture ? json(*change.texture) : json()},
            {"before", displayText(change.before)},
            {"after", displayText(change.after)}};
}

// The model itself, and nothing in it changes: then the file is left alone.
bool isLeftAlone(const std::string& operand, const std::string& output, std::size_t changes)
{
    std::error_code error;
    return changes == 0 && !game_path(operand).isInternal() &&
           std::filesystem::equivalent(toPath(operand), toPath(output), error) && !error;
}

bool editModel(cli_context& context, const edit_options& options, const std::string& operand, const std::string& output,
               json& row, failure& why)
{
    rmv2_file model;
    if (!openToEdit(context, operand, options.is_forced, model, why))
        return false;
    model_editor editor(model);
    std::vector<std::string> notes;
    if (!applyEdits(options, editor, notes, why))
        return false;
    std::string list;
    json changes = json::array();
    for (const field_change& change : editor.changes())
        if (change.is_saved)
        {
            changes.push_back(changeJson(change));
            list += "  " + terminalText(describe(change)) + "\n";
        }
    const bool is_written = !options.is_dry_run && !isLeftAlone(operand, output, changes.size());
    if (is_written && !saveModel(model, output, why))
        return false;
    for (const std::string& note : notes)
        context.note(displayText(operand) + ": " + displayText(note));
    if (!context.is_json)
        context.print(terminalText(options.is_dry_run ? operand : output) + ": " + counted(changes.size(), "change") +
                      "\n" + (options.is_dry_run ? list : ""));
    row["outcome"] = is_written ? "written" : options.is_dry_run && !changes.empty() ? "would change" : "unchanged";
    row["changes"] = std::move(changes);
    return true;
}

} // namespace

void addEditCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<edit_options>();
    CLI::App* command = app.add_subcommand("edit", "Set texture paths and alpha modes of models");
    command->add_option("MODEL", options->models, model_operands_help)->required();
    command->add_option("-o,--output", options->output, "The file to write, or for several models the folder")
        ->type_name("OUT")
        ->check(notEmpty());
    const auto addEdits = [command](const char* name, std::vector<std::string>& values, const char* type,
                                    const CLI::Validator& check, const char* about) {
        command->add_option(name, values, about)->type_name(type)->allow_extra_args(false)->check(check);
    };
    addEdits("--texture", options->textures, "L:G:T=PATH", textureEdit(),
             "The path of a texture; LOD, group and texture are counted from 0");
    addEdits("--alpha", options->alphas, "L:G=VALUE", alphaEdit(),
             "The alpha mode of a group: 0 off, 1 on, -1 metal, or any number; 0x... is hexadecimal");
    addEdits("--replace", options->replaced, "OLD=NEW", replacement(),
             "In all texture paths that begin with OLD, in any case and with either separator: NEW in its place. "
             "Done before --texture");
    command->add_flag("--all-lods", options->is_for_all_lods,
                      "--texture and --alpha change the group of the same name in every other LOD, too");
    command->add_flag("--dry-run", options->is_dry_run, "Only list what would change; nothing is written");
    command->add_flag("--force", options->is_forced,
                      "Edit a model that says version 7 over the LOD headers of version 6");
    context.addJsonOption(*command);
    command->callback([options, &context] {
        if (!options->is_dry_run && options->output.empty())
            throw CLI::RequiredError("-o or --dry-run");
        forEachModel(context, options->models, {options->output, options->is_dry_run},
                     [&](const std::string& model, const std::string& out, json& row, failure& why) {
                         return editModel(context, *options, model, out, row, why);
                     });
    });
}

} // namespace korvane
