#pragma once

// What an exported file shows, before it becomes records, XML or JSON: bones, meshes, materials and takes. Made out of
// decoded models, skeletons and animations; fbx_export.h, dae_export.h and the glTF writer write it. Owns everything;
// one thread builds, then any may read.
//
// Space: that of the games' files, right-handed with y up. The program's own space is mirrored in X against it, so here
// x is negated, rotations (x, y, z, w) become (x, -y, -z, w), and triangles run the other way round: they are
// counter-clockwise seen from outside. Unit: inches, for points, bones and keys alike. Double precision.

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/models/rmv2_data.h"
#include "Korvane/posing/joint.h"

#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

inline constexpr double inches_per_metre = 39.37008;
inline constexpr double metres_per_inch = 0.0254;
inline constexpr double centimetres_per_inch = 2.54;

struct export_bone
{
    std::string name;
    std::int32_t parent = -1;  // -1: hangs on the scene itself
    bool is_root = false;      // the first bone without a parent
    glm::dvec3 translation{0}; // bind pose, relative to the parent
    glm::dvec3 euler_degrees{0};
    glm::dmat4 global{1}; // bind pose, bone to world
    glm::dvec3 limb_colour{1, 1, 0};
};

struct export_cluster // what hangs on one bone
{
    std::uint32_t bone = 0;
    std::vector<std::int32_t> points; // ascending
    std::vector<double> weights;      // over all clusters those of a point add up to one
};

struct export_mesh
{
    std::string name; // of the node: group name, "_group_0", the group's number from 1, "_lod", the LOD's number
    std::vector<double> points;  // x, y, z
    std::vector<double> normals; // one for each point, of unit length
    std::vector<double> uvs;     // one for each point; v counts upwards
    // x, y, z of unit length, the direction in which u grows, and the side on which v grows upwards: 1 or -1 times
    // cross(normal, tangent). One for each point; empty when one of them has none.
    std::vector<double> tangents;
    std::vector<std::int32_t> triangles;
    std::vector<export_cluster> clusters; // ascending bones; empty: the mesh has no skin
    std::size_t material = 0;

    // Of a mesh that hangs on a bone as a whole: where its node stands below it. Others stand at the origin.
    std::int32_t bone = -1;
    glm::dvec3 translation{0};
    glm::dvec3 euler_degrees{0};
};

struct export_material
{
    std::string name;
    std::string diffuse_path; // internal path of the DDS file with '\'; empty: none
    std::string normal_path;
    std::string specular_path;
    std::string gloss_path;
    bool is_cut_out = false; // the diffuse alpha says where there is a surface, which is seen from both sides
};

struct export_track
{
    std::uint32_t bone = 0;
    std::vector<glm::dvec3> keys; // one for each frame: inches, or unrolled Euler degrees
};

struct export_take
{
    double frame_rate = 0; // frames a second
    std::uint32_t frame_count = 0;
    double stop_seconds = 0; // end of the take's time span; keys may go on behind it
    std::vector<export_track> rotations;
    std::vector<export_track> translations;
};

struct export_scene
{
    std::vector<export_bone> bones;
    std::vector<std::size_t> skeletons; // the first bone of each; a mount comes before the skeleton that hangs on it
    std::vector<export_mesh> meshes;
    std::vector<export_material> materials; // one for each mesh
    std::vector<std::string> warnings;      // what was left out or put right, UTF-8
};

// Adds the bones of a skeleton with their bind pose. False, with the bones as they were, when a bone's parent is no
// bone or its own descendant, or when a value is no number or too large. Mount: the bone on which the skeleton's roots
// hang; below zero: on the scene itself. Comes before the meshes: without bones they get no skins.
[[nodiscard]] bool addBones(const anim_data& skeleton, export_scene& scene, failure& why, std::int32_t mount = -1);
// Adds a bone of that name below another one, at a place in the scene's bind pose (in the program's space), and says
// which one it is: another skeleton's roots hang on it. What the place has besides a turn and a move is left out, with
// a warning.
std::int32_t addMount(const std::string& name, std::int32_t parent, const glm::mat4& place, export_scene& scene);

// How a model stands among the scene's bones.
struct mesh_place
{
    std::size_t first_bone = 0; // of its skeleton
    std::size_t bone_count = 0; // 0: it has no skin
    std::int32_t bone = -1;     // that it hangs on as a whole; below zero: none
    glm::mat4 place{1};         // from its own space into that of the scene in the bind pose, in the program's space
};
// Every group of a LOD as a mesh with its material. False when the model has no such LOD. Weights are normalised; those
// of bones that the skeleton does not have are left out, and a vertex without any hangs on bone 0. Triangles with an
// index out of range are left out, values that are no numbers, or too large, become 0; the warnings say how many.
[[nodiscard]] bool addMeshes(const RMV2_FILE_DATA& model, std::size_t lod, const mesh_place& place, export_scene& scene,
                             failure& why);
// The same on all bones that the scene has.
[[nodiscard]] bool addMeshes(const RMV2_FILE_DATA& model, std::size_t lod, export_scene& scene, failure& why);

enum class take_span
{
    half, // the time span ends after half of the frames
    full  // with the last frame
};

// The keys of an animation, for the skeleton's bones that it has tracks of; first_bone is the scene's bone that is the
// skeleton's first. The bind pose is the skeleton's. False, with the take as it was, for a frame rate that is none, for
// values that are no numbers or too large, and for more than three years.
[[nodiscard]] bool makeTake(std::shared_ptr<const anim_data> animation_data, const anim_data& skeleton, take_span span,
                            export_take& take, failure& why, std::size_t first_bone = 0);

} // namespace korvane
