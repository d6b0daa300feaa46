#include "D3D11_RENDER_LIB/d3d_check.h"

#include <dxgi1_2.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace korvane
{

namespace
{

constexpr HRESULT driver_device_removed = static_cast<HRESULT>(0x88760870); // D3DDDIERR_DEVICEREMOVED, of the DDK

log_port& assertionPort()
{
    static log_port port;
    return port;
}

} // namespace

bool isDeviceLost(HRESULT hr)
{
    return hr == DXGI_ERROR_DEVICE_REMOVED || hr == DXGI_ERROR_DEVICE_RESET || hr == DXGI_ERROR_DEVICE_HUNG ||
           hr == DXGI_ERROR_DRIVER_INTERNAL_ERROR || hr == driver_device_removed;
}

std::string resultText(HRESULT hr)
{
    char code[16];
    std::snprintf(code, sizeof code, "%08lX", static_cast<unsigned long>(hr));
    return code;
}

void setAssertionPort(log_port port)
{
    assertionPort() = std::move(port);
}

void requireSuccess(HRESULT hr, const char* source)
{
    static std::atomic<DWORD> failing_thread{0};
    if (SUCCEEDED(hr))
        return;
    DWORD none = 0;
    if (!failing_thread.compare_exchange_strong(none, GetCurrentThreadId()))
    {
        if (none != GetCurrentThreadId()) // a message that the port pumps fails, too: that ends it
            Sleep(INFINITE);
        std::abort();
    }
    const std::string text =
        std::string("Assertion failed: SUCCEEDED(hr), file ") + source + ", hr = " + resultText(hr);
    if (assertionPort())
        assertionPort()(text);
    else
        std::fprintf(stderr, "%s\n", text.c_str());
    std::abort();
}

} // namespace korvane
