#pragma once

// What all drawables share: the device and its immediate context, the shaders with their input layouts, the two
// constant buffers with their CPU copies, samplers, states and the environment. One object per device; its owner (the
// model window, the off-screen renderer) lends it to drawables. The device may be used by any thread, everything that
// touches the context only by the thread that draws.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/win32/com_ptr.h"

#include <d3d11.h>

#include <functional>
#include <string>

namespace korvane
{

// How triangles become pixels.
enum class raster_mode
{
    front_faces,          // clockwise triangles face the viewer
    front_faces_reversed, // counter-clockwise ones do
    both_faces,
    wireframe
};

class lib3d
{
public:
    using log_port = std::function<void(const std::string&)>;

    // A hardware device, else the software one; the log is told which. False when there is neither.
    [[nodiscard]] bool createDevice(const log_port& log, failure& why);
    bool isSoftware() const { return m_is_software; }

    // Each needs the device; a failure inside stops the program (d3d_check.h).
    void createSamplers();
    void createEnvironment();
    void createConstantBuffers();
    void createShaders();
    void createStates();
    // The bone-line buffer: dynamic, 20,000 vertices.
    void createLineBuffer();
    void createAll();

    ID3D11Device& device() const { return *m_device.get(); }
    ID3D11DeviceContext& context() const { return *m_context.get(); }
    ID3D11Buffer* lineBuffer() const { return m_line_buffer.get(); }

    // CPU copies: written by the drawing thread, uploaded whole.
    mvp_buffer vs_constants;
    light_buffer ps_constants;
    void uploadConstants();

    // Binds what every draw of a frame shares: samplers, environment, blend and depth state.
    void beginScene();
    void useModelShaders(raster_mode mode);
    void useLineShaders();
    // One triangle over the bound target that shows the view through the final pass.
    void drawFinalPass(ID3D11ShaderResourceView* shown, const final_pass_buffer& settings);

private:
    com_ptr<ID3D11Buffer> constantBuffer(UINT size, const void* contents) const;
    com_ptr<ID3D11VertexShader> vertexShader(int resource, const D3D11_INPUT_ELEMENT_DESC* elements, UINT count,
                                             ID3D11InputLayout** layout) const;
    com_ptr<ID3D11PixelShader> pixelShader(int resource) const;

    com_ptr<ID3D11Device> m_device;
    com_ptr<ID3D11DeviceContext> m_context;
    bool m_is_software = false;

    com_ptr<ID3D11VertexShader> m_model_vs, m_line_vs, m_final_vs;
    com_ptr<ID3D11PixelShader> m_model_ps, m_wireframe_ps, m_line_ps, m_final_ps;
    com_ptr<ID3D11InputLayout> m_model_layout, m_line_layout;
    com_ptr<ID3D11Buffer> m_vs_buffer, m_ps_buffer, m_final_buffer, m_line_buffer;
    com_ptr<ID3D11ShaderResourceView> m_specular_cube, m_diffuse_cube;
    com_ptr<ID3D11SamplerState> m_samplers[5];
    com_ptr<ID3D11RasterizerState> m_rasterizers[4]; // by raster_mode
    com_ptr<ID3D11BlendState> m_blend;
    com_ptr<ID3D11DepthStencilState> m_depth;
};

inline constexpr UINT line_vertex_capacity = 20000;

} // namespace korvane
