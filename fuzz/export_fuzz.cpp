// Reads any bytes as a skeleton, an animation and a model, and exports what loads to memory as FBX and as Collada. Both
// must read back with every bone and mesh, and hold no number that is none. The first four bytes are the lengths of
// skeleton and animation; the model is what is left. Without a skeleton the animation's bones are the skeleton.

#include "Korvane/animation/anim_file.h"
#include "Korvane/fbx/export/dae_export.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/fbx_export.h"
#include "Korvane/fbx/scene/fbx_evaluator.h"
#include "Korvane/gltf/gltf_export.h"
#include "Korvane/models/rmv2_file.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <type_traits>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool isFiniteNumber(double value)
{
    return std::isfinite(value);
}

void checkNumbers(const fbx_record& record)
{
    for (const fbx_value& value : record.values)
        std::visit(
            [](const auto& held) {
                using type = std::remove_cvref_t<decltype(held)>;
                if constexpr (std::is_floating_point_v<type>)
                    require(std::isfinite(held));
                else if constexpr (std::is_same_v<type, std::vector<double>> ||
                                   std::is_same_v<type, std::vector<float>>)
                    require(std::ranges::all_of(held, isFiniteNumber));
            },
            value);
    for (const fbx_record& child : record.children)
        checkNumbers(child);
}

void checkFbx(fbx_export& exporter, const export_scene& scene, const export_take* take)
{
    for (const fbx_record& record : exporter.document(take).records)
        checkNumbers(record);
    const std::vector<std::byte> bytes = exporter.file(take);
    require(bytes == writeFbx(exporter.document(take)));
    fbx_document document;
    fbx_scene back;
    failure why;
    require(readFbx(bytes, document, why) && readScene(std::move(document), back, why));
    require(back.nodes.size() == scene.bones.size() + scene.meshes.size());
    require(back.meshes.size() == scene.meshes.size() && back.stacks.size() == (take ? 1u : 0u));
    for (std::size_t i = 0; i < scene.meshes.size(); ++i)
        require(back.meshes[i].pointCount() == scene.meshes[i].points.size() / 3 &&
                back.meshes[i].triangleCount() == scene.meshes[i].triangles.size() / 3);
    if (take)
        require(fbx_evaluator(back, 0).world(0).size() == back.nodes.size());
}

void checkDae(const dae_export& exporter, const export_scene& scene, const export_take* take)
{
    const std::string text = exporter.text(take);
    pugi::xml_document document;
    require(static_cast<bool>(document.load_buffer(text.data(), text.size())));
    require(document.select_nodes("//visual_scene//node").size() == scene.bones.size() + scene.meshes.size());
    for (const pugi::xpath_node found : document.select_nodes("//float_array|//matrix"))
    {
        std::size_t count = 0;
        const char* at = found.node().text().get();
        for (char* end = nullptr; *at != '\0'; at = end)
        {
            require(std::isfinite(std::strtod(at, &end)) && end != at);
            ++count;
        }
        require(count == found.node().attribute("count").as_uint(16));
    }
}

// Numbers that are none are written as null.
void checkNumbers(const nlohmann::json& value)
{
    require(!value.is_null());
    if (value.is_structured())
        for (const nlohmann::json& each : value)
            checkNumbers(each);
}

void checkGltf(const export_scene& scene, const std::vector<gltf_take>& takes)
{
    std::vector<std::byte> bin;
    checkNumbers(nlohmann::json::parse(gltf_export(scene, {}, true).gltf(takes, "a.bin", bin)));
    require(bin.size() % 4 == 0 && gltf_export(scene, {}, true).glb(takes).size() % 4 == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    auto rest = std::as_bytes(std::span(data, size)).subspan(4);
    const auto takePart = [&rest](std::size_t wanted) {
        const auto part = rest.first(std::min(wanted, rest.size()));
        rest = rest.subspan(part.size());
        return part;
    };
    const auto skeleton_bytes = takePart(data[0] + 256u * data[1]),
               animation_bytes = takePart(data[2] + 256u * data[3]);

    anim_file skeleton;
    const auto animation = std::make_shared<anim_file>();
    rmv2_file model;
    failure why;
    skeleton.openFromMemory(memory_file(skeleton_bytes.empty() ? animation_bytes : skeleton_bytes), "skeleton");
    animation->openFromMemory(memory_file(animation_bytes), "animation");
    export_scene scene;
    const bool has_bones = skeleton.loadSkeleton({}, why) && addBones(skeleton.data(), scene, why);
    const bool has_model = model.openFromMemory(memory_file(rest), "model", why);
    if (has_model)
        require(addMeshes(model.data(), 0, scene, why) || model.data().lods.empty());
    export_take take;
    const bool has_take = has_bones && animation->loadAnimation({}, why) &&
                          makeTake({animation, &animation->data()}, skeleton.data(),
                                   size % 2 == 0 ? take_span::half : take_span::full, take, why);
    fbx_export fbx(scene, {});
    const dae_export dae(scene, {});
    if (has_take)
    {
        checkFbx(fbx, scene, &take);
        checkDae(dae, scene, &take);
    }
    checkFbx(fbx, scene, nullptr);
    checkDae(dae, scene, nullptr);
    std::vector<gltf_take> takes;
    if (has_take)
        takes.push_back({"take", std::move(take)});
    checkGltf(scene, takes);
    return 0;
}
