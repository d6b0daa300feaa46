#pragma once

// What all drawables share: the device and its immediate context, the shaders with their input layouts, the two
// constant buffers, samplers, states and the environment. One object per device; its owner (the render worker, the
// off-screen renderer) lends it to drawables. The device may be used by any thread, everything that touches the context
// only by the thread that draws.

#include "D3D11_RENDER_LIB/device_faults.h"
#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "D3D11_RENDER_LIB/screen_area.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/win32/com_ptr.h"

#include <d3d11.h>

#include <cstddef>
#include <span>

namespace korvane
{

struct environment_images;

// How triangles become pixels.
enum class raster_mode
{
    front_faces,          // clockwise triangles face the viewer
    front_faces_reversed, // counter-clockwise ones do
    both_faces,
    wireframe,
    wireframe_over, // edges, a little before the surface that they belong to
    shadow,         // both faces, a little behind what they are
    area            // both faces, a part of the picture
};
inline constexpr std::size_t raster_mode_count = 7;

// What is drawn of models.
enum class model_pass
{
    lit,
    lit_with_shadow, // the map is bound (shadow_map.h)
    channel,         // one channel of the surface: light_buffer::debug_flags
    wireframe,
    wire_over,
    shadow_map, // depth alone
    surfaces,   // what shading needs to know of each pixel, and the group's number as its stencil (scene_targets.h)
    shading     // the pixels of one group, as lit
};

// Of a group, for model_pass::surfaces.
enum class surface_kind
{
    framed, // all vertices have normals, tangents and binormals
    bare,
    with_alpha // alpha tested
};

enum class line_depth
{
    tested,
    ignored // visible over everything
};

enum class device_kind
{
    best, // hardware, else software
    hardware,
    software
};

class lib3d
{
public:
    // The faults outlive the object; null: none are planned.
    explicit lib3d(device_faults* faults = nullptr) : m_po_faults(faults) {}

    // The log is told when the software device stands in for hardware. False when there is no such device.
    [[nodiscard]] bool createDevice(device_kind kind, const log_port& log, failure& why);

    // What made an object has answered: names the object for debuggers and gives true, or gives false when the device
    // was lost. Any other failure stops the program (d3d_check.h), unless failures are tolerated.
    template <typename type>
    [[nodiscard]] bool isMade(HRESULT answer, const com_ptr<type>& object, const char* name, const char* source)
    {
        if (!hasSucceeded(device_step::creation, answer, source))
            return false;
        if (object)
            setName(*object.get(), name);
        return true;
    }
    [[nodiscard]] bool hasSucceeded(device_step step, HRESULT answer, const char* source);
    // While a lost device is made again, whatever fails is one more loss and not an end.
    void tolerateFailures(bool is_tolerant) { m_is_tolerant = is_tolerant; }
    [[nodiscard]] bool isLost();            // asks the device
    HRESULT loss() const { return m_loss; } // the answer that lost it; S_OK before

    // Each needs the device and gives false when it was lost.
    [[nodiscard]] bool createSamplers();
    [[nodiscard]] bool createEnvironment(); // the small one
    // In its place, for hardware devices; the small one stays when the device refuses these for want of memory.
    [[nodiscard]] bool exchangeEnvironment(const environment_images& images);
    bool hasWholeEnvironment() const { return m_has_whole_environment; }                    // or has been refused it
    [[nodiscard]] bool createConstantBuffers(const mvp_buffer& vs, const light_buffer& ps); // and what is in them first
    [[nodiscard]] bool createShaders();
    [[nodiscard]] bool createStates();
    // The bone-line buffer: dynamic, 20,000 vertices.
    [[nodiscard]] bool createLineBuffer();
    [[nodiscard]] bool createAll();
    // Vertices or indices.
    [[nodiscard]] bool createBuffer(D3D11_BIND_FLAG kind, std::span<const std::byte> contents, const char* name,
                                    const char* source, com_ptr<ID3D11Buffer>& buffer);
    // To be filled in portions.
    [[nodiscard]] bool createBuffer(D3D11_BIND_FLAG kind, std::size_t size_bytes, const char* name, const char* source,
                                    com_ptr<ID3D11Buffer>& buffer);
    void fill(ID3D11Buffer& buffer, std::size_t offset_bytes, std::span<const std::byte> contents);

    // The device draws on the processor (device_probe.h): what is dear there is made cheap, and nothing is drawn that a
    // graphics card alone can afford.
    bool isSoftware() const { return m_is_software; }
    // Added to the level of detail of textures: below 0 where several samples become one pixel. Before
    // createSamplers().
    void setTextureBias(float levels) { m_texture_bias = levels; }
    void assumeSoftware(bool is_software) { m_is_software = is_software; } // to compare both; before anything is made

    ID3D11Device& device() const { return *m_device.get(); }
    ID3D11DeviceContext& context() const { return *m_context.get(); }
    ID3D11Buffer* lineBuffer() const { return m_line_buffer.get(); }

    // Both buffers whole, for the next draw.
    void uploadConstants(const mvp_buffer& vs, const light_buffer& ps);
    void uploadLight(const light_buffer& ps); // of the pixel stage alone
    // For the groups of surface_kind::framed, instead of both.
    void uploadPose(const pose_buffer& pose);
    // Binds what every draw of a frame shares: samplers, environment, blend and depth state. Pictures that are drawn as
    // the screen has them have one target (scene_targets.h).
    void beginScene(bool is_encoded = false);
    // The faces count for the passes that fill surfaces.
    void useModelShaders(model_pass pass, raster_mode faces);
    // For model_pass::surfaces after that, and the whole draw of model_pass::shading: of a group of that number, 1 to
    // 255, which reaches no further than the area.
    void useSurfaceShader(surface_kind kind, UINT group);
    void drawShading(UINT group, const screen_area& area, std::span<const float> levels);
    // The scene that was begun is shaded with the maps of map_packer.
    bool looksAtPackedMaps() const { return m_is_encoded; }
    shading_buffer& shading() { return m_shading; } // what the next drawShading() knows; the environment is in it
    void useFloorShaders();                         // the shadow on the floor, over what is in the target of light
    void useLineShaders(line_depth depth);
    void drawLines(ID3D11Buffer& vertices, UINT vertex_count);
    // Out of the bone-line buffer; what is beyond its capacity is left out.
    void drawLines(std::span<const gpu_line_vertex> lines);
    // The size that the final pass and what is written over it are given.
    void setFinalPass(const final_pass_buffer& settings);
    // Of the scene that was begun: shows the view in the area of the bound target through the final pass, with outlines
    // around what the marks, those of the normals' target, say.
    void drawFinalPass(ID3D11ShaderResourceView* shown, ID3D11ShaderResourceView* marks,
                       const final_pass_buffer& settings, const screen_area& area, bool has_outlines);
    // Fills the bound target, of the size in the settings, with what pack_ps makes of the bound maps.
    void drawPacked(const packing_buffer& settings);
    // Shows the view in the area of the bound target, whose size the settings give, with a filter.
    void drawEnlarged(ID3D11ShaderResourceView* shown, const final_pass_buffer& settings, const screen_area& area);
    [[nodiscard]] bool createVertexShader(int resource, std::span<const D3D11_INPUT_ELEMENT_DESC> elements,
                                          const char* name, com_ptr<ID3D11VertexShader>& shader,
                                          com_ptr<ID3D11InputLayout>* layout);
    [[nodiscard]] bool createPixelShader(int resource, const char* name, com_ptr<ID3D11PixelShader>& shader);
    [[nodiscard]] bool createConstantBuffer(UINT size, const void* contents, const char* name,
                                            com_ptr<ID3D11Buffer>& buffer);
    // Lets go of everything that is bound and waits to be freed: a window has room for one swap chain.
    void clearContext();

private:
    [[nodiscard]] HRESULT tryDevice(D3D_DRIVER_TYPE type);
    static void setName(ID3D11DeviceChild& object, const char* name);
    void drawArea(const screen_area& area);
    void drawOver(ID3D11PixelShader& shader, const screen_area& area); // no depth, no blending
    void drawFinished(ID3D11ShaderResourceView* shown, ID3D11ShaderResourceView* marks,
                      const final_pass_buffer& settings, const screen_area& area, ID3D11PixelShader& shader);
    [[nodiscard]] bool createRasterizer(raster_mode mode, D3D11_FILL_MODE fill, D3D11_CULL_MODE cull, BOOL reversed,
                                        INT depth_bias = 0, float slope_bias = 0);

    device_faults* m_po_faults;
    com_ptr<ID3D11Device> m_device;
    com_ptr<ID3D11DeviceContext> m_context;
    bool m_is_software = false;
    bool m_is_tolerant = false;
    bool m_has_whole_environment = false;
    bool m_is_encoded = false; // the scene that is drawn
    float m_texture_bias = 0;
    HRESULT m_loss = S_OK;
    shading_buffer m_shading;

    com_ptr<ID3D11VertexShader> m_model_vs, m_frame_vs, m_line_vs, m_final_vs;
    com_ptr<ID3D11PixelShader> m_model_ps, m_model_shadow_ps, m_channel_ps, m_wireframe_ps, m_shadow_ps, m_floor_ps,
        m_line_ps, m_line_encoded_ps, m_wireframe_encoded_ps, m_final_ps, m_final_outline_ps, m_final_encoded_ps,
        m_final_encoded_outline_ps, m_enlarged_ps, m_surface_ps, m_surface_alpha_ps, m_frame_ps, m_shading_ps,
        m_shading_usual_ps, m_pack_ps;
    com_ptr<ID3D11InputLayout> m_model_layout, m_line_layout;
    com_ptr<ID3D11Buffer> m_vs_buffer, m_pose_buffer, m_ps_buffer, m_final_buffer, m_shading_buffer, m_packing_buffer,
        m_line_buffer;
    com_ptr<ID3D11ShaderResourceView> m_specular_cube, m_diffuse_cube, m_reflectance_table;
    com_ptr<ID3D11SamplerState> m_samplers[5];
    com_ptr<ID3D11RasterizerState> m_rasterizers[raster_mode_count];
    com_ptr<ID3D11BlendState> m_blend, m_floor_blend;
    com_ptr<ID3D11DepthStencilState> m_depth, m_depth_ignored, m_depth_read, m_stencil_written, m_stencil_tested;
};

inline constexpr UINT line_vertex_capacity = 20000;

} // namespace korvane
