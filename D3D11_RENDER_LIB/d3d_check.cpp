#include "D3D11_RENDER_LIB/d3d_check.h"

#include <cstdio>
#include <cstdlib>

namespace korvane
{

namespace
{

std::function<void(const std::string&)>& assertionPort()
{
    static std::function<void(const std::string&)> port;
    return port;
}

} // namespace

void setAssertionPort(std::function<void(const std::string&)> port)
{
    assertionPort() = std::move(port);
}

void requireSuccess(HRESULT hr, const char* source)
{
    if (SUCCEEDED(hr))
        return;
    char code[16];
    std::snprintf(code, sizeof code, "%08lX", static_cast<unsigned long>(hr));
    const std::string text = std::string("Assertion failed: SUCCEEDED(hr), file ") + source + ", hr = " + code;
    if (assertionPort())
        assertionPort()(text);
    else
        std::fprintf(stderr, "%s\n", text.c_str());
    std::abort();
}

} // namespace korvane
