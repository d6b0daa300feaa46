#pragma once

// Small pictures of scenes for previews, drawn off-screen: one device, made for the first picture and kept for all. One
// thread at a time.

#include "Korvane/jobs/scene_preview.h"

#include <memory>

namespace korvane
{

class device_faults;

class preview_pictures : public scene_pictures
{
public:
    // The faults are for tests (device_faults.h), and outlive the object.
    explicit preview_pictures(device_faults* faults = nullptr);
    ~preview_pictures() override;

    [[nodiscard]] bool draw(const scene_pointer& scene, std::uint32_t width, std::uint32_t height,
                            const work_port& work, picture& made, failure& why) override;

private:
    struct device_half;

    [[nodiscard]] bool drawOnce(const scene_pointer& scene, std::uint32_t width, std::uint32_t height,
                                const work_port& work, picture& made);

    device_faults* m_po_faults;
    std::unique_ptr<device_half> m_po_device; // null before the first picture, and when it was lost
};

} // namespace korvane
