#include "Korvane/cli/anim_commands.h"

#include "Korvane/cli/commands.h"
#include "Korvane/cli/game_files.h"

namespace korvane
{

namespace
{

// The boxes say what the failures say, which are printed.
class silent_prompt : public user_prompt
{
public:
    void show(const std::string&, const std::string&, prompt_icon) override {}
    bool confirm(const std::string&, const std::string&) override { return false; }
    std::optional<std::string> pickOpenPath(const std::string&, const std::vector<file_filter>&) override { return {}; }
    std::optional<std::string> pickSavePath(const std::string&, const std::vector<file_filter>&,
                                            const std::string&) override
    {
        return {};
    }
};

} // namespace

std::shared_ptr<const anim_data> loadAnim(cli_context& context, const std::string& operand, anim_depth depth,
                                          failure& why)
{
    memory_file bytes;
    if (!readOperand(context, operand, bytes, why))
        return nullptr;
    silent_prompt prompt;
    anim_file file(prompt);
    file.openFromMemory(std::move(bytes), operand);
    const bool is_loaded = depth == anim_depth::skeleton    ? file.loadSkeleton({}, why)
                           : depth == anim_depth::animation ? file.loadAnimation({}, why)
                                                            : file.loadTemplate({}, why);
    return is_loaded ? std::make_shared<const anim_data>(file.data()) : nullptr;
}

void addAnimCommands(CLI::App& app, cli_context& context)
{
    CLI::App* const anim = app.add_subcommand("anim", "Skeletons and animations");
    anim->require_subcommand(1);
    anim->fallthrough();
    addAnimSampleCommand(*anim, context);
}

} // namespace korvane
