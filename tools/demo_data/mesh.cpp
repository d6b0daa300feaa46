#include "tools/demo_data/mesh.h"

#include <cassert>
#include <utility>

namespace korvane::demo
{

namespace
{

struct influence
{
    int bone = 0;
    double strength = 0;
};

void bind(mesh_vertex& vertex, bone_choice bones, std::span<const bone> skeleton)
{
    std::vector<influence> found;
    double total = 0;
    for (const int bone : bones)
    {
        const double near = 1.0 / (squaredDistanceToBone(skeleton, bone, vertex.position) + 1e-5);
        found.push_back({bone, bones.size() == 1 ? 1.0 : near * near * near});
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const influence& a, const influence& b) { return a.strength > b.strength; });
    found.resize(std::min<std::size_t>(found.size(), 4));
    for (const influence& each : found)
        total += each.strength;
    vertex.bones = {};
    vertex.weights = {};
    int left = 255;
    for (std::size_t i = found.size(); i-- > 1;)
    {
        const int weight = static_cast<int>(found[i].strength / total * 255 + 0.5);
        vertex.weights[i] = static_cast<std::uint8_t>(weight);
        vertex.bones[i] = weight > 0 ? static_cast<std::uint8_t>(found[i].bone) : std::uint8_t{0};
        left -= weight;
    }
    vertex.bones[0] = static_cast<std::uint8_t>(found.front().bone);
    vertex.weights[0] = static_cast<std::uint8_t>(left);
}

vec3 rowCentre(const grid& surface, std::size_t row)
{
    vec3 sum;
    for (std::size_t column = 0; column < surface.columns; ++column)
        sum = sum + surface.at(row, column);
    return sum * (1.0 / static_cast<double>(surface.columns));
}

// One normal per point, to the side of cross(along a row, along a column); points that coincide at the seam or in a
// row that is one point share theirs.
std::vector<vec3> normalsOf(const grid& surface)
{
    std::vector<vec3> normals(surface.points.size());
    const auto addTriangle = [&](std::size_t a, std::size_t b, std::size_t c) {
        const vec3 normal = cross(surface.points[b] - surface.points[a], surface.points[c] - surface.points[a]);
        for (const std::size_t i : {a, b, c})
            normals[i] = normals[i] + normal;
    };
    for (std::size_t row = 0; row + 1 < surface.rows; ++row)
        for (std::size_t column = 0; column + 1 < surface.columns; ++column)
        {
            const std::size_t a = row * surface.columns + column;
            const std::size_t c = a + surface.columns;
            addTriangle(a, a + 1, c);
            addTriangle(a + 1, c + 1, c);
        }
    for (std::size_t row = 0; row < surface.rows; ++row)
    {
        const std::size_t first = row * surface.columns;
        const std::size_t last = first + surface.columns - 1;
        if (surface.wraps)
            normals[first] = normals[last] = normals[first] + normals[last];
        const vec3 extent = surface.points[first + surface.columns / 2] - surface.points[first];
        if (dot(extent, extent) < 1e-14 &&
            length(surface.points[first + surface.columns / 3] - surface.points[first]) < 1e-7)
        {
            vec3 sum;
            for (std::size_t i = first; i <= last; ++i)
                sum = sum + normals[i];
            std::fill(normals.begin() + static_cast<std::ptrdiff_t>(first),
                      normals.begin() + static_cast<std::ptrdiff_t>(last) + 1, sum);
        }
    }
    for (vec3& normal : normals)
        normal = normalised(normal);
    return normals;
}

bool pointsInwards(const grid& surface, const std::vector<vec3>& normals)
{
    double sum = 0;
    for (std::size_t row = 0; row < surface.rows; ++row)
    {
        const vec3 centre = rowCentre(surface, row);
        for (std::size_t column = 0; column < surface.columns; ++column)
            sum += dot(normals[row * surface.columns + column], surface.at(row, column) - centre);
    }
    return sum < 0;
}

void addTangents(std::vector<mesh_vertex>& vertices, std::span<const std::uint32_t> indices)
{
    std::vector<vec3> along_u(vertices.size()), along_v(vertices.size());
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        const mesh_vertex& a = vertices[indices[i]];
        const mesh_vertex& b = vertices[indices[i + 1]];
        const mesh_vertex& c = vertices[indices[i + 2]];
        const vec3 p = b.position - a.position, q = c.position - a.position;
        const double pu = b.uv.x - a.uv.x, pv = b.uv.y - a.uv.y, qu = c.uv.x - a.uv.x, qv = c.uv.y - a.uv.y;
        const double area = pu * qv - qu * pv;
        if (area * area < 1e-20)
            continue;
        const double sign = area < 0 ? -1 : 1; // weighted by the area in space, not in the image
        const vec3 u = (p * qv - q * pv) * sign, v = (q * pu - p * qu) * sign;
        for (std::size_t k = 0; k < 3; ++k)
        {
            along_u[indices[i + k]] = along_u[indices[i + k]] + u;
            along_v[indices[i + k]] = along_v[indices[i + k]] + v;
        }
    }
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        mesh_vertex& vertex = vertices[i];
        const vec3 n = vertex.normal;
        const vec3 spare = n.x * n.x < 0.8 ? vec3{1, 0, 0} : vec3{0, 0, 1};
        const vec3 fallback = normalised(spare - n * dot(n, spare));
        vertex.tangent = normalised(along_u[i] - n * dot(n, along_u[i]), fallback);
        const vec3 side = cross(n, vertex.tangent);
        vertex.bitangent = dot(side, along_v[i]) < 0 ? side * -1.0 : side;
    }
}

vec3 catmullRom(vec3 a, vec3 b, vec3 c, vec3 d, double t)
{
    return (b * 2 + (c - a) * t + (a * 2 - b * 5 + c * 4 - d) * (t * t) + (b * 3 - a - c * 3 + d) * (t * t * t)) * 0.5;
}

// v follows the distance travelled over the surface, so that textures are not stretched where rows lie far apart.
void spaceByLength(grid& surface, double v0, double v1)
{
    std::vector<double> travelled(surface.rows, 0.0);
    for (std::size_t row = 1; row < surface.rows; ++row)
    {
        double sum = 0;
        for (std::size_t column = 0; column < surface.columns; ++column)
            sum += length(surface.at(row, column) - surface.at(row - 1, column));
        travelled[row] = travelled[row - 1] + sum;
    }
    for (std::size_t i = 0; i < surface.uvs.size(); ++i)
        surface.uvs[i].y = mix(v0, v1, travelled[i / surface.columns] / travelled.back());
}

section between(std::span<const section> sections, std::size_t span, double t)
{
    const section& b = sections[span];
    const section& c = sections[span + 1];
    const section& a = span > 0 ? sections[span - 1] : b;
    const section& d = span + 2 < sections.size() ? sections[span + 2] : c;
    const vec3 size = catmullRom({a.half_width, a.front, a.back}, {b.half_width, b.front, b.back},
                                 {c.half_width, c.front, c.back}, {d.half_width, d.front, d.back}, t);
    return {catmullRom(a.centre, b.centre, c.centre, d.centre, t), std::max(0.0, size.x), std::max(0.0, size.y),
            std::max(0.0, size.z), mix(b.square, c.square, t)};
}

} // namespace

void mesh::append(const mesh& other)
{
    const auto base = static_cast<std::uint32_t>(vertices.size());
    vertices.insert(vertices.end(), other.vertices.begin(), other.vertices.end());
    indices.reserve(indices.size() + other.indices.size());
    for (const std::uint32_t index : other.indices)
        indices.push_back(base + index);
}

std::vector<mesh> split(const mesh& whole, std::size_t limit)
{
    constexpr std::uint32_t absent = 0xFFFFFFFF;
    std::vector<mesh> parts(1);
    std::vector<std::uint32_t> place(whole.vertices.size(), absent);
    for (std::size_t i = 0; i + 2 < whole.indices.size(); i += 3)
    {
        if (parts.back().vertices.size() + 3 > limit)
        {
            parts.emplace_back();
            std::fill(place.begin(), place.end(), absent);
        }
        mesh& part = parts.back();
        for (std::size_t k = 0; k < 3; ++k)
        {
            const std::uint32_t index = whole.indices[i + k];
            if (place[index] == absent)
            {
                place[index] = static_cast<std::uint32_t>(part.vertices.size());
                part.vertices.push_back(whole.vertices[index]);
            }
            part.indices.push_back(place[index]);
        }
    }
    return parts;
}

grid loft(std::span<const section> sections, const loft_options& options, double density)
{
    const auto scaled = [density](int count, int least) {
        return static_cast<std::size_t>(std::max(least, static_cast<int>(count * density + 0.5)));
    };
    const bool wraps = options.to_turn - options.from_turn > 0.999;
    const std::size_t columns = scaled(options.around, wraps ? 5 : 1) + 1;
    const std::size_t steps = scaled(options.along, 1);
    const std::size_t rows = steps * (sections.size() - 1) + 1;
    grid surface{rows, columns, wraps, {}, {}};
    surface.points.reserve(rows * columns);
    for (std::size_t row = 0; row < rows; ++row)
    {
        const std::size_t span = std::min(row / steps, sections.size() - 2);
        const double t = static_cast<double>(row - span * steps) / static_cast<double>(steps);
        const section here = between(sections, span, t);
        const section before = t > 0.01 ? between(sections, span, t - 0.01) : here;
        const section after = t < 0.99 ? between(sections, span, t + 0.01) : here;
        const bool is_straight = dot(options.axis, options.axis) > 0;
        const vec3 path = is_straight ? options.axis : normalised(after.centre - before.centre, {0, 1, 0});
        const vec3 back = normalised(options.back_hint - path * dot(options.back_hint, path), {0, 0, 1});
        const vec3 side = cross(back, path);
        const double along = static_cast<double>(row) / static_cast<double>(rows - 1);
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double part = static_cast<double>(column) / static_cast<double>(columns - 1);
            const double turn = mix(options.from_turn, options.to_turn, part);
            const double s = sineOfTurns(turn), c = cosineOfTurns(turn);
            const double squared = 1.0 / std::sqrt(std::sqrt(s * s * s * s + c * c * c * c));
            const double stretch = mix(1.0, squared, here.square);
            const vec3 outward = side * (s * here.half_width) + back * (c * (c < 0 ? here.front : here.back));
            vec3 point = here.centre + outward * stretch;
            if (options.shape)
                point = options.shape(point, normalised(outward, path), turn, along);
            surface.points.push_back(point);
            surface.uvs.push_back({mix(options.u0, options.u1, part), mix(options.v0, options.v1, along)});
        }
        if (wraps) // to the last bit
            surface.at(row, columns - 1) = surface.at(row, 0);
    }
    spaceByLength(surface, options.v0, options.v1);
    return surface;
}

void mesh_builder::add(const grid& surface, std::vector<vec3> normals, bool flip, bone_choice bones)
{
    mesh part;
    part.vertices.resize(surface.points.size());
    for (std::size_t i = 0; i < part.vertices.size(); ++i)
    {
        mesh_vertex& vertex = part.vertices[i];
        vertex.position = surface.points[i];
        vertex.normal = flip ? normals[i] * -1.0 : normals[i];
        vertex.uv = surface.uvs[i];
        bind(vertex, bones, m_skeleton);
    }
    const auto addTriangle = [&](std::size_t a, std::size_t b, std::size_t c) {
        const vec3 normal = cross(surface.points[b] - surface.points[a], surface.points[c] - surface.points[a]);
        if (dot(normal, normal) < 1e-18)
            return; // at a pole
        if (flip)
            std::swap(b, c);
        for (const std::size_t index : {a, b, c})
            part.indices.push_back(static_cast<std::uint32_t>(index));
    };
    for (std::size_t row = 0; row + 1 < surface.rows; ++row)
        for (std::size_t column = 0; column + 1 < surface.columns; ++column)
        {
            const std::size_t a = row * surface.columns + column;
            const std::size_t c = a + surface.columns;
            addTriangle(a, a + 1, c);
            addTriangle(a + 1, c + 1, c);
        }
    addTangents(part.vertices, part.indices);
    m_mesh.append(part);
}

void mesh_builder::outward(const grid& surface, bone_choice bones)
{
    std::vector<vec3> normals = normalsOf(surface);
    const bool flip = pointsInwards(surface, normals);
    add(surface, std::move(normals), flip, bones);
}

void mesh_builder::facing(const grid& surface, vec3 towards, bone_choice bones)
{
    std::vector<vec3> normals = normalsOf(surface);
    double sum = 0;
    for (const vec3& normal : normals)
        sum += dot(normal, towards);
    add(surface, std::move(normals), sum < 0, bones);
}

void mesh_builder::shell(const grid& surface, double thickness, bone_choice bones, const vec3* towards)
{
    std::vector<vec3> normals = normalsOf(surface);
    bool flip = false;
    if (towards)
    {
        double sum = 0;
        for (const vec3& normal : normals)
            sum += dot(normal, *towards);
        flip = sum < 0;
    }
    else
        flip = pointsInwards(surface, normals);
    grid inner = surface;
    for (std::size_t i = 0; i < inner.points.size(); ++i)
        inner.points[i] = inner.points[i] - normals[i] * (flip ? -thickness : thickness);
    add(surface, normals, flip, bones);
    add(inner, normalsOf(inner), !flip, bones);

    // The edges: strips of two points across, one along each open side.
    const auto edge = [&](std::size_t first, std::size_t step, std::size_t count, std::size_t inside) {
        grid strip{count, 2, false, {}, {}};
        vec3 away;
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::size_t at = first + i * step;
            const vec2 uv = surface.uvs[at], to = surface.uvs[inside + i * step];
            strip.points.push_back(surface.points[at]);
            strip.points.push_back(inner.points[at]);
            strip.uvs.push_back(uv);
            strip.uvs.push_back({mix(uv.x, to.x, 0.1), mix(uv.y, to.y, 0.1)});
        }
        std::vector<vec3> strip_normals = normalsOf(strip);
        double sum = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            away = surface.points[first + i * step] - surface.points[inside + i * step];
            sum += dot(strip_normals[i * 2], normalised(away));
        }
        add(strip, std::move(strip_normals), sum < 0, bones);
    };
    const std::size_t columns = surface.columns;
    const std::size_t last_row = (surface.rows - 1) * columns;
    const auto isPoint = [&](std::size_t first) {
        return length(surface.points[first] - surface.points[first + columns / 2]) < 1e-7;
    };
    if (!isPoint(0))
        edge(0, 1, columns, columns);
    if (!isPoint(last_row))
        edge(last_row, 1, columns, last_row - columns);
    if (!surface.wraps)
    {
        edge(0, columns, surface.rows, 1);
        edge(columns - 1, columns, surface.rows, columns - 2);
    }
}

void mesh_builder::closedLoft(std::vector<section> sections, const loft_options& options, bone_choice bones)
{
    const grid surface = loft(sections, options, m_density);
    outward(surface, bones);
    for (const bool is_first : {true, false})
    {
        const std::size_t row = is_first ? 0 : surface.rows - 1;
        const std::size_t inner_row = is_first ? 1 : surface.rows - 2;
        const vec3 middle = rowCentre(surface, row);
        if (length(surface.at(row, 0) - middle) < 1e-6)
            continue;
        // A fan from the rim to the middle, with a disc of the picture at the scale of the sides.
        grid cap{2, surface.columns, surface.wraps, {}, {}};
        const double reach = (options.u1 - options.u0) / 6.283185307179586;
        for (const bool is_rim : {true, false})
            for (std::size_t column = 0; column < surface.columns; ++column)
            {
                const double turn = static_cast<double>(column) / static_cast<double>(surface.columns - 1);
                const double size = is_rim ? reach : 0;
                cap.points.push_back(is_rim ? surface.at(row, column) : middle);
                cap.uvs.push_back({0.5 + size * sineOfTurns(turn), 0.5 + size * cosineOfTurns(turn)});
            }
        facing(cap, middle - rowCentre(surface, inner_row), bones);
    }
}

void mesh_builder::box(vec3 centre, vec3 axis_x, vec3 axis_y, vec3 axis_z, bone_choice bones, double uv_scale)
{
    const vec3 axes[] = {axis_x, axis_y, axis_z};
    for (std::size_t k = 0; k < 3; ++k)
        for (const double side : {-1.0, 1.0})
        {
            const vec3 out = axes[k] * side, right = axes[(k + 1) % 3], up = axes[(k + 2) % 3];
            const double u = length(right) * uv_scale, v = length(up) * uv_scale;
            const grid face{2,
                            2,
                            false,
                            {centre + out - right + up, centre + out + right + up, centre + out - right - up,
                             centre + out + right - up},
                            {{0, 0}, {u, 0}, {0, v}, {u, v}}};
            facing(face, out, bones);
        }
}

} // namespace korvane::demo
