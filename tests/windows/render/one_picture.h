#pragma once

// One picture of a scene, with a session of its own.

#include "Korvane/viewer/offscreen.h"

#include <cstdint>
#include <vector>

namespace korvane::test
{

struct render_result
{
    std::vector<std::uint8_t> rgba; // rows from the top, width * height * 4
    camera eye;                     // that was used
};

[[nodiscard]] inline bool renderToImage(const scene_pointer& scene, const render_options& options,
                                        render_result& result, failure& why, const picture_moment& moment = {})
{
    picture_session session(scene, options);
    picture made;
    if (!session.draw({moment}, {}, made, why))
        return false;
    const auto bytes = std::as_bytes(std::span(made.pixels()));
    result.rgba.assign(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                       reinterpret_cast<const std::uint8_t*>(bytes.data()) + bytes.size());
    result.eye = session.eye();
    return true;
}

} // namespace korvane::test
