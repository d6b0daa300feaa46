#pragma once

// What "render" draws: the scene of a model or a definition, with the skeleton and the animation that were asked for.

#include "Korvane/cli/cli_context.h"
#include "Korvane/scene/loaded_scene.h"

#include <memory>
#include <string>

namespace korvane
{

struct render_subject
{
    std::string file; // a model or a definition
    std::size_t lod = 0;
    std::string skeleton;        // empty: the model's own
    std::string animation;       // empty: none
    bool needs_skeleton = false; // nothing is drawn without one
};

// Null, and the reason, when it cannot be drawn as it was asked for. What is missing of it is noted.
[[nodiscard]] scene_pointer loadSubject(cli_context& context, const render_subject& subject, failure& why);

} // namespace korvane
