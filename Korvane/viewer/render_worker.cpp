#include "Korvane/viewer/render_worker.h"

#include "D3D11_RENDER_LIB/d3d_check.h"

#include <exception>

namespace korvane
{

namespace
{

constexpr char source_name[] = "d3d_window";
constexpr SIZE_T stack_bytes = 0xFFFFF;
constexpr std::chrono::milliseconds gate_patience{2000};
constexpr std::chrono::milliseconds occluded_pause{250};

// For debuggers; systems before Windows 10 1607 have no names for threads.
void nameThread(HANDLE thread, const wchar_t* name)
{
    using set_description = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    void* found = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    if (const auto set = reinterpret_cast<set_description>(found))
        set(thread, name);
}

struct open_on_exit
{
    render_gate& gate;
    frame_pacer& pacer;

    ~open_on_exit()
    {
        gate.open();
        pacer.wake();
    }
};

} // namespace

render_worker::render_worker(lib3d::log_port log) : m_log(std::move(log)), m_scene(m_log) {}

render_worker::~render_worker()
{
    stop();
}

void render_worker::createSwapChain(HWND window)
{
    com_ptr<IDXGIDevice> device;
    com_ptr<IDXGIAdapter> adapter;
    com_ptr<IDXGIFactory2> factory;
    requireSuccess(m_library.device().QueryInterface(__uuidof(IDXGIDevice), device.putVoid()), source_name);
    requireSuccess(device->GetAdapter(adapter.put()), source_name);
    requireSuccess(adapter->GetParent(__uuidof(IDXGIFactory2), factory.putVoid()), source_name);

    DXGI_SWAP_CHAIN_DESC1 description{};
    description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    description.BufferCount = 2;
    description.SwapEffect = DXGI_SWAP_EFFECT_DISCARD;
    requireSuccess(factory->CreateSwapChainForHwnd(&m_library.device(), window, &description, nullptr, nullptr,
                                                   m_swap_chain.put()),
                   source_name);
    factory->MakeWindowAssociation(window, DXGI_MWA_NO_ALT_ENTER | DXGI_MWA_NO_WINDOW_CHANGES);
}

void render_worker::createTargets(UINT width, UINT height)
{
    com_ptr<ID3D11Texture2D> buffer;
    requireSuccess(m_swap_chain->GetBuffer(0, __uuidof(ID3D11Texture2D), buffer.putVoid()), source_name);
    requireSuccess(m_library.device().CreateRenderTargetView(buffer.get(), nullptr, m_back_buffer.put()), source_name);
    m_targets.create(m_library.device(), width, height);
}

void render_worker::resize(UINT width, UINT height)
{
    // Every view of the back buffers must be gone, bound ones too, before they can change their size.
    m_library.context().ClearState();
    m_back_buffer.reset();
    requireSuccess(m_swap_chain->ResizeBuffers(0, width, height, DXGI_FORMAT_UNKNOWN, 0), source_name);
    createTargets(width, height);
}

void render_worker::start()
{
    m_gate.open();
    m_thread = CreateThread(nullptr, stack_bytes, &render_worker::threadEntry, this, STACK_SIZE_PARAM_IS_A_RESERVATION,
                            nullptr);
    requireSuccess(m_thread ? S_OK : HRESULT_FROM_WIN32(GetLastError()), source_name);
    nameThread(m_thread, L"Draw");
}

void render_worker::stop()
{
    if (!m_thread)
        return;
    m_pacer.stop();
    WaitForSingleObject(m_thread, INFINITE); // one frame at most; the thread never waits for this one
    CloseHandle(m_thread);
    m_thread = nullptr;
}

void render_worker::changeScene(const std::function<void(model_scene&, ID3D11Device&)>& change)
{
    // A software adapter may need long for a frame, so patience is repeated: without the render thread's answer the
    // scene is still in use.
    if (!m_gate.close(gate_patience, [this] { m_pacer.wake(); }))
    {
        if (m_log)
            m_log("d3d_window: waiting for the frame that is being drawn");
        while (!m_gate.waitClosed(gate_patience))
            m_pacer.wake();
    }
    const open_on_exit reopened{m_gate, m_pacer}; // also when the change runs out of memory
    change(m_scene, m_library.device());
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
        if (m_gate.enterFrame() && request.is_dirty)
            drawFrame(request);
    }
}

bool render_worker::isOccluded()
{
    m_was_occluded = m_swap_chain->Present(0, DXGI_PRESENT_TEST) == DXGI_STATUS_OCCLUDED;
    return m_was_occluded;
}

void render_worker::drawFrame(const frame_request& request)
{
    if (m_was_occluded && isOccluded())
    {
        m_pacer.retryAfter(occluded_pause);
        return;
    }
    if (request.width != m_targets.width() || request.height != m_targets.height())
        resize(request.width, request.height);
    m_scene.draw(m_library, m_targets, m_back_buffer.get(), request.view);

    const DXGI_PRESENT_PARAMETERS parameters{};
    const HRESULT result = m_swap_chain->Present1(1, 0, &parameters);
    requireSuccess(result, source_name);
    m_was_occluded = result == DXGI_STATUS_OCCLUDED; // a success code, and Present does not wait then
    if (m_was_occluded)
        m_pacer.retryAfter(occluded_pause);
    else
        m_frames_drawn.fetch_add(1);
}

} // namespace korvane
