#pragma once

// An animation fitted to a skeleton: every frame gives a full pose of the skeleton's bones, those without a track
// keeping the bind pose. The poses are put together when they are asked for, out of the tracks of the loaded file,
// which is shared and never changed: that takes no memory of its own and is as fast as reading finished poses. A const
// object may be used from any thread.

#include "Korvane/animation/anim_file.h"
#include "Korvane/posing/joint.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace korvane
{

class animation
{
public:
    // Track j of the file belongs to the bone that stands at place j of its list of animated bones; tracks of bones
    // that the skeleton does not have are passed over. False, with everything as it was, when the file's frames do not
    // hold what its counts say.
    [[nodiscard]] bool expand(std::shared_ptr<const anim_data> source, std::span<const joint> bind, failure& why);

    std::uint32_t frameCount() const { return m_source ? m_source->frame_count : 0; }
    double frameRate() const { return m_source ? static_cast<double>(m_source->frame_rate) : 0; } // frames a second
    double endTime() const { return m_source ? static_cast<double>(m_source->end_time) : 0; }     // seconds
    const anim_data* source() const { return m_source.get(); } // the file, with its maps and counts; null: none

    // Sets the translations and rotations of a pose of as many joints as the skeleton has, and nothing else of them;
    // allocates nothing. The pose lies between a frame and the next; fraction goes from 0 to 1. The last frame, and any
    // beyond it, blends into the first one. Without frames it is the bind pose.
    void sample(std::uint64_t frame, float fraction, std::span<joint> pose) const;

private:
    static constexpr std::uint32_t no_track = 0xffffffff;
    struct channel // of one bone
    {
        std::uint32_t translation_track = no_track;
        std::uint32_t rotation_track = no_track;
        glm::vec3 bind_translation{0};
        glm::quat bind_rotation{1, 0, 0, 0};
    };

    std::shared_ptr<const anim_data> m_source;
    std::vector<channel> m_channels;
};

} // namespace korvane
