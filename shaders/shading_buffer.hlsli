// What the shading pass knows of the picture, of the group and of the environment: that is a formula there, for looking
// into cubes costs more where the processor draws.
cbuffer ShadingBuffer : register(b3) // 384 bytes; shading_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    float4 ray; // through the upper left corner of the picture, world space, as far as one unit of depth
    float4 ray_x; // what it gains for each pixel
    float4 ray_y;
    float4 irradiance[9]; // spherical harmonics, divided by pi
    float4 lobe_sharpness; // four lobes: amplitude * exp(sharpness * (cos - 1))
    float4 lobe_x, lobe_y, lobe_z; // to the light, unit length
    float4 lobe_red, lobe_green, lobe_blue;
    float4 room_below, room_middle, room_above;
    float4 levels; // log2 of the larger side of the group's maps: diffuse, normal, specular, mask
    float4 gloss_levels; // x
};

float3 irradianceFrom(float3 d)
{
    return irradiance[0].rgb + irradiance[1].rgb * d.x + irradiance[2].rgb * d.y + irradiance[3].rgb * d.z +
           irradiance[4].rgb * (d.x * d.y) + irradiance[5].rgb * (d.y * d.z) + irradiance[6].rgb * (d.z * d.x) +
           irradiance[7].rgb * (d.x * d.x - d.y * d.y) + irradiance[8].rgb * (3 * d.z * d.z - 1);
}

// environmentRadiance() in D3D11_RENDER_LIB/environment_map.h
float3 radianceFrom(float3 d, float roughness)
{
    const float alpha = roughness * roughness;
    const float blur = 1 / max(0.5 * alpha * alpha, 1e-4) + 1;
    const float4 kept = blur / (lobe_sharpness + blur);
    const float4 cosine = lobe_x * d.x + lobe_y * d.y + lobe_z * d.z;
    const float4 seen = kept * exp(lobe_sharpness * kept * (cosine - 1));
    const float height = d.y * (blur / (blur + 1.5));
    const float3 room = room_middle.rgb + (height > 0 ? room_above.rgb : room_below.rgb) * abs(height);
    return room + float3(dot(lobe_red, seen), dot(lobe_green, seen), dot(lobe_blue, seen));
}
