// Filters with settings of their own in the camera object, on the application's buffers.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

BOOL VEXA_CALL Vexa_SetSharpnessMode(HANDLE camera, BYTE mode, WORD gain, BYTE coring) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    self.sharpness().SetMode({.mode = mode, .gain = gain, .coring = coring});
    return Status();
  });
}

BOOL VEXA_CALL Vexa_GetSharpnessMode(HANDLE camera, BYTE* mode, WORD* gain, BYTE* coring) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    const auto stored = self.sharpness().GetMode();
    Store(mode, stored.mode);
    Store(gain, stored.gain);
    Store(coring, stored.coring);
    return Status();
  });
}

BOOL VEXA_CALL Vexa_Sharpness(HANDLE camera, DWORD width, DWORD height, DWORD output_format,
                              BYTE* image) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.sharpness().Apply(width, height, output_format, image);
  });
}

BOOL VEXA_CALL Vexa_NoiseReduction(HANDLE camera, DWORD mode, DWORD width, DWORD height,
                                   DWORD color_array, BYTE* frame) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.noise_reduction().Apply(mode, {.width = width,
                                               .height = height,
                                               .color_array = static_cast<WORD>(color_array),
                                               .samples = frame});
  });
}
