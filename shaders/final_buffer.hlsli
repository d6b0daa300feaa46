// What the final pass and what is written over the picture know of it.
cbuffer FinalPassBuffer : register(b1) // 16 bytes; final_pass_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    int2 size;   // of the target, pixels
    int content; // content_light, content_colour or content_data
    int flags;   // final_...
};
