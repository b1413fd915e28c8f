// Image functions of the camera: corrections and white balance.

#include "VexaAPI.h"
#include "camera/vexa_camera.hpp"
#include "exports/call_frame.hpp"

using vexa::Status;
using vexa::camera::CVexaCamera;
using vexa::settings::Correction;
using vexa::settings::WhiteBalanceGains;
using namespace vexa::exports;  // NOLINT(google-build-using-namespace): the frame of every function

namespace {

BOOL SetCorrection(HANDLE camera, Correction correction, DWORD value) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.correction().Set(correction, value); });
}

// Runs a getter whose value is 0 when it fails.
template <typename Output, typename Getter>
BOOL GetOrZero(HANDLE camera, Output* output, Getter&& getter) {
  Clear(output);
  return CallGetter<Output>(camera, output, getter);
}

BOOL GetCorrection(HANDLE camera, Correction correction, WORD* value) {
  return GetOrZero(camera, value, [&](CVexaCamera& self, WORD* word) {
    return self.correction().Get(correction, word);
  });
}

}  // namespace

BOOL VEXA_CALL Vexa_SetBinningSumMode(HANDLE camera, DWORD mode) {
  return SetCorrection(camera, Correction::kBinningSum, mode);
}

BOOL VEXA_CALL Vexa_GetBinningSumMode(HANDLE camera, WORD* mode) {
  return GetCorrection(camera, Correction::kBinningSum, mode);
}

BOOL VEXA_CALL Vexa_SetCameraGammaValue(HANDLE camera, DWORD value) {
  return SetCorrection(camera, Correction::kGamma, value);
}

BOOL VEXA_CALL Vexa_GetCameraGammaValue(HANDLE camera, WORD* value) {
  return GetCorrection(camera, Correction::kGamma, value);
}

BOOL VEXA_CALL Vexa_SetDigitalClamp(HANDLE camera, DWORD value) {
  return SetCorrection(camera, Correction::kDigitalClamp, value);
}

BOOL VEXA_CALL Vexa_GetDigitalClamp(HANDLE camera, WORD* value) {
  return GetCorrection(camera, Correction::kDigitalClamp, value);
}

BOOL VEXA_CALL Vexa_GetEnableDefectPixelCorrectionCount(HANDLE camera, WORD* count) {
  return GetOrZero(camera, count, [](CVexaCamera& self, WORD* word) {
    *word = self.correction().DefectCount();
    return Status();
  });
}

BOOL VEXA_CALL Vexa_SetDefectPixelCorrectionMode(HANDLE camera, DWORD mode) {
  return CallCamera(camera,
                    [&](CVexaCamera& self) { return self.correction().SetDefectMode(mode); });
}

BOOL VEXA_CALL Vexa_GetDefectPixelCorrectionMode(HANDLE camera, WORD* mode) {
  return GetOrZero(camera, mode, [](CVexaCamera& self, WORD* word) {
    return self.correction().GetDefectMode(word);
  });
}

BOOL VEXA_CALL Vexa_SetDefectPixelCorrectionPosition(HANDLE camera, DWORD index, DWORD x, DWORD y) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.correction().SetDefect(
        index, {static_cast<std::uint16_t>(x & 0xFFFF), static_cast<std::uint16_t>(y & 0xFFFF)});
  });
}

BOOL VEXA_CALL Vexa_GetDefectPixelCorrectionPosition(HANDLE camera, DWORD index, DWORD* x,
                                                     DWORD* y) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    vexa::settings::DefectPosition position;
    const Status status = self.correction().GetDefect(index, &position);
    if (status.ok()) {
      Store(x, position.x);
      Store(y, position.y);
    }
    return status;
  });
}

BOOL VEXA_CALL Vexa_SetWhiteBalanceGain(HANDLE camera, WORD red, WORD green_red, WORD green_blue,
                                        WORD blue) {
  return CallCamera(camera, [&](CVexaCamera& self) {
    return self.white_balance().SetGains(
        {.red = red, .green_red = green_red, .green_blue = green_blue, .blue = blue});
  });
}

BOOL VEXA_CALL Vexa_GetWhiteBalanceGain(HANDLE camera, WORD* red, WORD* green_red, WORD* green_blue,
                                        WORD* blue) {
  Clear(red, green_red, green_blue, blue);
  return CallCamera(camera, [&](CVexaCamera& self) {
    WhiteBalanceGains gains;
    const Status status = self.white_balance().GetGains(&gains);
    Store(red, gains.red);
    Store(green_red, gains.green_red);
    Store(green_blue, gains.green_blue);
    Store(blue, gains.blue);
    return status;
  });
}

BOOL VEXA_CALL Vexa_SetWhiteBalanceMode(HANDLE camera, DWORD mode) {
  return CallCamera(camera, [&](CVexaCamera& self) { return self.white_balance().SetMode(mode); });
}

BOOL VEXA_CALL Vexa_GetWhiteBalanceMode(HANDLE camera, BYTE* mode) {
  return GetOrZero(camera, mode, [](CVexaCamera& self, BYTE* value) {
    return self.white_balance().GetMode(value);
  });
}
