#include "EASY_GUI/win32/dpi.h"

namespace korvane
{

namespace
{

template <typename Function>
Function functionOfUser32(const char* name)
{
    void* const address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name));
    return reinterpret_cast<Function>(address);
}

unsigned sessionDpi()
{
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? static_cast<unsigned>(dpi) : USER_DEFAULT_SCREEN_DPI;
}

} // namespace

unsigned dpiOf(HWND window)
{
    static const auto ppfnDpiForWindow = functionOfUser32<decltype(&GetDpiForWindow)>("GetDpiForWindow");
    static const auto ppfnDpiForSystem = functionOfUser32<decltype(&GetDpiForSystem)>("GetDpiForSystem");
    unsigned dpi = 0;
    if (window != nullptr && ppfnDpiForWindow != nullptr)
        dpi = ppfnDpiForWindow(window);
    else if (ppfnDpiForSystem != nullptr)
        dpi = ppfnDpiForSystem();
    return dpi != 0 ? dpi : sessionDpi();
}

RECT outerRectangle(RECT client, DWORD style, DWORD extended_style, bool has_menu, unsigned dpi)
{
    static const auto ppfnAdjust = functionOfUser32<decltype(&AdjustWindowRectExForDpi)>("AdjustWindowRectExForDpi");
    if (ppfnAdjust == nullptr || !ppfnAdjust(&client, style, has_menu, extended_style, dpi))
        AdjustWindowRectEx(&client, style, has_menu, extended_style);
    return client;
}

LOGFONTW messageFont(unsigned dpi)
{
    static const auto ppfnParameters =
        functionOfUser32<decltype(&SystemParametersInfoForDpi)>("SystemParametersInfoForDpi");
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    if (ppfnParameters != nullptr && ppfnParameters(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, dpi))
        return metrics.lfMessageFont;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0))
        return metrics.lfMessageFont; // of the session's density
    LOGFONTW fallback{};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof(fallback), &fallback);
    return fallback;
}

} // namespace korvane
