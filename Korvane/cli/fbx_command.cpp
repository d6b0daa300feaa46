// fbx: what stands in an FBX file.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/fbx_geometry.h"
#include "Korvane/cli/fbx_scene_json.h"
#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/scene/fbx_model_import.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

struct fbx_options
{
    std::string file;
    bool is_dump = false;
    std::size_t array_limit = 0;
    bool is_scene = false;
    bool has_geometry = false;
    std::vector<double> times; // seconds
};

void runDump(cli_context& context, const fbx_options& options)
{
    memory_file bytes;
    fbx_document document;
    failure why;
    if (!context.game().read(options.file, bytes, why))
        return context.fail(why);
    if (!readFbx(bytes.bytes(), document, why))
    {
        why.path = options.file;
        return context.fail(why);
    }
    if (!context.is_json)
        return dumpFbx(document, options.array_limit, [&context](std::string_view part) { context.print(part); });
    json_stream out(context);
    out.beginObject();
    out.key("lines");
    out.beginArray();
    bool is_inside = false;                                                            // a line
    dumpFbx(document, options.array_limit, [&out, &is_inside](std::string_view part) { // UTF-8, whatever the texts are
        for (std::size_t begin = 0, end = 0; begin < part.size(); begin = end + 1)
        {
            end = std::min(part.find('\n', begin), part.size());
            if (!is_inside)
                out.beginText();
            out.textPart(part.substr(begin, end - begin));
            is_inside = end == part.size();
            if (!is_inside)
                out.endText();
        }
    });
    out.endArray();
    out.endObject();
    out.endDocument();
}

void runScene(cli_context& context, const fbx_options& options)
{
    memory_file bytes;
    fbx_document document;
    fbx_scene scene;
    failure why;
    if (!context.game().read(options.file, bytes, why))
        return context.fail(why);
    if (!readFbx(bytes.bytes(), document, why) || !readScene(std::move(document), scene, why))
    {
        why.path = options.file;
        return context.fail(why);
    }
    for (const std::string& note : scene.notes)
        context.note("note: " + terminalText(note));
    if (!options.is_scene && !context.is_json)
        return printGeometryText(context, scene);
    json_stream out(context);
    printScene(out, scene, options.times, options.has_geometry);
    out.endDocument();
}

void printModelJson(cli_context& context, const fbx_model& model)
{
    json_stream out(context);
    out.beginObject();
    out.key("meshes");
    out.beginArray();
    for (const fbx_model::mesh& mesh : model.meshes)
    {
        out.beginObject();
        out.member("name", displayText(mesh.name));
        out.key("control_points");
        out.beginArray();
        for (const std::array<float, 4>& point : mesh.control_points)
            out.numbers(point);
        out.endArray();
        out.endObject();
    }
    out.endArray();
    out.key("skeletons");
    out.beginArray();
    for (const std::string& name : model.skeletons)
        out.value(displayText(name));
    out.endArray();
    out.endObject();
    out.endDocument();
}

void printModel(cli_context& context, const fbx_model& model)
{
    if (context.is_json)
        return printModelJson(context, model);
    for (const fbx_model::mesh& mesh : model.meshes)
        context.print("mesh " + terminalText(mesh.name) + ": " + std::to_string(mesh.control_points.size()) +
                      " control points\n");
    for (const std::string& name : model.skeletons)
        context.print("skeleton " + terminalText(name) + "\n");
}

void runImport(cli_context& context, const fbx_options& options)
{
    memory_file bytes;
    fbx_model model;
    failure why;
    if (context.game().read(options.file, bytes, why) && importFbxModel(bytes.bytes(), model, why))
        return printModel(context, model);
    why.what = fbxImportError(options.file) + ": " + why.what;
    why.path.clear(); // it stands in the text
    context.fail(why);
}

} // namespace

void addFbxCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<fbx_options>();
    CLI::App* command = app.add_subcommand("fbx", "Show what is in an FBX file");
    command->add_option("FILE", options->file, "The FBX file, binary or text")->required();
    CLI::Option* const dump =
        command->add_flag("--dump", options->is_dump, "All records of the document, one line each");
    command->add_option("--numbers", options->array_limit, "With --dump: show N numbers of an array (0: all)")
        ->type_name("N")
        ->check(wholeNumber())
        ->needs(dump);
    CLI::Option* const scene =
        command->add_flag("--scene", options->is_scene, "The whole scene, as JSON")->excludes(dump);
    command
        ->add_flag("--geometry", options->has_geometry, "Points, normals, texture coordinates, weights and materials")
        ->excludes(dump);
    command
        ->add_option("--at", options->times,
                     "With --scene: what the takes move, at T seconds; may be given more than once")
        ->type_name("T")
        ->check(finiteNumber())
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->needs(scene);
    context.addJsonOption(*command);
    command->callback([&context, options] {
        if (options->is_dump)
            return runDump(context, *options);
        return options->is_scene || options->has_geometry ? runScene(context, *options) : runImport(context, *options);
    });
}

} // namespace korvane
