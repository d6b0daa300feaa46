#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/silent_prompt.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/cli/commands.h"
#include "Korvane/cli/game_files.h"

namespace korvane
{

std::shared_ptr<const anim_data> loadAnim(cli_context& context, const std::string& operand, anim_depth depth,
                                          failure& why)
{
    silent_prompt prompt; // its boxes say what the failures say, which are printed
    anim_file file(prompt);
    std::string path; // empty: from memory; files on the disk are read no further than needed
    if (isPackPath(operand) || operand.empty())
    {
        memory_file bytes;
        if (!readOperand(context, operand, bytes, why))
            return nullptr;
        file.openFromMemory(std::move(bytes), operand);
    }
    else
    {
        std::error_code ignored;
        path = operand;
        if (!std::filesystem::exists(toPath(path), ignored))
        {
            fail(why, failure_kind::not_found, "the file does not exist", path);
            return nullptr;
        }
    }
    const bool is_loaded = depth == anim_depth::skeleton    ? file.loadSkeleton(path, why)
                           : depth == anim_depth::animation ? file.loadAnimation(path, why)
                                                            : file.loadTemplate(path, why);
    return is_loaded ? std::make_shared<const anim_data>(file.takeData()) : nullptr;
}

bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why)
{
    for (const std::string& input : inputs)
    {
        std::error_code error;
        if (std::filesystem::equivalent(toPath(input), toPath(output), error) && !error)
            return fail(why, failure_kind::refused, "this would replace the file that is read", output);
    }
    return true;
}

void addAnimCommands(CLI::App& app, cli_context& context)
{
    CLI::App* const anim = app.add_subcommand("anim", "Skeletons and animations");
    anim->require_subcommand(1);
    anim->fallthrough();
    addAnimInfoCommand(*anim, context);
    addAnimSampleCommand(*anim, context);
    addAnimFileCommands(*anim, context);
}

} // namespace korvane
