#include "Korvane/cli/commands.h"

#include "tools/demo_data/demo_data.h"

#include <memory>
#include <string>

namespace korvane
{

namespace
{

struct demo_data_options
{
    std::string folder;
    demo::options wanted;
};

std::string sizeText(std::size_t bytes)
{
    return std::to_string((bytes + 1023) / 1024) + " KiB";
}

void runDemoData(cli_context& context, const demo_data_options& options)
{
    std::size_t textures = 0, texture_bytes = 0, total_bytes = 0, files = 0;
    json list = json::array();
    const auto written = [&](const demo::file& made, std::size_t size) {
        ++files;
        total_bytes += size;
        context.progress(std::to_string(files) + " files, " + sizeText(total_bytes));
        const bool is_texture = made.path.ends_with(".dds");
        textures += is_texture ? 1 : 0;
        texture_bytes += is_texture ? size : 0;
        if (context.is_json)
            list.push_back({{"path", made.path}, {"size", size}, {"about", made.about}});
        else if (!is_texture)
            context.print(made.path + "\n    " + made.about + ", " + sizeText(size) + "\n");
    };
    failure why;
    if (!demo::writeFolder(options.folder, options.wanted, written, why))
        return context.fail(why);
    if (context.is_json)
        return context.printJson(list);
    context.print(std::to_string(textures) + " DDS textures, " + sizeText(texture_bytes) + "\n");
    context.print(std::to_string(files) + " files, " + sizeText(total_bytes) + ", written below " + options.folder +
                  "\n");
}

} // namespace

void addDemoDataCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<demo_data_options>();
    CLI::App* command = app.add_subcommand("demo-data", "Write a synthetic game data folder");
    command->add_option("DIR", options->folder, "The folder to write to; it is created")->required()->check(notEmpty());
    command->add_option("--seed", options->wanted.seed, "Other numbers give other wear and other grass (default 1)");
    command->add_option("--scale", options->wanted.scale, "Multiplies the number of triangles (default 1)")
        ->check(finiteNumber())
        ->check(CLI::Range(demo::min_scale, demo::max_scale));
    context.addJsonOption(*command);
    command->callback([options, &context] { runDemoData(context, *options); });
}

} // namespace korvane
