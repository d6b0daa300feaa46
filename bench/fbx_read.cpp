// Reading and writing an animated figure of 200,000 triangles: 100,000 control points, 80 bones with three weights for
// each point, 480 curves of 200 keys. The baselines are, in the same run, unpacking the same arrays one after the other
// with libdeflate, and copying the unpacked bytes. The last lines are what is measured, each the best of its rounds:
//  - reading / unpacking: at most 1.1; 0.7 with two cores, because reading unpacks on all of them;
//  - writing / reading: at most 2; 1.5 with two cores. Both use all cores; of one core alone packing takes 2.0 times as
//    long as unpacking, so that nothing is left to spare there;
//  - the peak memory of reading beyond the file, against the unpacked size: at most 6;
//  - reading the same document in the text form, against the binary one: no limit.
// With a path as the argument behind Google Benchmark's own, the binary file is left there for other programs.

#include "Korvane/fbx/container/fbx_document.h"

#include <benchmark/benchmark.h>
#include <libdeflate.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <string>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

namespace
{

using namespace korvane;

constexpr std::int32_t rows = 313, columns = 320, bone_count = 80, curves_per_bone = 6, key_count = 200;
constexpr std::int64_t ticks_a_frame = 46186158000 / 20;

double rounded(double value)
{
    return static_cast<float>(value); // game data is binary32
}

std::string fullName(const std::string& name, const std::string& type)
{
    return name + std::string("\0\1", 2) + type;
}

// Ids of the objects.
constexpr std::int64_t mesh_id = 1000, model_id = 1001, skin_id = 1002, stack_id = 1003, layer_id = 1004;
constexpr std::int64_t bone_id = 2000, cluster_id = 3000, curve_node_id = 4000, curve_id = 5000;

fbx_record geometry()
{
    std::vector<double> points, normals, uvs;
    std::vector<std::int32_t> polygons;
    for (std::int32_t row = 0; row <= rows; ++row)
        for (std::int32_t column = 0; column < columns; ++column)
        {
            const double around = 6.2831853 * column / columns, along = 3.1415926 * row / rows;
            const double radius = 30 + std::sin(7 * around) * std::cos(11 * along);
            const double normal[3] = {std::sin(along) * std::cos(around), std::cos(along),
                                      std::sin(along) * std::sin(around)};
            for (const double part : normal)
            {
                points.push_back(rounded(radius * part));
                normals.push_back(rounded(part));
            }
            uvs.push_back(rounded(static_cast<double>(column) / columns));
            uvs.push_back(rounded(static_cast<double>(row) / rows));
            if (row == rows)
                continue;
            const std::int32_t here = row * columns, next = (column + 1) % columns;
            polygons.insert(polygons.end(), {here + column, here + columns + column, -(here + next) - 1});
            polygons.insert(polygons.end(), {here + next, here + columns + column, -(here + columns + next) - 1});
        }
    fbx_record mesh("Geometry", mesh_id, fullName("figure", "Geometry"), "Mesh");
    mesh.add("Vertices", std::move(points));
    mesh.add("PolygonVertexIndex", std::move(polygons));
    fbx_record& layer = mesh.add("Layer", 0);
    for (const auto& [type, array, content] :
         {std::tuple("LayerElementNormal", "Normals", &normals), std::tuple("LayerElementUV", "UV", &uvs)})
    {
        fbx_record& entry = layer.add("LayerElement");
        entry.add("Type", type);
        entry.add("TypedIndex", 0);
    }
    for (const auto& [type, array, content] :
         {std::tuple("LayerElementNormal", "Normals", &normals), std::tuple("LayerElementUV", "UV", &uvs)})
    {
        fbx_record& element = mesh.add(type, 0);
        element.add("Name", "");
        element.add("MappingInformationType", "ByVertice");
        element.add("ReferenceInformationType", "Direct");
        element.add(array, std::move(*content));
    }
    return mesh;
}

fbx_record cluster(std::int32_t bone)
{
    constexpr std::int32_t share = (rows + 1) * columns / bone_count;
    std::vector<std::int32_t> indexes;
    std::vector<double> weights;
    for (std::int32_t at = 0; at < 3 * share; ++at)
    {
        indexes.push_back((bone * share + at) % ((rows + 1) * columns));
        weights.push_back(rounded(0.2 + 0.1 * std::sin(0.37 * at + bone)));
    }
    const std::vector<double> identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    fbx_record record("Deformer", cluster_id + bone, fullName("bone", "SubDeformer"), "Cluster");
    record.add("Indexes", std::move(indexes));
    record.add("Weights", std::move(weights));
    record.add("Transform", identity);
    record.add("TransformLink", identity);
    return record;
}

fbx_record curve(std::int32_t number)
{
    std::vector<std::int64_t> times;
    std::vector<float> values;
    for (std::int32_t key = 0; key < key_count; ++key)
    {
        times.push_back(key * ticks_a_frame);
        values.push_back(static_cast<float>(40 * std::sin(0.05 * key + number)));
    }
    fbx_record record("AnimationCurve", curve_id + number, fullName("", "AnimCurve"), "");
    record.add("Default", 0.0);
    record.add("KeyVer", 4009);
    record.add("KeyTime", std::move(times));
    record.add("KeyValueFloat", std::move(values));
    record.add("KeyAttrFlags", std::vector<std::int32_t>{4});
    record.add("KeyAttrDataFloat", std::vector<float>(4));
    record.add("KeyAttrRefCount", std::vector<std::int32_t>{key_count});
    return record;
}

// The bones, each with its cluster, its two curve nodes and their curves.
void addBones(fbx_record& objects, fbx_record& connections)
{
    for (std::int32_t bone = 0; bone < bone_count; ++bone)
    {
        objects.add("Model", bone_id + bone, fullName("bone" + std::to_string(bone), "Model"), "LimbNode")
            .add("Version", 232);
        objects.children.push_back(cluster(bone));
        connections.add("C", "OO", bone_id + bone, bone == 0 ? std::int64_t{0} : bone_id + bone - 1);
        connections.add("C", "OO", cluster_id + bone, skin_id);
        connections.add("C", "OO", bone_id + bone, cluster_id + bone);
        for (std::int32_t kind = 0; kind < 2; ++kind)
        {
            const std::int64_t node = curve_node_id + 2 * bone + kind;
            fbx_record& curve_node =
                objects.add("AnimationCurveNode", node, fullName(kind == 0 ? "T" : "R", "AnimCurveNode"), "");
            fbx_record& properties = curve_node.add("Properties70");
            connections.add("C", "OO", node, layer_id);
            connections.add("C", "OP", node, bone_id + bone, kind == 0 ? "Lcl Translation" : "Lcl Rotation");
            std::int32_t number = (2 * bone + kind) * 3;
            for (const char* const axis : {"d|X", "d|Y", "d|Z"})
            {
                properties.add("P", axis, "Number", "", "A", 0.0);
                connections.add("C", "OP", curve_id + number, node, axis);
                ++number;
            }
        }
    }
    for (std::int32_t number = 0; number < bone_count * curves_per_bone; ++number)
        objects.children.push_back(curve(number));
}

fbx_document figure()
{
    fbx_document document;
    fbx_record header("FBXHeaderExtension"), objects("Objects"), connections("Connections"), settings("GlobalSettings");
    header.add("FBXVersion", 7400);
    settings.add("Properties70").add("P", "CustomFrameRate", "double", "Number", "", 20.0);
    objects.children.push_back(geometry());
    objects.add("Model", model_id, fullName("figure", "Model"), "Mesh").add("Version", 232);
    objects.add("Deformer", skin_id, fullName("skin", "Deformer"), "Skin").add("Version", 100);
    objects.add("AnimationStack", stack_id, fullName("Take 001", "AnimStack"), "")
        .add("Properties70")
        .add("P", "LocalStop", "KTime", "Time", "", std::int64_t{0});
    objects.add("AnimationLayer", layer_id, fullName("Layer", "AnimLayer"), "").add("Version", 100);
    connections.add("C", "OO", model_id, std::int64_t{0});
    connections.add("C", "OO", mesh_id, model_id);
    connections.add("C", "OO", skin_id, mesh_id);
    connections.add("C", "OO", layer_id, stack_id);
    addBones(objects, connections);
    document.records = {std::move(header), std::move(settings), std::move(objects), std::move(connections)};
    return document;
}

std::vector<std::span<const std::byte>> arraysOf(const fbx_record& record)
{
    std::vector<std::span<const std::byte>> arrays;
    for (const fbx_value& value : record.values)
        std::visit(
            [&arrays](const auto& held) {
                if constexpr (requires { std::as_bytes(std::span(held)); })
                    arrays.push_back(std::as_bytes(std::span(held)));
            },
            value);
    for (const fbx_record& child : record.children)
        for (const std::span<const std::byte> array : arraysOf(child))
            arrays.push_back(array);
    return arrays;
}

std::vector<std::span<const std::byte>> arraysOf(const fbx_document& document)
{
    std::vector<std::span<const std::byte>> arrays;
    for (const fbx_record& record : document.records)
        for (const std::span<const std::byte> array : arraysOf(record))
            arrays.push_back(array);
    return arrays;
}

void appendText(std::string& text, const std::string& value)
{
    const std::size_t separator = value.find('\0'); // "Name\0\1Class" becomes "Class::Name"
    text += '"';
    text += separator == std::string::npos ? value : value.substr(separator + 2) + "::" + value.substr(0, separator);
    text += '"';
}

template <class number>
requires(std::is_arithmetic_v<number> && !std::is_same_v<number, bool>) void appendText(std::string& text, number value)
{
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

template <class number>
void appendText(std::string& text, const std::vector<number>& values)
{
    text += "*" + std::to_string(values.size()) + " {\n a: ";
    for (const number value : values)
    {
        appendText(text, value);
        text += ',';
    }
    text.back() = '\n';
    text += '}';
}

// The text form of a record; the figure has no other values.
void appendRecord(std::string& text, const fbx_record& record)
{
    text += record.name + ": ";
    for (const fbx_value& value : record.values)
    {
        text += &value == record.values.data() ? "" : ", ";
        std::visit(
            [&text](const auto& held) {
                if constexpr (requires { appendText(text, held); })
                    appendText(text, held);
            },
            value);
    }
    if (!record.children.empty())
    {
        text += " {\n";
        for (const fbx_record& child : record.children)
            appendRecord(text, child);
        text += "}";
    }
    text += "\n";
}

std::string textForm(const fbx_document& document)
{
    std::string text = "; FBX 7.4.0 project file\n";
    for (const fbx_record& record : document.records)
        appendRecord(text, record);
    return text;
}

double secondsSince(const std::chrono::steady_clock::time_point& begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// A number of /proc/self/status in bytes.
std::size_t statusBytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":"))
            return std::stoul(line.substr(key.size() + 1)) * 1024;
    return 0;
}

struct figures
{
    double read_seconds = 1e9, write_seconds = 1e9, unpack_seconds = 1e9, copy_seconds = 1e9, text_seconds = 1e9;
    std::size_t unpacked_bytes = 0, read_memory = 0, text_bytes = 0;
} best;

fbx_document document;
std::vector<std::byte> file;

void readFile(benchmark::State& state)
{
    for (auto _ : state)
    {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // forget the peak so far
        const std::size_t before = statusBytes("VmRSS");
        const auto begin = std::chrono::steady_clock::now();
        fbx_document read;
        failure why;
        if (!readFbx(file, read, why))
            state.SkipWithError(describe(why).c_str());
        best.read_seconds = std::min(best.read_seconds, secondsSince(begin));
        best.read_memory = statusBytes("VmHWM") - before;
    }
}

void readText(benchmark::State& state)
{
    const std::string text = textForm(document);
    best.text_bytes = text.size();
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        fbx_document read;
        failure why;
        if (!readFbx(std::as_bytes(std::span(text)), read, why))
            return state.SkipWithError(describe(why).c_str());
        best.text_seconds = std::min(best.text_seconds, secondsSince(begin));
        if (arraysOf(read).size() < arraysOf(document).size())
            return state.SkipWithError("arrays are missing");
    }
}

void writeFile(benchmark::State& state)
{
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(writeFbx(document));
        best.write_seconds = std::min(best.write_seconds, secondsSince(begin));
    }
}

void unpackArrays(benchmark::State& state)
{
    const auto arrays = arraysOf(document);
    std::vector<std::vector<std::byte>> packed;
    libdeflate_compressor* const packer = libdeflate_alloc_compressor(1);
    libdeflate_decompressor* const unpacker = libdeflate_alloc_decompressor();
    for (const std::span<const std::byte> array : arrays)
    {
        std::vector<std::byte>& own = packed.emplace_back(libdeflate_zlib_compress_bound(packer, array.size()));
        own.resize(libdeflate_zlib_compress(packer, array.data(), array.size(), own.data(), own.size()));
    }
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        std::vector<std::vector<std::byte>> unpacked;
        for (std::size_t at = 0; at < arrays.size(); ++at)
        {
            std::vector<std::byte>& own = unpacked.emplace_back(arrays[at].size());
            if (libdeflate_zlib_decompress(unpacker, packed[at].data(), packed[at].size(), own.data(), own.size(),
                                           nullptr) != LIBDEFLATE_SUCCESS)
                state.SkipWithError("libdeflate");
        }
        best.unpack_seconds = std::min(best.unpack_seconds, secondsSince(begin));
    }
    libdeflate_free_compressor(packer);
    libdeflate_free_decompressor(unpacker);
}

void copyArrays(benchmark::State& state)
{
    const auto arrays = arraysOf(document);
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        std::vector<std::vector<std::byte>> copies;
        for (const std::span<const std::byte> array : arrays)
            copies.emplace_back(array.begin(), array.end());
        benchmark::DoNotOptimize(copies.data());
        best.copy_seconds = std::min(best.copy_seconds, secondsSince(begin));
    }
}

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    document = figure();
    file = writeFbx(document);
    for (const std::span<const std::byte> array : arraysOf(document))
        best.unpacked_bytes += array.size();
    if (count > 1)
        std::ofstream(values[1], std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    benchmark::RegisterBenchmark("read", readFile)->Unit(benchmark::kMillisecond)->Iterations(15);
    benchmark::RegisterBenchmark("write", writeFile)->Unit(benchmark::kMillisecond)->Iterations(15);
    benchmark::RegisterBenchmark("unpack", unpackArrays)->Unit(benchmark::kMillisecond)->Iterations(15);
    benchmark::RegisterBenchmark("copy", copyArrays)->Unit(benchmark::kMillisecond)->Iterations(15);
    benchmark::RegisterBenchmark("read text", readText)->Unit(benchmark::kMillisecond)->Iterations(5);
    benchmark::RunSpecifiedBenchmarks();
    const double unpacked = static_cast<double>(best.unpacked_bytes);
    std::printf("%.1f MB unpacked, %.1f MB as a file; read %.1f ms, write %.1f ms; read / unpack = %.2f, read / copy = "
                "%.2f, write / read = %.2f; memory of reading beyond the file / unpacked = %.2f\n",
                unpacked / 1e6, static_cast<double>(file.size()) / 1e6, 1e3 * best.read_seconds,
                1e3 * best.write_seconds, best.read_seconds / best.unpack_seconds,
                best.read_seconds / best.copy_seconds, best.write_seconds / best.read_seconds,
                static_cast<double>(best.read_memory) / unpacked);
    std::printf("%.1f MB as text: read %.1f ms, %.0f MB a second; text / binary = %.1f\n",
                static_cast<double>(best.text_bytes) / 1e6, 1e3 * best.text_seconds,
                static_cast<double>(best.text_bytes) / 1e6 / best.text_seconds, best.text_seconds / best.read_seconds);
    return 0;
}
