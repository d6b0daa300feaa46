#include "D3D11_RENDER_LIB/pose_palette.h"

#include <algorithm>

namespace korvane
{

namespace
{

pose_buffer::bone_rows rowsOf(const gpu_matrix& matrix)
{
    return {matrix[0], matrix[1], matrix[2]};
}

} // namespace

void fillPose(const mvp_buffer& constants, pose_buffer& pose)
{
    pose.to_clip = gpuProduct(constants.Projection, constants.View);
    pose.is_weapon = constants.is_weapon;
    pose.is_static = constants.static_model == 1 && constants.is_weapon != 1 ? 1 : 0;
    const gpu_matrix to_world = gpuProduct(constants.mWorld, gpuProduct(constants.rot_x, constants.rot_y));
    pose.palette[max_bones] = rowsOf(to_world);
    if (pose.is_static != 0)
        return;
    const auto moved = [&](const gpu_matrix& bone) {
        return rowsOf(gpuProduct(to_world, constants.is_weapon == 1 ? gpuProduct(bone, constants.mWeapon) : bone));
    };
    for (std::size_t i = 0; i < max_bones; ++i)
        pose.palette[i] = moved(gpuProduct(constants.tranforms[i], constants.inverse[i]));
    pose.palette[max_bones] = moved(gpu_identity); // what a palette does not hold stays
}

} // namespace korvane
