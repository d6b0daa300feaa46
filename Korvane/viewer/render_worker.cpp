#include "Korvane/viewer/render_worker.h"

#include "D3D11_RENDER_LIB/d3d_check.h"

#include <cmath>
#include <exception>
#include <new>

namespace korvane
{

namespace
{

constexpr char source_name[] = "d3d_window";
constexpr SIZE_T stack_bytes = 0xFFFFF;
constexpr std::chrono::milliseconds occluded_pause{250};
constexpr UINT samples_on_hardware = 4;
constexpr int hardware_tries = 2;
constexpr int all_tries = 3;                             // the last one with the software device
constexpr std::chrono::milliseconds pause_of_tries{500}; // a driver that is exchanged needs a moment

// For debuggers; systems before Windows 10 1607 have no names for threads.
void nameThread(HANDLE thread, const wchar_t* name)
{
    using set_description = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    void* found = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    if (const auto set = reinterpret_cast<set_description>(found))
        set(thread, name);
}

} // namespace

render_worker::render_worker(log_port log, std::function<void()> has_news)
    : m_log(std::move(log))
    , m_has_news(std::move(has_news))
    , m_library(&m_faults)
    , m_scene([this](const std::string& line) { report(line); }, [this] { m_pacer.redraw(); })
    , m_environment([this] { m_pacer.redraw(); })
{
}

render_worker::~render_worker()
{
    stop();
}

bool render_worker::createSwapChain(HWND window)
{
    com_ptr<IDXGIDevice> device;
    com_ptr<IDXGIAdapter> adapter;
    com_ptr<IDXGIFactory2> factory;
    const auto isMade = [this](HRESULT answer) {
        return m_library.hasSucceeded(device_step::creation, answer, source_name);
    };
    if (!isMade(m_library.device().QueryInterface(__uuidof(IDXGIDevice), device.putVoid())) ||
        !isMade(device->GetAdapter(adapter.put())) ||
        !isMade(adapter->GetParent(__uuidof(IDXGIFactory2), factory.putVoid())))
        return false;

    DXGI_SWAP_CHAIN_DESC1 description{};
    description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    description.BufferCount = 2;
    // Flipping spares a copy of each frame: the first is known since Windows 10, the second since Windows 8.
    HRESULT answer = E_FAIL;
    for (const DXGI_SWAP_EFFECT effect :
         {DXGI_SWAP_EFFECT_FLIP_DISCARD, DXGI_SWAP_EFFECT_FLIP_SEQUENTIAL, DXGI_SWAP_EFFECT_DISCARD})
    {
        description.SwapEffect = effect;
        answer = factory->CreateSwapChainForHwnd(&m_library.device(), window, &description, nullptr, nullptr,
                                                 m_swap_chain.put());
        if (SUCCEEDED(answer) || isDeviceLost(answer))
            break;
    }
    if (!isMade(answer))
        return false;
    factory->MakeWindowAssociation(window, DXGI_MWA_NO_ALT_ENTER | DXGI_MWA_NO_WINDOW_CHANGES);
    return true;
}

bool render_worker::createTargets(UINT width, UINT height)
{
    com_ptr<ID3D11Texture2D> buffer;
    return m_library.isMade(m_swap_chain->GetBuffer(0, __uuidof(ID3D11Texture2D), buffer.putVoid()), buffer,
                            "back buffer", source_name) &&
           m_library.isMade(m_library.device().CreateRenderTargetView(buffer.get(), nullptr, m_back_buffer.put()),
                            m_back_buffer, "back buffer", source_name) &&
           m_targets.create(m_library, width, height, m_library.isSoftware() ? 1 : samples_on_hardware);
}

bool render_worker::resize(UINT width, UINT height)
{
    // Every view of the back buffers must be gone, bound ones too, before they can change their size.
    m_library.context().ClearState();
    m_back_buffer.reset();
    return m_library.hasSucceeded(device_step::resize,
                                  m_swap_chain->ResizeBuffers(0, width, height, DXGI_FORMAT_UNKNOWN, 0), source_name) &&
           createTargets(width, height);
}

void render_worker::start(HWND window, bool is_complete)
{
    m_window = window;
    m_has_device = is_complete;
    if (!is_complete)
        loseDevice();
    m_thread.reset(CreateThread(nullptr, stack_bytes, &render_worker::threadEntry, this,
                                STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    requireSuccess(m_thread ? S_OK : HRESULT_FROM_WIN32(GetLastError()), source_name);
    nameThread(m_thread.get(), L"Draw");
}

void render_worker::stop()
{
    if (!m_thread)
        return;
    m_pacer.stop();
    WaitForSingleObject(m_thread.get(), INFINITE); // one frame at most; the thread never waits for this one
    m_thread.reset();
}

void render_worker::show(scene_pointer scene)
{
    m_published.publish(std::move(scene));
    m_pacer.redraw();
}

void render_worker::animate(std::shared_ptr<const scene_motion> motion)
{
    m_published_motion.publish(std::move(motion));
    m_pacer.redraw();
}

void render_worker::tryAgain()
{
    m_must_try_again = true;
    m_pacer.redraw();
}

std::vector<std::string> render_worker::takeReports()
{
    std::vector<std::string> taken;
    const std::lock_guard lock(m_reports_mutex);
    taken.swap(m_reports);
    return taken;
}

void render_worker::report(const std::string& line)
{
    {
        const std::lock_guard lock(m_reports_mutex);
        m_reports.push_back(line);
    }
    m_has_news();
}

DWORD WINAPI render_worker::threadEntry(void* worker)
{
    try
    {
        static_cast<render_worker*>(worker)->run();
    }
    catch (const std::exception&) // memory that ran out: there is no picture to go on with
    {
        requireSuccess(E_OUTOFMEMORY, source_name);
    }
    return 0;
}

void render_worker::run()
{
    for (;;)
    {
        const frame_request request = m_pacer.next();
        if (request.must_stop)
            return;
        static_cast<void>(m_published.take(m_wanted)); // an exchange that is under way asks for a frame of its own
        static_cast<void>(m_published_motion.take(m_wanted_motion));
        drawFrame(request);
    }
}

void render_worker::drawFrame(const frame_request& request)
{
    if (m_must_try_again.exchange(false))
    {
        m_tries = 0;
        m_has_given_up = false;
        m_has_news();
    }
    if (m_has_given_up)
        return;
    if ((!m_has_device && !remakeDevice(request)) || !drawOnDevice(request))
        return loseDevice();
    if (m_tries > 0)
        report(m_tries > hardware_tries ? "d3d_window: the software device draws instead"
                                        : "d3d_window: the graphics device was made again");
    m_tries = 0;
    m_library.tolerateFailures(false);
}

bool render_worker::drawOnDevice(const frame_request& request)
{
    if (m_was_occluded && isOccluded())
    {
        m_pacer.retryAfter(occluded_pause);
        return true;
    }
    if ((request.width != m_targets.width() || request.height != m_targets.height()) &&
        !resize(request.width, request.height))
        return false;
    if (!showNewScene() || !m_scene.loadTextures(m_library) || !improveEnvironment())
        return false;
    if (m_scene.hasMoreTextures())
        m_pacer.redraw();
    move();
    const scene_targets* const targets = targetsFor(request);
    if (targets == nullptr)
        return false;
    const auto begin = std::chrono::steady_clock::now();
    m_scene.draw(m_library, *targets, m_back_buffer.get(), request.view);

    const DXGI_PRESENT_PARAMETERS parameters{};
    const HRESULT answer = m_swap_chain->Present1(1, 0, &parameters);
    if (!m_library.hasSucceeded(device_step::present, answer, source_name))
        return false;
    m_was_occluded = answer == DXGI_STATUS_OCCLUDED; // a success code, and Present does not wait then
    if (m_was_occluded)
        m_pacer.retryAfter(occluded_pause);
    else
        m_frames_drawn.fetch_add(1);
    if (request.is_quick && !m_was_occluded && !m_scene.hasMoreTextures())
        m_moving_size.took(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    return true;
}

// The whole ones, or smaller ones for a frame that is to be quick.
const scene_targets* render_worker::targetsFor(const frame_request& request)
{
    const double scale = m_moving_size.scale();
    if (!m_library.isSoftware() || !request.is_quick || request.view.is_whole_while_moving || scale >= 1)
        return &m_targets;
    const auto scaled = [scale](UINT size) { return static_cast<UINT>(std::max(std::lround(size * scale), 1L)); };
    const UINT width = scaled(m_targets.width()), height = scaled(m_targets.height());
    if (m_small_targets.width() != width || m_small_targets.height() != height)
    {
        if (!m_small_targets.create(m_library, width, height))
            return nullptr;
    }
    if (!m_small_targets.enlargeTo(m_library, m_targets.width(), m_targets.height()))
        return nullptr;
    return &m_small_targets;
}

// After the first frame, so that this does not wait.
bool render_worker::improveEnvironment()
{
    if (m_library.isSoftware() || m_library.hasWholeEnvironment() || !m_shown || m_frames_drawn.load() == 0)
        return true;
    const std::unique_ptr<environment_images> made = m_environment.take();
    return !made || m_library.exchangeEnvironment(*made);
}

void render_worker::move()
{
    posed_scene* const pose = m_scene.pose();
    if (pose == nullptr)
        return;
    if (m_shown_motion != m_wanted_motion && m_wanted_motion && m_wanted_motion->scene == m_shown)
    {
        pose->clearAnimation();
        for (const animation_fit& animation : m_wanted_motion->animations)
            pose->setAnimation(animation);
        m_shown_motion = m_wanted_motion;
    }
    pose->advance(m_playback);
}

bool render_worker::showNewScene()
{
    if (const unsigned dpi = m_dpi.load(); m_overlay_dpi != dpi)
    {
        if (!m_scene.createOverlay(m_library, dpi))
            return false;
        m_overlay_dpi = dpi;
    }
    if (m_shown == m_wanted)
        return true;
    try
    {
        if (!m_scene.create(m_library, m_wanted))
            return false;
    }
    catch (const std::bad_alloc&)
    {
        m_scene.release();
        report("d3d_window: there is not enough memory to show " + m_wanted->path);
    }
    m_shown = m_wanted;
    m_shown_motion.reset();
    return true;
}

bool render_worker::isOccluded()
{
    m_was_occluded = m_swap_chain->Present(0, DXGI_PRESENT_TEST) == DXGI_STATUS_OCCLUDED;
    return m_was_occluded;
}

// One try a frame, so that an end or a new size is not kept waiting.
bool render_worker::remakeDevice(const frame_request& request)
{
    const device_kind kind = m_tries < hardware_tries ? device_kind::hardware : device_kind::software;
    ++m_tries;
    m_library.tolerateFailures(true); // until it has shown a frame
    failure why;
    m_has_device = m_library.createDevice(kind, {}, why);
    if (!m_has_device)
        report("d3d_window: " + describe(why));
    return m_has_device && createSwapChain(m_window) && m_library.createAll() &&
           createTargets(request.width, request.height);
}

// Everything that was made on the device goes with it; the scene stays.
void render_worker::loseDevice()
{
    const std::string code = resultText(m_library.loss());
    report(m_tries == 0 ? "d3d_window: the graphics device was lost (" + code + ")"
                        : "d3d_window: try " + std::to_string(m_tries) + " of " + std::to_string(all_tries) +
                              " to make it again failed (" + code + ")");
    m_library.clearContext();
    m_scene.release();
    m_shown.reset();
    m_shown_motion.reset();
    m_overlay_dpi = 0;
    m_targets.release();
    m_small_targets.release();
    m_back_buffer.reset();
    m_swap_chain.reset();
    m_library.clearContext(); // what waits to be freed, too: a window has room for one swap chain
    m_library = lib3d(&m_faults);
    m_has_device = false;
    m_was_occluded = false;
    if (m_tries < all_tries)
        return m_pacer.retryAfter(m_tries == 0 ? std::chrono::milliseconds(0) : pause_of_tries);
    m_has_given_up = true;
    report("d3d_window: no graphics device could be made again; the view waits for a key");
}

} // namespace korvane
