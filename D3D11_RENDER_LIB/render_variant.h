#pragma once

// A figure that is put together from several models, as a variant mesh definition names them: each becomes a
// rigid_model with textures of its own, and all are drawn in one space. Models come out of the archives only; one that
// is missing or damaged is reported and left out, the others are drawn.

#include "D3D11_RENDER_LIB/rigid_model.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace korvane
{

// Which models are put together.
struct variant_source
{
    std::vector<std::string> models;          // internal paths, in the order in which they are drawn
    std::size_t lod = 0;                      // of each model; beyond its last one: its last one
    const texture_source* textures = nullptr; // of all parts; null: none
};

// What became of them.
struct variant_outcome
{
    std::size_t parts = 0;  // that are drawn
    std::size_t failed = 0; // that the log names
    std::size_t triangles = 0;
};

class render_variant : public d3d_drawable
{
public:
    static constexpr std::size_t max_parts = 512; // of one figure; further models are left out and counted as failed

    explicit render_variant(lib3d::log_port log = {}) : m_log(std::move(log)) {}

    // Releases what was there and adds all models.
    variant_outcome create(ID3D11Device& device, const variant_source& source);

    // Looks the model up, reads, decodes and adds it as one more part. False, and nothing is added, when one of these
    // fails; the log is told.
    bool addRigidModelByInternalPath(ID3D11Device& device, const std::string& path, std::size_t lod,
                                     const texture_source* textures);

    void draw(lib3d& library) override;
    void release() override;

    void setWireframe(bool is_wireframe);
    model_bounds bounds() const; // around all parts
    const std::deque<rigid_model>& parts() const { return m_parts; }

private:
    void report(const std::string& line) const;

    lib3d::log_port m_log;
    std::deque<rigid_model> m_parts;
};

} // namespace korvane
