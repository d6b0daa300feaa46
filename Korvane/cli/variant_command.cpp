// variant: what a variant mesh definition puts together.

#include "Korvane/archives/internal_path.h"
#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/variant_mesh_def.h"

#include <memory>
#include <vector>

namespace korvane
{

namespace
{

std::string kindName(variant_tag_kind kind)
{
    switch (kind)
    {
    case variant_tag_kind::mesh:
        return "mesh";
    case variant_tag_kind::slot:
        return "slot";
    case variant_tag_kind::reference:
        return "reference";
    case variant_tag_kind::other:
        break;
    }
    return "other";
}

json tagJson(const variant_tag& tag)
{
    json attributes = json::object();
    for (const auto& [name, value] : tag.attributes)
        attributes.emplace(displayText(name), displayText(value)); // the first of a name counts
    json children = json::array();
    for (const variant_tag& child : tag.children)
        children.push_back(tagJson(child));
    return {{"kind", kindName(tag.kind)},
            {"name", displayText(tag.name)},
            {"attributes", std::move(attributes)},
            {"children", std::move(children)}};
}

json textsJson(const std::vector<std::string>& texts)
{
    json list = json::array();
    for (const std::string& text : texts)
        list.push_back(displayText(text));
    return list;
}

void printDefinitionJson(cli_context& context, const variant_mesh_def& definition, const game_data* game)
{
    const std::vector<std::string> models = definition.models();
    json missing; // null: nobody looked
    if (game)
    {
        std::vector<std::string> not_held;
        for (const std::string& model : models)
            if (!game->find(model))
                not_held.push_back(model);
        missing = textsJson(not_held);
    }
    context.printJson({{"path", displayText(definition.path())},
                       {"models", textsJson(models)},
                       {"missing", std::move(missing)},
                       {"problems", textsJson(definition.problems())},
                       {"tree", tagJson(definition.root())}});
}

// The definition as an indented text, a line for each element.
class definition_printer
{
public:
    definition_printer(cli_context& context, const game_data* game) : m_context(context), m_po_game(game) {}

    void print(const variant_tag& tag, std::size_t level = 0)
    {
        const bool is_holder = tag.name.empty(); // of several root elements: no line of its own
        if (!is_holder)
            m_context.print(std::string(2 * level, ' ') + line(tag) + "\n");
        for (const variant_tag& child : tag.children)
            print(child, is_holder ? level : level + 1);
    }

    void printSum()
    {
        std::string text =
            counted(m_models, "model") + ", " + counted(m_slots, "slot") + ", " + counted(m_references, "reference");
        if (m_missing > 0)
            text += "; " + std::to_string(m_missing) + " of the models in no archive";
        m_context.print("\n" + text + "\n");
    }

private:
    std::string line(const variant_tag& tag)
    {
        switch (tag.kind)
        {
        case variant_tag_kind::mesh:
            return meshLine(tag);
        case variant_tag_kind::slot:
            ++m_slots;
            return "slot" + valueOf(tag, "name", " ") + valueOf(tag, "attach_point", ", at ") +
                   valueOf(tag, "probability", ", probability ") +
                   otherAttributes(tag, {"name", "attach_point", "probability"});
        case variant_tag_kind::reference:
            ++m_references;
            return "reference " + terminalText(normalInternalPath(tag.attribute("definition"))) +
                   otherAttributes(tag, {"definition"}) + (tag.children.empty() ? "  [not followed]" : "");
        case variant_tag_kind::other:
            break;
        }
        return "(" + terminalText(tag.name) + otherAttributes(tag, {}) + ")";
    }

    std::string meshLine(const variant_tag& tag)
    {
        const std::string model = normalInternalPath(tag.attribute("model"));
        std::string text =
            "mesh" + (model.empty() ? std::string() : " " + terminalText(model)) + otherAttributes(tag, {"model"});
        if (model.empty())
            return text;
        ++m_models;
        if (m_po_game && !m_po_game->find(model))
        {
            ++m_missing;
            text += "  [in no archive]";
        }
        return text;
    }

    static std::string valueOf(const variant_tag& tag, std::string_view name, const std::string& label)
    {
        const std::string_view value = tag.attribute(name);
        return value.empty() ? std::string() : label + terminalText(value);
    }

    static std::string otherAttributes(const variant_tag& tag, const std::vector<std::string_view>& shown)
    {
        std::string text;
        for (const auto& [name, value] : tag.attributes)
        {
            bool is_shown = false;
            for (const std::string_view known : shown)
                is_shown = is_shown || equalsIgnoringCase(name, known);
            if (!is_shown)
                text += " " + terminalText(name) + "=\"" + terminalText(value) + "\"";
        }
        return text;
    }

    cli_context& m_context;
    const game_data* m_po_game; // null: nobody can say
    std::size_t m_models = 0, m_slots = 0, m_references = 0, m_missing = 0;
};

// Opens the operand; game stays null when there are no archives, which only a definition on the disk survives.
bool openDefinition(cli_context& context, const std::string& operand, variant_mesh_def& definition,
                    std::shared_ptr<const game_data>& game, failure& why)
{
    if (const game_path path(operand); path.isInternal())
    {
        game = context.game().archives(why);
        return game && definition.openFromInternalPath(std::string(path.internalPath()), why, game->definitionReader());
    }
    if (!definition.open(operand, why)) // before the archives: a wrong name is said at once
        return false;
    failure no_archives;
    game = context.game().archives(no_archives);
    if (game)
        return definition.open(operand, why, game->definitionReader());
    if (context.game().hasFolders() || !definition.problems().empty())
        context.note(terminalText(describe(no_archives)));
    return true;
}

void runVariant(cli_context& context, const std::string& operand)
{
    variant_mesh_def definition;
    std::shared_ptr<const game_data> game;
    failure why;
    if (!openDefinition(context, operand, definition, game, why))
        return context.fail(why);
    for (const std::string& problem : definition.problems())
        context.note(terminalText(problem));
    if (context.is_json)
        return printDefinitionJson(context, definition, game.get());
    definition_printer printer(context, game.get());
    printer.print(definition.root());
    printer.printSum();
}

} // namespace

void addVariantCommand(CLI::App& app, cli_context& context)
{
    const auto operand = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("variant", "Show the models that a variant mesh definition puts together");
    command->add_option("FILE", *operand, "The definition: a path on disk, or pack: and an internal path")->required();
    context.addJsonOption(*command);
    command->callback([&context, operand] { runVariant(context, *operand); });
}

} // namespace korvane
