#pragma once

// The Direct3D window as the main window's view.

#include "Korvane/app/model_view.h"

namespace korvane
{

[[nodiscard]] std::unique_ptr<model_view> makeD3dModelView(view_events events, failure& why);

} // namespace korvane
