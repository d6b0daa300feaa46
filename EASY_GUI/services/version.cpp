#include "EASY_GUI/services/version.h"

namespace korvane
{

constinit const std::string_view program_version = KORVANE_VERSION;

} // namespace korvane
