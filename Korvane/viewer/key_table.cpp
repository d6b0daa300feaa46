#include "Korvane/viewer/key_table.h"

#include <algorithm>
#include <iterator>

namespace korvane
{

namespace
{

constexpr float turn_per_key = 0.06f;
constexpr float distance_per_key = 0.1f;
constexpr float point_step = 0.05f;

template <float gpu_light::*factor, int thousandths>
void scaleKeyLight(view_state& view)
{
    view.lights[0].base.*factor *= static_cast<float>(thousandths) / 1000.0f;
}

template <bool view_state::*flag>
void toggle(view_state& view)
{
    view.*flag = !(view.*flag);
}

template <float glm::vec3::*axis, int direction>
void movePoint(view_state& view)
{
    view.lights[1].point.position.*axis += static_cast<float>(direction) * point_step;
    view.shows_light = true;
}

template <int channel>
void takeSmoothness(view_state& view)
{
    view.smoothness_channel = channel;
}

void toggleWireframe(view_state& view)
{
    view.is_wireframe = !view.is_wireframe;
    view.frame_limit = view.is_wireframe ? 1 : view_state::unlimited;
}

void reset(view_state& view)
{
    gpu_light& light = view.lights[0].base;
    light.radiannce = light.ambientFactor = light.diffuseFactor = 1.0f;
    light.specularFactor = light.roughnessFactor = 1.0f;
    view.light_yaw = view.light_pitch = 0;
    view.eye.offset = glm::vec3(0);
}

constexpr view_key keys[] = {
    {'H', "H", "show or hide this help", &toggle<&view_state::shows_help>},
    {'A', "A / D", "turn the model", [](view_state& view) { view.eye.turn(turn_per_key, 0); }},
    {'D', nullptr, nullptr, [](view_state& view) { view.eye.turn(-turn_per_key, 0); }},
    {'Q', "Q / E", "farther, closer", [](view_state& view) { view.eye.move(distance_per_key); }},
    {'E', nullptr, nullptr, [](view_state& view) { view.eye.move(-distance_per_key); }},
    {'V', "V", "the view as at the start", nullptr},
    {'G', "G", "turn by itself", &toggle<&view_state::is_turntable>},
    {key_code::space, "Space", "animation from its first frame", nullptr},
    {'J', "J / K / L", "step back, play or pause, step on", nullptr},
    {'K', nullptr, nullptr, nullptr},
    {'L', nullptr, nullptr, nullptr},
    {'S', "S", "skeleton", &toggle<&view_state::shows_skeleton>},
    {'N', "N", "names of the bones", &toggle<&view_state::shows_bone_names>},
    {'Y', "Y", "attachment points", &toggle<&view_state::shows_attachments>},
    {'O', "O", "colour without light", &toggle<&view_state::shows_plain>},
    {'F', "F", "normals as colours", &toggle<&view_state::shows_normals>},
    {'C', "C", "wire frame", &toggleWireframe},
    {'M', "M", "wire frame over the surface", &toggle<&view_state::shows_wire_over>},
    {'W', "W", "grid below the model", &toggle<&view_state::shows_floor>},
    {'X', "X", "bounds of the model", &toggle<&view_state::shows_bounds>},
    {'B', "B", "darker background", &toggle<&view_state::is_background_dark>},
    {'U', "U", "counts", &toggle<&view_state::shows_counts>},
    {'I', "I", "save a picture", nullptr},
    {'T', "T", "reflections", &toggle<&view_state::show_reflections>},
    {'P', "P", "light divided by pi", &toggle<&view_state::scale_by_one_over_pi>},
    {'1', "1 2 3 4", "channel of the gloss map", &takeSmoothness<1>},
    {'2', nullptr, nullptr, &takeSmoothness<2>},
    {'3', nullptr, nullptr, &takeSmoothness<3>},
    {'4', nullptr, nullptr, &takeSmoothness<4>},
    {key_code::page_up, "Page Up / Down", "ambient light", &scaleKeyLight<&gpu_light::ambientFactor, 1040>},
    {key_code::page_down, nullptr, nullptr, &scaleKeyLight<&gpu_light::ambientFactor, 960>},
    {key_code::home, "Home / End", "key light", &scaleKeyLight<&gpu_light::radiannce, 1050>},
    {key_code::end, nullptr, nullptr, &scaleKeyLight<&gpu_light::radiannce, 950>},
    {key_code::up, "Up / Down", "shine", &scaleKeyLight<&gpu_light::specularFactor, 1050>},
    {key_code::down, nullptr, nullptr, &scaleKeyLight<&gpu_light::specularFactor, 950>},
    {key_code::right, "Right / Left", "roughness", &scaleKeyLight<&gpu_light::roughnessFactor, 1005>},
    {key_code::left, nullptr, nullptr, &scaleKeyLight<&gpu_light::roughnessFactor, 995>},
    {key_code::numpad4, "Numpad 4 / 6", "side light left, right", &movePoint<&glm::vec3::x, -1>},
    {key_code::numpad6, nullptr, nullptr, &movePoint<&glm::vec3::x, 1>},
    {key_code::numpad8, "Numpad 8 / 2", "side light down, up", &movePoint<&glm::vec3::y, -1>},
    {key_code::numpad2, nullptr, nullptr, &movePoint<&glm::vec3::y, 1>},
    {key_code::numpad7, "Numpad 7 / 1", "side light closer, farther", &movePoint<&glm::vec3::z, -1>},
    {key_code::numpad1, nullptr, nullptr, &movePoint<&glm::vec3::z, 1>},
    {'R', "R", "light and place as at the start", &reset},
    {key_code::escape, "Escape", "leave the enlarged view (double click enlarges)", nullptr},
};

static_assert(std::all_of(std::begin(keys), std::end(keys), [](const view_key& key) {
    return key.code >= key_code::first && key.code <= key_code::last;
}));

} // namespace

std::span<const view_key> viewKeys()
{
    return keys;
}

const view_key* findViewKey(unsigned virtual_key)
{
    const auto* const found = std::find_if(std::begin(keys), std::end(keys),
                                           [virtual_key](const view_key& key) { return key.code == virtual_key; });
    return found == std::end(keys) ? nullptr : found;
}

} // namespace korvane
