#include "Korvane/jobs/model_snapshot.h"

#include "Korvane/models/rmv2_writer.h"

#include <algorithm>
#include <utility>

namespace korvane
{

model_snapshot snapshotOf(const rmv2_file& model)
{
    auto image = std::make_shared<memory_file>(model.image().bytes());
    for (const image_patch& edit : savedEdits(model))
        std::copy(edit.bytes.begin(), edit.bytes.end(),
                  image->mutableBytes().begin() + static_cast<std::ptrdiff_t>(edit.file_offset));
    return {model.path(), std::move(image)};
}

bool openSnapshot(const model_snapshot& snapshot, rmv2_file& model, failure& why)
{
    memory_file image(snapshot.image->bytes());
    return isVersion7OverVersion6(image.bytes()) ? openMixedVersions(model, std::move(image), snapshot.path, why)
                                                 : model.openFromMemory(std::move(image), snapshot.path, why);
}

} // namespace korvane
