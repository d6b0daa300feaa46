#include "Korvane/scene/group_boxes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t run_indices = 3 * 256;

model_bounds& boxOf(std::vector<bone_box>& boxes, std::uint32_t bone)
{
    const auto found =
        std::find_if(boxes.begin(), boxes.end(), [bone](const bone_box& one) { return one.bone == bone; });
    return found != boxes.end() ? found->box : boxes.emplace_back(bone_box{bone, {}}).box;
}

void addVertex(const vertex_record& vertex, bool has_weights, triangle_run& run)
{
    const glm::vec3 position = usableCoordinates(vertex.position);
    boxOf(run.boxes, has_weights ? vertex.bones[0] : 0).add(position); // of weightless vertices, too
    if (!has_weights)
        return;
    float sum = 0;
    for (std::size_t i = 0; i < 4; ++i)
    {
        const float weight = usableCoordinate(vertex.weights[i]);
        sum += weight;
        run.is_unbounded = run.is_unbounded || weight < 0;
        if (i > 0 && weight != 0)
            boxOf(run.boxes, vertex.bones[i]).add(position);
    }
    // As skinningWeights() takes it (Korvane/viewer/posed_mesh.h).
    run.is_unbounded = run.is_unbounded || !(std::abs(sum - 1) <= 0.01f);
}

} // namespace

group_boxes boxesOf(const vertex_store& store, bool has_weights)
{
    group_boxes result;
    const std::vector<std::uint16_t>& indices = store.indices;
    std::vector<std::size_t> last_run(store.vertices.size(), 0); // that has the vertex; counted from 1
    for (std::size_t first = 0; first + 2 < indices.size(); first += run_indices)
    {
        triangle_run& run = result.runs.emplace_back();
        run.first_index = first;
        run.end_index = std::min(first + run_indices, indices.size() - indices.size() % 3);
        for (std::size_t i = run.first_index; i < run.end_index; ++i)
        {
            const std::size_t vertex = indices[i];
            if (vertex < last_run.size() && std::exchange(last_run[vertex], result.runs.size()) != result.runs.size())
                addVertex(store.vertices[vertex], has_weights, run);
        }
        for (const bone_box& part : run.boxes)
        {
            boxOf(result.all, part.bone).add(part.box.min);
            boxOf(result.all, part.bone).add(part.box.max);
        }
        result.is_unbounded = result.is_unbounded || run.is_unbounded;
    }
    return result;
}

} // namespace korvane
