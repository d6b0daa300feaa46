#pragma once

// The port through which a device is lost on purpose: what Direct3D has answered passes through it, and planned losses
// take the answer's place. Without any it changes nothing. Used by tests, and by the window for tests of the real
// program (d3d_window.h, lose_device_message): a lost device cannot be had otherwise without pulling the card.

#include <windows.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace korvane
{

enum class device_step
{
    device,   // the device itself is made
    creation, // anything is made on it
    resize,
    present
};
inline constexpr std::size_t device_step_count = 4;

class device_faults // any thread
{
public:
    // The next so many steps of that kind lose the device, after so many that go well.
    void lose(device_step step, int times, int after = 0);
    // What is to be taken for the answer of a step.
    [[nodiscard]] HRESULT result(device_step step, HRESULT answer);

private:
    struct plan
    {
        std::atomic<int> times{0};
        std::atomic<int> after{0};
    };
    std::array<plan, device_step_count> m_plans;
};

} // namespace korvane
