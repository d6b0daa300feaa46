#include "Korvane/cli/anim_json.h"

namespace korvane
{

json arrayJson(const glm::vec3& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z)};
}

json arrayJson(const glm::quat& value)
{
    return {jsonNumber(value.x), jsonNumber(value.y), jsonNumber(value.z), jsonNumber(value.w)};
}

} // namespace korvane
