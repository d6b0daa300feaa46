#include "D3D11_RENDER_LIB/device_faults.h"

#include <dxgi1_2.h>

namespace korvane
{

void device_faults::lose(device_step step, int times, int after)
{
    plan& planned = m_plans[static_cast<std::size_t>(step)];
    planned.times = 0;
    planned.after = after;
    planned.times = times;
}

HRESULT device_faults::result(device_step step, HRESULT answer)
{
    plan& planned = m_plans[static_cast<std::size_t>(step)];
    if (planned.times.load() <= 0 || planned.after.fetch_sub(1) > 0)
        return answer;
    return planned.times.fetch_sub(1) > 0 ? DXGI_ERROR_DEVICE_REMOVED : answer;
}

} // namespace korvane
