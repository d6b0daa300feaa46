// Measures the model view on the device that is there; run by hand, from the source folder, through tools/with_wine:
//   bench_viewer.exe build/demo/variantmeshes/wh_variantmodels/hu1/demo/demo_guard.rigid_model_v2 [FRAMES [ANIMATION]]
// All ratios are of frames that alternate in one run, so that a busy machine disturbs both.

#include "D3D11_RENDER_LIB/gpu_mesh.h"
#include "D3D11_RENDER_LIB/pose_palette.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/viewer/model_scene.h"
#include "bench/large_model.h"
#include "bench/pack_corpus.h"
#include "tests/posing/allocation_count.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

namespace korvane
{

namespace
{

using bench::secondsSince;
using clock_type = std::chrono::steady_clock;

constexpr UINT width = 1280, height = 720;

void stopOn(bool is_wrong, const std::string& what)
{
    if (!is_wrong)
        return;
    std::printf("%s\n", what.c_str());
    std::exit(1);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double processorSeconds()
{
    FILETIME made, ended, system, user;
    GetProcessTimes(GetCurrentProcess(), &made, &ended, &system, &user);
    const auto seconds = [](const FILETIME& time) {
        return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) * 1e-7;
    };
    return seconds(system) + seconds(user);
}

// A scene on a device of its own.
class bench_view
{
public:
    bench_view(const scene_pointer& scene, bool is_as_software, double scale = 1)
    {
        failure why;
        stopOn(!m_library.createDevice(device_kind::best, {}, why), describe(why));
        if (!is_as_software)
            m_library.assumeSoftware(false);
        const CD3D11_QUERY_DESC done(D3D11_QUERY_EVENT);
        stopOn(!m_library.createAll() || !m_drawn.create(m_library, scene) ||
                   !m_targets.create(m_library, static_cast<UINT>(width * scale), static_cast<UINT>(height * scale)) ||
                   !m_targets.enlargeTo(m_library, width, height) || !m_picture.create(m_library, width, height) ||
                   FAILED(m_library.device().CreateQuery(&done, m_done.put())),
               "the device was lost");
        m_view.eye.frame(scene->bounds, static_cast<float>(width) / height);
    }

    bool isSoftware() const { return m_library.isSoftware(); }
    lib3d& library() { return m_library; }
    picture_target& picture() { return m_picture; }
    model_scene& scene() { return m_drawn; }
    const view_state& view() const { return m_view; }

    void draw()
    {
        m_drawn.draw(m_library, m_targets, m_picture.view(), m_view);
        wait();
    }
    void wait()
    {
        m_library.context().End(m_done.get());
        while (m_library.context().GetData(m_done.get(), nullptr, 0, 0) == S_FALSE)
            SwitchToThread();
    }
    void finishTextures() { stopOn(!m_drawn.finishTextures(m_library), "the device was lost"); }

private:
    lib3d m_library;
    model_scene m_drawn;
    scene_targets m_targets;
    picture_target m_picture;
    com_ptr<ID3D11Query> m_done;
    view_state m_view;
};

// The same triangles in one colour: one target of the same size, depth, no textures, no light.
class bare_loop
{
public:
    bare_loop(bench_view& view, const loaded_scene& scene) : m_view(view)
    {
        std::ifstream file("shaders/compiled/flat_ps.cso", std::ios::binary);
        const std::string code((std::istreambuf_iterator<char>(file)), {});
        lib3d& library = view.library();
        const CD3D11_TEXTURE2D_DESC depth(DXGI_FORMAT_D24_UNORM_S8_UINT, width, height, 1, 1, D3D11_BIND_DEPTH_STENCIL);
        com_ptr<ID3D11Texture2D> texture;
        stopOn(FAILED(library.device().CreatePixelShader(code.data(), code.size(), nullptr, m_shader.put())) ||
                   FAILED(library.device().CreateTexture2D(&depth, nullptr, texture.put())) ||
                   FAILED(library.device().CreateDepthStencilView(texture.get(), nullptr, m_depth.put())),
               "shaders/compiled/flat_ps.cso is missing: run from the source folder");
        for (const scene_part& part : scene.parts)
            for (const scene_group& shown : part.groups())
            {
                std::vector<gpu_vertex> vertices;
                std::vector<std::uint16_t> kept;
                static_cast<void>(buildGpuVertices(*shown.store, part.bone,
                                                   [&vertices](std::size_t, std::span<const gpu_vertex> some) {
                                                       vertices.insert(vertices.end(), some.begin(), some.end());
                                                   }));
                const auto indices = drawnIndices(*shown.store, kept);
                group& made = m_groups.emplace_back();
                made.count = static_cast<UINT>(indices.size());
                stopOn(!library.createBuffer(D3D11_BIND_VERTEX_BUFFER, std::as_bytes(std::span(vertices)), "bench",
                                             "bench", made.vertices) ||
                           !library.createBuffer(D3D11_BIND_INDEX_BUFFER, std::as_bytes(indices), "bench", "bench",
                                                 made.indices),
                       "the device was lost");
            }
        m_view.view().fill(static_cast<float>(width) / height, m_constants.vs, m_constants.ps);
    }

    void draw()
    {
        lib3d& library = m_view.library();
        ID3D11DeviceContext& context = library.context();
        ID3D11RenderTargetView* const target = m_view.picture().view();
        const float color[4] = {0.2f, 0.2f, 0.25f, 1};
        context.ClearRenderTargetView(target, color);
        context.ClearDepthStencilView(m_depth.get(), D3D11_CLEAR_DEPTH, 1, 0);
        context.OMSetRenderTargets(1, &target, m_depth.get());
        const D3D11_VIEWPORT viewport{0, 0, width, height, 0, 1};
        context.RSSetViewports(1, &viewport);
        library.beginScene();
        for (const group& one : m_groups)
        {
            library.uploadConstants(m_constants.vs, m_constants.ps);
            library.useModelShaders(model_pass::lit, raster_mode::front_faces);
            context.PSSetShader(m_shader.get(), nullptr, 0);
            ID3D11Buffer* const vertices = one.vertices.get();
            const UINT stride = sizeof(gpu_vertex), offset = 0;
            context.IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
            context.IASetIndexBuffer(one.indices.get(), DXGI_FORMAT_R16_UINT, 0);
            context.DrawIndexed(one.count, 0, 0);
        }
        m_view.wait();
    }

private:
    struct group
    {
        com_ptr<ID3D11Buffer> vertices, indices;
        UINT count = 0;
    };
    bench_view& m_view;
    com_ptr<ID3D11PixelShader> m_shader;
    com_ptr<ID3D11DepthStencilView> m_depth;
    std::vector<group> m_groups;
    frame_constants m_constants;
};

struct loop_times
{
    std::vector<double> seconds;
    double processor = 0;

    void add(const std::function<void()>& draw)
    {
        const double before = processorSeconds();
        const auto begin = clock_type::now();
        draw();
        seconds.push_back(secondsSince(begin));
        processor += processorSeconds() - before;
    }
    double fastest() const { return *std::min_element(seconds.begin(), seconds.end()); }
    void print(const char* name) const
    {
        std::printf("%-46s %6.1f ms at best, %6.1f in the median, %6.1f of all processors\n", name, fastest() * 1e3,
                    median(seconds) * 1e3, processor / static_cast<double>(seconds.size()) * 1e3);
    }
};

void measureFrames(const scene_pointer& scene, int frames)
{
    bench_view fast(scene, true), plain(scene, false);
    std::printf("the device draws in %s\n", fast.isSoftware() ? "software" : "hardware: the two ways are one");
    fast.finishTextures();
    plain.finishTextures();
    bench_view smaller(scene, true, 0.7), smallest(scene, true, 0.5);
    smaller.finishTextures();
    smallest.finishTextures();
    bare_loop bare(fast, *scene);
    loop_times of_fast, of_plain, of_bare, of_smaller, of_smallest;
    for (int round = -3; round < frames; ++round)
    {
        if (round == 0)
            of_fast = of_plain = of_bare = of_smaller = of_smallest = loop_times();
        of_fast.add([&] { fast.draw(); });
        of_smaller.add([&] { smaller.draw(); });
        of_smallest.add([&] { smallest.draw(); });
        if (round % 4 == 0) // it takes long, and is not close
            of_plain.add([&] { plain.draw(); });
        of_bare.add([&] { bare.draw(); });
    }
    of_plain.print("a frame as on hardware, blocks as they are");
    of_fast.print("a frame as on software devices");
    of_smaller.print("the same while it moves, at 0.7 of the size");
    of_smallest.print("the same while it moves, at 0.5 of the size");
    of_bare.print("the same triangles in one colour");
    std::printf("%.2f times as fast as without (wanted: 2.5)\n", of_plain.fastest() / of_fast.fastest());
    const auto againstBare = [&](const char* name, const loop_times& times) {
        std::printf("%s: %.2f of the bare loop's frames at best, %.2f in the median, %.2f by all processors' time "
                    "(wanted: 0.6)\n",
                    name, of_bare.fastest() / times.fastest(), median(of_bare.seconds) / median(times.seconds),
                    of_bare.processor / times.processor);
    };
    againstBare("at full size", of_fast);
    againstBare("at 0.7", of_smaller);
    againstBare("at 0.5", of_smallest);
    const std::size_t before = test::allocationCount();
    for (int i = 0; i < 10; ++i)
        fast.draw();
    std::printf("%zu allocations in 10 frames (wanted: 0)\n", test::allocationCount() - before);
}

// What a frame does before it calls Direct3D: poses, constants, and what part of the picture each group reaches.
void measureOwnTime(const scene_pointer& scene, const char* animation)
{
    posed_scene pose(scene);
    if (animation != nullptr)
    {
        anim_file played;
        failure why;
        stopOn(!played.loadAnimation(animation, why), describe(why));
        stopOn(!pose.setAnimation(std::make_shared<const anim_data>(played.takeData())), "the animation does not fit");
    }
    playback_control playback;
    view_state view;
    view.eye.frame(scene->bounds, static_cast<float>(width) / height);
    const auto frame = std::make_unique<frame_constants>();
    std::vector<std::pair<int, mesh_reach>> groups;
    for (const scene_part& part : scene->parts)
        for (const scene_group& group : part.groups())
            groups.emplace_back(part.rig, buildGpuVertices(*group.store, part.bone, [](auto...) {}).reach);
    std::vector<double> seconds;
    for (int i = 0; i < 200; ++i)
    {
        const auto begin = clock_type::now();
        pose.advance(playback);
        view.fill(static_cast<float>(width) / height, frame->vs, frame->ps);
        frame->reached = {};
        int posed = -2; // no rig has that number
        for (const auto& [rig, reach] : groups)
        {
            std::copy(pose.inverse(rig).begin(), pose.inverse(rig).end(), frame->vs.inverse.begin());
            std::copy(pose.transforms(rig).begin(), pose.transforms(rig).end(), frame->vs.tranforms.begin());
            if (rig != posed) // once for a part
                fillPose(frame->vs, frame->pose);
            posed = rig;
            for (int pass = 0; pass < 2; ++pass)
                frame->reached.add(reach.onScreen(frame->vs, width, height));
        }
        seconds.push_back(secondsSince(begin));
    }
    std::printf("a frame's own time: %.3f ms in the median (wanted: 0.5)\n", median(seconds) * 1e3);
}

void measureHandOver()
{
    const std::string model = bench::largeModel();
    double decoded = 1e9, made = 1e9;
    failure why;
    lib3d library;
    stopOn(!library.createDevice(device_kind::best, {}, why) || !library.createAll(), "no device");
    for (int i = 0; i < 15; ++i)
    {
        const std::string path = "large.rigid_model_v2";
        const auto file = std::make_shared<rmv2_file>();
        memory_file bytes(model);
        auto begin = clock_type::now();
        stopOn(!file->openFromMemory(std::move(bytes), path, why), describe(why));
        std::vector<gpu_vertex> copied; // as many bytes as the device gets
        std::vector<std::uint16_t> indices;
        for (const group_data& group : file->data().lods[0].groups)
        {
            copied.resize(copied.size() + group.store.vertices.size());
            indices.insert(indices.end(), group.store.indices.begin(), group.store.indices.end());
        }
        decoded = std::min(decoded, secondsSince(begin));
        const scene_pointer scene =
            scene_loader{game_data()}.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), "nowhere");
        model_scene drawn;
        begin = clock_type::now();
        stopOn(!drawn.create(library, scene), "the device was lost");
        made = std::min(made, secondsSince(begin));
    }
    std::printf("hand-over %.2f ms, decoding and a copy %.2f ms: %.2f (wanted: below 1.5)\n", made * 1e3, decoded * 1e3,
                made / decoded);
}

// Every texture comes after a pause, as from a slow disk.
void measureLoading(const loaded_scene& scene)
{
    auto slow = std::make_shared<loaded_scene>(scene);
    const texture_reader reader = [read = scene.read_texture](const std::string& path, memory_file& bytes,
                                                              file_place& place, failure& why) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        return read(path, bytes, place, why);
    };
    for (scene_part& part : slow->parts)
        for (group_textures& group : part.textures)
            for (auto& texture : group)
                if (texture)
                    texture = std::make_shared<const scene_texture>(texture->path(), reader, texture->place());
    bench_view view(std::make_shared<const loaded_scene>(scene), true);
    view.draw(); // software devices compile for each kind of texture
    view.finishTextures();
    view.draw();
    stopOn(!view.scene().create(view.library(), nullptr) || !view.scene().create(view.library(), slow),
           "the device was lost");
    view.draw();
    double longest_loading = 0, longest = 0;
    std::size_t frames = 0;
    for (const auto begin = clock_type::now(); secondsSince(begin) < 4; ++frames)
    {
        const auto start = clock_type::now();
        stopOn(!view.scene().loadTextures(view.library()), "the device was lost");
        longest_loading = std::max(longest_loading, secondsSince(start));
        view.draw();
        longest = std::max(longest, secondsSince(start));
    }
    std::printf("while textures come: %zu frames in 4 s, the longest %.0f ms (wanted: below 100), %.0f of them for "
                "textures\n",
                frames, longest * 1e3, longest_loading * 1e3);
}

} // namespace

} // namespace korvane

int main(int count, char** values)
{
    using namespace korvane;
    if (count < 2)
        return 2;
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const std::string path = values[1];
    const auto file = std::make_shared<rmv2_file>();
    memory_file bytes;
    failure why;
    stopOn(!bytes.read(path, why) || !file->openFromMemory(std::move(bytes), path, why), describe(why));
    const scene_pointer scene =
        scene_loader{game_data()}.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), path);
    measureFrames(scene, count > 2 ? std::atoi(values[2]) : 20);
    measureOwnTime(scene, count > 3 ? values[3] : nullptr);
    measureHandOver();
    measureLoading(*scene);
    return 0;
}
