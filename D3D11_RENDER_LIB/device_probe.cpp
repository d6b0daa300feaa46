#include "D3D11_RENDER_LIB/device_probe.h"

#include "EASY_GUI/win32/com_ptr.h"

#include <dxgi.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <vector>

namespace korvane
{

namespace
{

using clock = std::chrono::steady_clock;

constexpr UINT size = 256;       // of target and textures, pixels
constexpr int fewest_rounds = 3; // after the first one, which compiles; the fastest one counts
constexpr int most_rounds = 24;  // while it is not clear
constexpr double dear_ratio = 4; // 10 and more in software, about 1 on a card
constexpr double cheap = 0.3e-3; // seconds; below that both are only the way to the device and back
constexpr double dear = 1e-3;    // seconds; no card needs so long, but a busy processor may hold up each round
constexpr std::chrono::seconds patience{2}; // for all of it, or a device that never answers

bool hasSoftwareFlag(ID3D11Device& device)
{
    com_ptr<IDXGIDevice> dxgi;
    com_ptr<IDXGIAdapter> adapter;
    com_ptr<IDXGIAdapter1> described;
    DXGI_ADAPTER_DESC1 description{};
    return SUCCEEDED(device.QueryInterface(__uuidof(IDXGIDevice), dxgi.putVoid())) &&
           SUCCEEDED(dxgi->GetAdapter(adapter.put())) &&
           SUCCEEDED(adapter->QueryInterface(__uuidof(IDXGIAdapter1), described.putVoid())) &&
           SUCCEEDED(described->GetDesc1(&description)) && (description.Flags & DXGI_ADAPTER_FLAG_SOFTWARE) != 0;
}

class probe
{
public:
    probe(ID3D11Device& device, ID3D11DeviceContext& context) : m_device(device), m_context(context) {}
    ~probe() { m_context.ClearState(); }
    probe(const probe&) = delete;
    probe& operator=(const probe&) = delete;

    bool prepare(std::span<const std::byte> vertex_shader, std::span<const std::byte> pixel_shader)
    {
        const CD3D11_TEXTURE2D_DESC target(DXGI_FORMAT_R8G8B8A8_UNORM, size, size, 1, 1, D3D11_BIND_RENDER_TARGET);
        const CD3D11_QUERY_DESC done(D3D11_QUERY_EVENT);
        com_ptr<ID3D11Texture2D> texture;
        if (FAILED(m_device.CreateTexture2D(&target, nullptr, texture.put())) ||
            FAILED(m_device.CreateRenderTargetView(texture.get(), nullptr, m_target.put())) ||
            FAILED(m_device.CreateQuery(&done, m_done.put())) ||
            FAILED(m_device.CreateVertexShader(vertex_shader.data(), vertex_shader.size(), nullptr, m_vs.put())) ||
            FAILED(m_device.CreatePixelShader(pixel_shader.data(), pixel_shader.size(), nullptr, m_ps.put())))
            return false;
        ID3D11RenderTargetView* const targets[] = {m_target.get()};
        m_context.OMSetRenderTargets(1, targets, nullptr);
        const D3D11_VIEWPORT viewport{0, 0, size, size, 0, 1};
        m_context.RSSetViewports(1, &viewport);
        m_context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
        m_context.VSSetShader(m_vs.get(), nullptr, 0);
        m_context.PSSetShader(m_ps.get(), nullptr, 0);
        return true;
    }

    // Seconds of the fastest draw so far; far too many while there is none.
    struct looked_at
    {
        com_ptr<ID3D11ShaderResourceView> view;
        double seconds = std::numeric_limits<double>::max();
    };

    bool createTexture(DXGI_FORMAT format, UINT bytes_per_row, looked_at& made)
    {
        std::vector<std::uint8_t> contents(std::size_t{size} * size * 4); // enough for either
        std::uint32_t state = 1;
        for (std::uint8_t& byte : contents) // any blocks, for those of one colour are quick
            byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        const CD3D11_TEXTURE2D_DESC description(format, size, size, 1, 1, D3D11_BIND_SHADER_RESOURCE,
                                                D3D11_USAGE_IMMUTABLE);
        const D3D11_SUBRESOURCE_DATA data{contents.data(), bytes_per_row, 0};
        com_ptr<ID3D11Texture2D> texture;
        return SUCCEEDED(m_device.CreateTexture2D(&description, &data, texture.put())) &&
               SUCCEEDED(m_device.CreateShaderResourceView(texture.get(), nullptr, made.view.put()));
    }

    // A draw that looks at every texel once. S_FALSE: it has taken longer than there was patience for.
    HRESULT measure(looked_at& what, bool counts)
    {
        ID3D11ShaderResourceView* const views[] = {what.view.get()};
        m_context.PSSetShaderResources(0, 1, views);
        const clock::time_point begin = clock::now();
        m_context.Draw(3, 0);
        m_context.End(m_done.get());
        HRESULT answer = S_FALSE;
        while ((answer = m_context.GetData(m_done.get(), nullptr, 0, 0)) == S_FALSE && isPatient())
            SwitchToThread();
        if (counts && answer == S_OK)
            what.seconds = std::min(what.seconds, std::chrono::duration<double>(clock::now() - begin).count());
        return answer;
    }

    bool isPatient() const { return clock::now() < m_end; }

private:
    ID3D11Device& m_device;
    ID3D11DeviceContext& m_context;
    com_ptr<ID3D11RenderTargetView> m_target;
    com_ptr<ID3D11VertexShader> m_vs;
    com_ptr<ID3D11PixelShader> m_ps;
    com_ptr<ID3D11Query> m_done;
    clock::time_point m_end = clock::now() + patience;
};

} // namespace

bool drawsOnProcessor(ID3D11Device& device, ID3D11DeviceContext& context, std::span<const std::byte> vertex_shader,
                      std::span<const std::byte> pixel_shader)
{
    if (hasSoftwareFlag(device))
        return true;
    probe asked(device, context);
    probe::looked_at plain, blocks;
    if (!asked.prepare(vertex_shader, pixel_shader) ||
        !asked.createTexture(DXGI_FORMAT_R8G8B8A8_UNORM, size * 4, plain) ||
        !asked.createTexture(DXGI_FORMAT_BC7_UNORM, size * 4, blocks)) // four rows of blocks of 16 bytes
        return false;
    for (int round = 0; round <= most_rounds && asked.isPatient(); ++round)
    {
        if (FAILED(asked.measure(plain, round > 0)) || FAILED(asked.measure(blocks, round > 0)))
            return false;
        if (round < fewest_rounds)
            continue;
        if (blocks.seconds <= cheap)
            return false;
        if (blocks.seconds > plain.seconds * dear_ratio)
            return true;
    }
    return blocks.seconds > dear;
}

} // namespace korvane
