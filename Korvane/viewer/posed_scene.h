#pragma once

// The skeletons of a scene and how they stand at the moment: what the shaders, the lines of the skeletons and whoever
// looks for a bone or a triangle under the mouse are given. Made of a loaded_scene, and then owned by the thread that
// draws. Advancing, filling and picking take no memory. Portable.
//
// Nothing that leaves here is anything but a usable number: where the products of a file's values are none, a bone
// stands in its bind pose.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/posing/skeleton_pose.h"
#include "Korvane/scene/loaded_scene.h"

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// How an animation fits a scene. A value, from any thread: what is to be told is known before anything is drawn.
struct animation_fit
{
    std::vector<std::size_t> rigs;              // that it moves: its skeleton's name is their id
    std::shared_ptr<const anim_data> animation; // as given, or a copy with bind values where keys were no numbers
    std::vector<std::string> problems;          // a line each, without an end mark; empty: it fits
};
[[nodiscard]] animation_fit fitAnimation(const loaded_scene& scene, std::shared_ptr<const anim_data> animation);

// A joint of the picture, or an attachment point.
struct posed_place
{
    std::string_view name; // the file's own bytes: displayText() before it is shown; lives as long as the scene
    glm::vec3 place{0};    // in the scene, in metres
    int rig = -1;
    int bone = -1;
};

class posed_scene
{
public:
    static constexpr std::size_t max_line_vertices = 20000; // of one filling
    static constexpr float joint_size = 0.01f;              // of the cube at a joint
    static constexpr float axis_length = 0.06f;             // of an attachment point

    // Shows the bind pose. Null: an empty scene.
    explicit posed_scene(scene_pointer scene, seconds_clock clock = steadySeconds);
    posed_scene(const posed_scene&) = delete;
    posed_scene& operator=(const posed_scene&) = delete;
    ~posed_scene();

    const loaded_scene& scene() const { return *m_scene; }

    // Starts it at its first frame on all skeletons that it is made for; others go on with theirs, so that rider and
    // horse can move at once. Each goes round in its own time; the one that was set last leads. False: it fits none.
    bool setAnimation(const animation_fit& fit);
    bool setAnimation(std::shared_ptr<const anim_data> animation) // the fit's problems are lost
    {
        return setAnimation(fitAnimation(*m_scene, std::move(animation)));
    }
    void clearAnimation(); // all show the bind pose
    bool hasAnimation() const { return m_player.isLoaded(); }
    // Of the leading one.
    const animation& shownAnimation() const;

    // For every picture: playing goes on, and the poses follow.
    void advance(playback_control& control);
    // The poses at a place of the leading animation, whatever is playing.
    void show(const playback_position& position);
    // The same at a time of it, which goes round.
    void showTime(double seconds);

    // For the rig of a part, as mvp_buffer's inverse and tranforms hold them, to be copied as they are. Always all 256:
    // bones that the skeleton does not have, and parts without a rig (-1), stay in the bind pose.
    std::span<const gpu_matrix, max_bones> inverse(int rig) const;    // of the bind pose; never changes
    std::span<const gpu_matrix, max_bones> transforms(int rig) const; // of the shown pose
    // The product of both, for the processor: by what a point of the bind pose is moved. Bones from 256 on count as
    // 255.
    const glm::mat4& palette(int rig, std::uint32_t bone) const;

    // Lines for the line layout, two vertices each, as many as fit; how many were written. A skeleton's bones first,
    // then a cube at each joint.
    std::size_t fillSkeleton(std::span<gpu_line_vertex> target) const;
    std::size_t skeletonVertexCount() const { return m_skeleton_vertices; } // that it needs
    // Three lines for each attachment point: x red, y green, z blue.
    std::size_t fillPoints(std::span<gpu_line_vertex> target) const;

    // Joints and attachment points as they stand now, for labels; in the order of the rigs and bones.
    std::size_t jointCount() const { return m_joints.size(); }
    posed_place joint(std::size_t number) const;
    std::size_t pointCount() const { return m_points.size(); }
    posed_place point(std::size_t number) const;
    // The joint that is nearest to a place in the picture, below zero: none within so many pixels. world_to_clip as
    // for GLM's columns; the picture's origin is its left upper corner. Of joints at the same place the nearer to the
    // eye.
    int jointAt(const glm::mat4& world_to_clip, const glm::vec2& picture, const glm::vec2& pixel, float within) const;

private:
    struct rig_state;
    struct joint_number
    {
        int rig, bone;
        int parent; // below zero: none
    };
    struct point_number
    {
        const scene_point* point;
        int rig, bone;
        glm::mat4 place; // in the rig's bind pose
    };

    void addJoints();
    void addPoints();
    void showLeading(const playback_position& position);
    void updatePalettes();
    const rig_state& at(int rig) const;
    glm::mat4 placeOf(const point_number& point) const;

    scene_pointer m_scene;
    std::vector<std::unique_ptr<rig_state>> m_rigs; // the scene's, and behind them one for what has none
    playback m_player;                              // of the leading animation
    std::size_t m_leader = 0;                       // the rig that it moves, while it is loaded
    double m_seconds = 0;                           // for how long the others have gone on
    std::vector<joint_number> m_joints;
    std::vector<point_number> m_points;
    std::size_t m_skeleton_vertices = 0;
};

} // namespace korvane
