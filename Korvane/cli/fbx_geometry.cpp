#include "Korvane/cli/fbx_geometry.h"

#include "EASY_GUI/services/text.h"

#include <array>
#include <charconv>
#include <span>
#include <string>

namespace korvane
{

namespace
{

std::string_view mappingName(fbx_layer_element::mapping_kind mapping)
{
    static constexpr std::array<std::string_view, 4> names = {"control point", "corner", "polygon", "all same"};
    return names[static_cast<std::size_t>(mapping)];
}

const std::vector<std::string>& materialsOf(const fbx_scene& scene, const fbx_mesh& mesh)
{
    static const std::vector<std::string> none;
    return mesh.nodes.empty() ? none : scene.nodes[mesh.nodes.front()].materials;
}

// Calls action(corner, polygon) for the corners in their order.
template <class action_type>
void forEachCorner(const fbx_mesh& mesh, const action_type& action)
{
    std::size_t corner = 0;
    for (std::size_t polygon = 0; polygon < mesh.polygon_ends.size(); ++polygon)
        for (; corner < mesh.polygon_ends[polygon]; ++corner)
            action(corner, polygon);
}

// Of a corner; empty: it has none.
std::span<const double> valueOf(const fbx_mesh& mesh, const fbx_layer_element& element, std::size_t corner,
                                std::size_t polygon)
{
    const std::size_t entry = mesh.entryOf(element, corner, polygon);
    return entry == fbx_none ? std::span<const double>()
                             : std::span(element.values).subspan(entry * element.width, element.width);
}

void printElements(json_stream& out, const fbx_mesh& mesh, const std::vector<fbx_layer_element>& elements)
{
    out.beginArray();
    for (const fbx_layer_element& element : elements)
    {
        out.beginObject();
        out.member("name", displayText(element.name));
        out.member("mapping", mappingName(element.mapping));
        out.key("values");
        out.beginArray();
        forEachCorner(mesh, [&](std::size_t corner, std::size_t polygon) {
            const std::span<const double> value = valueOf(mesh, element, corner, polygon);
            value.empty() ? out.value(nullptr) : out.numbers(value);
        });
        out.endArray();
        out.endObject();
    }
    out.endArray();
}

void printPolygons(json_stream& out, const fbx_mesh& mesh)
{
    out.beginArray();
    std::size_t begin = 0;
    for (const std::uint32_t end : mesh.polygon_ends)
    {
        out.beginArray();
        for (; begin < end; ++begin)
            out.value(mesh.corners[begin]);
        out.endArray();
    }
    out.endArray();
}

void printWeights(json_stream& out, const fbx_scene& scene, const fbx_mesh& mesh)
{
    out.beginArray();
    for (const fbx_skin& skin : mesh.skins)
        for (const fbx_cluster& cluster : skin.clusters)
        {
            out.beginObject();
            out.member("skin", displayText(skin.name));
            out.member("bone", displayText(scene.path(cluster.bone)));
            out.key("points");
            out.beginArray();
            for (const std::int32_t point : cluster.indices)
                out.value(point);
            out.endArray();
            out.key("weights");
            out.numbers(cluster.weights);
            out.endObject();
        }
    out.endArray();
}

// Lines of text, printed when there are many.
class line_printer
{
public:
    explicit line_printer(cli_context& context) : m_context(context) {}
    ~line_printer() { m_context.print(m_text); }
    line_printer(const line_printer&) = delete;
    line_printer& operator=(const line_printer&) = delete;

    line_printer& operator<<(std::string_view text)
    {
        m_text += text;
        return *this;
    }
    line_printer& operator<<(std::size_t number) { return *this << std::string_view(std::to_string(number)); }
    line_printer& operator<<(double number)
    {
        std::array<char, 32> written{};
        const auto behind = std::to_chars(written.data(), written.data() + written.size(), number).ptr;
        return *this << std::string_view(written.data(), static_cast<std::size_t>(behind - written.data()));
    }
    line_printer& operator<<(std::span<const double> numbers)
    {
        for (const double number : numbers)
            *this << " " << number;
        return *this;
    }
    void endLine()
    {
        m_text += '\n';
        if (m_text.size() < 64 * 1024)
            return;
        m_context.print(m_text);
        m_text.clear();
    }

private:
    cli_context& m_context;
    std::string m_text;
};

void printHead(line_printer& out, const fbx_scene& scene, const fbx_mesh& mesh)
{
    out << "mesh " << terminalText(mesh.name) << ": " << mesh.pointCount() << " control points, "
        << mesh.polygon_ends.size() << " polygons, " << mesh.corners.size() << " corners";
    out.endLine();
    for (const std::size_t node : mesh.nodes)
    {
        out << "  node " << terminalText(scene.path(node));
        out.endLine();
    }
    const auto element = [&out](std::string_view kind, const fbx_layer_element& shown) {
        out << "  " << kind << " " << terminalText(shown.name) << " by " << mappingName(shown.mapping) << ": "
            << shown.values.size() / shown.width << " entries";
        out.endLine();
    };
    for (const fbx_layer_element& normals : mesh.normals)
        element("normals", normals);
    for (const fbx_layer_element& uv : mesh.uv_sets)
        element("uv", uv);
    for (const std::string& material : materialsOf(scene, mesh))
    {
        out << "  material " << terminalText(material);
        out.endLine();
    }
}

void printPoints(line_printer& out, const fbx_scene& scene, const fbx_mesh& mesh)
{
    struct influence
    {
        std::size_t bone;
        double weight;
        std::size_t next; // of the same point; in the order of the clusters
    };
    std::vector<influence> influences;
    std::vector<std::size_t> firsts(mesh.pointCount(), fbx_none);
    for (auto skin = mesh.skins.rbegin(); skin != mesh.skins.rend(); ++skin)
        for (auto cluster = skin->clusters.rbegin(); cluster != skin->clusters.rend(); ++cluster)
            for (std::size_t i = cluster->indices.size(); i-- > 0;)
            {
                std::size_t& first = firsts[static_cast<std::size_t>(cluster->indices[i])];
                influences.push_back({cluster->bone, cluster->weights[i], first});
                first = influences.size() - 1;
            }
    for (std::size_t point = 0; point < mesh.pointCount(); ++point)
    {
        out << "  point " << point << ":" << std::span(mesh.points).subspan(3 * point, 3);
        for (std::size_t i = firsts[point]; i != fbx_none; i = influences[i].next)
            out << ", " << terminalText(scene.nodes[influences[i].bone].name) << " " << influences[i].weight;
        out.endLine();
    }
}

void printCorners(line_printer& out, const fbx_mesh& mesh)
{
    std::size_t shown = fbx_none;
    forEachCorner(mesh, [&](std::size_t corner, std::size_t polygon) {
        if (shown != polygon)
        {
            shown = polygon;
            out << "  polygon " << polygon;
            if (!mesh.polygon_materials.empty())
                out << ": material " << std::string_view(std::to_string(mesh.polygon_materials[polygon]));
            out.endLine();
        }
        out << "    point " << std::size_t{mesh.corners[corner]};
        for (const fbx_layer_element& normals : mesh.normals)
            out << ", normal" << valueOf(mesh, normals, corner, polygon);
        for (const fbx_layer_element& uv : mesh.uv_sets)
            out << ", uv" << valueOf(mesh, uv, corner, polygon);
        out.endLine();
    });
}

} // namespace

void printGeometry(json_stream& out, const fbx_scene& scene, const fbx_mesh& mesh)
{
    out.beginObject();
    out.key("points");
    out.beginArray();
    for (std::size_t i = 0; i < mesh.pointCount(); ++i)
        out.numbers(std::span(mesh.points).subspan(3 * i, 3));
    out.endArray();
    out.key("polygons");
    printPolygons(out, mesh);
    out.key("normals");
    printElements(out, mesh, mesh.normals);
    out.key("uv_sets");
    printElements(out, mesh, mesh.uv_sets);
    out.key("materials");
    out.beginArray();
    for (const std::string& material : materialsOf(scene, mesh))
        out.value(displayText(material));
    out.endArray();
    out.key("polygon_materials");
    out.beginArray();
    for (const std::int32_t material : mesh.polygon_materials)
        out.value(material);
    out.endArray();
    out.key("weights");
    printWeights(out, scene, mesh);
    out.endObject();
}

void printGeometryText(cli_context& context, const fbx_scene& scene)
{
    line_printer out(context);
    for (const fbx_mesh& mesh : scene.meshes)
    {
        printHead(out, scene, mesh);
        printPoints(out, scene, mesh);
        printCorners(out, mesh);
    }
}

} // namespace korvane
