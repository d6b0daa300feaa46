#pragma once

// An open model as a value, for work on another thread: the file that a save would write now. What is edited afterwards
// is not in it.

#include "EASY_GUI/services/memory_file.h"
#include "Korvane/models/rmv2_file.h"

#include <memory>
#include <string>

namespace korvane
{

struct model_snapshot
{
    std::string path;                         // as the document has it: on the disk or with "pack:"
    std::shared_ptr<const memory_file> image; // never null
};

// By the thread that owns the model; the image is copied.
[[nodiscard]] model_snapshot snapshotOf(const rmv2_file& model);

// Decodes it, also one whose version word says 7 over headers of version 6 since it was patched.
[[nodiscard]] bool openSnapshot(const model_snapshot& snapshot, rmv2_file& model, failure& why);

} // namespace korvane
