#include "tools/demo_data/demo_data.h"

#include "EASY_GUI/services/file_system.h"
#include "tools/demo_data/animations.h"
#include "tools/demo_data/beast.h"
#include "tools/demo_data/definitions.h"
#include "tools/demo_data/demo_archives.h"
#include "tools/demo_data/figure.h"
#include "tools/demo_data/figure_parts.h"
#include "tools/demo_data/horse.h"
#include "tools/demo_data/humanoid_skeleton.h"
#include "tools/demo_data/materials.h"
#include "tools/demo_data/model_file.h"
#include "tools/demo_data/props.h"

#include <cmath>
#include <initializer_list>
#include <span>
#include <system_error>
#include <utility>

namespace korvane::demo
{

namespace
{

constexpr const char* figure_folder = "variantmeshes/wh_variantmodels/hu1/demo/";
constexpr const char* beast_folder = "variantmeshes/wh_variantmodels/be1/demo/";
constexpr const char* prop_folder = "rigidmodels/demo/";
constexpr const char* texture_folder = "variantmeshes/wh_variantmodels/hu1/demo/tex/";
constexpr std::size_t most_vertices = 65535; // indices have 16 bits

constexpr double lod_density[] = {0.66, 0.40, 0.22}; // of rows and columns
constexpr double lod_distance[] = {15, 60, 200};     // metres

enum class texture_slot : std::uint32_t
{
    diffuse = 0,
    normal = 1,
    mask = 3,
    specular = 11,
    gloss = 12
};

std::vector<model_texture> texturesOf(const std::string& set)
{
    const std::string start = texture_folder + set;
    const auto entry = [&](texture_slot slot, const char* ending) {
        return model_texture{static_cast<std::uint32_t>(slot), start + ending};
    };
    return {entry(texture_slot::diffuse, "_diffuse.dds"), entry(texture_slot::normal, "_normal.dds"),
            entry(texture_slot::specular, "_specular.dds"), entry(texture_slot::gloss, "_gloss.dds"),
            entry(texture_slot::mask, "_mask.dds")};
}

std::uint32_t numberOf(int bone)
{
    return static_cast<std::uint32_t>(bone);
}

std::vector<model_attachment> propPoints()
{
    std::vector<model_attachment> points;
    for (const bone& each : humanoidBones())
        if (each.name.starts_with("be_prop_") || each.name == "head")
            points.push_back({std::string(each.name), each.position, numberOf(boneIndex(each.name))});
    for (model_attachment& point : points)
        if (point.name == "be_prop_0") // what hangs there is held as the hand holds its sword
        {
            const weapon_grip grip = handGrip();
            point.position = grip.hold;
            point.axes = {cross(grip.up, grip.edge), grip.up, grip.edge};
        }
    return points;
}

std::vector<model_attachment> saddlePoints()
{
    return {{"rider", saddlePlace(), numberOf(beastRig().find("spine_1"))}};
}

struct group_style
{
    std::uint16_t format;
    std::uint32_t material_id;
    const char* shader_name; // 11 characters
    std::uint32_t alpha_mode = 0;
    vec3 pivot{};
};

constexpr group_style cinematic_style{4, 65, "skinned_lit"};
constexpr group_style weighted_style{3, 65, "skinned_lit"};
constexpr group_style static_style{0, 68, "default_lit"};

// A part as one group, or as several when it has more vertices than 16-bit indices can name.
void addGroups(model_lod& lod, const figure_part& part, const group_style& style,
               const std::vector<model_attachment>& attachments = {})
{
    std::size_t number = 0;
    for (mesh& shape : split(part.shape, most_vertices))
    {
        model_group group;
        group.name = number == 0 ? part.name : part.name + "_" + std::to_string(number);
        group.shader_name = style.shader_name;
        group.texture_directory = texture_folder;
        group.material_id = style.material_id;
        group.vertex_format = style.format;
        group.alpha_mode = style.alpha_mode;
        group.pivot = style.pivot;
        group.attachments = attachments;
        group.textures = texturesOf(part.texture);
        group.shape = std::move(shape);
        lod.groups.push_back(std::move(group));
        ++number;
    }
}

// build makes the parts that the model holds.
template <class build_function>
model riggedModel(std::uint32_t version, const group_style& style, double density, std::size_t lods,
                  const build_function& build, std::string_view skeleton = skeleton_name,
                  const std::vector<model_attachment>& points = propPoints())
{
    model result{version, std::string(skeleton), {}};
    for (std::size_t i = 0; i < lods; ++i)
    {
        model_lod lod{lod_distance[i], {}};
        for (const figure_part& part : build(lod_density[i] * density))
            addGroups(lod, part, style, points);
        result.lods.push_back(std::move(lod));
    }
    return result;
}

model guardModel(std::uint32_t version, const group_style& style, double density, std::size_t lods)
{
    return riggedModel(version, style, density, lods, buildGuard);
}

struct piece_row
{
    const char* name;
    const char* about;
    guard_piece piece;
};

constexpr piece_row guard_pieces[] = {
    {"demo_guard_body", "the guard's body: version 7, for the definition", guard_piece::body},
    {"demo_guard_cape", "the guard's cape: version 7, for the definition", guard_piece::cape},
    {"demo_guard_head", "the guard's head with the helmet: version 7, for the definition", guard_piece::head},
    {"demo_guard_shield", "the guard's shield: version 7, for the definition", guard_piece::shield},
    {"demo_guard_sword", "the guard's sword: version 7, for the definition", guard_piece::sword},
    {"demo_guard_spear", "the guard's spear: version 7, for the definition of the mod", guard_piece::spear},
};

template <class build_function>
model propModel(std::uint32_t version, const group_style& style, double density, const build_function& build)
{
    model result{version, "", {}};
    for (std::size_t i = 0; i < 3; ++i)
    {
        model_lod lod{lod_distance[i], {}};
        for (const figure_part& part : build(lod_density[i] / lod_density[0] * density))
            addGroups(lod, part, style);
        result.lods.push_back(std::move(lod));
    }
    return result;
}

// The shape for collisions, and a last group of the undecoded format 2.
model columnCollision(std::uint32_t version, bool with_undecoded)
{
    model result{version, "", {{100, {}}}};
    const figure_part hull{"column_hull", "demo_stone", buildColumnHull()};
    addGroups(result.lods[0], hull, {1, 61, "collide_box"});
    result.lods[0].groups.back().textures.clear();
    if (with_undecoded)
    {
        addGroups(result.lods[0], {"column_shape", "demo_stone", buildColumnHull()}, {2, 62, "collide_any"});
        result.lods[0].groups.back().textures.clear();
    }
    return result;
}

// One file with a group of each decoded format.
model everyFormat(std::uint32_t version)
{
    model result{version, std::string(skeleton_name), {{100, {}}}};
    const auto barrel = buildBarrel(0.5);
    for (const std::uint16_t format : std::initializer_list<std::uint16_t>{0, 1, 3, 4, 5, 6, 7})
        addGroups(result.lods[0], barrel[format % 2], {format, 68, "default_lit"});
    return result;
}

// The shield with one fault of every common kind, for whoever wants to see what a check says.
model faultyShield(double density)
{
    const auto build = [](double piece_density) { return buildGuardPiece(guard_piece::shield, piece_density); };
    model result = riggedModel(7, cinematic_style, density, 3, build);
    model_group& group = result.lods[0].groups.front();
    group.textures[0].path.insert(group.textures[0].path.find("_diffuse"), "s"); // a misspelt name
    group.textures[1].path.insert(0, "data/");                                   // begins above the archives
    group.textures[2].path = "C:\\mods\\shield_specular.dds";
    group.textures[3].type = 99; // no such texture type
    group.material_id = 2;
    for (std::size_t i = 0; i < 5; ++i)
        group.shape.vertices[i].weights = {200, 0, 0, 0};
    group.shape.vertices.back().bones = {250, 0, 0, 0};
    group.shape.indices.back() = most_vertices; // one triangle names a vertex that does not exist
    result.lods[1].distance = 5;                // nearer than the LOD before
    result.lods[2].groups.clear();
    return result;
}

class maker
{
public:
    maker(const options& wanted, const file_sink& sink)
        : m_seed(wanted.seed)
        , m_density(std::sqrt(wanted.scale))
        , m_sink(sink)
    {
    }

    bool run()
    {
        return figures() && pieces() && mounted() && props() && definitions() && textures() && animations() &&
               archives();
    }

private:
    bool add(std::string path, std::string about, std::vector<std::byte> bytes)
    {
        m_archives.add(path, bytes);
        return m_sink({std::move(path), std::move(about), std::move(bytes)});
    }
    bool addModel(const char* folder, const char* name, const char* about, const model& source)
    {
        return add(folder + std::string(name) + ".rigid_model_v2", about, modelBytes(source));
    }

    bool figures()
    {
        return addModel(figure_folder, "demo_guard", "the guard: version 7, 4 weights a vertex, 3 LODs",
                        guardModel(7, cinematic_style, m_density, 3)) &&
               addModel(figure_folder, "demo_guard_v6", "the guard: version 6, 2 weights a vertex, 3 LODs",
                        guardModel(6, weighted_style, m_density, 3)) &&
               addModel(figure_folder, "demo_guard_v8", "the guard: version 8, 4 weights a vertex, 2 LODs",
                        guardModel(8, cinematic_style, m_density * 0.75, 2)) &&
               addModel(figure_folder, "demo_guard_v5",
                        "the guard: version 5 (16-bit texts), 2 weights a vertex, 1 LOD",
                        guardModel(5, weighted_style, m_density * 0.75, 1));
    }

    bool pieces()
    {
        for (const piece_row& row : guard_pieces)
        {
            const auto build = [&row](double density) { return buildGuardPiece(row.piece, density); };
            if (!addModel(figure_folder, row.name, row.about, riggedModel(7, cinematic_style, m_density, 3, build)))
                return false;
        }
        return addModel(figure_folder, "demo_guard_faulty", "the guard's shield with faults that a check finds",
                        faultyShield(m_density));
    }

    bool mounted()
    {
        const auto loose = [](guard_piece piece) {
            return [piece](double density) { return buildGuardPiece(piece, density); };
        };
        return addModel(figure_folder, "demo_loose_sword", "a sword without a skeleton, to be hung: version 7",
                        propModel(7, static_style, m_density, loose(guard_piece::loose_sword))) &&
               addModel(figure_folder, "demo_loose_mace", "a mace without a skeleton, to be hung: version 7",
                        propModel(7, static_style, m_density, loose(guard_piece::loose_mace))) &&
               addModel(beast_folder, "demo_horse", "a saddled horse: version 7, 4 weights a vertex, 3 LODs",
                        riggedModel(7, cinematic_style, m_density, 3, buildHorse, beastRig().name, saddlePoints()));
    }

    bool props()
    {
        const auto column = [this](double density) { return buildColumn(density, m_seed); };
        const auto grass = [this](double density) { return buildGrass(density, m_seed); };
        group_style pivoted = static_style;
        pivoted.format = 6;
        pivoted.pivot = {0.25, 1, -0.5};
        group_style seventh = static_style;
        seventh.format = 7;
        return addModel(prop_folder, "demo_barrel", "a barrel: version 7, static format 0",
                        propModel(7, static_style, m_density, buildBarrel)) &&
               addModel(prop_folder, "demo_column", "a ruined column: version 7, static format 6, with a pivot",
                        propModel(7, pivoted, m_density, column)) &&
               addModel(prop_folder, "demo_banner", "a banner: version 6, static format 7",
                        propModel(6, seventh, m_density, buildBanner)) &&
               addModel(prop_folder, "demo_banner_v5", "the banner: version 5 (16-bit texts), static format 0",
                        propModel(5, static_style, m_density, buildBanner)) &&
               addModel(prop_folder, "demo_grass", "a patch of grass: version 7, format 5, alpha-tested",
                        propModel(7, {5, 69, "grass_patch", 1}, m_density, grass)) &&
               addModel(prop_folder, "demo_column_collision", "the column's collision hull: version 7, format 1",
                        columnCollision(7, false)) &&
               addModel(prop_folder, "demo_column_shape", "collision hull and a last group of the undecoded format 2",
                        columnCollision(8, true)) &&
               addModel(prop_folder, "demo_formats", "barrels in every decoded vertex format: version 8",
                        everyFormat(8));
    }

    bool definitions()
    {
        for (const definition& each : demo::definitions())
        {
            const auto text = std::as_bytes(std::span(each.text));
            if (!add(each.path, each.about, {text.begin(), text.end()}))
                return false;
        }
        return true;
    }

    bool textures()
    {
        for (const material& each : materials())
        {
            const std::vector<surface> painted = paintSurface(each, m_seed);
            for (const painted_image& picture : imagesOf(each, painted))
                if (!add(texture_folder + each.name + "_" + picture.suffix + ".dds",
                         std::to_string(picture.pixels.width) + " x " + std::to_string(picture.pixels.height) + " " +
                             formatName(picture.format),
                         ddsBytes(picture.pixels, picture.format)))
                    return false;
            for (const recolouring& row : recolourings())
                if (row.material == each.name)
                    m_archives.addInstead(row.archive, texture_folder + each.name + "_diffuse.dds",
                                          ddsBytes(recoloured(each, painted, row.colour).pixels, each.diffuse));
        }
        return true;
    }

    bool animations()
    {
        m_archives.addInstead(archive_kind::older, olderSkeleton().path, olderSkeleton().bytes);
        m_archives.addInstead(archive_kind::mod, moddedAnimation().path, moddedAnimation().bytes);
        return makeAnimations([this](made_animation made) {
            return add(std::move(made.path), std::move(made.about), std::move(made.bytes));
        });
    }

    bool archives()
    {
        for (file& each : m_archives.take())
            if (!m_sink(std::move(each)))
                return false;
        return true;
    }

    static const char* formatName(dds_format format)
    {
        switch (format)
        {
        case dds_format::bgra8:
            return "BGRA8";
        case dds_format::rgba8_srgb:
            return "RGBA8 sRGB";
        case dds_format::bc1:
            return "BC1";
        case dds_format::bc1_srgb:
            return "BC1 sRGB";
        case dds_format::bc3:
            return "BC3";
        case dds_format::bc3_srgb:
            return "BC3 sRGB";
        case dds_format::bc5:
            return "BC5";
        case dds_format::bc7:
            return "BC7";
        default:
            return "BC7 sRGB";
        }
    }

    std::uint32_t m_seed;
    double m_density;
    const file_sink& m_sink;
    demo_archives m_archives;
};

} // namespace

bool makeFiles(const options& wanted, const file_sink& sink, failure& why)
{
    if (!(wanted.scale >= min_scale && wanted.scale <= max_scale))
        return fail(why, failure_kind::refused, "the scale must be from 0.0625 to 64");
    return maker(wanted, sink).run();
}

bool writeFolder(const std::string& folder, const options& wanted,
                 const std::function<void(const file& made, std::size_t size_bytes)>& written, failure& why)
{
    const auto write = [&](file made) {
        const std::filesystem::path target = toPath(folder) / toPath(made.path);
        std::error_code error;
        std::filesystem::create_directories(target.parent_path(), error);
        if (error)
            return fail(why, failure_kind::unwritable, "the folder could not be created: " + error.message(),
                        toUtf8(target.parent_path()));
        if (!writeWholeFile(toUtf8(target), made.bytes, why))
            return false;
        const std::size_t size = made.bytes.size();
        made.bytes = {};
        written(made, size);
        return true;
    };
    return makeFiles(wanted, write, why);
}

} // namespace korvane::demo
