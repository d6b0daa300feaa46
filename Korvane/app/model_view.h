#pragma once

// What the main window asks of the three-dimensional view. The program gives it the Direct3D window; tests of the main
// window record.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/models/rmv2_data.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>
#include <windows.h>

namespace korvane
{

class model_view
{
public:
    virtual ~model_view() = default;

    virtual void setModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& path, std::size_t lod) = 0;
    // Shows the models of the definition at the path in place of what was shown, as far as the archives hold them.
    virtual drawn_models setDefinition(const std::vector<std::string>& models, const std::string& path) = 0;
    virtual void show() = 0; // and bring to the front
    virtual bool isVisible() const = 0;
    virtual HWND handle() const = 0;
};

// Makes a view that shows nothing yet and is hidden; null and a reason when there is no usable graphics device. The log
// function takes one line.
using model_view_factory = std::function<std::unique_ptr<model_view>(log_port log, failure& why)>;

} // namespace korvane
