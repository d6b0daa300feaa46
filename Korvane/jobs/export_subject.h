#pragma once

// What an export shows, loaded: a model or a definition's figure, with its skeletons, as the scene that is written.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/jobs/export_job.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

struct export_rig
{
    std::string id; // as the models name it
    std::shared_ptr<const anim_data> skeleton;
    std::size_t first_bone = 0; // in the scene
};

struct export_subject
{
    export_scene scene;
    std::vector<export_rig> rigs;
};

// False, with the reason, when there is nothing to export. The log is told of what was left out; the warnings of the
// scene have it, too. After a stop the subject may be empty.
[[nodiscard]] bool loadExportSubject(game_source& source, const export_job_options& options, const work_port& work,
                                     export_subject& subject, failure& why);

// The keys of an animation for the skeletons that it moves (export_job.h). False as makeTake() says.
[[nodiscard]] bool loadExportTake(game_source& source, const export_job_options& options, const export_subject& subject,
                                  const std::string& animation, take_span span, const work_port& work,
                                  export_take& take, failure& why);

} // namespace korvane
