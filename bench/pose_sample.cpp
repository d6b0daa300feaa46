// Posing a skeleton of 100 bones, all of them with both tracks, against the same arithmetic written straight-line over
// plain arrays in the same run: interpolation between two frames, world transforms, and the matrices of both (at most
// 4). The last lines are the ratio, for a whole tick of playback too, and what is allocated for each pose (nothing).

#include "Korvane/posing/skeleton_pose.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <malloc.h>
#include <memory>

namespace
{

using namespace korvane;

constexpr std::size_t bone_count = 100;
constexpr std::size_t frame_count = 200;
constexpr std::size_t poses_per_round = 10000;

// Numbers between -1 and 1.
class number_source
{
public:
    float next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<float>(m_state >> 8) * (2.0f / 16777216.0f) - 1.0f;
    }
    glm::vec3 place() { return {next(), next(), next()}; }
    glm::quat turn() { return glm::normalize(glm::quat(1.0f, next(), next(), next())); }

private:
    std::uint32_t m_state = 1;
};

// Three chains, as limbs are.
std::int32_t parentOf(std::size_t bone)
{
    return bone == 0 ? -1 : bone < 4 ? 0 : static_cast<std::int32_t>(bone) - 3;
}

anim_data madeSkeleton()
{
    number_source numbers;
    anim_data data;
    for (std::size_t i = 0; i < bone_count; ++i)
        data.bones.push_back(
            {"bone_" + std::to_string(i), static_cast<std::uint32_t>(i), parentOf(i), numbers.place(), numbers.turn()});
    return data;
}

std::shared_ptr<const anim_data> madeAnimation()
{
    number_source numbers;
    const auto data = std::make_shared<anim_data>();
    data->frame_rate = 20;
    data->end_time = static_cast<float>(frame_count - 1) / 20;
    data->frame_count = frame_count;
    data->translation_count = data->rotation_count = bone_count;
    for (std::uint32_t i = 0; i < bone_count; ++i)
    {
        data->animated_translations.push_back(i);
        data->animated_rotations.push_back(i);
    }
    for (std::size_t i = 0; i < bone_count * frame_count; ++i)
    {
        data->translations.push_back(numbers.place());
        data->rotations.push_back(numbers.turn());
    }
    return data;
}

struct plain_bone
{
    float place[3], turn[4]; // x, y, z, w
    float world_place[3], world_turn[4];
    float local[16], world[16];
};

void plainMatrix(const float* place, const float* turn, float* out)
{
    const float x = turn[0], y = turn[1], z = turn[2], w = turn[3];
    const float rows[16] = {1 - 2 * (y * y + z * z),
                            2 * (x * y + w * z),
                            2 * (x * z - w * y),
                            0,
                            2 * (x * y - w * z),
                            1 - 2 * (x * x + z * z),
                            2 * (y * z + w * x),
                            0,
                            2 * (x * z + w * y),
                            2 * (y * z - w * x),
                            1 - 2 * (x * x + y * y),
                            0,
                            place[0],
                            place[1],
                            place[2],
                            1};
    std::copy(rows, rows + 16, out);
}

void plainBlend(const float* from, const float* to, float t, float* out)
{
    float cosine = from[0] * to[0] + from[1] * to[1] + from[2] * to[2] + from[3] * to[3];
    const float sign = cosine < 0 ? -1.0f : 1.0f;
    cosine *= sign;
    float first = 1 - t, second = t;
    if (cosine < 0.99999f)
    {
        const float sine = std::sqrt(1 - cosine * cosine);
        const float angle = std::atan2(sine, cosine);
        first = std::sin(first * angle) / sine;
        second = std::sin(second * angle) / sine;
    }
    for (int i = 0; i < 4; ++i)
        out[i] = from[i] * first + to[i] * (second * sign);
}

void plainChild(plain_bone& own, const plain_bone& above)
{
    const float* const a = above.world_turn;
    const float* const b = own.turn;
    own.world_turn[0] = a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1];
    own.world_turn[1] = a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0];
    own.world_turn[2] = a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3];
    own.world_turn[3] = a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2];
    const float* const v = own.place;
    const float along = 2 * (a[0] * v[0] + a[1] * v[1] + a[2] * v[2]);
    const float keep = a[3] * a[3] - (a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const float across[3] = {a[1] * v[2] - a[2] * v[1], a[2] * v[0] - a[0] * v[2], a[0] * v[1] - a[1] * v[0]};
    for (int i = 0; i < 3; ++i)
        own.world_place[i] = above.world_place[i] + v[i] * keep + a[i] * along + across[i] * (2 * a[3]);
}

void plainPose(const float* places_from, const float* places_to, const float* turns_from, const float* turns_to,
               float t, plain_bone* bones)
{
    for (std::size_t i = 0; i < bone_count; ++i)
    {
        plain_bone& own = bones[i];
        for (std::size_t j = 0; j < 3; ++j)
            own.place[j] = places_from[3 * i + j] + (places_to[3 * i + j] - places_from[3 * i + j]) * t;
        plainBlend(turns_from + 4 * i, turns_to + 4 * i, t, own.turn);
        plainMatrix(own.place, own.turn, own.local);
        if (const std::int32_t parent = parentOf(i); parent >= 0)
            plainChild(own, bones[parent]);
        else
        {
            std::copy(own.place, own.place + 3, own.world_place);
            std::copy(own.turn, own.turn + 4, own.world_turn);
        }
        plainMatrix(own.world_place, own.world_turn, own.world);
    }
}

struct figures
{
    double plain_seconds = 1e9;
    double sample_seconds = 1e9;
    double tick_seconds = 1e9;
    std::size_t allocated = 0;
    float difference = 0; // both must have done the same work
} result;

template <class work>
void measure(benchmark::State& state, double& best, work&& pose)
{
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < poses_per_round; ++i)
            pose(i);
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(poses_per_round));
}

float fractionOf(std::size_t i)
{
    return static_cast<float>(i % 97) / 97.0f;
}

void straightLine(benchmark::State& state)
{
    const auto data = madeAnimation();
    const float* const places = &data->translations[0].x;
    const float* const turns = &data->rotations[0].x;
    static_assert(sizeof(glm::vec3) == 12 && sizeof(glm::quat) == 16 && offsetof(glm::quat, x) == 0);
    std::array<plain_bone, bone_count> bones;
    const auto pose = [&](std::size_t i) {
        const std::size_t frame = i % (frame_count - 1);
        plainPose(places + 3 * bone_count * frame, places + 3 * bone_count * (frame + 1),
                  turns + 4 * bone_count * frame, turns + 4 * bone_count * (frame + 1), fractionOf(i), bones.data());
        benchmark::DoNotOptimize(bones.data());
        benchmark::ClobberMemory();
    };
    measure(state, result.plain_seconds, pose);

    skeleton_pose same;
    failure why;
    if (!same.setSkeleton(madeSkeleton()) || !same.setAnimation(data, why))
        return state.SkipWithError("no pose");
    pose(123);
    same.show(123, fractionOf(123));
    for (std::size_t i = 0; i < bone_count; ++i)
        for (int j = 0; j < 16; ++j)
            result.difference =
                std::max(result.difference, std::abs(bones[i].world[j] - same.joints()[i].world[j / 4][j % 4]));
}

void sampled(benchmark::State& state)
{
    skeleton_pose pose;
    failure why;
    if (!pose.setSkeleton(madeSkeleton()) || !pose.setAnimation(madeAnimation(), why))
        return state.SkipWithError("no pose");
    const std::size_t before = mallinfo2().uordblks;
    measure(state, result.sample_seconds, [&](std::size_t i) {
        pose.show(i % (frame_count - 1), fractionOf(i));
        benchmark::DoNotOptimize(pose.joints().data());
        benchmark::ClobberMemory();
    });
    result.allocated = mallinfo2().uordblks - before;
}

void ticked(benchmark::State& state)
{
    double now = 0;
    skeleton_pose pose([&now] { return now; });
    playback_control control;
    failure why;
    if (!pose.setSkeleton(madeSkeleton()) || !pose.setAnimation(madeAnimation(), why))
        return state.SkipWithError("no pose");
    measure(state, result.tick_seconds, [&](std::size_t) {
        now += 0.013;
        pose.advance(control);
        benchmark::DoNotOptimize(pose.joints().data());
        benchmark::ClobberMemory();
    });
}

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    benchmark::RegisterBenchmark("straight-line", straightLine)->Unit(benchmark::kMillisecond)->Iterations(20);
    benchmark::RegisterBenchmark("sample", sampled)->Unit(benchmark::kMillisecond)->Iterations(20);
    benchmark::RegisterBenchmark("tick", ticked)->Unit(benchmark::kMillisecond)->Iterations(20);
    benchmark::RunSpecifiedBenchmarks();
    std::printf(
        "pose of %zu bones: sample / straight-line = %.2f, tick / straight-line = %.2f, %zu bytes left allocated, "
        "largest difference %g\n",
        bone_count, result.sample_seconds / result.plain_seconds, result.tick_seconds / result.plain_seconds,
        result.allocated, static_cast<double>(result.difference));
    return 0;
}
