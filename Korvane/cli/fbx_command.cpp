// fbx: what stands in an FBX file.

#include "Korvane/cli/commands.h"

#include "Korvane/cli/game_files.h"
#include "Korvane/fbx/fbx_document.h"

#include <memory>

namespace korvane
{

namespace
{

struct fbx_options
{
    std::string file;
    bool is_dump = false;
    std::size_t array_limit = 0;
};

void runFbx(cli_context& context, const fbx_options& options)
{
    memory_file bytes;
    fbx_document document;
    failure why;
    if (!readOperand(context, options.file, bytes, why))
        return context.fail(why);
    if (!readFbx(bytes.bytes(), document, why))
    {
        why.path = options.file;
        return context.fail(why);
    }
    context.print(dumpFbx(document, options.array_limit));
}

} // namespace

void addFbxCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<fbx_options>();
    CLI::App* command = app.add_subcommand("fbx", "Show what is in an FBX file");
    command->add_option("FILE", options->file, "The FBX file, binary or text")->required();
    CLI::Option* const dump =
        command->add_flag("--dump", options->is_dump, "All records of the document, one line each")->required();
    command->add_option("--numbers", options->array_limit, "With --dump: show N numbers of an array (0: all)")
        ->type_name("N")
        ->needs(dump);
    command->callback(
        [&context, options]
        {
            runFbx(context, *options);
        });
}

} // namespace korvane
