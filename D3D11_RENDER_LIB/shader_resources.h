// Resource numbers of the compiled shaders (type RCDATA); read by the resource compiler too.
#define KORVANE_MODEL_VS 501
#define KORVANE_MODEL_PS 502
#define KORVANE_WIREFRAME_PS 503
#define KORVANE_LINE_VS 504
#define KORVANE_LINE_PS 505
#define KORVANE_FINAL_VS 506
#define KORVANE_FINAL_PS 507
#define KORVANE_CHANNEL_PS 508
#define KORVANE_MODEL_SHADOW_PS 509
#define KORVANE_SHADOW_PS 510
#define KORVANE_FLOOR_PS 511
#define KORVANE_OVERLAY_VS 512
#define KORVANE_OVERLAY_PS 513
