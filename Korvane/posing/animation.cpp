#include "Korvane/posing/animation.h"

#include "Korvane/posing/transform.h"

#include <algorithm>

namespace korvane
{

namespace
{

bool holdsItsFrames(const anim_data& data)
{
    const std::uint64_t frames = data.frame_count;
    return data.translations.size() >= frames * data.translation_count &&
           data.rotations.size() >= frames * data.rotation_count;
}

} // namespace

bool animation::expand(std::shared_ptr<const anim_data> source, std::span<const joint> bind, failure& why)
{
    if (!source)
        return fail(why, failure_kind::refused, "there is no animation to show");
    const anim_data& data = *source;
    if (!holdsItsFrames(data))
        return fail(why, failure_kind::malformed,
                    "the animation holds fewer translations or rotations than its " + std::to_string(data.frame_count) +
                        " frames have");
    std::vector<channel> channels(bind.size());
    for (std::size_t i = 0; i < bind.size(); ++i)
    {
        channels[i].bind_translation = bind[i].translation;
        channels[i].bind_rotation = bind[i].rotation;
    }
    const auto assign = [&channels](const std::vector<std::uint32_t>& bones, std::uint32_t tracks, auto member) {
        for (std::uint32_t track = 0; track < std::min<std::size_t>(bones.size(), tracks); ++track)
            if (bones[track] < channels.size())
                channels[bones[track]].*member = track;
    };
    assign(data.animated_translations, data.translation_count, &channel::translation_track);
    assign(data.animated_rotations, data.rotation_count, &channel::rotation_track);
    m_channels = std::move(channels);
    m_source = std::move(source);
    return true;
}

void animation::sample(std::uint64_t frame, float fraction, std::span<joint> pose) const
{
    const std::size_t bones = std::min(pose.size(), m_channels.size());
    if (frameCount() == 0)
    {
        for (std::size_t i = 0; i < bones; ++i)
        {
            pose[i].translation = m_channels[i].bind_translation;
            pose[i].rotation = m_channels[i].bind_rotation;
        }
        return;
    }
    const std::size_t last = frameCount() - 1;
    const std::size_t from = static_cast<std::size_t>(std::min<std::uint64_t>(frame, last));
    const std::size_t to = from < last ? from + 1 : 0;
    const float t = fraction > 0 ? std::min(fraction, 1.0f) : 0.0f; // NaN is 0, too
    const glm::vec3* const translations_from = m_source->frameTranslations(from).data();
    const glm::vec3* const translations_to = m_source->frameTranslations(to).data();
    const glm::quat* const rotations_from = m_source->frameRotations(from).data();
    const glm::quat* const rotations_to = m_source->frameRotations(to).data();
    for (std::size_t i = 0; i < bones; ++i)
    {
        const channel& own = m_channels[i];
        joint& target = pose[i];
        const std::uint32_t moved = own.translation_track;
        const std::uint32_t turned = own.rotation_track;
        target.translation =
            moved == no_track ? own.bind_translation : between(translations_from[moved], translations_to[moved], t);
        // Exactly the frame where there is nothing to blend: the weights' last bits do not add up to one.
        target.rotation = turned == no_track ? own.bind_rotation
                          : t > 0            ? shorterArc(rotations_from[turned], rotations_to[turned], t)
                                             : rotations_from[turned];
    }
}

} // namespace korvane
